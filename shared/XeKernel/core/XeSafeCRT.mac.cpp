#ifndef __APPLE__
#error "for macOS only"
#endif

#include "core/XeSafeCRTPlatform.h"

#include "XeSafeCRT.h"

namespace XeCRT {

const char* _characterTypeLocale() noexcept { return "UTF-8"; }

} // namespace XeCRT
