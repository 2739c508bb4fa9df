#pragma once

#include "XeString.h"

/// Number of threads in the process; 0 when the system does not tell.
unsigned _threadCount();

/// Seconds from GMT to the system's time zone at the present moment, positive to the east.
double _secondsFromGmtNow();

/// A new random identifier (RFC 4122, version 4).
_GUID _createGuid();
