// SSM_Assert.h - the two free functions through which keel reports a broken
// invariant, and the failure types they take.
//
// Every assertion site calls SSM_AssertFailed when its condition fails and, if
// that returns 0, SSM_Throw; then it carries on.  Without an assertion manager
// (see SSM.h) the failure is ignored.
#ifndef SSM_ASSERT_H
#define SSM_ASSERT_H

#include "keel_config.h"

enum SSM_FailureType {
    SSM_FailureSoft = 0,   // the action event is raised; default action: continue
    SSM_FailureNormal = 1, // as soft at the outermost level, fail when nested
    SSM_FailureFatal = 2   // no action event; an exception is requested
};

// Reports a failure.  Returns 1 to continue, 0 when the caller is to call
// SSM_Throw (always 0 without a manager).  errno is left as it was.
KEEL_API int SSM_AssertFailed(const char* message, const char* file, int line, SSM_FailureType type,
                              int id);

// Throws the manager's pending assertion exception, if any.
KEEL_API void SSM_Throw();

// The whole calling pattern of an assertion site whose condition failed:
// report a fatal failure at (file, line) and throw when the report says so.
// Most sites carry identifier 0; a site that hosts tell apart by number
// passes its own.
inline void SSM_CheckFailed(const char* message, const char* file, int line, int id = 0) {
    if (!SSM_AssertFailed(message, file, line, SSM_FailureFatal, id)) SSM_Throw();
}

#endif // SSM_ASSERT_H
