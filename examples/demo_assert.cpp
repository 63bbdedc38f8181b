// demo_assert.cpp - keel-demo step: the assertion manager and its events.
#include "demo_steps.h"
#include "keel.h"
#include "SSM.h"

#include <cstdio>

namespace {

SSM::AssertData* Record(int* data) { return reinterpret_cast<SSM::AssertData*>(data); }

// Prints every failure the manager handles.
int PrintFailure(int type, int* data) {
    const SSM::AssertData* r = Record(data);
    std::printf("  heard type %d at %s line %d (count %d): %s\n", type, r->File.GetString(),
                r->Line, r->Count, r->Message.GetString());
    return 0;
}

// Chooses "fail" for one site, so that its caller is told to throw.
int ChooseAction(int, int* data) {
    SSM::AssertData* r = Record(data);
    if (r->Line == 120) r->Action = 1;
    return 0;
}

} // namespace

KEEL_DEMO_STEP(20, "Assertion manager") {
    SSM manager;
    SCC_EventHook<int> printer, chooser;
    printer.SetCallback(PrintFailure);
    printer.Attach(&manager.FailureEvent);
    chooser.SetCallback(ChooseAction);
    chooser.Attach(&manager.ActionEvent);

    int r1 = SSM_AssertFailed("Index out of range", "scc/scc", 88, SSM_FailureSoft, 0);
    std::printf("soft failure returned %d (continue)\n", r1);
    int r2 = SSM_AssertFailed("", "sfm/sfmfile", 120, SSM_FailureNormal, 17);
    std::printf("failure with action 1 returned %d (caller calls SSM_Throw)\n", r2);
    SSM_Throw(); // nothing pending once the handling is over
    int r3 = SSM_AssertFailed("Index out of range", "scc/scc", 88, SSM_FailureFatal, 0);
    std::printf("fatal failure at the outermost level returned %d\n", r3);

    std::printf("records:\n");
    for (const auto& entry : manager.Asserts)
        std::printf("  %-18s count %d\n", entry.first.GetString(), entry.second.Count);
}
