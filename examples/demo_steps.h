// demo_steps.h - how a keel-demo step registers itself.
//
// A demo_<family>.cpp file writes
//     KEEL_DEMO_STEP(10, "Strings and number scanning") {
//         DemoIntro("What the step shows and why a host application cares.");
//         ...prints...
//     }
// and keel-demo runs the steps in the order of their numbers, titling them
// 1, 2, 3... in that order.  The numbers leave gaps so that a new family can
// slot in between: strings 10, assertions 20, arrays 30, geometry 60.  On
// the command line a step is chosen by that 1, 2, 3... or by its name, the
// first word of its title in lower case ("keel-demo strings"); so begin
// each title with a word of its own.
//
// Every line a step prints should say what it shows: name codes and types
// instead of printing raw numbers, and print lengths and angles through the
// helpers of demo_units.h.
#ifndef KEEL_DEMO_STEPS_H
#define KEEL_DEMO_STEPS_H

struct DemoStep {
    int order;
    const char* title;
    void (*run)();
};

// Adds a step to the demo; called by KEEL_DEMO_STEP during static set-up.
bool RegisterDemoStep(int order, const char* title, void (*run)());

// Prints a step's opening text, wrapped at word boundaries, flush left; the
// step's own lines follow indented by two spaces.
void DemoIntro(const char* text);

#define KEEL_DEMO_CONCAT2(a, b) a##b
#define KEEL_DEMO_CONCAT(a, b) KEEL_DEMO_CONCAT2(a, b)
#define KEEL_DEMO_STEP(order, title)                                                               \
    static void KEEL_DEMO_CONCAT(DemoStep_, order)();                                              \
    static const bool KEEL_DEMO_CONCAT(demoRegistered_, order) =                                   \
        RegisterDemoStep(order, title, KEEL_DEMO_CONCAT(DemoStep_, order));                        \
    static void KEEL_DEMO_CONCAT(DemoStep_, order)()

#endif // KEEL_DEMO_STEPS_H
