// Fuzzes the dynamic-drawing recorder: arbitrary sequences of recording
// operations with arbitrary operands (null and negative counts, huge angles,
// long texts), batches, clears, notifications and replays into an area that
// may record into, reset, clear or detach the recorder while it replays.
// After every step the records must still be a sequence of complete
// operations followed by NO_OP.
//   build/fuzz/fuzz/fuzz_dynamic -max_total_time=60 /tmp/corpus fuzz/corpus/dynamic
// Input: one byte per step choosing the operation, then its operands as
// little-endian 32-bit values or bytes.
#include <keel/UI_Dynamic.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace {

void Check(bool ok) {
    if (!ok) __builtin_trap();
}

class Input {
public:
    Input(const uint8_t* data, size_t size) : m_Data(data), m_Size(size) {}
    bool More() const { return m_At < m_Size; }
    uint8_t Byte() { return m_At < m_Size ? m_Data[m_At++] : 0; }
    int32_t Int() {
        uint32_t v = 0;
        for (int i = 0; i < 4; ++i) v |= uint32_t(Byte()) << (8 * i);
        return static_cast<int32_t>(v);
    }
    SYS_Point Point() {
        const int32_t x = Int();
        return SYS_Point(x, Int());
    }
    SYS_Box Box() {
        const SYS_Point p = Point();
        return SYS_Box(p, Point());
    }
    std::string Text() {
        std::string t(Byte() % 40, 'x');
        for (char& c : t) c = static_cast<char>(Byte() | 1); // no NUL inside
        return t;
    }

private:
    const uint8_t* m_Data;
    size_t m_Size;
    size_t m_At = 0;
};

// The records as the recorder's format defines them: every code known,
// every operation complete, NO_OP right after the last one.
void CheckRecords(const CDynamic& d) {
    static const int fixed[CDynamic::OP_COUNT] = {1, 1, 4,  4, 5, -1, 6, 10, 1, -1, 3, 2,
                                                  2, 4, -1, 4, 2, 1,  1, 1,  2, -1, 1, 1};
    const int32_t* r = d.GetRecords();
    const size_t n = static_cast<size_t>(d.GetRecordCount());
    size_t i = 0;
    while (i < n) {
        const int32_t code = r[i++];
        Check(code >= 0 && code < CDynamic::OP_COUNT);
        size_t len = fixed[code] >= 0 ? static_cast<size_t>(fixed[code]) : 0;
        if (code == CDynamic::OP_DRAW_XOR_TEXT) len = 5 + static_cast<uint32_t>(r[i + 4]);
        if (code == CDynamic::OP_DRAW_STRING) len = 1 + static_cast<uint32_t>(r[i]);
        if (code == CDynamic::OP_POLYLINE) len = 3 + 2 * size_t(static_cast<uint32_t>(r[i + 2]));
        if (code == CDynamic::OP_POLY_POLYLINE) {
            const size_t k = static_cast<uint32_t>(r[i]);
            Check(k <= n - i);
            len = 1 + k;
            for (size_t j = 0; j < k; ++j) len += 2 * size_t(static_cast<uint32_t>(r[i + 1 + j]));
        }
        Check(len <= n - i);
        i += len;
    }
    Check(i == n && r[n] == CDynamic::NO_OP);
}

// Answers with sizes from the input and, when told to, disturbs the
// recorder from inside its replay.
class Area : public UI_DrawArea {
public:
    CDynamic* dynamic = nullptr;
    int disturb = 0;
    int shift = 0;

    int Scale2ScreenX(long v) const override { return static_cast<int>(v >> shift); }
    int Scale2ScreenY(long v) const override { return static_cast<int>(v >> shift); }
    SYS_Box DrawXorText(const char* t, int a, int b, long x, long y, int) override {
        return SYS_Box(x, y, x + a * static_cast<long>(std::strlen(t)), y + b);
    }
    void PenColor(int) override {
        if (!dynamic || !dynamic->IsFlushing()) return;
        switch (disturb) {
        case 1:
            dynamic->Reset();
            break;
        case 2:
            dynamic->DrawString("grows the records while they are replayed");
            break;
        case 3:
            dynamic->Clear();
            break;
        case 4:
            dynamic->OnNotification(UI_DrawArea::REDRAW_AREA_GONE, nullptr);
            break;
        default:
            break;
        }
    }
    void RedrawDynamic(CDynamic* d, SYS_Box*, int) override {
        if (disturb == 5) d->OnNotification(UI_DrawArea::REDRAW_SHOW, nullptr);
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input in(data, size);
    Area area;
    area.disturb = in.Byte() % 6;
    area.shift = in.Byte() % 32;
    CDynamic d(&area);
    area.dynamic = &d;
    SYS_Point points[64];
    unsigned long counts[8];
    for (int steps = 0; in.More() && steps < 200; ++steps) {
        const uint8_t op = in.Byte();
        switch (op % 32) {
        case 0:
            d.PenColor(in.Int());
            break;
        case 1:
            d.PenSize(in.Int());
            break;
        case 2:
            d.DrawXorBox(in.Point(), in.Point());
            break;
        case 3:
            d.DrawXorBox(in.Box());
            break;
        case 4:
            d.DrawXorOval(in.Box());
            break;
        case 5:
            d.FillRect(in.Box(), in.Int());
            break;
        case 6:
            d.DrawXorText(op & 32 ? nullptr : in.Text().c_str(), in.Byte(), in.Byte(), in.Point(),
                          0);
            break;
        case 7:
            d.DrawLine(in.Point(), in.Point(), in.Int(), in.Int());
            break;
        case 8:
            d.DrawArc(in.Box(), in.Point(), in.Point(), in.Int(), in.Int());
            break;
        case 9:
            d.PenCap(in.Int());
            break;
        case 10: {
            const int k = in.Byte() % 10 - 1; // -1 to 8
            for (int j = 0; j < 8; ++j) counts[j] = in.Byte() % 9;
            for (SYS_Point& p : points) p = SYS_Point(in.Byte(), in.Byte());
            d.FastPolyPolyline(op & 32 ? nullptr : points, op & 64 ? nullptr : counts, k);
            break;
        }
        case 11:
            d.SwitchPen(in.Int(), in.Int(), in.Int());
            break;
        case 12:
            d.FastMoveTo(in.Point());
            break;
        case 13:
            d.FastLineTo(in.Point());
            break;
        case 14:
            d.FastPaintOval(in.Box());
            break;
        case 15:
            d.FastPolyLine(in.Byte() % 66 - 1, op & 32 ? nullptr : points, in.Int(), in.Int());
            break;
        case 16:
            d.FastFrameOval(in.Box());
            break;
        case 17:
            d.TextAlign(in.Int(), in.Int());
            break;
        case 18:
            d.TextExtra(in.Int());
            break;
        case 19:
            d.TextFace(in.Int());
            break;
        case 20: {
            double angle;
            const uint64_t bits = uint64_t(uint32_t(in.Int())) << 32 | uint32_t(in.Int());
            std::memcpy(&angle, &bits, sizeof angle);
            d.TextPath(angle);
            Check(d.GetRecords()[d.GetRecordCount() - 1] >= 0 &&
                  d.GetRecords()[d.GetRecordCount() - 1] < 3600000);
            break;
        }
        case 21:
            d.TextSize(in.Int(), in.Int());
            break;
        case 22:
            d.DrawString(op & 32 ? nullptr : in.Text().c_str());
            break;
        case 23: {
            gra_mode_union m;
            m.value = in.Int();
            d.SetGRAMode(m);
            break;
        }
        case 24:
            d.DrawOnScreen(op & 32);
            break;
        case 25:
            d.StartBatchDraw();
            break;
        case 26:
            d.EndBatchDraw();
            break;
        case 27:
            d.Clear();
            break;
        case 28:
            d.Reset();
            break;
        case 29:
            d.OnNotification(op >> 5, nullptr);
            break;
        case 30:
            d.Install(&area);
            break;
        default: {
            CDynamic copy(d);
            copy.prev = copy.next = &copy, copy.root = nullptr;
            CheckRecords(copy);
            break;
        }
        }
        CheckRecords(d);
        Check(!d.IsFlushing());
    }
    return 0;
}
