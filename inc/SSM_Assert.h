/// @file
/// The two free functions through which keel reports a broken invariant, and
/// the failure types they take.
///
/// Every assertion site calls SSM_AssertFailed when its condition fails and, if
/// that returns 0, SSM_Throw; then it carries on.  Without an assertion manager
/// (see SSM.h) the failure is ignored.
///
/// Costs: nothing while conditions hold; a failure costs what the manager's
/// handling costs (SSM.h).
#ifndef SSM_ASSERT_H
#define SSM_ASSERT_H

#include "keel_config.h"

/// How grave a failure is.  The manager passes it to its listeners as the
/// event code.
enum SSM_FailureType {
    /// The action event is raised, the action preset to SSM_ActionContinue.
    SSM_FailureSoft = 0,
    /// As soft at the outermost level; while another failure is being handled
    /// the action is preset to SSM_ActionFail.
    SSM_FailureNormal = 1,
    /// No action event; an exception is requested.  At the outermost level
    /// that throws nothing and the report returns 1; while another failure
    /// is being handled, that failure's record is thrown (SSM::AssertData*).
    /// keel's own assertion sites use this type.
    SSM_FailureFatal = 2
};

/// Reports a failure at @p file and @p line to the assertion manager
/// (SSM::AssertFailed()).  Returns 1 to continue, 0 when the caller is to call
/// SSM_Throw().  Without a manager it returns 0 and nothing else happens
/// (SSM_Throw() then does nothing either).
///
/// An empty or null @p message is replaced by "SSM: Assert ID #<id>, message
/// not available" when @p id is not 0, else by "Message not available"; a null
/// @p file counts as empty.  The texts are copied.  errno is left as it was,
/// so a site may sit between a failing system call and the code that reads
/// errno.
///
/// It may throw (see SSM for the whole protocol): SSM::FatalException when an
/// action-event listener chose SSM_ActionThrowFatal; the record of the outer
/// failure (SSM::AssertData*) when this failure is reported while another is
/// being handled and asks for an exception; whatever a listener throws; and
/// std::bad_alloc when a new record cannot be made.
KEEL_API int SSM_AssertFailed(const char* message, const char* file, int line, SSM_FailureType type,
                              int id);

/// Throws the manager's pending assertion exception, if any (SSM::Throw()):
/// SSM::FatalException when the latest report chose SSM_ActionThrowFatal
/// (SSM_AssertFailed has thrown it once already), else, while a failure is
/// being handled, that failure's record as SSM::AssertData*.  Otherwise, as
/// after a report at the outermost level, it returns without throwing.  Does
/// nothing without a manager.
KEEL_API void SSM_Throw();

/// The whole calling pattern of an assertion site whose condition failed:
/// report a fatal failure (SSM_FailureFatal) at (file, line) and throw when the
/// report says so.  At the outermost level it returns normally (unless a
/// listener throws); while another failure is being handled it throws that
/// failure's record as SSM::AssertData*.  Most sites carry identifier 0; a site
/// that hosts tell apart by number passes its own.
inline void SSM_CheckFailed(const char* message, const char* file, int line, int id = 0) {
    if (!SSM_AssertFailed(message, file, line, SSM_FailureFatal, id)) SSM_Throw();
}

#endif // SSM_ASSERT_H
