// demo_steps.h - how a keel-demo step registers itself.
//
// A demo_<subsystem>.cpp file writes
//     KEEL_DEMO_STEP(10, "Strings and number scanning") { ...prints... }
// and keel-demo runs the steps in the order of their numbers.
#ifndef KEEL_DEMO_STEPS_H
#define KEEL_DEMO_STEPS_H

struct DemoStep {
    int order;
    const char* title;
    void (*run)();
};

// Adds a step to the demo; called by KEEL_DEMO_STEP during static set-up.
bool RegisterDemoStep(int order, const char* title, void (*run)());

#define KEEL_DEMO_CONCAT2(a, b) a##b
#define KEEL_DEMO_CONCAT(a, b) KEEL_DEMO_CONCAT2(a, b)
#define KEEL_DEMO_STEP(order, title)                                                               \
    static void KEEL_DEMO_CONCAT(DemoStep_, order)();                                              \
    static const bool KEEL_DEMO_CONCAT(demoRegistered_, order) =                                   \
        RegisterDemoStep(order, title, KEEL_DEMO_CONCAT(DemoStep_, order));                        \
    static void KEEL_DEMO_CONCAT(DemoStep_, order)()

#endif // KEEL_DEMO_STEPS_H
