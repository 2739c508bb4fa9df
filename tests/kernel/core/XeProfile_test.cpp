#include "XeSystem.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using boost::posix_time::microseconds;

std::vector<std::wstring> reported;

class Profile : public testing::Test {
protected:
    Profile()
    {
        reported.clear();
        XeProfile::setReporter([](const wchar_t* line) { reported.emplace_back(line); });
    }
    ~Profile() override { XeProfile::setReporter(nullptr); }
};

TEST_F(Profile, StopwatchTellsItsLastRun)
{
    const auto begun = XeProfile::begin();
    XeSystem::Sleep(2);
    const auto lasted = XeProfile::end();
    EXPECT_GE(lasted, microseconds(1900));
    EXPECT_FALSE(begun.is_not_a_date_time());
    EXPECT_EQ(XeProfile::getuSEC(), lasted.total_microseconds());
    EXPECT_EQ(XeProfile::getMSEC(), lasted.total_microseconds() / 1000);
}

// Each run is a little longer than 1 ms and shorter than 2 ms: cut to 1, not rounded to 2.
TEST_F(Profile, MillisecondsAreCutTowardsZero)
{
    for (int attempt = 0; attempt < 1000; ++attempt) {
        const auto begun = XeProfile::begin();
        while (boost::posix_time::microsec_clock::local_time() - begun < microseconds(1600)) {
        }
        if (XeProfile::end() < microseconds(2000)) {
            EXPECT_EQ(XeProfile::getMSEC(), 1);
            return;
        }
    }
    GTEST_SKIP() << "this machine never came back within 0.4 ms";
}

TEST_F(Profile, TokenMeasuresOnItsOwn)
{
    const auto token = XeProfile::start();
    XeSystem::Sleep(3);
    EXPECT_GE(XeProfile::elapsed_microseconds(token), 2900);
    EXPECT_GE(XeProfile::elapsed_milliseconds(token), 2);
}

TEST_F(Profile, SessionsCountFromZeroAndEndByIndex)
{
    const int first = XeProfile::SessionBegin(L"open", L"bundle");
    const int second = XeProfile::SessionBegin(L"draw", L"view");
    EXPECT_EQ(second, first + 1);
    EXPECT_EQ(first, static_cast<int>(XeProfile::sessions().size()) - 2);
    const auto& session = XeProfile::sessions().back();
    EXPECT_EQ(session.name, L"draw");
    EXPECT_EQ(session.detail, L"view");
    EXPECT_FALSE(session.ended);
    EXPECT_TRUE(session.duration.is_not_a_date_time());

    XeProfile::SessionEnd(second);
    EXPECT_TRUE(session.ended);
    EXPECT_GE(session.duration, microseconds(0));
    EXPECT_FALSE(std::next(XeProfile::sessions().begin(), first)->ended);
}

TEST_F(Profile, EndOfASessionThatIsNotThereIsIgnored)
{
    XeProfile::SessionBegin(L"a", L"");
    const std::size_t size = XeProfile::sessions().size();
    XeProfile::SessionEnd(static_cast<int>(size));
    XeProfile::SessionEnd(-1);
    EXPECT_EQ(XeProfile::sessions().size(), size);
    EXPECT_FALSE(XeProfile::sessions().back().ended);
}

TEST_F(Profile, DumpTellsEverySessionInOrderAndChangesNone)
{
    XeProfile::SessionBegin(L"before", L"x");
    XeProfile::SessionBegin(L"last", L"y");
    const std::size_t size = XeProfile::sessions().size();
    XeProfile::DumpResultsSessions();
    ASSERT_EQ(reported.size(), size);
    EXPECT_EQ(reported[size - 2], L"before\tx\t-1 us");
    EXPECT_EQ(reported[size - 1], L"last\ty\t-1 us");
    EXPECT_EQ(XeProfile::sessions().size(), size);
}

TEST_F(Profile, CallStackHasDepthLessOneLines)
{
    XeProfile::traceCallStack(L"here", 3);
    ASSERT_EQ(reported.size(), 2u);
    EXPECT_TRUE(reported[0].starts_with(L"here\t"));
    EXPECT_GT(reported[0].size(), 5u);
    XeProfile::traceCallStack(nullptr, 1);
    XeProfile::traceCallStack(L"here", 0);
    XeProfile::traceCallStack(L"here", -1);
    EXPECT_EQ(reported.size(), 2u);
    XeProfile::traceCallStack(L"here", 1000);
    EXPECT_GT(reported.size(), 4u);
}

TEST_F(Profile, WithoutAReporterNothingHappens)
{
    XeProfile::setReporter(nullptr);
    XeProfile::SessionBegin(L"a", L"");
    XeProfile::DumpResultsSessions();
    XeProfile::traceCallStack(L"here", 10);
    EXPECT_TRUE(reported.empty());
}

} // namespace
