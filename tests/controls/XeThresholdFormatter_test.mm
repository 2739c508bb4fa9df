#import "XeThresholdFormatter.h"

#import <Foundation/Foundation.h>

#include <cmath>
#include <gtest/gtest.h>
#include <string>

namespace {

class XeThresholdFormatterTest : public testing::Test {
protected:
    void SetUp() override
    {
        m_pool = [[NSAutoreleasePool alloc] init];
        m_formatter = [[XeThresholdFormatter alloc] init];
    }
    void TearDown() override
    {
        [m_formatter release];
        [m_pool drain];
    }

    // Boxed floats, as the editor sets them.
    void decibels() { limits(YES, -60, 0); }
    void percent() { limits(NO, 0, 100); }
    void limits(BOOL minFinity, float minimum, float maximum)
    {
        [m_formatter setMinFinity:minFinity];
        [m_formatter setMinimum:static_cast<id>(@(minimum))];
        [m_formatter setMaximum:static_cast<id>(@(maximum))];
    }
    std::string text(double value)
    {
        return [[m_formatter stringForObjectValue:@(value)] UTF8String];
    }
    // What a text is read as; NaN for one that is refused.
    double read(NSString* text)
    {
        id value = nil;
        NSString* error = nil;
        const BOOL isRead = [m_formatter getObjectValue:&value
                                              forString:text
                                       errorDescription:&error];
        EXPECT_EQ(isRead, value != nil);
        EXPECT_EQ(isRead, error == nil);
        return isRead ? [value doubleValue] : NAN;
    }

    NSAutoreleasePool* m_pool = nil;
    XeThresholdFormatter* m_formatter = nil;
};

TEST_F(XeThresholdFormatterTest, ShowsTheUnit)
{
    decibels();
    EXPECT_EQ(text(-12), "-12.00 dB");
    percent();
    EXPECT_EQ(text(12), "12.00 %");
}

TEST_F(XeThresholdFormatterTest, ShowsTheMinimumAsMinusInfinityOnlyWithMinFinity)
{
    decibels();
    EXPECT_EQ(text(-60), "-Inf.");
    EXPECT_EQ(text(-61), "-Inf.");
    EXPECT_EQ(text(-HUGE_VAL), "-Inf.");
    EXPECT_EQ(text(-59.9), "-59.90 dB");
    percent();
    EXPECT_EQ(text(0), "0.00 %");
}

TEST_F(XeThresholdFormatterTest, SymbolCanBeSetAndIsRead)
{
    decibels();
    [m_formatter setNegativeInfinitySymbol:@"silence"];
    EXPECT_EQ(text(-60), "silence");
    EXPECT_EQ(read(@"silence"), -60);
    EXPECT_EQ(read(@"-inf"), -60);
}

TEST_F(XeThresholdFormatterTest, MinusInfinityIsReadAsTheMinimum)
{
    decibels();
    EXPECT_EQ(read(@"-Inf."), -60);
    EXPECT_EQ(read(@"0 %"), -60);
    percent();
    EXPECT_EQ(read(@"-inf"), 0);
}

TEST_F(XeThresholdFormatterTest, ClampsWhatLiesOutside)
{
    decibels();
    EXPECT_EQ(read(@"-70"), -60);
    EXPECT_EQ(read(@"3"), 0);
    EXPECT_EQ(read(@"200 %"), 0);
    percent();
    EXPECT_EQ(read(@"101 %"), 100);
    EXPECT_EQ(read(@"-1"), 0);
    EXPECT_EQ(read(@"6 dB"), 100);
}

TEST_F(XeThresholdFormatterTest, ConvertsTheOtherUnit)
{
    decibels();
    EXPECT_NEAR(read(@"50 %"), -6.0206, 1e-4);
    percent();
    EXPECT_NEAR(read(@"-6.0206 dB"), 50, 1e-4);
}

TEST_F(XeThresholdFormatterTest, RefusesTheRest)
{
    decibels();
    for (NSString* const text : {@"", @"abc", @"-", @"1e400", @"nan", @"inf"}) {
        SCOPED_TRACE([text UTF8String]);
        EXPECT_TRUE(std::isnan(read(text)));
    }
}

TEST_F(XeThresholdFormatterTest, NotANumberIsTheMinimum)
{
    decibels();
    EXPECT_EQ([m_formatter clampedValue:NAN], -60);
    EXPECT_EQ(text(NAN), "-Inf.");
}

} // namespace
