// The virtual-table slots of the file, the file manager and the message
// database.  Hosts derive files of their own (a mapped file overrides
// UnmapMemory) and override by slot; each class's destructor comes after
// the slots listed here.
#include <keel/SFM.h>
#include <keel/SFM_File.h>
#include <keel/SFM_MessageDB.h>

#include "tests/slot_order.h"

namespace {

using slots::As;

// The private temporary-close operations are named through overrides, which
// take the slots of the functions they override; the public ReOpen is
// overridden beside the private one so that neither hides the other.
class File : public SFM_File {
public:
    int MayBeTempClosed() override { return 0; }
    void TempClose() override {}
    int ReOpen(const SYS_StringBase& name, const SYS_StringBase& mode) override {
        return SFM_File::ReOpen(name, mode);
    }
    void ReOpen() override {}
};

TEST(FileSlots, File) {
    using F = File;
    const slots::Table file = {
        SLOT(&F::MayBeTempClosed, 0),
        SLOT(&F::TempClose, 1),
        SLOT(As<int(const SYS_StringBase&, const SYS_StringBase&)>(&F::ReOpen), 2),
        SLOT(As<void()>(&F::ReOpen), 3),
        SLOT(&F::IsValid, 4),
        SLOT(&F::Open, 5),
        SLOT(&F::Eof, 6),
        SLOT(&F::IsOpen, 7),
        SLOT(&F::Flush, 8),
        SLOT(&F::Close, 9),
        SLOT(&F::UnmapMemory, 10),
        SLOT(&F::Seek, 11),
        SLOT(&F::PushPosition, 12),
        SLOT(&F::PopPosition, 13),
        SLOT(&F::Read, 14),
        SLOT(&F::Write, 15),
        SLOT(As<double(double&)>(&F::Get), 16),
        SLOT(As<unsigned long(unsigned long&, int)>(&F::Get), 17),
        SLOT(As<long(long&, int)>(&F::Get), 18),
        SLOT(As<unsigned char(unsigned char&, int)>(&F::Get), 19),
        SLOT(As<char(char&, int)>(&F::Get), 20),
        SLOT(As<unsigned short(unsigned short&, int)>(&F::Get), 21),
        SLOT(As<short(short&, int)>(&F::Get), 22),
        SLOT(As<unsigned int(unsigned int&, int)>(&F::Get), 23),
        SLOT(As<int(int&, int)>(&F::Get), 24),
        SLOT(As<void(double)>(&F::Put), 25),
        SLOT(As<void(unsigned long, int)>(&F::Put), 26),
        SLOT(As<void(long, int)>(&F::Put), 27),
        SLOT(As<void(unsigned char, int)>(&F::Put), 28),
        SLOT(As<void(char, int)>(&F::Put), 29),
        SLOT(As<void(unsigned short, int)>(&F::Put), 30),
        SLOT(As<void(short, int)>(&F::Put), 31),
        SLOT(As<void(unsigned int, int)>(&F::Put), 32),
        SLOT(As<void(int, int)>(&F::Put), 33),
        SLOT(&F::GetChar, 34),
        SLOT(&F::PutChar, 35),
        SLOT(&F::GetLine, 36),
        SLOT(&F::WriteLine, 37),
        SLOT(&F::Printf, 38),
    };
    slots::Expect("SFM_File", file);
}

TEST(FileSlots, ManagerAndMessageDatabase) {
    const slots::Table manager = {
        SLOT(&SFM::Initiate, 0),
        SLOT(&SFM::IsValid, 1),
    };
    slots::Expect("SFM", manager);
    const slots::Table database = {
        SLOT(&SFM_MessageDB::IsValid, 0),
    };
    slots::Expect("SFM_MessageDB", database);
}

} // namespace
