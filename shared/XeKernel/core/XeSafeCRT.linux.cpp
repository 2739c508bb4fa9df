#ifndef __linux__
#error "for Linux only"
#endif

#include "core/XeSafeCRTPlatform.h"

#include "XeSafeCRT.h"

namespace XeCRT {

// glibc has no locale of the plain name "UTF-8"; this one is built in.
const char* _characterTypeLocale() noexcept { return "C.UTF-8"; }

} // namespace XeCRT
