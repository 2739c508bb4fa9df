#include "CurveShape.h"

#include <gtest/gtest.h>
#include <string>

namespace {

using xenon::curve::gain;

TEST(CurveShape, EveryCurveRisesFromSilenceToFullLevel)
{
    for (int code = 0; code < 5; ++code) {
        SCOPED_TRACE(code);
        EXPECT_NEAR(gain(code, 0), 0, 1e-12);
        EXPECT_NEAR(gain(code, 1), 1, 1e-12);
        for (int i = 1; i <= 100; ++i) {
            EXPECT_GT(gain(code, i / 100.0), gain(code, (i - 1) / 100.0));
        }
    }
}

TEST(CurveShape, CurvesAreThoseOfTheEffect)
{
    const struct {
        const char* name;
        double atHalf;
    } rows[] = {{"Linear", 0.5},
                {"Equal power", 0.70710678118654752},
                {"Logarithmic", 0.74036268949424384},
                {"Exponential", 0.24025307335204216},
                {"S-curve", 0.5}};
    for (int code = 0; code < 5; ++code) {
        SCOPED_TRACE(code);
        EXPECT_EQ(std::string(xenon::curve::name(code)), rows[code].name);
        EXPECT_NEAR(gain(code, 0.5), rows[code].atHalf, 1e-12);
    }
    EXPECT_LT(gain(4, 0.25), 0.25);
    EXPECT_GT(gain(4, 0.75), 0.75);
}

} // namespace
