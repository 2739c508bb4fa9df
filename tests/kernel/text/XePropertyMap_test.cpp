#include "XePropertyMap.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <typeinfo>

namespace {

TEST(XeProperty, GivesBackEachOfTheFourTypes)
{
    EXPECT_EQ(XeProperty(-7).GetValue<int>(), -7);
    EXPECT_EQ(XeProperty(4000000000u).GetValue<unsigned int>(), 4000000000u);
    EXPECT_EQ(XeProperty(-5000000000LL).GetValue<long long>(), -5000000000LL);
    EXPECT_EQ(XeProperty(0.25).GetValue<double>(), 0.25);
}

TEST(XeProperty, ConvertsNothing)
{
    EXPECT_EQ(XeProperty(5u).GetValue<int>(), 0);
    EXPECT_EQ(XeProperty(5).GetValue<unsigned int>(), 0u);
    EXPECT_EQ(XeProperty(5.0).GetValue<long long>(), 0);
    EXPECT_EQ(XeProperty(5LL).GetValue<double>(), 0.0);
    EXPECT_EQ(XeProperty(5.0).GetValue<float>(), 0.0f);
}

TEST(XeProperty, EmptyGivesTheSameZeroEveryTime)
{
    const XeProperty empty;
    const XeProperty other(1);
    EXPECT_EQ(empty.GetContent(), nullptr);
    EXPECT_EQ(empty.GetValue<double>(), 0.0);
    EXPECT_EQ(&empty.GetValue<double>(), &other.GetValue<double>());
}

TEST(XeProperty, CopyIsDeepAndKeepsTheType)
{
    XeProperty copy;
    {
        const XeProperty original(42LL);
        copy = original;
        ASSERT_NE(copy.GetContent(), nullptr);
        EXPECT_NE(copy.GetContent(), original.GetContent());
    }
    EXPECT_EQ(copy.GetValue<long long>(), 42);
    const XeProperty& self = copy;
    copy = self;
    EXPECT_EQ(copy.GetValue<long long>(), 42);
    copy = XeProperty();
    EXPECT_EQ(copy.GetContent(), nullptr);
}

TEST(XeProperty, AMoveTakesTheContentAlong)
{
    XeProperty source(1.5);
    const XeProperty::content* const content = source.GetContent();
    const XeProperty target(std::move(source));
    EXPECT_EQ(target.GetContent(), content);
}

template <class T>
class XePropertyContent : public testing::Test {
};
using HeldTypes = testing::Types<int, unsigned int, long long, double>;
TYPED_TEST_SUITE(XePropertyContent, HeldTypes);

TYPED_TEST(XePropertyContent, KnowsItsTypeAndIsArithmetic)
{
    const XeProperty property(TypeParam{3});
    EXPECT_EQ(property.GetContent()->type(), typeid(TypeParam));
    EXPECT_TRUE(property.GetContent()->is_arithmetic());
}

TYPED_TEST(XePropertyContent, CopyEqualsTheOriginal)
{
    const XeProperty property(TypeParam{3});
    const auto copy = property.GetContent()->copy();
    EXPECT_EQ(copy->type(), typeid(TypeParam));
    EXPECT_TRUE(copy->equal(*property.GetContent()));
    EXPECT_FALSE(copy->equal(*XeProperty(TypeParam{4}).GetContent()));
}

TEST(XePropertyContent, EqualValuesOfTwoTypesDiffer)
{
    EXPECT_FALSE(XeProperty(1).GetContent()->equal(*XeProperty(1LL).GetContent()));
    EXPECT_FALSE(XeProperty(1u).GetContent()->equal(*XeProperty(1).GetContent()));
    EXPECT_FALSE(XeProperty(1.0).GetContent()->equal(*XeProperty(1).GetContent()));
}

TEST(XePropertyContent, NaNIsNotEqualToItself)
{
    const XeProperty nan(std::numeric_limits<double>::quiet_NaN());
    EXPECT_FALSE(nan.GetContent()->equal(*nan.GetContent()));
}

TEST(XePropertyContent, TextIsDecimal)
{
    EXPECT_EQ(XeProperty(-42).GetContent()->to_string(), L"-42");
    EXPECT_EQ(XeProperty(4294967295u).GetContent()->to_string(), L"4294967295");
    EXPECT_EQ(XeProperty(-9223372036854775807LL - 1).GetContent()->to_string(),
              L"-9223372036854775808");
    EXPECT_EQ(XeProperty(0.5).GetContent()->to_string(), L"0.5");
    EXPECT_EQ(std::stod(XeProperty(30000.0 / 1001).GetContent()->to_string()), 30000.0 / 1001);
}

TEST(XePropertyMap, KeepsTheFirstValueOfAKey)
{
    XePropertyMap map;
    EXPECT_TRUE(map.insert({L"eFormat", 8}).second);
    EXPECT_FALSE(map.insert({L"eFormat", 3}).second);
    EXPECT_EQ(map[L"eFormat"].GetValue<int>(), 8);
}

TEST(XePropertyMap, LookUpOfAMissingKeyLeavesAnEmptyEntry)
{
    XePropertyMap map;
    EXPECT_EQ(map[L"missing"].GetValue<int>(), 0);
    ASSERT_EQ(map.count(L"missing"), 1u);
    EXPECT_EQ(map[L"missing"].GetContent(), nullptr);
    // The empty entry counts as present: an insert does not fill it.
    map.insert({L"missing", 5});
    EXPECT_EQ(map[L"missing"].GetValue<int>(), 0);
}

TEST(XePropertyMap, IsOrderedByKey)
{
    XePropertyMap map;
    map.insert({L"b", 1});
    map.insert({L"a", 2});
    map.insert({L"B", 3});
    std::wstring keys;
    for (const auto& [key, value] : map) {
        keys += key;
    }
    EXPECT_EQ(keys, L"Bab");
}

TEST(XePropertyMap, CopiesItsValues)
{
    XePropertyMap map;
    map.insert({L"rate", 48000u});
    XePropertyMap copy = map;
    map.clear();
    EXPECT_EQ(copy[L"rate"].GetValue<unsigned int>(), 48000u);
}

} // namespace
