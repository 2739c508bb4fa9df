#pragma once

#ifndef __APPLE__
#error "for macOS only"
#endif

#include "XeString.h"

#import <Foundation/Foundation.h>

#include <string_view>

/// Wide text for Foundation, autoreleased; nil when it is not valid UTF-32.
NSString* _foundationText(std::wstring_view text);

/// Text of Foundation's; empty for nil.
_XeString<wchar_t> _wideText(NSString* text);
