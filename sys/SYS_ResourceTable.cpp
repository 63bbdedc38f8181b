// SYS_ResourceTable.cpp - the texts of the library's string table.
//
// Numbers 250-256 are file failure texts; 45000-45117 are texts for the
// library and its host (value parsing, frame and dialog words, database
// message prefixes, selection words, the system-error fallback, unit system
// names and unit prefix messages).  45118 is deliberately absent.
#include "sys/internal/SYS_ResourceTable.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace {

struct Entry {
    int id;
    const char* text;
};

// Sorted by number.
const Entry kTable[] = {
    {250, "Can't open %s"},
    {251, "Can't close %s"},
    {252, "Can't read %s"},
    {253, "Can't write %s"},
    {254, "Failed to copy %s to %s"},
    {255, "Failed to move/rename %s to %s"},
    {256, "Failed to delete %s"},
    {45000, "Prefix name (or symbol) is omitted."},
    {45001, "Name %s is not found among prefix names."},
    {45002, "Number not found."},
    {45003, "Nothing except sign is found."},
    {45004, "Number must follow sign."},
    {45005, "Number overflow"},
    {45006, "Number underflow"},
    {45007, "Unit name is not found."},
    {45008, "Unit name must follow number."},
    {45009, "String %s is treated as %s%s, but this treatment is prohibited by parser settings."},
    {45010, "Unit %s is not recognized."},
    {45011, "Nothing should follow the number."},
    {45012, "Nothing should follow the unit name."},
    {45013, "%s is interpreted as \"%s\""},
    {45014, "Incorrect boolean value. Should be \"Yes\" or \"No.\""},
    {45015, "Number out of range : %s"},
    {45016, "Invalid character(s) \"%s\" found after the number %ld."},
    {45017, "Invalid character(s) \"%s\" found after the number %g."},
    {45018, "Unit of measument is incorrect in %s."},
    {45019, "Value %ld is less than the minimum value %d."},
    {45020, "Value %ld is greater than the maximum value %d."},
    {45021, "Value %g is less than the minimum value %g."},
    {45022, "Value %g is greater than the maximum value %g."},
    {45023, "Input %s is not in the list of possible values."},
    {45024, "Illegal character with code %#2X in attribute name."},
    {45025, "Name %s contains spaces between points."},
    {45026, "Name %s contains spaces. They will be removed to create the attribute."},
    {45027, "Open "},
    {45028, "Cannot open document file."},
    {45029, "Fatal run-time error. Press OK. The program will exit."},
    {45030, "Save "},
    {45031, "Help"},
    {45032, "Macro Toolbar"},
    {45033, " Macro"},
    {45034, "&Customize..."},
    {45035, "StatusPageWnd"},
    {45036, "MacroPageWnd"},
    {45037, "BasicPageWnd"},
    {45038, "Status"},
    {45039, "Macro"},
    {45040, "Basic"},
    {45041, "Visual Basic Scripts (*.bas)|*.bas||All Files (*.*)|*.*||"},
    {45042, "My Scripts"},
    {45043, "Cancel"},
    {45044, "Item not found"},
    {45045, "Session Log-files (*.log)|*.log||"},
    {45046, "Status Toolbar"},
    {45047, "Message"},
    {45048, "Warning"},
    {45049, "Error"},
    {45050, "All Files (*.*)|*.*||"},
    {45051, " - Warning"},
    {45052, " - Error"},
    {45053, "Standard"},
    {45054, "Vertical Small Cross"},
    {45055, "Diagonal Small Cross"},
    {45056, "Vertical Large Cross"},
    {45057, "Diagonal Large Cross"},
    {45058, "Web Browser"},
    {45059, "Could not create component: \"Shell.Explorer\"."},
    {45060, "Invalid integer"},
    {45061, "Value should be unsigned integer."},
    {45062, "Invalid floating point format."},
    {45063, "Value out of range."},
    {45064, "Please enter a value within the %c%lf,%lf%c range."},
    {45065, "Invalid or out-of-range value."},
    {45066, "Warning: W%04d: Minor database problem detected."},
    {45067, "Error: E%04d: Database problem detected."},
    {45068, "Error: S%04d: Internal consistency check failed."},
    {45069, "Info: I%04d:"},
    {45070, "Warning: W%04d:"},
    {45071, "Error: E%04d:"},
    {45072, "Error: S%04d:"},
    {45073, "Unselecting ..."},
    {45074, "ProcessMove"},
    {45075, "Area selecting ..."},
    {45076, "Area highlighting ..."},
    {45077, "Area highlighted"},
    {45078, "Highlighted"},
    {45079, " W%s"},
    {45080, "(s)"},
    {45081, "Segment(s) of "},
    {45082, "Corner(s) of "},
    {45083, "Segment(s) and corner(s) of "},
    {45084, "Multiple Selection"},
    {45085, "Segments Chain"},
    {45086, "Corner"},
    {45087, "Segment"},
    {45088, "L="},
    {45089, "Component"},
    {45090, "Net"},
    {45091, "PinPair"},
    {45092, "Pin"},
    {45093, "Via"},
    {45094, "Unroute"},
    {45095, "Trace"},
    {45096, "Profile"},
    {45097, "Keepout"},
    {45098, "Copper"},
    {45099, "Line"},
    {45100, "Net="},
    {45101, "Name="},
    {45102, "Circle"},
    {45103, "Error %i occurred (no further info)."},
    {45104, "Mils"},
    {45105, "Metric"},
    {45106, "Inches"},
    {45107, "Micron"},
    {45108, "Keyword \"input\" or \"output\" should precede \":\"."},
    {45109, "Prefixes are not set for \"input\"."},
    {45110, "Prefixes are not set for \"output\"."},
    {45111, "SetValue() failed"},
    {45112, "File not found"},
    {45113, "Print all subtopics in the selected book?"},
    {45114, "Macro List"},
    {45115, "File %s is already open. Please close this file first."},
    {45116, "PDF units"},
    {45117, "Basic ASCII PCB units"},
};

} // namespace

int SYS_LoadResourceString(int id, char* buffer, int size) {
    if (!buffer || size <= 0) return 0;
    buffer[0] = '\0';
    const Entry* end = std::end(kTable);
    const Entry* e = std::lower_bound(std::begin(kTable), end, id,
                                      [](const Entry& a, int key) { return a.id < key; });
    if (e == end || e->id != id) return 0;
    size_t n = std::min(std::strlen(e->text), static_cast<size_t>(size - 1));
    std::memcpy(buffer, e->text, n);
    buffer[n] = '\0';
    return static_cast<int>(n);
}
