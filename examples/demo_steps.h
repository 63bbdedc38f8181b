// demo_steps.h - the steps keel-demo runs, one per subsystem.
#ifndef KEEL_DEMO_STEPS_H
#define KEEL_DEMO_STEPS_H

void DemoStrings();

#endif // KEEL_DEMO_STEPS_H
