#include "XeObservable.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Numbers = XeObservable<std::string, int>;

class Observable : public testing::Test {
protected:
    Numbers::Observer named(const std::string& name)
    {
        return [this, name](const std::string& subject, int payload) {
            m_calls.push_back(name + " " + subject + std::to_string(payload));
        };
    }

    std::vector<std::string> notify()
    {
        m_calls.clear();
        m_numbers.NotifyObservers("n", 7);
        return m_calls;
    }

    Numbers m_numbers;
    std::vector<std::string> m_calls;
    std::shared_ptr<void> m_a, m_b, m_c;
};

TEST_F(Observable, CallsEveryObserverInTheOrderOfRegistration)
{
    EXPECT_FALSE(m_numbers.HasObservers());
    EXPECT_THAT(notify(), IsEmpty());
    m_numbers.RegisterObserver(named("a"), m_a);
    m_numbers.RegisterObserver(named("b"), m_b);
    m_numbers.RegisterObserver(named("c"), m_c);
    EXPECT_NE(m_a, nullptr);
    EXPECT_TRUE(m_numbers.HasObservers());
    EXPECT_THAT(notify(), ElementsAre("a n7", "b n7", "c n7"));
}

TEST_F(Observable, UnregisteringEndsOneAndEmptiesItsHandle)
{
    m_numbers.RegisterObserver(named("a"), m_a);
    m_numbers.RegisterObserver(named("b"), m_b);
    const std::shared_ptr<void> copy = m_a;
    m_numbers.UnregisterObserver(m_a);
    EXPECT_EQ(m_a, nullptr);
    EXPECT_THAT(notify(), ElementsAre("b n7"));
    m_a = copy;
    m_numbers.UnregisterObserver(m_a);
    m_numbers.UnregisterObserver(m_c);
    EXPECT_THAT(notify(), ElementsAre("b n7"));
}

TEST_F(Observable, UnregisteringAllLeavesNone)
{
    m_numbers.RegisterObserver(named("a"), m_a);
    m_numbers.RegisterObserver(named("b"), m_b);
    m_numbers.UnregisterObservers();
    EXPECT_FALSE(m_numbers.HasObservers());
    EXPECT_THAT(notify(), IsEmpty());
    m_numbers.RegisterObserver(named("c"), m_c);
    EXPECT_THAT(notify(), ElementsAre("c n7"));
}

TEST_F(Observable, DroppingAHandleDoesNotUnregister)
{
    m_numbers.RegisterObserver(named("a"), m_a);
    m_a.reset();
    EXPECT_THAT(notify(), ElementsAre("a n7"));
}

TEST_F(Observable, AHandleOfAnotherIsLeftAlone)
{
    Numbers other;
    other.RegisterObserver(named("other"), m_a);
    m_numbers.RegisterObserver(named("b"), m_b);
    m_numbers.UnregisterObserver(m_a);
    EXPECT_NE(m_a, nullptr);
    EXPECT_TRUE(other.HasObservers());
    EXPECT_THAT(notify(), ElementsAre("b n7"));
}

TEST_F(Observable, AHandleOutlivesItsObservable)
{
    {
        Numbers shortLived;
        shortLived.RegisterObserver(named("a"), m_a);
    }
    m_numbers.UnregisterObserver(m_a);
    EXPECT_NE(m_a, nullptr);
}

TEST_F(Observable, ObserversMayRegisterAndUnregisterWhileTheyRun)
{
    m_numbers.RegisterObserver(
        [this](const std::string&, int) {
            m_calls.push_back("once");
            m_numbers.UnregisterObserver(m_a);
            m_numbers.RegisterObserver(named("c"), m_c);
        },
        m_a);
    m_numbers.RegisterObserver(named("b"), m_b);
    EXPECT_EQ(notify()[0], "once");
    EXPECT_THAT(notify(), ElementsAre("b n7", "c n7"));
}

} // namespace
