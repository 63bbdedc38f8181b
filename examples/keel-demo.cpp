// keel-demo - a small host program that tours keel, one step per family,
// printing each operation and its result in words and human units.
//
//   keel-demo              runs every step
//   keel-demo STEP...      runs those steps, in the order given; a STEP is
//                          its number or its name, the first word of its
//                          title (or the start of that word)
//   keel-demo --help, -h   lists the steps
// An unknown step is reported on standard error, with exit status 2.
#include "demo_steps.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

std::vector<DemoStep>& Steps() {
    static std::vector<DemoStep> steps;
    return steps;
}

// Width of the wrapped opening text of a step.
const int kIntroWidth = 92;

// The steps in the order they run, numbered from 1 by their place.
std::vector<DemoStep> OrderedSteps() {
    std::vector<DemoStep> steps = Steps();
    std::stable_sort(steps.begin(), steps.end(),
                     [](const DemoStep& a, const DemoStep& b) { return a.order < b.order; });
    return steps;
}

// A step's name: the first word of its title, in lower case.
std::string StepName(const DemoStep& step) {
    std::string name;
    for (const char* p = step.title; std::isalnum(static_cast<unsigned char>(*p)); ++p)
        name += static_cast<char>(std::tolower(static_cast<unsigned char>(*p)));
    return name;
}

std::string Lower(std::string text) {
    for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

void PrintUsage(const std::vector<DemoStep>& steps) {
    std::printf("usage: keel-demo [STEP...]\n"
                "Tours keel, one step per family.  With no STEP every step runs; otherwise\n"
                "the steps given run, in the order given.  A STEP is a number or a name\n"
                "below (the start of a name will do when only one name starts so).\n"
                "\nsteps:\n");
    for (size_t i = 0; i < steps.size(); ++i)
        std::printf("  %2zu  %-12s %s\n", i + 1, StepName(steps[i]).c_str(), steps[i].title);
}

// The indices into `steps` that `arg` selects (a number, a name, or the start
// of exactly one name); empty when it selects none.
std::vector<size_t> Select(const std::vector<DemoStep>& steps, const std::string& arg) {
    std::vector<size_t> chosen;
    if (!arg.empty() && std::all_of(arg.begin(), arg.end(), [](char c) {
            return std::isdigit(static_cast<unsigned char>(c));
        })) {
        const unsigned long n = std::strtoul(arg.c_str(), nullptr, 10);
        if (n >= 1 && n <= steps.size()) chosen.push_back(n - 1);
        return chosen;
    }
    const std::string wanted = Lower(arg);
    for (size_t i = 0; i < steps.size(); ++i)
        if (StepName(steps[i]) == wanted) chosen.push_back(i);
    if (!chosen.empty() || wanted.empty()) return chosen;
    std::string only;
    for (size_t i = 0; i < steps.size(); ++i) {
        const std::string name = StepName(steps[i]);
        if (name.compare(0, wanted.size(), wanted) != 0) continue;
        if (!only.empty() && name != only) return {}; // more than one name starts so
        only = name;
        chosen.push_back(i);
    }
    return chosen;
}

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

int main(int argc, char** argv) {
    const std::vector<DemoStep> steps = OrderedSteps();
    std::vector<size_t> run;
    for (int a = 1; a < argc; ++a) {
        const std::string arg = argv[a];
        if (arg == "--help" || arg == "-h") {
            PrintUsage(steps);
            return 0;
        }
        const std::vector<size_t> chosen =
            arg.empty() || arg[0] == '-' ? std::vector<size_t>() : Select(steps, arg);
        if (chosen.empty()) {
            std::fprintf(stderr, "keel-demo: no step \"%s\" (keel-demo --help lists them)\n",
                         arg.c_str());
            return 2;
        }
        run.insert(run.end(), chosen.begin(), chosen.end());
    }
    if (argc < 2)
        for (size_t i = 0; i < steps.size(); ++i) run.push_back(i);

    bool first = true;
    for (size_t i : run) {
        std::printf("%s== %zu. %s\n", first ? "" : "\n", i + 1, steps[i].title);
        first = false;
        steps[i].run();
    }
    return 0;
}
