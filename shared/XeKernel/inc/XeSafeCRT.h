#pragma once

#include <cstddef>

/// Set-up of the C library that all kernel code relies on.
namespace XeCRT {

/// Sets the C library's character-type category (LC_CTYPE) to UTF-8, whatever the host process
/// has made of it since. Wide formatting and upper-casing depend on it. Other categories stay.
///
/// Process-wide side effect; a failure leaves the category as it is. [any]
void setCharacterType() noexcept;

/// Prints wide text into `buffer`, after setCharacterType().
///
/// @param count  Elements that `buffer` holds, the terminator included.
/// @return       Characters written without the terminator; negative when they do not fit or the
///               format fails, with unspecified contents in `buffer`.
int swprintf_s(wchar_t* buffer, std::size_t count, const wchar_t* format, ...) noexcept;

/// Prepares the process: when the limit of open files can be read and its soft value is lower
/// than 7168, raises it to 7168 or to the hard limit if that is lower, then calls
/// setCharacterType(). Never lowers a limit; harmless when repeated.
void prepareProcess() noexcept;

/// The set-up object that every source unit of the kernel carries, so the process is prepared
/// before any of the unit's own statics can run, in whatever order the units are loaded.
struct init {
    init() noexcept { prepareProcess(); }
};

} // namespace XeCRT

namespace {
[[maybe_unused]] const XeCRT::init _crtInit;
} // namespace
