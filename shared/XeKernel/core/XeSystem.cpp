#include "XeSystem.h"

#include "core/XeSystemPlatform.h"

#include "XeSafeCRT.h"
#include "XeUtcText.h"

#include <boost/date_time/posix_time/ptime.hpp>
#include <boost/lexical_cast/bad_lexical_cast.hpp>
#include <boost/thread/thread.hpp>

#include <pthread.h>

#include <cstdlib>
#include <cwchar>
#include <thread>

namespace {

std::uint64_t _threadId()
{
    // A pointer on some systems, a number on others.
    return (std::uint64_t)pthread_self(); // NOLINT(google-readability-casting)
}

const std::uint64_t mainThreadId = _threadId();

} // namespace

std::uint64_t XeSystem::GetCurrentThreadId() { return _threadId(); }

std::uint64_t XeSystem::GetMainThreadId() { return mainThreadId; }

bool XeSystem::CurrentThreadIsMain() { return GetCurrentThreadId() == GetMainThreadId(); }

unsigned XeSystem::GetCurrentThreadCount() { return _threadCount(); }

void XeSystem::GetCurrentTime(_XeString<wchar_t>& out, const wchar_t* format)
{
    GetLocalTime(out, format, std::time(nullptr));
}

void XeSystem::GetLocalTime(_XeString<wchar_t>& out, const wchar_t* format, long long t)
{
    constexpr std::size_t kLongestText = 1024; // terminator included

    const std::tm local = getLocalDateTime(static_cast<long>(t));
    wchar_t text[kLongestText] = {};
    out.assign(text, std::wcsftime(text, kLongestText, format, &local));
}

_XeString<wchar_t> XeSystem::GetLocalTime(const wchar_t* format, long long t)
{
    _XeString<wchar_t> text;
    GetLocalTime(text, format, t);
    return text;
}

std::tm XeSystem::getLocalDateTime(long t)
{
    const std::time_t time = t;
    std::tm local{};
    tzset(); // localtime_r need not look at a changed time zone
    localtime_r(&time, &local);
    return local;
}

int XeSystem::getTimeZoneBias(long /*t*/) { return static_cast<int>(_secondsFromGmtNow() / 60.0); }

_XeString<wchar_t> XeSystem::getTimeZoneOffset(long t)
{
    const int minutes = getTimeZoneBias(t);
    _XeString<wchar_t> text;
    if (minutes == 0) {
        text = L"Z";
    } else {
        XeSprintf(text, L"%+0.2d:%0.2d", minutes / 60, std::abs(minutes % 60));
    }
    return text;
}

_XeString<wchar_t> XeSystem::localTimeToString(const wchar_t* format, long long t)
{
    return GetLocalTime(format, t) + L" (" + getTimeZoneOffset(static_cast<long>(t)) + L")";
}

_XeString<wchar_t> XeSystem::localTimeToUtcString(long t)
{
    return GetLocalTime(L"%Y-%m-%dT%H:%M:%S", t) + getTimeZoneOffset(t);
}

_XeString<wchar_t> XeSystem::utcStringToLocaleFmt(const _XeString<wchar_t>& text)
{
    try {
        std::tm utc = xenon::util::date_time_from_utc_string(text);
        return text.empty() ? text : GetLocalTime(L"%c", timegm(&utc));
    } catch (const boost::bad_lexical_cast&) {
        return {};
    }
}

void XeSystem::Sleep(unsigned int milliseconds)
{
    boost::this_thread::sleep(boost::posix_time::microsec_clock::universal_time() +
                              boost::posix_time::microseconds(milliseconds * 1000LL));
}

unsigned XeSystem::getProcessorCount() { return std::thread::hardware_concurrency(); }

_GUID XeSystem::CreateGUID() { return _createGuid(); }
