// keel-demo - a small host program that shows what keel does, one step per
// subsystem, printing each operation and its result.
#include "demo_steps.h"

#include <algorithm>
#include <cstdio>
#include <vector>

namespace {
std::vector<DemoStep>& Steps() {
    static std::vector<DemoStep> steps;
    return steps;
}
} // namespace

bool RegisterDemoStep(int order, const char* title, void (*run)()) {
    Steps().push_back({order, title, run});
    return true;
}

int main() {
    std::vector<DemoStep> steps = Steps();
    std::stable_sort(steps.begin(), steps.end(),
                     [](const DemoStep& a, const DemoStep& b) { return a.order < b.order; });
    for (const DemoStep& step : steps) {
        std::printf("== %s\n", step.title);
        step.run();
        std::printf("\n");
    }
    return 0;
}
