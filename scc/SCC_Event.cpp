// SCC_Event.cpp - the out-of-line part of the change event.
#include "SCC_Event.h"

// Out of line so that the class has one home in the library; the event's own
// destructor detaches every node.
SCC_Notifier::~SCC_Notifier() {}
