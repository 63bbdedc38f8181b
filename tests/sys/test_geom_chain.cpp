// Tests of geometry chains: the typed searches, the exclusions (with the
// one-sided ExcludeRoot), damaged chains, and the bases' defaults.
#include <keel/SSM.h>
#include <keel/SYS_GeomChain.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace {

struct Node : SYS_GeomNode {};

// Four nodes P, A, B, C of the given types, in a ring P > A > B > C > P.
struct Ring {
    Node n[4];
    Node &P = n[0], &A = n[1], &B = n[2], &C = n[3];
    explicit Ring(const short (&types)[4]) {
        for (int i = 0; i < 4; ++i) n[i].SetNodeType(types[i]);
        for (int i = 3; i > 0; --i) P.IncludeRoot(&n[i]);
    }
    std::string Name(const SYS_GeomNode* p) const {
        return p ? std::string(1, "PABC"[static_cast<const Node*>(p) - n]) : "-";
    }
    // Each node's successor: "ABCP" for the ring as built.
    std::string Links() const {
        std::string s;
        for (const Node& x : n) s += Name(x.next);
        return s;
    }
};

TEST(GeomChain, SearchesNeverVisitTheirOwnNode) {
    struct Row {
        const char* what; // rows named "barrier..." make B a barrier
        std::function<const SYS_GeomNode*(Ring&)> search;
        const char* found;
    } rows[] = {
        {"walk end", [](Ring& r) { return r.P.GetNextRoot(&r.C); }, "-"},
        {"geom", [](Ring& r) { return r.P.GetNextGeomRoot(); }, "B"},
        {"DB", [](Ring& r) { return r.P.GetDBRoot(); }, "C"},
        {"BRT", [](Ring& r) { return r.P.GetBRTRoot(); }, "A"},
        {"type self", [](Ring& r) { return r.P.GetRoot(short(1)); }, "-"},
        {"after n", [](Ring& r) { return r.P.GetNextRoot(&r.A, SGN_BRT); }, "-"},
        {"after n, up to this", [](Ring& r) { return r.C.GetNextRoot(&r.A, SGN_DB); }, "-"},
        {"next up to this", [](Ring& r) { return r.P.NextRoot(&r.B, 7); }, "-"},
        {"prev", [](Ring& r) { return r.A.GetPrevRoot(&r.B); }, "P"},
        {"prev, n before this", [](Ring& r) { return r.P.GetPrevRoot(&r.C); }, "-"},
        {"barrier right after n: not tested", [](Ring& r) { return r.P.GetPrevRoot(&r.A); }, "C"},
        {"barrier further on", [](Ring& r) { return r.P.GetPrevRoot(&r.P); }, "-"},
    };
    for (const Row& row : rows) {
        Ring r({1, 7, static_cast<short>(row.what[0] == 'b' ? SGN_GeomBarrier : 2), 9});
        EXPECT_EQ(r.Name(row.search(r)), row.found) << row.what;
    }
}

TEST(GeomChain, Exclusions) {
    struct Row {
        short types[4];
        std::function<void(Ring&)> exclude;
        const char* links;
    } rows[] = {
        {{1, 0, 0, 0}, [](Ring& r) { r.P.ExcludeRoot(&r.P); }, "PBCA"},
        {{1, 0, 0, 0}, [](Ring& r) { r.P.ExcludeRoot(&r.P), r.A.ExcludeRoot(&r.P); }, "PBCA"},
        {{1, 0, 0, 0}, [](Ring& r) { r.P.ExcludeRoot(&r.C); }, "PBAP"}, // one-sided
        {{1, 6, 0, 0}, [](Ring& r) { r.P.ExcludeRoot(&r.P); }, "ABCP"}, // barriers
        {{1, 0, 0, 6}, [](Ring& r) { r.P.ExcludeRoot(&r.P); }, "ABCP"},
        {{6, 0, 0, 0}, [](Ring& r) { r.P.ExcludeRoot(&r.P); }, "PBCA"},
        {{0, 0, 0, 0}, [](Ring& r) { r.P.ExcludeOwnRoot(); }, "BBCP"},
        {{0, 7, 7, 0}, [](Ring& r) { r.P.ExcludeNearType(7); }, "CBCP"},
        {{0, 0, 7, 7}, [](Ring& r) { r.P.ExcludeNearType(7); }, "ABCP"},
        {{0, 7, 0, 7}, [](Ring& r) { r.P.ExcludeByType(7); }, "BBPP"},
        {{7, 7, 0, 0}, [](Ring& r) { r.A.ExcludeByType(7); }, "ABCA"}, // keeps its own node
        {{0, 7, 7, 7}, [](Ring& r) { r.P.ExcludeByType(7); }, "PBCP"},
    };
    for (const Row& row : rows) {
        Ring r(row.types);
        row.exclude(r);
        EXPECT_EQ(r.Links(), row.links) << &row - rows;
    }
}

// A null link ends every walk quietly, and so does a loop that never comes
// back to the node the walk stops at.
TEST(GeomChain, DamagedChainsEndEveryWalk) {
    for (bool loop : {false, true}) {
        Ring r({0, 0, 0, 0});
        loop ? r.C.SetRoot(&r.A) : r.B.SetRoot(nullptr);
        EXPECT_FALSE(r.P.GetRoot(short(5)) || r.P.GetNextRoot(&r.P, SGN_Type(5)) ||
                     r.P.NextRoot(&r.P, 5) || r.P.GetNextGeomRoot() || r.P.GetPrevRoot(&r.P));
        r.P.ExcludeRoot(&r.P); // finds no predecessor: no change
        EXPECT_EQ(r.Links(), loop ? "ABCA" : "AB-P");
        r.P.ExcludeNearType(0), r.P.ExcludeByType(0);
        EXPECT_EQ(r.Links().substr(1), loop ? "BCA" : "B-P");
    }
}

// Relinks `broken` to `to` whenever a failure is reported.
struct Mender : SCC_EventHook<int> {
    SYS_GeomNode *broken = nullptr, *to = nullptr;
    int OnNotification(int, int*) override {
        if (broken) broken->SetRoot(to);
        return 0;
    }
};

TEST(GeomChain, CorruptedChainIsReportedOnce) {
    Ring r({0, 0, 0, 9});
    r.B.SetRoot(&r.B);
    EXPECT_EQ(r.P.NextRoot(&r.P, 9), nullptr); // no manager: the walk just ends
    SSM m;
    Mender mender;
    mender.Attach(&m.FailureEvent);
    EXPECT_EQ(r.P.NextRoot(&r.P, 9), nullptr);
    const SSM::AssertData& d = m.Asserts.at("sys/SYS_Geom_Inline(2253)");
    EXPECT_EQ(std::string(d.Message.GetString()) + std::to_string(d.Id * 10 + d.Count),
              "Corrupted SYS_GeomNode chain!21");
    mender.broken = &r.B, mender.to = &r.C;
    EXPECT_EQ(r.P.NextRoot(&r.P, 9), &r.C); // the handler mended it: the walk goes on
    r.B.SetRoot(&r.B);
    EXPECT_EQ(r.P.NextRoot(&r.A, 0), &r.B); // a broken node of the type is found unreported
    EXPECT_EQ(d.Count, 2);
}

TEST(GeomChain, Defaults) {
    Node alone; // alone, untyped, in no group
    EXPECT_FALSE(alone.GetRoot() || alone.IsValid() || alone.IsMemberOfGroup());
    EXPECT_EQ(alone.spare, 0x7FFF);
    SYS_Geometry g;
    SYS_GeomIterator it;
    it.GetFirst(nullptr);
    EXPECT_EQ(g.IsValid() + g.GetGeometry() + it.GetObjectType() + it.GetHandle(), 0);
    EXPECT_FALSE(it.GetPointValue() || it.GetDoublePointValue() || it.GetLocationValue() ||
                 it.GetCircleValue() || it.GetSegmentValue() || it.GetArcValue() ||
                 it.GetRectangleValue());
}

} // namespace
