#include <CoreFoundation/CoreFoundation.h>

#include <gtest/gtest.h>

#include <string>

/// The same text from an Objective-C++ file.
CFStringRef constantStringOfObjectiveC();

namespace {

TEST(CFConstantString, PlainCppGetsOneStringForEachText)
{
    const CFStringRef first = CFSTR("Some text \xC3\xA9");
    EXPECT_EQ(first, CFSTR("Some text \xC3\xA9"));
    EXPECT_NE(first, CFSTR("Another text"));
    EXPECT_EQ(CFStringGetLength(first), 11);
    EXPECT_EQ(CFStringGetCharacterAtIndex(first, 10), 0x00E9);
}

TEST(CFConstantString, MayBeRetainedAndReleasedLikeAnyString)
{
    const CFStringRef text = CFSTR("kept for ever");
    EXPECT_EQ(CFRetain(text), text);
    CFRelease(text);
    EXPECT_EQ(CFStringGetLength(text), 13);
}

TEST(CFConstantString, ObjectiveCHasTheSameText)
{
    EXPECT_EQ(CFStringGetLength(constantStringOfObjectiveC()), 9);
}

} // namespace
