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

// Only the character type is touched: a decimal comma set by the host stays.
TEST(CharacterType, LeavesOtherCategoriesAlone)
{
    const std::string numeric = std::setlocale(LC_NUMERIC, nullptr);
    XeCRT::prepareProcess();
    EXPECT_EQ(std::setlocale(LC_NUMERIC, nullptr), numeric);
}

} // namespace
