// SSM_Check.h - the assertion site helper used throughout keel (internal).
//
// SSM_CHECK(cond, "scc/scc", 573) reports a fatal failure at that site when
// `cond` is false, calls SSM_Throw when the report says so, and carries on
// (SSM_CheckFailed; templates in public headers call that directly).
// The file text and line are fixed per site, not __FILE__/__LINE__: hosts key
// their records on them.  SSM_CHECK_MSG passes a message as well, and
// SSM_CHECK_ID a message and the site's identifier (0 for the others).
#ifndef SSM_CHECK_H
#define SSM_CHECK_H

#include "SSM_Assert.h"

#define SSM_CHECK_ID(cond, message, file, line, id)                                                \
    do {                                                                                           \
        if (!(cond)) SSM_CheckFailed((message), (file), (line), (id));                             \
    } while (0)

#define SSM_CHECK_MSG(cond, message, file, line) SSM_CHECK_ID(cond, message, file, line, 0)

#define SSM_CHECK(cond, file, line) SSM_CHECK_MSG(cond, "", file, line)

#endif // SSM_CHECK_H
