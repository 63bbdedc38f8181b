// host.cpp - a small host of keel, walking the host's lifecycle in order:
// the assertion manager and the file manager, the message database, the
// main draw area, a live collection over the host's own objects, typed
// units, files, and rubber-band feedback drawn and erased.  It exits 0 when
// every step did what the host expects, 1 otherwise.
#include <keel/keel.h>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>
#include <unistd.h>

// What this host passes with its redraw notifications (the type is the host's).
struct UI_DrawArea::RedrawBlock {
    SYS_Box region;
};

namespace {

int failures = 0;

void Check(bool ok, const char* what) {
    std::printf("  [%s] %s\n", ok ? "ok" : "FAILED", what);
    failures += !ok;
}

// 1. Assertions: every failure keel reports reaches this listener.
int OnFailure(int type, int* data) {
    const SSM::AssertData* record = reinterpret_cast<const SSM::AssertData*>(data);
    std::printf("  assertion (type %d) at %s(%d), %d time(s)\n", type, record->File.GetString(),
                record->Line, record->Count);
    return 0;
}

// 3. The draw area: a host surface that keeps what is on its "screen".
// Normal drawing adds to a list; exclusive-or drawing toggles a box in a set,
// so feedback drawn twice in exclusive-or leaves nothing behind.
class ScreenArea : public UI_DrawArea {
public:
    ~ScreenArea() override { m_Redraw.Notify(REDRAW_AREA_GONE, nullptr); }

    // World/screen conversion: the base class knows no mapping (it answers 0
    // and empty boxes), so a host overrides what its tools call.  One screen
    // pixel per 19,050 database units (a mil), y up.
    int Scale2ScreenX(long length) const override { return static_cast<int>(length / 19050); }
    int Scale2ScreenY(long length) const override { return static_cast<int>(length / 19050); }
    long Scale2WorldX(int length) const override { return length * 19050L; }
    long Scale2WorldY(int length) const override { return length * 19050L; }
    SYS_Point World2Screen(const SYS_Point& p) override {
        return SYS_Point(Scale2ScreenX(p.x), Scale2ScreenY(p.y));
    }

    void RegisterRedrawHook(SCC_EventHook<RedrawBlock>* hook) override {
        if (hook) hook->Attach(&m_Redraw);
    }
    void InstallDynamic(CDynamic* dynamic) override { m_Redraw.Append(dynamic); }
    // The recorder's content is on the screen: replay it at once to erase
    // the old content or show the new.
    void RedrawDynamic(CDynamic* dynamic, SYS_Box* dirty, int report) override {
        if (!dynamic) return;
        RedrawBlock block{dirty ? *dirty : SYS_Box()};
        dynamic->OnNotification(report == DYNAMIC_OLD ? REDRAW_ERASE : REDRAW_SHOW, &block);
    }
    void PenMode(int mode) override { m_PenMode = mode; }
    int GetPenMode() override { return m_PenMode; }
    void DrawXorBox(SYS_Point p1, SYS_Point p2) override {
        const std::string key = std::to_string(p1.x) + "," + std::to_string(p1.y) + ":" +
                                std::to_string(p2.x) + "," + std::to_string(p2.y);
        if (!m_Xor.erase(key)) m_Xor[key] = 1;
    }
    void DrawXorBox(SYS_Box b) override { DrawXorBox(b.GetLowerLeft(), b.GetUpperRight()); }
    void DrawLine(const SYS_Point&, const SYS_Point&, long, int) override {
        if (m_PenMode == PEN_XOR)
            m_XorLines ^= 1;
        else
            ++m_Lines;
    }

    std::map<std::string, int> m_Xor; // exclusive-or boxes now on the screen
    int m_XorLines = 0;               // exclusive-or lines now on the screen (0 or 1)
    int m_Lines = 0;                  // lines drawn normally
    int m_PenMode = 0;
    SCC_Event<RedrawBlock> m_Redraw;
};

// 4. The host's objects: pads by handle, each with its change event, and the
// event on which the host announces new pads.
struct Pad {
    std::string name;
    long diameter; // database units
    SCC_Notifier event;
};

struct Board {
    std::map<int, Pad> pads;
    SCC_Notifier added;

    Pad* Find(int h) {
        auto it = pads.find(h);
        return it == pads.end() ? nullptr : &it->second;
    }
    int After(int h) {
        auto it = pads.upper_bound(h);
        return it == pads.end() ? 0 : it->first;
    }
};

Board* board = nullptr; // what the sort and the filter look at

int ByName(const int& a, const int& b) {
    const int c = board->Find(a)->name.compare(board->Find(b)->name);
    return c < 0 ? -1 : c > 0 ? 1 : (a > b) - (a < b);
}

// Only pads of at least 40 mil.
class LargePads : public SYS_Filter {
public:
    int IsTrue(int handle) const override {
        const Pad* p = board->Find(handle);
        return p && p->diameter >= 40 * 19050L;
    }
};

// The collection walks the board in handle order through a slider of its
// own: _GetFirst/_GetNext return the handle they move to, 0 at the end.
class PadList : public SCC_StdCollection {
public:
    PadList() { SetEvent(&board->added); }
    SCC_Notifier* GetEvent() override {
        Pad* p = board->Find(m_Slider);
        return p ? &p->event : nullptr;
    }

protected:
    int _GetSlider() override { return m_Slider; }
    void _SetSlider(int h) override { m_Slider = h; }
    int _GetFirst() override { return m_Slider = board->After(0); }
    int _GetNext() override { return m_Slider = board->After(m_Slider); }

private:
    int m_Slider = 0;
};

std::string Names(PadList& list) {
    std::string names;
    for (int valid = list.GetFirst(); valid; valid = list.GetNext())
        names += (names.empty() ? "" : " ") + board->Find(list.GetSlider())->name;
    return names;
}

struct Heard {
    std::string codes;
    SCC_ObjectEventHook<Heard, int> hook;
    int On(int code, int* data) {
        codes += std::to_string(code) + ":" + std::to_string(SCC_DataToHandle(data)) + " ";
        return 0;
    }
};

} // namespace

int main() {
    std::printf("keel %s host\n", KEEL_VERSION_STRING);

    std::printf("1. managers: assertions first, then files\n");
    SSM assertions;
    SCC_EventHook<int> logger;
    logger.SetCallback(OnFailure);
    logger.Attach(&assertions.FailureEvent);
    SFM files;
    Check(SSM::GetManager() == &assertions, "the assertion manager is the process's");

    char dir[] = "/tmp/keel-host-XXXXXX";
    if (!mkdtemp(dir)) return std::perror("mkdtemp"), 1;
    const std::string messages = std::string(dir) + "/messages.txt";

    std::printf("2. the message database, named with SFM::Initiate\n");
    {
        SFM_File source(messages.c_str(), "w");
        source.Printf("1:Board loaded.\n[Units]\n1:mil\n2:mm\n");
        source.Close();
    }
    files.Initiate(messages.c_str());
    Check(files.IsValid() && files.messages->getTxt(1) == "Board loaded.",
          "message 1 reads \"Board loaded.\"");

    std::printf("3. the main draw area\n");
    ScreenArea screen;
    UI_DrawArea::SetMainDrawArea(&screen);
    Check(screen.World2Screen(SYS_Point(190500, 38100)) == SYS_Point(10, 2),
          "10 x 2 mil in the world is pixel (10, 2)");

    std::printf("4. a live collection over the host's pads, sorted and filtered\n");
    Board pads;
    board = &pads;
    pads.pads[1].name = "P3", pads.pads[1].diameter = 60 * 19050L;
    pads.pads[2].name = "P1", pads.pads[2].diameter = 20 * 19050L;
    pads.pads[3].name = "P2", pads.pads[3].diameter = 50 * 19050L;
    PadList list;
    LargePads large;
    Heard heard;
    heard.hook.SetObject(&heard);
    heard.hook.SetMethod(&Heard::On);
    list.SetNotificationHandler(&heard.hook); // kept by pointer: outlives the list
    list.SetSort(ByName, 0);                  // a function: the list makes its own sort object
    list.SetFilter(&large);                   // kept by pointer, not owned
    Check(Names(list).empty(), "nothing is loaded before AllowReload(1)");
    list.AllowReload(1);
    Check(Names(list) == "P2 P3", "large pads by name: P2 P3");
    pads.pads[4].name = "P0", pads.pads[4].diameter = 80 * 19050L;
    pads.added.Notify(SCC_ObjectAdded, SCC_HandleToData(4));
    pads.pads[1].name = "P9";
    pads.pads[1].event.Notify(SCC_ObjectChanged, SCC_HandleToData(1));
    Check(Names(list) == "P0 P2 P9", "an added pad and a renamed one take their places");
    std::printf("  the listener heard (code:handle) %s\n", heard.codes.c_str());
    Check(!heard.codes.empty(), "the listener heard the changes");

    std::printf("5. units: typed text to database units and back\n");
    SYS_Convert mm(SYS_UnitMetric);
    long value = 0;
    Check(mm.Str2Base("1.5", &value) && value == 1125000, "\"1.5\" mm is 1,125,000 units");
    Check(SYS_Convert(SYS_UnitMils).Base2Str(value) == "59.06",
          "1,125,000 units show as 59.06 mil (two decimals)");
    Check(!mm.Str2Base("1.5mm", &value), "\"1.5mm\" is refused: one number, nothing else");

    std::printf("6. files: binary values written and read back\n");
    const std::string data = std::string(dir) + "/pads.bin";
    {
        SFM_File out(data.c_str(), "wb");
        for (auto& p : pads.pads) out.Put(static_cast<int>(p.second.diameter), 0);
        out.Close();
    }
    SFM_File in(data.c_str(), "rb");
    int first = 0;
    Check(in.Get(first, 0) && first == 60 * 19050, "the first diameter reads back");
    in.Close();

    std::printf("7. rubber band: recorded, replayed in exclusive-or, erased\n");
    {
        CDynamic band(&screen);
        band.StartBatchDraw();
        band.DrawXorBox(SYS_Point(0, 0), SYS_Point(190500, 190500));
        band.EndBatchDraw(); // the area replays it: the box is on the screen
        Check(screen.m_Xor.size() == 1, "the box is shown");
        band.StartBatchDraw(); // the old box is replayed once more: erased
        band.DrawXorBox(SYS_Point(0, 0), SYS_Point(381000, 190500));
        band.EndBatchDraw();
        Check(screen.m_Xor.size() == 1 && screen.m_Xor.begin()->first == "0,0:381000,190500",
              "the dragged box replaces the first");
        band.Clear();
        Check(screen.m_Xor.empty(), "Clear takes the feedback off the screen");
    }

    UI_DrawArea::SetMainDrawArea(nullptr);
    std::remove(messages.c_str());
    std::remove(data.c_str());
    rmdir(dir);
    std::printf("%s\n", failures ? "host: FAILED" : "host: every step as expected");
    return failures ? 1 : 0;
}
