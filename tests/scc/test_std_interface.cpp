// Tests of SYS_StdInterface (the default handle walk, DefaultSort) and
// SYS_Filter (bitwise combinators, their evaluation order, and who frees the
// filters that the operators build: leaks and double frees show under ASan).
#include <keel/SYS_StdInterface.h>

#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

namespace {

typedef std::vector<int> Ints;
typedef std::vector<const SYS_Filter*> Filters;

Ints Walk(SYS_StdInterface& it) {
    Ints seen{it.GetHandle()}; // before the walk
    for (it.GetFirst(nullptr); it.IsValid(); it.GetNext()) seen.push_back(it.GetHandle());
    seen.push_back(it.GetHandle()); // after it
    return seen;
}

TEST(StdInterface, WalksOneToMaxHandleThenZero) {
    SYS_StdInterface it(3), none;
    EXPECT_EQ(Walk(it), (Ints{0, 1, 2, 3, 0}));
    EXPECT_EQ(Walk(none), (Ints{0, 0}));
    EXPECT_EQ(it.GetChangeEvent(nullptr), nullptr);
    it.SetHandle(-7, nullptr); // any non-zero handle is valid
    EXPECT_EQ(it.IsValid(), 1);

    struct Row {
        int a, b, diff;
    } sorts[] = {{5, 3, 2}, {3, 5, -2}, {INT_MIN, 1, INT_MAX}, {INT_MAX, -1, INT_MIN}};
    for (const Row& r : sorts) EXPECT_EQ(SYS_StdInterface::DefaultSort(r.a, r.b), r.diff) << r.a;
}

// Predicates log their calls, so the order and the absence of shortcuts show.
std::string calls;
int Log(char name, int result) { return calls += name, result; }
int Odd(const SYS_Filter*, int h) { return Log('o', h & 1); }
int Small(const SYS_Filter*, int h) { return Log('s', h < 3); }
int Two(const SYS_Filter*, int) { return Log('2', 2); }
int MinusOne(const SYS_Filter*, int) { return Log('m', -1); }
struct Triple : SYS_Filter { // a subclass with its own test
    int IsTrue(int h) const override { return Log('t', h % 3 == 0); }
};

TEST(Filter, CombinatorsAreBitwiseAndEvaluateRightThenLeft) {
    SYS_Filter none;
    for (int h : {INT_MIN, 0, 1}) EXPECT_EQ(none.IsTrue(h), 0);

    const auto And = SYS_Filter::And_F, Or = SYS_Filter::Or_F, Not = SYS_Filter::Not_F;
    struct Row {
        SYS_Filter::Function combinator, left, right;
        int handle, result;
        const char* log;
    } rows[] = {
        {And, Odd, Small, 1, 1, "so"},  {And, Odd, Small, 5, 0, "so"},
        {Or, Odd, Small, 1, 1, "so"},   {Or, Odd, Small, 4, 0, "so"},
        {And, Two, Odd, 1, 0, "o2"},    {Or, Two, Odd, 1, 3, "o2"},
        {And, Odd, nullptr, 1, 0, "o"}, {Not, MinusOne, nullptr, 0, 1, "m"},
        {Not, Two, nullptr, 0, 0, "2"}, {Not, Odd, nullptr, 2, 1, "o"},
    };
    for (const Row& r : rows) {
        SYS_Filter l(nullptr, nullptr, r.left), rt(nullptr, nullptr, r.right);
        SYS_Filter c(&l, r.right ? &rt : nullptr, r.combinator);
        calls.clear();
        EXPECT_EQ(c.IsTrue(r.handle), r.result) << r.log;
        EXPECT_EQ(calls, r.log);
    }

    SYS_Filter a(nullptr, nullptr, Odd), b(nullptr, nullptr, Small);
    Triple t;
    SYS_Filter& expr = (a & b) | !t;
    EXPECT_EQ((Filters{expr.left, expr.right, a.owned->owned}), (Filters{a.owned, t.owned, &expr}));
    for (int h = 1; h <= 6; ++h) EXPECT_EQ(expr.IsTrue(h), (h == 1) | (h % 3 != 0)) << h;
    calls.clear();
    expr.IsTrue(1);
    EXPECT_EQ(calls, "tso");
}

TEST(Filter, CombinationsLiveWithTheirOwnerAndCopiesFreeNothing) {
    SYS_Filter b(nullptr, nullptr, Small), c(nullptr, nullptr, Two);
    {
        SYS_Filter a(nullptr, nullptr, Odd);
        SYS_Filter& first = a & b;
        SYS_Filter& negated = !first; // owned by first, freed through a as well
        SYS_Filter& second = a | c;   // replaces first in a.owned only
        EXPECT_EQ(a.owned, &second);
        EXPECT_EQ((Ints{first.IsTrue(1), negated.IsTrue(3), second.IsTrue(2)}), (Ints{1, 1, 2}));
        {
            SYS_Filter copy(a);
            EXPECT_EQ(copy.owned, a.owned) << "shown, not owned";
            SYS_Filter& own = copy & b; // the copy frees what it built, nothing else
            EXPECT_EQ((Filters{copy.owned, a.owned}), (Filters{&own, &second}));
        }
        EXPECT_EQ(second.IsTrue(2), 2); // ASan reports a use after free if the copy freed it

        SYS_Filter assigned(nullptr, nullptr, Two);
        SYS_Filter& kept = !assigned;
        assigned = first; // takes function and operands, keeps its own owned
        EXPECT_EQ(assigned.function, &SYS_Filter::And_F);
        EXPECT_EQ((Filters{assigned.left, assigned.right, assigned.owned}),
                  (Filters{&a, &b, &kept}));
    } // a frees first, negated and second: ASan reports a leak otherwise
    EXPECT_EQ((Ints{b.IsTrue(1), b.owned == nullptr, c.owned == nullptr}), (Ints{1, 1, 1}));
}

// A filter frees what `owned` holds when it goes, with the filters that later
// combinations replaced there, and nothing else.  Each case ends with every
// filter freed once: ASan reports a use after free or a double free, LSan a
// leak otherwise.
const SYS_Filter kB(nullptr, nullptr, Small), kC(nullptr, nullptr, Two);
void Free(SYS_Filter* f) { f->SYS_Filter::~SYS_Filter(), ::operator delete(f); } // a host's delete

TEST(Filter, OwnedSaysWhatAFilterFrees) {
    const std::pair<const char*, void (*)()> cases[] = {
        {"the host takes the latest over, with what it replaced",
         [] {
             SYS_Filter* mine = nullptr;
             const SYS_Filter* replaced = nullptr;
             {
                 SYS_Filter a(nullptr, nullptr, Odd);
                 replaced = &(a & kB);
                 mine = &(a | kC);
                 a.owned = nullptr;
             }
             EXPECT_EQ((Filters{mine->right, replaced->right}), (Filters{&kC, &kB}));
             Free(mine);
         }},
        {"the host swaps in its own filter and keeps the built one",
         [] {
             SYS_Filter* built = nullptr;
             {
                 SYS_Filter a(nullptr, nullptr, Odd);
                 built = &(a & kB);
                 a.owned = new SYS_Filter(&kC, nullptr, SYS_Filter::Not_F);
             }
             EXPECT_EQ(built->right, &kB);
             Free(built);
         }},
        {"a host's filter in owned is freed, also once replaced",
         [] {
             SYS_Filter a(nullptr, nullptr, Odd), d(nullptr, nullptr, Odd);
             a.owned = new SYS_Filter(&kC, nullptr, SYS_Filter::Not_F);
             SYS_Filter& next = a & kB;
             EXPECT_EQ(a.owned, &next);
             d.owned = new SYS_Filter();
         }},
        {"a copy frees what it built and what the host gave it, not its source's",
         [] {
             SYS_Filter a(nullptr, nullptr, Odd);
             SYS_Filter& first = a & kB;
             {
                 SYS_Filter copy(a), copyOfCopy(copy), shown(copy), ofCombined(a | kC);
                 EXPECT_EQ((Filters{copy.owned, copyOfCopy.owned, shown.owned}),
                           (Filters{&first, &first, &first}));
                 SYS_Filter& own = copy & kC; // replaces first there, not taking it
                 EXPECT_EQ(copy.owned, &own);
                 copyOfCopy.owned = new SYS_Filter();
                 ofCombined.owned = new SYS_Filter(&first, nullptr, SYS_Filter::Not_F);
             }
             EXPECT_EQ(first.IsTrue(1), 1);
             SYS_Filter assigned;
             assigned.owned = new SYS_Filter();
             assigned = a; // keeps its own owned
             EXPECT_NE(assigned.owned, a.owned);
         }},
        {"long chains free without deep recursion",
         [] {
             SYS_Filter a(nullptr, nullptr, Odd);
             SYS_Filter* last = &a;
             for (int i = 0; i < 200000; ++i) a | kB, last = &(*last & kC);
         }},
    };
    for (const auto& [name, run] : cases) {
        SCOPED_TRACE(name);
        run();
    }
}

} // namespace
