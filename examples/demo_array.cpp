// demo_array.cpp - keel-demo step: an array growing, shared, edited and
// sorted, with an iterator that follows its element.
#include "demo_steps.h"
#include <keel/SCC_SortableArray.h>

#include <cstdio>
#include <string>
#include <vector>

namespace {

// Opens the storage block to show what the array reserves.
struct ShownArray : SCC_SortableArray<int> {
    // "bounds -2..8, storage -20..21, 1 reference"
    std::string Layout() {
        if (!m_Buffer) return "no storage";
        char text[96];
        std::snprintf(text, sizeof text, "bounds %d..%d, storage %d..%d, %ld reference%s",
                      GetLowerBound(), GetUpperBound() - 1, m_Buffer->m_AllocLower,
                      m_Buffer->m_AllocUpper - 1, m_Buffer->GetRefCount(),
                      m_Buffer->GetRefCount() == 1 ? "" : "s");
        return text;
    }
    // "[-2..6] 8 8 10 ...": the bounds, then the values.
    std::string Values() {
        std::string out = "[" + std::to_string(GetLowerBound()) + ".." +
                          std::to_string(GetUpperBound() - 1) + "]";
        for (int i = GetLowerBound(); i < GetUpperBound(); ++i)
            out += " " + std::to_string(FastGetAt(i));
        return out;
    }
    const void* Block() const { return m_Buffer; }
};

// "3..6": the n indices from `first`.
std::string Range(int first, int n) {
    return std::to_string(first) + ".." + std::to_string(first + n - 1);
}

// "3..6 move to 4..7": a run of n elements whose first element moves from
// `from` to `to`.
std::string Run(int from, int to, int n) { return Range(from, n) + " move to " + Range(to, n); }

// The announcements heard since the last Heard() call, in words.
std::vector<std::string> heard;

// Describes the moves of an announcement: the forward run names its first
// element, the backward run its last.  Runs that stay in place are left out.
std::string Moves(const SCC_ArrayParam& p) {
    std::string out;
    if (p.m_ForwardCount > 0 && p.m_ForwardFrom != p.m_ForwardTo)
        out += ", " + Run(p.m_ForwardFrom, p.m_ForwardTo, p.m_ForwardCount);
    if (p.m_BackwardCount > 0 && p.m_BackwardFrom != p.m_BackwardTo)
        out += ", " + Run(p.m_BackwardFrom - p.m_BackwardCount + 1,
                          p.m_BackwardTo - p.m_BackwardCount + 1, p.m_BackwardCount);
    return out;
}

int OnArrayEvent(int code, SCC_ArrayParam* p) {
    switch (code) {
    case SCC_ArrayInserted:
        // A negative count opens the slots just below the index.
        heard.push_back("SCC_ArrayInserted (after the move): " +
                        std::to_string(p->m_Count < 0 ? -p->m_Count : p->m_Count) + " slot(s) " +
                        (p->m_Count < 0 ? "opened below " : "opened at ") +
                        std::to_string(p->m_Index) + Moves(*p));
        break;
    case SCC_ArrayDeleted:
        heard.push_back("SCC_ArrayDeleted (before the move): " +
                        Range(p->m_RemovedFrom, p->m_RemovedCount) + " go" + Moves(*p));
        break;
    case SCC_ArrayBoundsChanged:
        heard.push_back("SCC_ArrayBoundsChanged: storage reallocated, elements copied over");
        break;
    default:
        heard.push_back("announcement of unknown code " + std::to_string(code));
    }
    return 0;
}

// Prints and forgets the announcements heard, a repeated one once with its
// count.
void Heard() {
    for (size_t i = 0; i < heard.size();) {
        size_t n = 1;
        while (i + n < heard.size() && heard[i + n] == heard[i]) ++n;
        std::printf("    announced %s%s\n", heard[i].c_str(),
                    n > 1 ? (" (x" + std::to_string(n) + ")").c_str() : "");
        i += n;
    }
    heard.clear();
}

} // namespace

KEEL_DEMO_STEP(30, "Arrays") {
    DemoIntro("SCC_Array indexes from any lower bound, shares storage between copies until one "
              "is written, and announces every block move, so that iterators and views can "
              "follow insertions and deletions.");

    ShownArray drills;
    SCC_EventHook<SCC_ArrayParam> hook;
    hook.SetCallback(OnArrayEvent);
    drills.RegisterIterator(hook);

    const int sizes[] = {35, 8, 20, 12, 8, 50, 16, 24, 10};
    for (int s : sizes) drills.Append(s);
    std::printf("  Append 9 drill sizes -> %s\n", drills.Values().c_str());
    Heard();
    std::printf("    %s (spare slots at both ends)\n", drills.Layout().c_str());
    drills[-2] = 3;
    std::printf("  drills[-2] = 3 extends the lower bound -> %s\n", drills.Layout().c_str());
    Heard();

    ShownArray copy;
    copy = drills;
    std::printf("  copy = drills shares the block -> %s\n", copy.Layout().c_str());
    copy[0] = 99;
    std::printf("  copy[0] = 99 -> %s; drills[0] is still %d\n",
                copy.Block() == drills.Block() ? "the copy still shares the block"
                                               : "the copy took a private block first",
                drills.FastGetAt(0));

    SCC_Array<int>::Iterator it;
    it.SetArray(&drills, 5);
    int from = it.GetPosition(), value = *it;
    drills.Delete(-2, 2);
    std::printf("  Delete(-2, 2) -> %s\n", drills.Values().c_str());
    Heard();
    std::printf("    an iterator on %d followed it from index %d to %d (now on %d)\n", value, from,
                it.GetPosition(), *it);

    drills.Sort(drills.GetLowerBound(), drills.GetCount(), 1);
    std::printf("  Sort -> %s\n", drills.Values().c_str());
    Heard();
    std::printf("    nothing announced: values moved, not slots; the iterator stays at index %d, "
                "now on %d\n",
                it.GetPosition(), *it);

    from = it.GetPosition(), value = *it;
    long at = drills.InsertSorted(18);
    std::printf("  InsertSorted(18) puts it at index %ld -> %s\n", at, drills.Values().c_str());
    Heard();
    std::printf("    the iterator on %d followed it from index %d to %d (now on %d)\n", value, from,
                it.GetPosition(), *it);

    long first = 0, last = 0;
    drills.FindItemPosition(8, first, last);
    std::printf("  FindItemPosition(8): the run of 8s is at %ld..%ld\n", first, last - 1);
}
