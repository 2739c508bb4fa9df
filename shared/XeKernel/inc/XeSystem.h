#pragma once

#include "XeString.h"

#include <boost/date_time/posix_time/posix_time_types.hpp>

#include <cstdint>
#include <ctime>
#include <list>
#include <memory>

/// Small services of the operating system.
///
/// Times `t` are seconds since 1970-01-01 00:00 UTC. Time formats are those of wcsftime; a text of
/// 1024 characters and more is lost and gives the empty text. [any]
class XeSystem {
public:
    XeSystem() = delete;

    /// Identity of the calling thread (its POSIX thread id). Unique among running threads, never 0.
    static std::uint64_t GetCurrentThreadId();

    /// Identity of the thread that loaded the library.
    static std::uint64_t GetMainThreadId();
    static bool CurrentThreadIsMain();

    /// Number of threads in the process, the caller included; 0 when the system does not tell.
    static unsigned GetCurrentThreadCount();

    /// The present moment as local time.
    static void GetCurrentTime(_XeString<wchar_t>& out, const wchar_t* format);

    /// The moment `t` as local time.
    static void GetLocalTime(_XeString<wchar_t>& out, const wchar_t* format, long long t);
    static _XeString<wchar_t> GetLocalTime(const wchar_t* format, long long t);

    /// The fields of the moment `t` in local time; zeros when the year does not fit.
    static std::tm getLocalDateTime(long t);

    /// Minutes from GMT to the system's time zone, positive to the east. Whatever `t` is, this is
    /// the present offset: in July a date in January is told with the offset of July.
    static int getTimeZoneBias(long t);

    /// The present offset as text, "+01:00", "-05:30", or "Z" for none. Offsets from -59 to -1
    /// minutes have hour 0 and lose their sign: "+00:30" for -30.
    static _XeString<wchar_t> getTimeZoneOffset(long t);

    /// Local time in the given format, followed by " (", the offset text and ")".
    static _XeString<wchar_t> localTimeToString(const wchar_t* format, long long t);

    /// Local time with its offset: "2024-01-01T10:00:00+01:00".
    static _XeString<wchar_t> localTimeToUtcString(long t);

    /// UTC text, as xenon::util::date_time_from_utc_string reads it, as date and time of the local
    /// zone in the form that the C library's locale prefers ("%c"). Empty for a text that is no
    /// date and time.
    static _XeString<wchar_t> utcStringToLocaleFmt(const _XeString<wchar_t>& text);

    /// Sleeps for the given time; 0 returns promptly. Blocks.
    static void Sleep(unsigned int milliseconds);

    /// Number of processors that threads can run on; 0 when the system does not tell.
    static unsigned getProcessorCount();

    /// A new random identifier (RFC 4122, version 4).
    static _GUID CreateGUID();
};

/// Process-wide stopwatch with numbered sessions. Plain data without a lock: for one thread at a
/// time.
class XeProfile {
public:
    using TimeStamp = boost::posix_time::ptime;        // local time, microseconds
    using Duration = boost::posix_time::time_duration; // microseconds

    struct tProfileSession {
        bool ended = false;
        _XeString<wchar_t> name;
        _XeString<wchar_t> detail;
        TimeStamp start;
        Duration duration{boost::posix_time::not_a_date_time}; // until ended
    };

    XeProfile() = delete;

    /// Starts the stopwatch and tells the moment.
    static TimeStamp begin();

    /// Stops it and tells how long it ran. Without begin() the duration is not a date-time.
    static Duration end();

    /// What end() told last, in whole milliseconds (towards zero) and in microseconds; 0 before.
    static long getMSEC();
    static long getuSEC();

    /// A stopwatch of the caller's own: a token that holds the present moment, and the time since.
    static std::shared_ptr<void> start();
    static long elapsed_milliseconds(const std::shared_ptr<void>& token);
    static long elapsed_microseconds(const std::shared_ptr<void>& token);

    /// Begins a session and returns its index, counted from 0 in the order of beginning.
    static int SessionBegin(_XeString<wchar_t> name, _XeString<wchar_t> detail);

    /// Ends a session. An index that no session has is ignored.
    static void SessionEnd(int index);

    /// All sessions, in the order of beginning.
    static const std::list<tProfileSession>& sessions();

    /// Tells the reporter a line for each session. Changes nothing.
    static void DumpResultsSessions();

    /// Tells the reporter the call stack: at most `depth` - 1 lines (of 127), the caller first.
    static void traceCallStack(const wchar_t* label, int depth);

    /// Receives the lines of the two functions above; null, as at the start, drops them.
    using Reporter = void (*)(const wchar_t* line);
    static void setReporter(Reporter reporter);
};
