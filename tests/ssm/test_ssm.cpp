// Tests of the assertion manager: records, the action protocol, nesting,
// exceptions and errno.
#include <keel/SSM.h>
#include "ssm/internal/SSM_Check.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <functional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace {

using Data = SSM::AssertData;
using Counts = std::vector<size_t>;

// Hears one event of a manager and runs an optional action on each record.
struct Listener : SCC_ObjectEventHook<Listener, int> {
    std::vector<Data*> heard;
    std::function<void(Data*)> act;
    explicit Listener(SCC_Notifier& e) { SetObject(this), SetMethod(&Listener::On), Attach(&e); }
    int On(int, int* data) {
        heard.push_back(reinterpret_cast<Data*>(data));
        if (act) act(heard.back());
        return 0;
    }
};

// A manager with a listener on each of its events.
struct Watched : SSM {
    Listener action{ActionEvent}, failure{FailureEvent}, notify{NotifyEvent};
    // How often each event was raised since the last call.
    Counts Take() {
        Counts n{action.heard.size(), failure.heard.size(), notify.heard.size()};
        action.heard.clear(), failure.heard.clear(), notify.heard.clear();
        return n;
    }
    Data& At(const char* key) { return Asserts.at(key); }
    bool Idle() const { return Depth == -1 && !CurrentAssert && ActiveStack.empty(); }
};

int Fail(SSM_FailureType type, int line, const char* msg = "m") {
    return SSM_AssertFailed(msg, "f", line, type, 0);
}

// What f throws as an E, or E() when it throws nothing.
template <class E, class F> E Thrown(F f) {
    try {
        f();
    } catch (E e) {
        return e;
    }
    return E();
}

} // namespace

TEST(Ssm, NoManagerAndInstances) {
    ASSERT_EQ(nullptr, SSM::GetManager());
    errno = 42;
    EXPECT_EQ(0, Fail(SSM_FailureFatal, 1));
    EXPECT_EQ(42, errno);
    EXPECT_NO_THROW(SSM_Throw());
    SSM::SetSilentMode(1);
    EXPECT_EQ(0, SSM::GetSilentMode());

    const long before = SSM::InstanceCount;
    auto instance = [] { return std::make_pair(SSM::Instance, SSM::InstanceCount); };
    Watched a;
    EXPECT_TRUE(a.Idle());
    {
        SSM b;
        EXPECT_EQ(instance(), std::make_pair(&b, before + 2));
    } // whichever manager goes clears the instance
    EXPECT_EQ(instance(), std::make_pair(static_cast<SSM*>(nullptr), before + 1));
    SSM::Instance = &a;
    Fail(SSM_FailureSoft, 1);
    {
        SSM copy(a), assigned(a); // neither touches the instance or the count
        assigned = copy;
        EXPECT_EQ(instance(), std::make_pair(static_cast<SSM*>(&a), before + 1));
        EXPECT_EQ(1, assigned.Asserts.at("f(1)").Count);
        EXPECT_EQ(&assigned.FailureEvent, a.failure.GetRoot()); // listeners moved
    } // but destroying them clears the instance and counts down
    EXPECT_EQ(instance(), std::make_pair(static_cast<SSM*>(nullptr), before - 1));
    SSM::InstanceCount = before + 1;
}

TEST(Ssm, RecordsPerSite) {
    Watched m;
    EXPECT_EQ(1, SSM_AssertFailed("first", "sfm/sfmfile", 42, SSM_FailureSoft, 5));
    EXPECT_EQ(1, SSM_AssertFailed("second", "sfm/sfmfile", 42, SSM_FailureNormal, 6));
    SSM_AssertFailed("other", "sfm/sfmmsgdb", 42, SSM_FailureSoft, 0);
    ASSERT_EQ(2u, m.Asserts.size());
    Data& r = m.At("sfm/sfmfile(42)");
    // The latest message, the first identifier, the action reset.
    EXPECT_EQ(std::make_tuple(r.Count, std::string(r.Message.GetString()), r.Id, r.Action),
              std::make_tuple(2, std::string("second"), 5, 0));
    EXPECT_EQ(&r, m.failure.heard[0]);
    EXPECT_TRUE(m.Idle());
    SSM_AssertFailed("", "a", 1, SSM_FailureSoft, 7);
    EXPECT_STREQ("SSM: Assert ID #7, message not available", m.At("a(1)").Message.GetString());
    SSM_AssertFailed(nullptr, "a", -1, SSM_FailureSoft, 0); // line printed unsigned 32-bit
    EXPECT_STREQ("Message not available", m.At("a(4294967295)").Message.GetString());

    // Fatal at the outermost level without an action listener choosing:
    // no action event, both other events, nothing thrown, result 1.
    m.Take();
    int result = 0;
    EXPECT_NO_THROW(result = Fail(SSM_FailureFatal, 3));
    SSM_CHECK(1 + 1 == 3, "f", 3);
    EXPECT_EQ(1, result);
    EXPECT_EQ(m.Take(), (Counts{0, 2, 2}));
    EXPECT_EQ(2, m.At("f(3)").Count);
}

TEST(Ssm, ActionCodesAndErrno) {
    Watched m;
    int code = 0, before = -1;
    m.action.act = [&](Data* r) { before = r->Action, r->Action = code; };
    EXPECT_EQ(1, Fail(SSM_FailureNormal, 1));
    EXPECT_EQ(0, before); // continue by default at the outermost level
    code = 1;
    m.failure.act = [](Data*) { errno = EBADF; };
    errno = EMFILE;
    EXPECT_EQ(0, SSM_AssertFailed("", "f", 1, SSM_FailureSoft, 3));
    EXPECT_EQ(EMFILE, errno); // restored though a listener changed it
    m.failure.act = nullptr;
    EXPECT_NO_THROW(SSM_Throw()); // nothing pending once the handling is over
    code = 2;
    EXPECT_EQ(1, Fail(SSM_FailureSoft, 1)); // no fatal record: nothing thrown here
    code = 3;
    Data* r = &m.At("f(1)");
    EXPECT_EQ(r, Thrown<SSM::FatalException>([] { Fail(SSM_FailureSoft, 1); }).Data);
    EXPECT_EQ(0, r->Action);
    EXPECT_TRUE(m.Idle());
    code = 0;
    Fail(SSM_FailureSoft, 1);
    EXPECT_EQ(nullptr, m.FatalAssert); // each call forgets the previous fatal record

    // An invalid code: the manager reports itself, then the first record is
    // thrown out of the unrestored handling.
    code = 9;
    m.Take();
    EXPECT_EQ(r, Thrown<Data*>([] { Fail(SSM_FailureNormal, 1); }));
    EXPECT_EQ(r, m.BadActionAssert);
    Data& own = m.At("ssm/ssmimpl(367)");
    EXPECT_STREQ("Assert handler encountered invalid action code.", own.Message.GetString());
    EXPECT_EQ((std::vector<Data*>{&own}), m.failure.heard);
    EXPECT_EQ(0, m.Depth);
    EXPECT_EQ(r, m.CurrentAssert);
}

TEST(Ssm, SilentModeAndSiteFlags) {
    Watched m;
    SSM::SetSilentMode(1);
    EXPECT_EQ(1, SSM::GetSilentMode());
    Fail(SSM_FailureNormal, 1);
    EXPECT_EQ(m.Take(), (Counts{0, 1, 1}));
    SSM::SetSilentMode(0);
    Data& r = m.At("f(1)");
    r.NotifyEnabled = 0;
    Fail(SSM_FailureNormal, 1);
    EXPECT_EQ(m.Take(), (Counts{1, 1, 0}));
    r.NotifyEnabled = 1, r.Enabled = 0;
    Fail(SSM_FailureNormal, 1);
    EXPECT_EQ(m.Take(), (Counts{0, 1, 0}));
}

TEST(Ssm, NestedFailures) {
    Watched m;
    // Defaults while another failure is handled: normal fails, soft continues.
    std::vector<int> nested;
    m.action.act = [&](Data* r) {
        if (r->Line == 1) nested = {Fail(SSM_FailureNormal, 2), Fail(SSM_FailureSoft, 3)};
    };
    EXPECT_EQ(1, Fail(SSM_FailureNormal, 1));
    EXPECT_EQ((std::vector<int>{0, 1}), nested);
    EXPECT_TRUE(m.Idle());

    // A site failing inside its own handling is handled once more; the
    // third time it is ignored.
    m.failure.act = [&](Data* r) {
        if (r->Line == 4) Fail(SSM_FailureSoft, 4);
    };
    Fail(SSM_FailureSoft, 4);
    EXPECT_EQ(2, m.At("f(4)").Count);
    EXPECT_TRUE(m.Idle());

    // A fatal failure inside the handling of another throws the outer record.
    m.failure.act = [&](Data* r) {
        if (r->Line == 5) SSM_CHECK(false, "scc/scc", 573);
    };
    void* thrown = Thrown<void*>([] { Fail(SSM_FailureSoft, 5); });
    EXPECT_EQ(static_cast<void*>(&m.At("f(5)")), thrown);
    EXPECT_EQ(1, m.At("scc/scc(573)").Count);
}
