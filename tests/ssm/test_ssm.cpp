// Tests of the assertion manager: records, the action protocol, nesting,
// exceptions and errno.
#include "SSM.h"
#include "ssm/SSM_Check.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <functional>
#include <vector>

namespace {

// Hears one event of a manager, counts it and runs an optional action.
struct Listener {
    std::vector<SSM::AssertData*> heard;
    std::function<void(SSM::AssertData*)> act;
    SCC_ObjectEventHook<Listener, int> hook;

    explicit Listener(SCC_Notifier& event) {
        hook.SetObject(this);
        hook.SetMethod(&Listener::On);
        hook.Attach(&event);
    }
    int On(int, int* data) {
        heard.push_back(reinterpret_cast<SSM::AssertData*>(data));
        if (act) act(heard.back());
        return 0;
    }
};

SSM::AssertData* Find(SSM& m, const char* key) {
    auto it = m.Asserts.find(key);
    return it == m.Asserts.end() ? nullptr : &it->second;
}

bool Idle(SSM& m) { return m.Depth == -1 && !m.CurrentAssert && m.ActiveStack.empty(); }

int Fail(SSM_FailureType type, int line, const char* msg = "m") {
    return SSM_AssertFailed(msg, "f", line, type, 0);
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
    SSM a;
    EXPECT_TRUE(Idle(a));
    {
        SSM b;
        EXPECT_EQ(&b, SSM::Instance);
        EXPECT_EQ(before + 2, SSM::InstanceCount);
    }
    EXPECT_EQ(nullptr, SSM::Instance); // cleared whichever manager goes
    SSM::Instance = &a;
    Listener failures(a.FailureEvent);
    Fail(SSM_FailureSoft, 1);
    {
        SSM copy(a), assigned(a); // neither touches Instance or the count
        assigned = copy;
        EXPECT_EQ(&a, SSM::Instance);
        EXPECT_EQ(before + 1, SSM::InstanceCount);
        EXPECT_EQ(1, Find(assigned, "f(1)")->Count);
        EXPECT_EQ(&assigned.FailureEvent, failures.hook.GetRoot()); // listeners moved
    }
    EXPECT_EQ(nullptr, SSM::Instance); // destroying the copies cleared it
    EXPECT_EQ(before - 1, SSM::InstanceCount);
    SSM::InstanceCount = before + 1;
}

TEST(Ssm, RecordsPerSite) {
    SSM m;
    Listener action(m.ActionEvent), failure(m.FailureEvent), notify(m.NotifyEvent);
    EXPECT_EQ(1, SSM_AssertFailed("first", "sfm/sfmfile", 42, SSM_FailureSoft, 5));
    EXPECT_EQ(1, SSM_AssertFailed("second", "sfm/sfmfile", 42, SSM_FailureNormal, 6));
    SSM_AssertFailed("other", "sfm/sfmmsgdb", 42, SSM_FailureSoft, 0);
    ASSERT_EQ(2u, m.Asserts.size());
    SSM::AssertData* r = Find(m, "sfm/sfmfile(42)");
    ASSERT_NE(nullptr, r);
    EXPECT_EQ(2, r->Count);
    EXPECT_STREQ("second", r->Message.GetString());
    EXPECT_EQ(5, r->Id); // the identifier of the first failure stays
    EXPECT_EQ(0, r->Action);
    EXPECT_EQ(r, failure.heard[0]);
    EXPECT_TRUE(Idle(m));

    SSM_AssertFailed("", "a", 1, SSM_FailureSoft, 7);
    EXPECT_STREQ("SSM: Assert ID #7, message not available", Find(m, "a(1)")->Message.GetString());
    SSM_AssertFailed(nullptr, "a", -1, SSM_FailureSoft, 0); // line printed unsigned 32-bit
    EXPECT_STREQ("Message not available", Find(m, "a(4294967295)")->Message.GetString());

    // Fatal at the outermost level without an action listener choosing:
    // no action event, both other events, nothing thrown, result 1.
    action.heard.clear(), failure.heard.clear(), notify.heard.clear();
    int result = 0;
    EXPECT_NO_THROW(result = Fail(SSM_FailureFatal, 3));
    SSM_CHECK(1 + 1 == 3, "f", 3);
    EXPECT_EQ(1, result);
    EXPECT_EQ(0u, action.heard.size());
    EXPECT_EQ(2u, failure.heard.size());
    EXPECT_EQ(2u, notify.heard.size());
    EXPECT_EQ(2, Find(m, "f(3)")->Count);
}

TEST(Ssm, ActionCodes) {
    SSM m;
    Listener action(m.ActionEvent);
    int code = 0, before = -1;
    action.act = [&](SSM::AssertData* r) { before = r->Action, r->Action = code; };

    EXPECT_EQ(1, Fail(SSM_FailureNormal, 1));
    EXPECT_EQ(0, before); // continue by default at the outermost level
    code = 1;
    EXPECT_EQ(0, Fail(SSM_FailureNormal, 1));
    EXPECT_NO_THROW(SSM_Throw()); // nothing pending once the handling is over
    code = 2;
    EXPECT_EQ(1, Fail(SSM_FailureSoft, 1)); // no fatal record: nothing thrown here
    code = 3;
    SSM::AssertData* r = Find(m, "f(1)");
    try {
        Fail(SSM_FailureSoft, 1);
        ADD_FAILURE() << "no exception";
    } catch (SSM::FatalException& e) {
        EXPECT_EQ(r, e.Data);
        EXPECT_EQ(0, r->Action);
    }
    EXPECT_TRUE(Idle(m));
    code = 0;
    Fail(SSM_FailureSoft, 1);
    EXPECT_EQ(nullptr, m.FatalAssert); // each call forgets the previous fatal record

    // An invalid code: the manager reports itself, then the first record is
    // thrown out of the unrestored handling.
    code = 9;
    Listener failure(m.FailureEvent);
    SSM::AssertData* thrown = nullptr;
    try {
        Fail(SSM_FailureNormal, 1);
    } catch (SSM::AssertData* p) {
        thrown = p;
    }
    EXPECT_EQ(r, thrown);
    EXPECT_EQ(r, m.BadActionAssert);
    SSM::AssertData* own = Find(m, "ssm/ssmimpl(367)");
    ASSERT_NE(nullptr, own);
    EXPECT_STREQ("Assert handler encountered invalid action code.", own->Message.GetString());
    EXPECT_EQ((std::vector<SSM::AssertData*>{own}), failure.heard);
    EXPECT_EQ(0, m.Depth);
    EXPECT_EQ(r, m.CurrentAssert);
}

TEST(Ssm, SilentModeAndSiteFlags) {
    SSM m;
    Listener action(m.ActionEvent), failure(m.FailureEvent), notify(m.NotifyEvent);
    auto counts = [&] {
        return std::vector<size_t>{action.heard.size(), failure.heard.size(), notify.heard.size()};
    };
    SSM::SetSilentMode(1);
    EXPECT_EQ(1, SSM::GetSilentMode());
    Fail(SSM_FailureNormal, 1);
    EXPECT_EQ((std::vector<size_t>{0, 1, 1}), counts());
    SSM::SetSilentMode(0);
    SSM::AssertData* r = Find(m, "f(1)");
    r->NotifyEnabled = 0;
    Fail(SSM_FailureNormal, 1);
    EXPECT_EQ((std::vector<size_t>{1, 2, 1}), counts());
    r->NotifyEnabled = 1;
    r->Enabled = 0;
    Fail(SSM_FailureNormal, 1);
    EXPECT_EQ((std::vector<size_t>{1, 3, 1}), counts());
}

TEST(Ssm, NestedFailures) {
    SSM m;
    Listener action(m.ActionEvent), failure(m.FailureEvent);

    // Defaults while another failure is handled: normal fails, soft continues.
    std::vector<int> nested;
    action.act = [&](SSM::AssertData* r) {
        if (r->Line == 1) nested = {Fail(SSM_FailureNormal, 2), Fail(SSM_FailureSoft, 3)};
    };
    EXPECT_EQ(1, Fail(SSM_FailureNormal, 1));
    EXPECT_EQ((std::vector<int>{0, 1}), nested);
    EXPECT_TRUE(Idle(m));

    // A site failing inside its own handling is handled once more; the
    // third time it is ignored.
    failure.act = [&](SSM::AssertData* r) {
        if (r->Line == 4) Fail(SSM_FailureSoft, 4);
    };
    Fail(SSM_FailureSoft, 4);
    EXPECT_EQ(2, Find(m, "f(4)")->Count);
    EXPECT_TRUE(Idle(m));

    // A fatal failure inside the handling of another throws the outer record.
    failure.act = [&](SSM::AssertData* r) {
        if (r->Line == 5) SSM_CHECK(false, "scc/scc", 573);
    };
    try {
        Fail(SSM_FailureSoft, 5);
        ADD_FAILURE() << "no exception";
    } catch (void* p) {
        EXPECT_EQ(static_cast<void*>(Find(m, "f(5)")), p);
    }
    EXPECT_EQ(1, Find(m, "scc/scc(573)")->Count);
}

TEST(Ssm, ErrnoIsPreserved) {
    SSM m;
    Listener failure(m.FailureEvent), action(m.ActionEvent);
    failure.act = [](SSM::AssertData*) { errno = EBADF; };
    action.act = [](SSM::AssertData* r) { r->Action = 1; };
    errno = EMFILE;
    EXPECT_EQ(0, SSM_AssertFailed("", "f", 1, SSM_FailureSoft, 3));
    EXPECT_EQ(EMFILE, errno);
}
