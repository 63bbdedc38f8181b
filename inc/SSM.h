/// @file
/// The assertion manager: records, counts and dispatches the failures
/// reported through SSM_AssertFailed.
///
/// The host creates one SSM; it becomes SSM::Instance.  Each assertion site
/// (file and line) gets one AssertData record that lives as long as the
/// manager.  Listeners hear each failure through three events, raised with the
/// failure type as the code and the record (SSM::AssertData*, cast to the
/// event's data pointer) as the data:
///   - ActionEvent: lets listeners choose the action code (not for fatal
///     failures, in silent mode or for disabled sites);
///   - FailureEvent: every failure that is handled;
///   - NotifyEvent: handled failures of sites that are enabled for it.
///
/// Action codes (SSM_Action): continue, fail (the caller then calls
/// SSM_Throw), request an exception, request an exception with this record as
/// the fatal record.  A requested exception is SSM::FatalException when a fatal
/// record was chosen, else the record of the failure being handled (thrown as
/// SSM::AssertData*), else nothing.
///
/// Costs: a map look-up and a key formatting per failure; records are never
/// freed before the manager.
#ifndef SSM_H
#define SSM_H

#include "SCC_Event.h"
#include "SSM_Assert.h"
#include "SYS_String.h"

#include <map>
#include <vector>

/// The action codes that ActionEvent listeners store in AssertData::Action.
/// Any other value is invalid: the manager stores the record in
/// SSM::BadActionAssert and reports a fatal failure of its own ("Assert handler
/// encountered invalid action code.", file "ssm/ssmimpl", line 367), which
/// throws the record whose listener left the value, as SSM::AssertData* (see
/// SSM for what that leaves behind).
enum SSM_Action {
    SSM_ActionContinue = 0,  ///< Carry on: SSM_AssertFailed returns 1.
    SSM_ActionFail = 1,      ///< SSM_AssertFailed returns 0; the caller calls SSM_Throw.
    SSM_ActionThrow = 2,     ///< Request an exception: see SSM for what is thrown.
    SSM_ActionThrowFatal = 3 ///< Throw SSM::FatalException naming this record.
};

/// The assertion manager.  The host creates one at start-up, before any keel
/// object that may assert, attaches its listeners to the three events and
/// destroys it after the last such object: without a manager every failure is
/// ignored (SSM_AssertFailed returns 0, SSM_Throw does nothing and the code
/// carries on past the broken invariant), and the records and the pointers
/// to them that exceptions carry die with the manager.  One thread: the
/// manager is not guarded.
///
/// Handling a failure (AssertFailed()).  The site's record is found or made,
/// its Count incremented and its Message replaced; then:
/// 1. For SSM_FailureFatal an exception is requested.  Otherwise, unless
///    SilentMode is set or the record's Enabled is 0, the record's Action is
///    preset (SSM_ActionFail for SSM_FailureNormal while another failure is
///    being handled, else SSM_ActionContinue), ActionEvent is raised, and the
///    Action a listener left decides (SSM_Action).
/// 2. FailureEvent is raised; NotifyEvent too when the record's Enabled and
///    NotifyEnabled are both set.
/// 3. The record's Action is reset to 0 and the failure handled before (if
///    any) becomes current again.  If an exception was requested, Throw() is
///    called.
///
/// What is thrown, and when.  Because step 3 restores the outer failure
/// before Throw() runs, a failure at the outermost level throws only
/// SSM::FatalException, and that only when a listener chose
/// SSM_ActionThrowFatal; a fatal failure, SSM_ActionThrow and SSM_ActionFail
/// (with the caller's SSM_Throw()) throw nothing there, and the caller
/// continues.  A failure reported while another is being handled (for
/// instance by keel code that a listener calls) throws the outer failure's
/// record as SSM::AssertData* when it requests an exception or its caller
/// calls SSM_Throw() (SSM_ActionFail, the default of a nested normal
/// failure), unwinding the listener and the outer handling; an invalid action
/// code (SSM_Action) throws the same way.  Such an exception, and any other
/// that leaves a listener, skips the rest of the outer handling: Depth,
/// CurrentAssert and ActiveStack are not restored, so later failures count as
/// nested and may throw that record again.  A host that catches such an
/// exception and goes on sets Depth to -1, CurrentAssert to null and empties
/// ActiveStack to make the manager idle again.
///
/// A site that fails again during its own handling is handled once more,
/// nested; a third nested failure of the same site is ignored.
class KEEL_API SSM {
public:
    /// One record per assertion site.  A listener reads it and may write
    /// Action, Enabled, NotifyEnabled and UserText.
    struct AssertData {
        SYS_StringBase File;     ///< The file of the first failure here.
        SYS_StringBase Message;  ///< The message of the latest failure.
        SYS_StringBase UserText; ///< Free for the host; keel never writes it, copies keep it.
        int Line;                ///< The line of the site.
        int Count;               ///< Failures handled at this site.
        int Enabled;             ///< 0: no action and no notify event for this site.
        int NotifyEnabled;       ///< 0: no notify event for this site.
        int Action;              ///< The action code (SSM_Action) while a failure is handled.
        int Id;                  ///< The identifier of the first failure here.

        /// Empty texts, Line, Count, Action and Id 0, both flags 1.
        AssertData() : Line(0), Count(0), Enabled(1), NotifyEnabled(1), Action(0), Id(0) {}
    };

    /// The records keyed by site, "file(line)" (the line printed as an
    /// unsigned 32-bit number), in multibyte byte order.
    class AssertMap : public std::map<SYS_StringBase, AssertData> {};

    /// Thrown for a failure whose listeners chose SSM_ActionThrowFatal.
    struct FatalException {
        AssertData* Data; ///< The record, owned by the manager; valid while the manager lives.
    };

    int Depth;                   ///< -1 idle, 0 the outermost failure, more when nested.
    SCC_Notifier ActionEvent;    ///< Raised to let listeners choose the record's Action.
    SCC_Notifier FailureEvent;   ///< Raised for every failure that is not ignored.
    SCC_Notifier NotifyEvent;    ///< Raised for failures of sites with both flags set.
    AssertData* BadActionAssert; ///< Whose listeners last left an invalid code, or null.
    AssertData* CurrentAssert;   ///< The failure being handled, or null.
    /// Chosen with SSM_ActionThrowFatal in the latest report, or null; kept
    /// until the next report, so SSM_Throw() throws it again until then.
    AssertData* FatalAssert;
    AssertMap Asserts; ///< Every record, keyed by site; records live as long as the manager.
    /// The CurrentAssert values saved by the failures being handled,
    /// innermost last.
    std::vector<AssertData*> ActiveStack;
    /// Non-zero: the action event is not raised, so soft and normal failures
    /// continue; FailureEvent and NotifyEvent are raised as usual.
    int SilentMode;

    /// The manager that keel reports to, or null.  Set by the default
    /// constructor, cleared by the destructor of any manager.
    static SSM* Instance;
    /// Managers made by the default constructor minus managers destroyed
    /// (copies included).
    static long InstanceCount;

    /// Becomes the process's manager (Instance), replacing any earlier one,
    /// idle and empty.
    SSM();
    /// @name Copying
    ///@{

    /// Copies the state and takes over the other manager's listeners (its
    /// events are left empty); leaves Instance and InstanceCount alone, but
    /// destroying the copy clears Instance and decrements InstanceCount all
    /// the same.  The copied pointers (CurrentAssert, ActiveStack and the
    /// others) still name the other manager's records.  Assignment first
    /// drops this manager's own listeners.
    SSM(SSM& other);
    SSM& operator=(SSM& other);
    ///@}
    /// Clears Instance, whichever manager it named, frees the records and
    /// detaches every listener.  Failures reported afterwards are ignored.
    ~SSM();

    /// Instance: the manager, or null.
    static SSM* GetManager() { return Instance; }
    /// The manager's SilentMode, or 0 without a manager.
    static int GetSilentMode();
    /// Sets the manager's SilentMode; without a manager nothing happens.
    static void SetSilentMode(int on);

    /// Handles one failure (see the class description); returns 1 to
    /// continue, 0 when the caller is to call SSM_Throw.  May throw
    /// SSM::FatalException or SSM::AssertData* as described above, whatever a
    /// listener throws, and std::bad_alloc.  A null @p file counts as empty.
    /// Hosts report through SSM_AssertFailed, which also fills in an empty
    /// message and keeps errno.
    int AssertFailed(const char* message, const char* file, int line, SSM_FailureType type, int id);
    /// Throws FatalException for FatalAssert, else CurrentAssert as
    /// SSM::AssertData* (catch it as that pointer type or as void*), else
    /// returns.
    void Throw();
};

#endif // SSM_H
