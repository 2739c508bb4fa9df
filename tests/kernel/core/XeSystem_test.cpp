#include "XeSystem.h"

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <functional>
#include <latch>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace {

// Runs `text` in a child process whose time zone is `zone`, so that no test changes another's.
std::wstring inTimeZone(const char* zone, const std::function<_XeString<wchar_t>()>& text)
{
    int ends[2];
    EXPECT_EQ(pipe(ends), 0);
    const pid_t child = fork();
    if (child == 0) {
        setenv("TZ", zone, 1);
        std::string bytes;
        xeassign(bytes, text().c_str());
        _exit(write(ends[1], bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size()) ? 0
                                                                                               : 1);
    }
    close(ends[1]);
    std::string bytes;
    char buffer[256];
    for (ssize_t got = 0; (got = read(ends[0], buffer, sizeof buffer)) > 0;) {
        bytes.append(buffer, static_cast<std::size_t>(got));
    }
    close(ends[0]);
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    std::wstring wide;
    xeassign(wide, bytes.c_str());
    return wide;
}

TEST(ThreadIdentity, LoadingThreadIsMainAndNoOtherIs)
{
    EXPECT_TRUE(XeSystem::CurrentThreadIsMain());
    EXPECT_EQ(XeSystem::GetCurrentThreadId(), XeSystem::GetMainThreadId());
    std::thread([] {
        EXPECT_FALSE(XeSystem::CurrentThreadIsMain());
        EXPECT_NE(XeSystem::GetCurrentThreadId(), XeSystem::GetMainThreadId());
    }).join();
}

TEST(ThreadCount, FollowsThreadsThatStartAndEnd)
{
    const unsigned before = XeSystem::GetCurrentThreadCount();
    EXPECT_GE(before, 1u);
    std::latch stop(1);
    std::vector<std::thread> threads;
    for (int i = 0; i < 5; ++i) {
        threads.emplace_back([&stop] { stop.wait(); });
    }
    EXPECT_EQ(XeSystem::GetCurrentThreadCount(), before + 5);
    stop.count_down();
    for (std::thread& thread : threads) {
        thread.join();
    }
    // A joined thread leaves the system's list a moment later.
    for (int i = 0; i < 5000 && XeSystem::GetCurrentThreadCount() != before; ++i) {
        XeSystem::Sleep(1);
    }
    EXPECT_EQ(XeSystem::GetCurrentThreadCount(), before);
}

TEST(ProcessorCount, IsWhatTheStandardLibraryTells)
{
    EXPECT_EQ(XeSystem::getProcessorCount(), std::thread::hardware_concurrency());
}

struct OffsetRow {
    const char* zone; // of POSIX: positive to the west
    int minutes;
    const wchar_t* offset;
};

constexpr OffsetRow kOffsets[] = {
    {"GMT0", 0, L"Z"},
    {"UTC0", 0, L"Z"},
    {"XXX-1", 60, L"+01:00"},
    {"XXX5:30", -330, L"-05:30"},
    {"XXX-5:30", 330, L"+05:30"},
    {"XXX-12:45", 765, L"+12:45"},
    {"XXX8", -480, L"-08:00"},
    {"XXX-0:01", 1, L"+00:01"},
};

TEST(TimeZoneOffset, IsHoursAndMinutesOrZ)
{
    for (const OffsetRow& row : kOffsets) {
        SCOPED_TRACE(row.zone);
        EXPECT_EQ(inTimeZone(row.zone, [] { return XeSystem::getTimeZoneOffset(0); }), row.offset);
        EXPECT_EQ(
            inTimeZone(
                row.zone,
                [] { return _XeString<wchar_t>(std::to_wstring(XeSystem::getTimeZoneBias(0))); }),
            std::to_wstring(row.minutes));
    }
}

// The hour of such an offset is 0, and 0 is printed with a plus.
TEST(TimeZoneOffset, LosesTheSignBetween59And1MinutesWest)
{
    EXPECT_EQ(inTimeZone("XXX0:30", [] { return XeSystem::getTimeZoneOffset(0); }), L"+00:30");
    EXPECT_EQ(inTimeZone("XXX0:59", [] { return XeSystem::getTimeZoneOffset(0); }), L"+00:59");
    EXPECT_EQ(inTimeZone("XXX0:01", [] { return XeSystem::getTimeZoneOffset(0); }), L"+00:01");
    EXPECT_EQ(inTimeZone("XXX1:00", [] { return XeSystem::getTimeZoneOffset(0); }), L"-01:00");
}

TEST(TimeZoneBias, DropsSecondsTowardsZero)
{
    const auto bias = [] {
        return _XeString<wchar_t>(std::to_wstring(XeSystem::getTimeZoneBias(0)));
    };
    EXPECT_EQ(inTimeZone("XXX-0:19:32", bias), L"19");
    EXPECT_EQ(inTimeZone("XXX0:19:32", bias), L"-19");
}

// In a zone with daylight saving, one of January and July lies in the other season than now.
TEST(TimeZoneBias, ReflectsThePresentSeasonWhateverTheTime)
{
    const auto biases = [] {
        constexpr long kJanuary = 1704067200; // 2024
        constexpr long kJuly = 1719792000;
        const int now = XeSystem::getTimeZoneBias(std::time(nullptr));
        const bool same =
            XeSystem::getTimeZoneBias(kJanuary) == now && XeSystem::getTimeZoneBias(kJuly) == now;
        const bool seasons = XeSystem::getLocalDateTime(kJanuary).tm_gmtoff !=
                             XeSystem::getLocalDateTime(kJuly).tm_gmtoff;
        return _XeString<wchar_t>(same && seasons ? L"same" : L"differ");
    };
    EXPECT_EQ(inTimeZone("CET-1CEST,M3.5.0,M10.5.0/3", biases), L"same");
}

TEST(LocalTimeText, HasTheOffsetBehindTheTime)
{
    constexpr long kTenLocal = 1704099600; // 2024-01-01 09:00 UTC
    EXPECT_EQ(inTimeZone("XXX-1", [] { return XeSystem::localTimeToUtcString(kTenLocal); }),
              L"2024-01-01T10:00:00+01:00");
    EXPECT_EQ(inTimeZone("GMT0", [] { return XeSystem::localTimeToUtcString(kTenLocal); }),
              L"2024-01-01T09:00:00Z");
    EXPECT_EQ(inTimeZone("XXX-1",
                         [] { return XeSystem::localTimeToString(L"%d.%m.%Y %H:%M", kTenLocal); }),
              L"01.01.2024 10:00 (+01:00)");
    EXPECT_EQ(inTimeZone("XXX-1", [] { return XeSystem::GetLocalTime(L"%H:%M", kTenLocal); }),
              L"10:00");
}

TEST(LocalTimeText, OfOneThousandTwentyFourCharactersIsLost)
{
    const std::wstring longest(1023, L'x');
    EXPECT_EQ(XeSystem::GetLocalTime(longest.c_str(), 0), longest);
    EXPECT_EQ(XeSystem::GetLocalTime((longest + L'x').c_str(), 0), L"");
}

TEST(CurrentTime, IsNow)
{
    for (int attempt = 0; attempt < 2; ++attempt) { // the second may change between the readings
        _XeString<wchar_t> now;
        XeSystem::GetCurrentTime(now, L"%Y-%m-%d %H:%M:%S");
        if (now == XeSystem::GetLocalTime(L"%Y-%m-%d %H:%M:%S", std::time(nullptr))) {
            return;
        }
    }
    FAIL();
}

TEST(LocalDateTime, IsTheLocalBreakdown)
{
    const std::time_t time = 1704099600;
    const std::tm expected = *std::localtime(&time);
    const std::tm local = XeSystem::getLocalDateTime(time);
    EXPECT_EQ(local.tm_year, expected.tm_year);
    EXPECT_EQ(local.tm_yday, expected.tm_yday);
    EXPECT_EQ(local.tm_hour, expected.tm_hour);
    EXPECT_EQ(local.tm_min, expected.tm_min);
}

TEST(UtcTextForDisplay, IsLocalTimeAndEmptyForNoTime)
{
    EXPECT_EQ(
        inTimeZone("XXX-1", [] { return XeSystem::utcStringToLocaleFmt(L"2024-03-05T14:07:09Z"); }),
        L"Tue Mar  5 15:07:09 2024");
    EXPECT_EQ(XeSystem::utcStringToLocaleFmt(L"yesterday"), L"");
    EXPECT_EQ(XeSystem::utcStringToLocaleFmt(L""), L"");
}

TEST(Sleeping, LastsAtLeastTheInterval)
{
    using namespace std::chrono;
    const auto start = steady_clock::now();
    XeSystem::Sleep(30);
    EXPECT_GE(steady_clock::now() - start, milliseconds(29)); // the deadline is of another clock
    XeSystem::Sleep(0);
}

TEST(NewGuid, IsRandomAndOfVersion4)
{
    std::set<_XeString<wchar_t>> seen;
    for (int i = 0; i < 1000; ++i) {
        const _XeString<wchar_t> text = XeGuidToString(XeSystem::CreateGUID());
        EXPECT_EQ(text[14], L'4') << "version";
        EXPECT_NE(std::wstring(L"89ab").find(text[19]), std::wstring::npos) << "variant";
        EXPECT_TRUE(seen.insert(text).second);
    }
}

} // namespace
