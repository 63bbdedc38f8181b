// SSM.h - the assertion manager: records, counts and dispatches the failures
// reported through SSM_AssertFailed.
//
// The host creates one SSM; it becomes SSM::Instance.  Each assertion site
// (file and line) gets one AssertData record that lives as long as the
// manager.  Listeners hear each failure through three events, raised with the
// failure type as the code and the record (SSM::AssertData*, cast to the
// event's data pointer) as the data:
//   ActionEvent  - lets listeners choose the action code (not for fatal
//                  failures, in silent mode or for disabled sites);
//   FailureEvent - every failure that is handled;
//   NotifyEvent  - handled failures of sites that are enabled for it.
// Action codes (SSM_Action): continue, fail (the caller then calls
// SSM_Throw), request an exception, request an exception with this record as
// the fatal record.  A requested exception is SSM::FatalException when a fatal
// record was chosen, else the record of the failure being handled (thrown as
// SSM::AssertData*), else nothing.
//
// Costs: a map look-up and a key formatting per failure; records are never
// freed before the manager.
#ifndef SSM_H
#define SSM_H

#include "SCC_Event.h"
#include "SSM_Assert.h"
#include "SYS_String.h"

#include <map>
#include <vector>

// The action codes that ActionEvent listeners store in AssertData::Action.
enum SSM_Action {
    SSM_ActionContinue = 0,  // carry on: SSM_AssertFailed returns 1
    SSM_ActionFail = 1,      // SSM_AssertFailed returns 0; the caller calls SSM_Throw
    SSM_ActionThrow = 2,     // throw the failing record once handling is done
    SSM_ActionThrowFatal = 3 // throw SSM::FatalException naming this record
};

class KEEL_API SSM {
public:
    // One record per assertion site.
    struct AssertData {
        SYS_StringBase File;     // the file of the first failure here
        SYS_StringBase Message;  // the message of the latest failure
        SYS_StringBase UserText; // free for the host; never written here
        int Line;
        int Count;         // failures handled at this site
        int Enabled;       // 0: no action and no notify event for this site
        int NotifyEnabled; // 0: no notify event for this site
        int Action;        // the action code while a failure is handled
        int Id;            // the identifier of the first failure here

        AssertData() : Line(0), Count(0), Enabled(1), NotifyEnabled(1), Action(0), Id(0) {}
    };

    // The records keyed by site, "file(line)", in multibyte byte order.
    class AssertMap : public std::map<SYS_StringBase, AssertData> {};

    // Thrown for a failure whose listeners chose action 3.
    struct FatalException {
        AssertData* Data; // the record, owned by the manager
    };

    int Depth; // -1 idle, 0 the outermost failure, more when nested
    SCC_Notifier ActionEvent;
    SCC_Notifier FailureEvent;
    SCC_Notifier NotifyEvent;
    AssertData* BadActionAssert; // whose listeners last left an invalid code
    AssertData* CurrentAssert;   // the failure being handled, or null
    AssertData* FatalAssert;     // chosen with action 3 in this call, or null
    AssertMap Asserts;
    // The CurrentAssert values saved by the failures being handled,
    // innermost last.
    std::vector<AssertData*> ActiveStack;
    int SilentMode; // non-zero: the action event is not raised

    static SSM* Instance;
    static long InstanceCount;

    // Becomes the process's manager, replacing any earlier one.
    SSM();
    // Copies the state and takes over the other manager's listeners; leaves
    // Instance and InstanceCount alone.
    SSM(SSM& other);
    SSM& operator=(SSM& other);
    // Clears Instance, whichever manager it named.
    ~SSM();

    static SSM* GetManager() { return Instance; }
    static int GetSilentMode();
    static void SetSilentMode(int on);

    // Handles one failure; returns 1 to continue, 0 when the caller is to
    // call SSM_Throw.  May throw as described above.
    int AssertFailed(const char* message, const char* file, int line, SSM_FailureType type, int id);
    // Throws FatalException for FatalAssert, else CurrentAssert as a pointer,
    // else returns.
    void Throw();
};

#endif // SSM_H
