// Tests of CDynamic against a logging draw area: records, dirty boxes and
// replays of every operation, the batch cycle, notifications and copies.
#include <keel/UI_Dynamic.h>

#include <gtest/gtest.h>

#include <functional>
#include <sstream>
#include <string>
#include <vector>

namespace {

std::ostream& operator<<(std::ostream& o, const SYS_Point& p) {
    return o << '(' << p.x << ' ' << p.y << ')';
}
std::ostream& operator<<(std::ostream& o, const SYS_Box& b) {
    return o << '[' << b.lowerLeft << b.upperRight << ']';
}

// Logs every call the recorder makes as "Name a b ...;".  Scales divide by
// 10, so a world extent below 20 is below two pixels.
class LogArea : public UI_DrawArea {
public:
    std::string log;
    std::function<void()> onPenColor;

    template <class... A> void Log(const char* name, const A&... args) {
        std::ostringstream o;
        o.precision(10);
        o << name;
        ((o << ' ' << args), ...);
        log += o.str() + ";";
    }

    int Scale2ScreenX(long v) const override { return static_cast<int>(v / 10); }
    int Scale2ScreenY(long v) const override { return static_cast<int>(v / 10); }
    void InstallDynamic(CDynamic*) override { Log("InstallDynamic"); }
    void RedrawDynamic(CDynamic*, SYS_Box* b, int report) override { Log("RD", *b, report); }
    void StartScreenDraw() override { Log("StartScreenDraw"); }
    int GetPenMode() override { return Log("GetPenMode"), 7; }
    void PenMode(int m) override { Log("PenMode", m); }
    void PenColor(int c) override {
        Log("PenColor", c);
        if (onPenColor) onPenColor();
    }
    void PenSize(long s) override { Log("PenSize", s); }
    void PenCap(int c) override { Log("PenCap", c); }
    void SwitchPen(int a, long b, int c) override { Log("SwitchPen", a, b, c); }
    void DrawXorBox(SYS_Box b) override { Log("DrawXorBox", b); }
    void DrawXorBox(SYS_Point, SYS_Point) override { Log("DrawXorBox(p,p)"); }
    void FillRect(SYS_Box b, int f) override { Log("FillRect", b, f); }
    SYS_Box DrawXorText(const char* t, int a, int b, long x, long y, int f) override {
        Log("DrawXorText", t, a, b, x, y, f);
        return SYS_Box(x, y, x + 10, y + 5);
    }
    SYS_Box DrawXorText(const char* t, int a, int b, SYS_Point p, int f) override {
        Log("DrawXorText", t, a, b, p, f);
        return SYS_Box();
    }
    void DrawLine(const SYS_Point& p, const SYS_Point& q, long w, int c) override {
        Log("DrawLine", p, q, w, c);
    }
    void FastFrameArc(const SYS_Box& b, const SYS_Point& s, const SYS_Point& e) override {
        Log("FastFrameArc", b, s, e);
    }
    void FastFrameOval(const SYS_Box& b) override { Log("FastFrameOval", b); }
    void FastPaintOval(SYS_Box b) override { Log("FastPaintOval", b); }
    void FastMoveTo(const SYS_Point& p) override { Log("FastMoveTo", p); }
    void FastLineTo(const SYS_Point& p) override { Log("FastLineTo", p); }
    void FastPolyPolyline(SYS_Point* p, const int* c, int k) override {
        Log("FastPolyPolyline", k);
        for (int i = 0, at = 0; i < k; at += c[i++]) Log("", c[i], p[at]);
    }
    void FastPolyLine(int n, SYS_Point* p, long w, int c) override {
        Log("FastPolyLine", n, p[n - 1], w, c);
    }
    void TextAlign(int a, int b) override { Log("TextAlign", a, b); }
    void TextExtra(int a) override { Log("TextExtra", a); }
    void TextFace(int a) override { Log("TextFace", a); }
    void TextPath(double d, const char* f) override { Log("TextPath", d, f); }
    void TextSize(int a, int b, const char* f) override { Log("TextSize", a, b, f); }
    void DrawString(const char* t) override { Log("DrawString", t); }
    void SetGRAMode(gra_mode_union m) override { Log("SetGRAMode", m.bits); }
    void DrawOnScreen(bool on) override { Log("DrawOnScreen", on); }
};

// The recorded values, space separated.
std::string Values(const CDynamic& d) {
    std::string s;
    for (int i = 0; i < d.GetRecordCount(); ++i)
        s += (i ? " " : "") + std::to_string(d.GetRecords()[i]);
    return s;
}

std::string Text(const SYS_Box& b) {
    std::ostringstream o;
    o << b;
    return o.str();
}

SYS_Point pts[] = {{3, 9}, {-4, 2}, {8, -1}};
const unsigned long ucounts[] = {2, 1};
typedef CDynamic& R;
SYS_Point P(long x, long y) { return SYS_Point(x, y); }

// Recording operations: what they store, the dirty box they leave, the
// calls their replay makes between GetPenMode and restoring pen mode 7, and
// (where there are any) the calls recording makes to measure.
const struct Op {
    std::function<void(R)> record;
    const char *values, *dirty, *replay, *measure = "";
} kOps[] = {
    {[](R d) { d.PenColor(5), d.PenSize(0x100000007L), d.PenCap(2), d.SwitchPen(1, 2, 3); },
     "0 5 1 7 8 2 10 1 2 3", "[(0 0)(0 0)]", "PenColor 5;PenSize 7;PenCap 2;SwitchPen 1 2 3;"},
    {[](R d) { d.DrawXorBox(P(9, 8), P(1, 2)); }, "2 9 8 1 2", "[(9 8)(1 2)]",
     "DrawXorBox [(9 8)(1 2)];"},
    {[](R d) { d.DrawXorBox(SYS_Box(9, 8, 1, 2)); }, "2 1 2 9 8", "[(1 2)(9 8)]",
     "DrawXorBox [(1 2)(9 8)];"},
    {[](R d) { d.DrawXorOval(SYS_Box(50, 60, 10, 20)); }, "3 10 20 50 60", "[(10 20)(50 60)]",
     "PenMode 2;FastFrameOval [(10 20)(50 60)];"},
    {[](R d) { d.DrawXorOval(SYS_Box(0, 0, 50, 19)); }, "3 0 0 50 19", "[(0 0)(50 19)]",
     "DrawXorBox [(0 0)(50 19)];"}, // below two pixels
    {[](R d) { d.FillRect(SYS_Box(10, 20, 0, 0), 7); }, "4 0 0 10 20 7", "[(0 0)(10 20)]",
     "PenMode 2;FillRect [(0 0)(10 20)] 7;"},
    {[](R d) { EXPECT_EQ(Text(d.DrawXorText("ab", 1, 2, 30L, 40L, 9)), "[(30 40)(40 45)]"); },
     "5 30 40 1 2 3 97 98 0", "[(30 40)(40 45)]", "DrawXorText ab 1 2 (30 40) 1;",
     "DrawXorText ab 1 2 30 40 0;"},
    {[](R d) { d.DrawXorText("\xE9", 1, 2, SYS_Point(3, 4), 0); }, "5 3 4 1 2 2 233 0",
     "[(3 4)(13 9)]", "DrawXorText \xE9 1 2 (3 4) 1;", "DrawXorText \xE9 1 2 3 4 0;"},
    {[](R d) { d.DrawLine(P(0, 0), P(10, 5), 1, 2); }, "6 0 0 10 5 1 2", "[(0 0)(10 10)]",
     "PenMode 2;PenColor 2;PenSize 1;DrawLine (0 0) (10 5) 1 2;"},
    {[](R d) { d.DrawArc(SYS_Box(40, 40, 0, 0), P(40, 20), P(0, 20), 3, 4); },
     "7 0 0 40 40 40 20 0 20 3 4", "[(0 0)(40 40)]",
     "PenMode 2;PenColor 4;PenSize 3;FastFrameArc [(0 0)(40 40)] (40 20) (0 20);"},
    {[](R d) { d.DrawArc(SYS_Box(0, 0, 19, 40), P(1, 2), P(3, 4), 3, 4); },
     "7 0 0 19 40 1 2 3 4 3 4", "[(0 0)(19 40)]",
     "PenMode 2;PenColor 4;PenSize 3;DrawLine (1 2) (3 4) 3 4;"}, // below two pixels
    {[](R d) { d.FastPolyPolyline(pts, ucounts, 2); }, "9 2 2 1 3 9 -4 2 8 -1", "[(-4 -1)(8 9)]",
     "FastPolyPolyline 2; 2 (3 9); 1 (8 -1);"},
    {[](R d) { d.FastMoveTo(P(1, 1)), d.FastLineTo(P(4, -2)); }, "11 1 1 12 4 -2", "[(1 -2)(4 1)]",
     "FastMoveTo (1 1);FastLineTo (4 -2);"},
    {[](R d) { d.FastLineTo(P(-3, 6)); }, "12 -3 6", "[(-3 0)(0 6)]", "FastLineTo (-3 6);"},
    {[](R d) { d.FastPaintOval(SYS_Box(5, 5, 1, 9)), d.FastFrameOval(SYS_Box(5, 5, 1, 9)); },
     "13 5 5 1 9 15 5 5 1 9", "[(5 5)(1 9)]",
     "FastPaintOval [(5 5)(1 9)];FastFrameOval [(5 5)(1 9)];"},
    {[](R d) {
         d.FastPolyLine(3, pts, 6, 7), d.TextAlign(1, 2), d.TextExtra(3), d.TextFace(4);
         d.TextSize(5, 6), d.DrawString("hi"), d.SetGRAMode({0xFFFFFFFFu}), d.DrawOnScreen(true);
     },
     "14 6 7 3 3 9 -4 2 8 -1 16 1 2 17 3 18 4 20 5 6 21 2 104 105 22 -1 23 1", "[(0 0)(0 0)]",
     "FastPolyLine 3 (8 -1) 6 7;TextAlign 1 2;TextExtra 3;TextFace 4;TextSize 5 6 ;DrawString "
     "hi;SetGRAMode 4294967295;DrawOnScreen 1;"},
    // Minus 90 degrees, just below a turn (truncated), far round (no endless steps).
    {[](R d) { d.TextPath(-162000000.0), d.TextPath(647999999.0), d.TextPath(1e300); },
     "19 2700000 19 3599999 19 2880000", "[(0 0)(0 0)]",
     "TextPath 270 ;TextPath 359.9999 ;TextPath 288 ;"},
};

TEST(Dynamic, EveryOperationRecordsMergesAndReplays) {
    for (const Op& op : kOps) {
        SCOPED_TRACE(op.values);
        LogArea area;
        CDynamic d;
        d.SetDrawArea(&area);
        op.record(d);
        EXPECT_EQ(Values(d), op.values);
        EXPECT_EQ(d.GetRecords()[d.GetRecordCount()], CDynamic::NO_OP);
        EXPECT_EQ(Text(d.m_DirtyBox), op.dirty);
        EXPECT_EQ(area.log, op.measure);
        area.log.clear();
        EXPECT_EQ(d.OnNotification(UI_DrawArea::REDRAW_SHOW, nullptr), 0);
        EXPECT_EQ(area.log, std::string("GetPenMode;") + op.replay + "PenMode 7;");
    }
}

TEST(Dynamic, DirtyBoxAndSameNamedOperations) {
    LogArea area;
    CDynamic d(&area);
    d.PenColor(5);
    d.FillRect(SYS_Box(10, 20, 0, 0), 7);
    d.FastPolyLine(3, pts, 1, 1); // merges nothing
    d.DrawXorBox({-5, 3}, {2, 30});
    EXPECT_EQ(Text(d.m_DirtyBox), "[(-5 0)(10 30)]");
    d.Reset(), d.FillRect(SYS_Box(4, 4, 4, 4), 1); // a point: the next box replaces it
    d.FastFrameOval(SYS_Box(20, 20, 30, 30));
    EXPECT_EQ(Text(d.m_DirtyBox), "[(20 20)(30 30)]");
    // With no area the text box is not computed and nothing is merged.
    CDynamic alone;
    EXPECT_EQ(Text(alone.DrawXorText(nullptr, 1, 2, 3L, 4L, 0)), "[(0 0)(0 0)]");
    alone.FastPolyPolyline(nullptr, ucounts, 2), alone.FastPolyLine(-1, pts, 1, 2); // no points
    EXPECT_EQ(Values(alone) + Text(alone.m_DirtyBox), "5 3 4 1 2 1 0 9 0 14 1 2 0[(0 0)(0 0)]");

    // The draw-area operations of the same names keep their base behaviour.
    const int counts[] = {1};
    d.Reset();
    d.TextPath(90.0, "font"), d.TextSize(1, 2, "font"), d.FastPolyPolyline(pts, counts, 1);
    d.FastPaintOval(SYS_Point(1, 1), 5L, 0), d.Redraw(SYS_Box(0, 0, 1, 1));
    d.PenMode(UI_DrawArea::PEN_XOR), d.InvalidateRect(nullptr);
    EXPECT_EQ(d.GetRecordCount() + d.GetPenMode(), 0);
}

TEST(Dynamic, AttachmentBatchesAndNotifications) {
    struct Dirtying : LogArea {
        void InstallDynamic(CDynamic* d) override { d->FillRect(SYS_Box(1, 1, 5, 5), 0); }
    } installer;
    CDynamic d(&installer);
    // The area heard InstallDynamic; the dirty box is zeroed again after it.
    EXPECT_EQ(Values(d) + Text(d.m_DirtyBox), "4 1 1 5 5 0[(0 0)(0 0)]");
    LogArea area;
    d.Install(nullptr);
    EXPECT_EQ(d.GetDrawArea(), &installer);
    d.SetDrawArea(&area), d.StartScreenDraw(), d.Install(&area); // SetDrawArea did not install
    EXPECT_EQ(area.log, "StartScreenDraw;InstallDynamic;");
    area.log.clear();

    d.StartBatchDraw(), d.DrawXorBox({0, 0}, {4, 4}); // reports the old content, drops it
    d.StartBatchDraw(), d.DrawXorBox({1, 1}, {6, 6});
    d.EndBatchDraw(), d.EndBatchDraw(), d.EndBatchDraw(); // the third has no batch: nothing
    EXPECT_EQ(d.m_BatchDepth, 0);
    EXPECT_EQ(area.log, "RD [(0 0)(0 0)] 0;RD [(0 0)(4 4)] 0;RD [(1 1)(6 6)] 1;RD [(1 1)(6 6)] 1;");

    area.log.clear();
    d.OnNotification(UI_DrawArea::REDRAW_ERASE, nullptr);
    EXPECT_EQ(area.log, "GetPenMode;DrawXorBox [(1 1)(6 6)];PenMode 7;");
    EXPECT_EQ(d.OnNotification(99, nullptr), 0);
    d.OnNotification(UI_DrawArea::REDRAW_CLEAR, nullptr);
    EXPECT_EQ(Values(d) + Text(d.m_DirtyBox), "[(0 0)(0 0)]");

    d.PenCap(1), d.StartBatchDraw();
    d.OnNotification(UI_DrawArea::REDRAW_AREA_GONE, nullptr);
    area.log.clear();
    d.PenCap(2), d.Clear(); // no area to erase from: the records stay
    d.EndBatchDraw();
    d.OnNotification(UI_DrawArea::REDRAW_SHOW, nullptr);
    EXPECT_TRUE(!d.GetDrawArea() && d.GetRecordCount() == 2 && d.m_BatchDepth == 1);
    EXPECT_EQ(area.log, "");
    EXPECT_FALSE(d.IsFlushing());
}

TEST(Dynamic, ReplayFlagsFlushingAndSurvivesChangesUnderIt) {
    LogArea area;
    CDynamic d(&area);
    std::vector<bool> flushing;
    area.onPenColor = [&] {
        flushing.push_back(d.IsFlushing());
        d.Reset(); // the records go while they are replayed
        d.DrawString("a long text that grows the storage");
    };
    d.PenColor(1), d.PenColor(2);
    area.log.clear();
    d.OnNotification(UI_DrawArea::REDRAW_SHOW, nullptr);
    EXPECT_EQ(flushing, std::vector<bool>{true});
    EXPECT_EQ(area.log, "GetPenMode;PenColor 1;PenMode 7;"); // stopped where the old records ended
    EXPECT_FALSE(d.IsFlushing());
}

TEST(Dynamic, CopiesAndAssignment) {
    SCC_Event<UI_DrawArea::RedrawBlock> redraw;
    LogArea area;
    CDynamic source(&area);
    redraw.Append(&source);
    source.FastMoveTo({3, 4}), source.StartBatchDraw(), source.FillRect(SYS_Box(0, 0, 8, 8), 1);

    CDynamic copy(source); // links copied as they stand, not joined
    EXPECT_TRUE(copy.next == source.next && redraw.next == &source);
    copy.prev = copy.next = &copy, copy.root = nullptr;
    copy.DrawString("x"); // the records are its own
    EXPECT_EQ(Values(source), "4 0 0 8 8 1");
    EXPECT_EQ(Values(copy), "4 0 0 8 8 1 21 1 120");

    CDynamic target;
    target = source; // joins just before the source
    CDynamic& same = target;
    target = same;
    EXPECT_TRUE(redraw.next == &target && target.next == &source);
    EXPECT_EQ(Values(target), "4 0 0 8 8 1");
    for (const CDynamic* c : {&copy, &target}) {
        EXPECT_TRUE(c->GetDrawArea() == &area && c->m_BatchDepth == 1);
        EXPECT_EQ(Text(c->m_DirtyBox), "[(0 0)(8 8)]");
        EXPECT_EQ(c->m_CurrentPoint, SYS_Point(3, 4));
    }
}

} // namespace
