// keel-demo - a small host program that shows what keel does, one step per
// subsystem, printing each operation and its result.
#include "demo_steps.h"

#include <cstdio>

int main() {
    struct Step {
        const char* title;
        void (*run)();
    };
    const Step steps[] = {
        {"Strings and number scanning", DemoStrings},
    };
    for (const Step& step : steps) {
        std::printf("== %s\n", step.title);
        step.run();
        std::printf("\n");
    }
    return 0;
}
