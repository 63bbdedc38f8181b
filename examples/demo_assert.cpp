// demo_assert.cpp - keel-demo step: the assertion manager and its events.
#include "demo_steps.h"
#include <keel/keel.h>
#include <keel/SSM.h>

#include <cstdio>

namespace {

SSM::AssertData* Record(int* data) { return reinterpret_cast<SSM::AssertData*>(data); }

const char* FailureName(int type) {
    switch (type) {
    case SSM_FailureSoft:
        return "soft";
    case SSM_FailureNormal:
        return "normal";
    case SSM_FailureFatal:
        return "fatal";
    }
    return "unknown type";
}

const char* ActionName(int action) {
    switch (action) {
    case SSM_ActionContinue:
        return "continue";
    case SSM_ActionFail:
        return "fail";
    case SSM_ActionThrow:
        return "throw";
    case SSM_ActionThrowFatal:
        return "throw as fatal";
    }
    return "invalid action";
}

// A FailureEvent listener: hears every failure the manager handles.
int PrintFailure(int type, int* data) {
    const SSM::AssertData* r = Record(data);
    std::printf("    FailureEvent: %s at %s(%d), #%d there: \"%s\"\n", FailureName(type),
                r->File.GetString(), r->Line, r->Count, r->Message.GetString());
    return 0;
}

// An ActionEvent listener: chooses "fail" for the file site at line 120, so
// that its caller is told to call SSM_Throw.  Other sites keep the default.
int ChooseAction(int type, int* data) {
    SSM::AssertData* r = Record(data);
    const int proposed = r->Action;
    if (r->Line == 120) r->Action = SSM_ActionFail;
    if (r->Action == proposed)
        std::printf("    ActionEvent : %s failure, default \"%s\", listener keeps it\n",
                    FailureName(type), ActionName(proposed));
    else
        std::printf("    ActionEvent : %s failure, default \"%s\", listener chooses \"%s\"\n",
                    FailureName(type), ActionName(proposed), ActionName(r->Action));
    return 0;
}

// What SSM_AssertFailed's result tells the reporting code.
const char* ResultMeaning(int result) { return result ? "carry on" : "call SSM_Throw"; }

} // namespace

KEEL_DEMO_STEP(20, "Assertion manager") {
    DemoIntro("keel reports every broken invariant to the host's assertion manager (SSM) instead "
              "of aborting. The host counts failures per site, logs them, and its listeners "
              "decide whether the reporting code continues, fails or throws.");

    SSM manager;
    SCC_EventHook<int> printer, chooser;
    printer.SetCallback(PrintFailure);
    printer.Attach(&manager.FailureEvent);
    chooser.SetCallback(ChooseAction);
    chooser.Attach(&manager.ActionEvent);

    std::printf("  SSM_AssertFailed(\"Index out of range\", \"scc/scc\", 88, SSM_FailureSoft):\n");
    int r1 = SSM_AssertFailed("Index out of range", "scc/scc", 88, SSM_FailureSoft, 0);
    std::printf("    returned %d: %s\n", r1, ResultMeaning(r1));

    std::printf(
        "  SSM_AssertFailed(no message, \"sfm/sfmfile\", 120, SSM_FailureNormal, id 17):\n");
    int r2 = SSM_AssertFailed("", "sfm/sfmfile", 120, SSM_FailureNormal, 17);
    std::printf("    returned %d: %s", r2, ResultMeaning(r2));
    try {
        SSM_Throw();
        std::printf("; it throws nothing, as no failure is being handled now\n");
    } catch (SSM::AssertData* thrown) {
        std::printf("; it threw the record of line %d\n", thrown->Line);
    } catch (SSM::FatalException& fatal) {
        std::printf("; it threw FatalException for line %d\n", fatal.Data->Line);
    }

    std::printf("  SSM_AssertFailed(\"Index out of range\", \"scc/scc\", 88, SSM_FailureFatal):\n");
    int r3 = SSM_AssertFailed("Index out of range", "scc/scc", 88, SSM_FailureFatal, 0);
    std::printf(
        "    returned %d: %s. Fatal skips ActionEvent and requests an exception, thrown\n"
        "    once handling is done: the record of an enclosing failure still being handled.\n"
        "    At the outermost level there is none, so nothing is thrown.\n",
        r3, ResultMeaning(r3));

    std::printf("  failures counted per site:");
    for (const auto& entry : manager.Asserts)
        std::printf(" %s x%d", entry.first.GetString(), entry.second.Count);
    std::printf("\n");
}
