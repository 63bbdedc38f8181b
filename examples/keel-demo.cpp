// keel-demo - a small host program that tours keel, one step per family,
// printing each operation and its result in words and human units.
#include "demo_steps.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <vector>

namespace {

std::vector<DemoStep>& Steps() {
    static std::vector<DemoStep> steps;
    return steps;
}

// Width of the wrapped opening text of a step.
const int kIntroWidth = 92;

} // namespace

bool RegisterDemoStep(int order, const char* title, void (*run)()) {
    Steps().push_back({order, title, run});
    return true;
}

void DemoIntro(const char* text) {
    const char* p = text;
    while (*p) {
        while (*p == ' ') ++p;
        int n = static_cast<int>(std::strlen(p));
        if (n > kIntroWidth) {
            n = kIntroWidth;
            while (n > 0 && p[n] != ' ') --n;
            if (n == 0) n = kIntroWidth; // one word longer than a line
        }
        std::printf("%.*s\n", n, p);
        p += n;
    }
}

int main() {
    std::vector<DemoStep> steps = Steps();
    std::stable_sort(steps.begin(), steps.end(),
                     [](const DemoStep& a, const DemoStep& b) { return a.order < b.order; });
    int number = 0;
    for (const DemoStep& step : steps) {
        std::printf("%s== %d. %s\n", number ? "\n" : "", number + 1, step.title);
        ++number;
        step.run();
    }
    return 0;
}
