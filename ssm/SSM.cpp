// SSM.cpp - the assertion manager.
#include "SSM_Assert.h"

// Until an assertion manager exists, failures are ignored.
int SSM_AssertFailed(const char*, const char*, int, SSM_FailureType, int) { return 0; }

void SSM_Throw() {}
