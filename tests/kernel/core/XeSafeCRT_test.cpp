#include "XeSafeCRT.h"

#include <gtest/gtest.h>

#include <sys/resource.h>

#include <clocale>
#include <cwctype>

namespace {

rlimit openFileLimit()
{
    rlimit limit{};
    EXPECT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
    return limit;
}

class OpenFileLimit : public testing::Test {
protected:
    ~OpenFileLimit() override { setrlimit(RLIMIT_NOFILE, &m_before); }

    void setSoft(rlim_t files)
    {
        rlimit limit = openFileLimit();
        limit.rlim_cur = files;
        ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);
    }

private:
    const rlimit m_before = openFileLimit();
};

TEST_F(OpenFileLimit, LowSoftLimitIsRaisedTo7168)
{
    if (openFileLimit().rlim_max < 7168) {
        GTEST_SKIP() << "the hard limit of this machine is below 7168";
    }
    setSoft(256);
    XeCRT::prepareProcess();
    EXPECT_EQ(openFileLimit().rlim_cur, 7168u);
}

TEST_F(OpenFileLimit, HigherSoftLimitIsNotLowered)
{
    if (openFileLimit().rlim_max < 7169) {
        GTEST_SKIP() << "the hard limit of this machine is below 7169";
    }
    setSoft(7169);
    XeCRT::prepareProcess();
    EXPECT_EQ(openFileLimit().rlim_cur, 7169u);
}

TEST(CharacterType, IsSetAgainAfterTheHostChangedIt)
{
    std::setlocale(LC_CTYPE, "C");
    ASSERT_EQ(std::towupper(L'\u00E9'), std::wint_t{L'\u00E9'});
    XeCRT::init{};
    EXPECT_EQ(std::towupper(L'\u00E9'), std::wint_t{L'\u00C9'});
}

TEST(SwprintfS, PrintsIntoTheBuffer)
{
    wchar_t buffer[8];
    EXPECT_EQ(XeCRT::swprintf_s(buffer, 8, L"%d|%ls", 42, L"\u00E9"), 4);
    EXPECT_STREQ(buffer, L"42|\u00E9");
}

// Seven characters and the terminator fill eight elements.
TEST(SwprintfS, TextThatDoesNotFitGivesANegativeResult)
{
    wchar_t buffer[8];
    EXPECT_EQ(XeCRT::swprintf_s(buffer, 8, L"%07d", 1), 7);
    EXPECT_STREQ(buffer, L"0000001");
    EXPECT_LT(XeCRT::swprintf_s(buffer, 8, L"%08d", 1), 0);
}

// "%s" could not be widened in the category "C".
TEST(SwprintfS, SetsTheCharacterTypeOnEveryCall)
{
    for (int call = 0; call < 2; ++call) {
        std::setlocale(LC_CTYPE, "C");
        wchar_t buffer[8];
        EXPECT_EQ(XeCRT::swprintf_s(buffer, 8, L"%s", "\xC3\xA9"), 1);
        EXPECT_STREQ(buffer, L"\u00E9");
    }
}

// Only the character type is touched: a decimal comma set by the host stays.
TEST(CharacterType, LeavesOtherCategoriesAlone)
{
    const std::string numeric = std::setlocale(LC_NUMERIC, nullptr);
    XeCRT::prepareProcess();
    EXPECT_EQ(std::setlocale(LC_NUMERIC, nullptr), numeric);
}

} // namespace
