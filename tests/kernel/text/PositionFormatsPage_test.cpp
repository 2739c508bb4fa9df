#include "PositionFormatsPage.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

namespace {

TEST(PositionFormatsPage, IsWhatTheFormatsMakeOfIt)
{
    std::ifstream in(POSITION_FORMATS_PAGE, std::ios::binary);
    const std::string page(std::istreambuf_iterator<char>(in), {});
    EXPECT_EQ(page, positionFormatsPage())
        << "build the target position-formats-page and read the difference";
}

} // namespace
