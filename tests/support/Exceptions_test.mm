// Exceptions of either language through frames of either language. clang and GNUstep's run time
// do this right only after the symbols of each Objective-C++ object were put right in the build;
// without that step most of these tests end the process.

#include "ExceptionsPlain.h"
#include "ExceptionsTry.h"
#include "XeTry.h"

#import <Foundation/Foundation.h>

#include <gtest/gtest.h>

#include <stdexcept>

/// Does nothing but throw.
@interface Thrower : NSObject
- (void)throwInt;
- (void)throwError;
@end

@implementation Thrower

- (void)throwInt
{
    throw 42;
}

- (void)throwError
{
    throw std::runtime_error("error");
}

@end

namespace {

void throwInt() { throw 42; }

void throwError() { throw std::out_of_range("error"); }

void raise() { [NSException raise:@"TestException" format:@"reason"]; }

/// Counts the end of its own scope.
class Scope {
public:
    explicit Scope(int& ends) : m_ends(ends) {}
    ~Scope() { ++m_ends; }

private:
    int& m_ends;
};

/// "name: reason" of the Objective-C exception that `function` ends with; empty without one.
std::string raisedBy(void (*function)(void*), void* argument = nullptr)
{
    char text[100] = "";
    return XeTry(function, argument, text, sizeof text) != 0 ? text : "";
}

class Exceptions : public testing::Test {
protected:
    ~Exceptions() override
    {
        [m_thrower release];
        [m_pool drain];
    }

private:
    NSAutoreleasePool* const m_pool = [[NSAutoreleasePool alloc] init];

protected:
    Thrower* const m_thrower = [[Thrower alloc] init];
};

TEST_F(Exceptions, IntIsCaughtInObjectiveCpp)
{
    int caught = 0;
    try {
        throwInt();
    } catch (int value) {
        caught = value;
    }
    EXPECT_EQ(caught, 42);
}

TEST_F(Exceptions, StandardExceptionIsCaughtByItsBase)
{
    std::string caught;
    try {
        throwError();
    } catch (const std::exception& error) {
        caught = error.what();
    }
    EXPECT_EQ(caught, "error");
}

TEST_F(Exceptions, TheMatchingHandlerIsChosenAndTheOthersPassed)
{
    std::string caught;
    try {
        try {
            throwError();
        } catch (int) {
            caught = "int";
        }
    } catch (const std::logic_error&) {
        caught = "logic_error";
    } catch (...) {
        caught = "anything";
    }
    EXPECT_EQ(caught, "logic_error");
}

TEST_F(Exceptions, RethrownValueKeepsItsType)
{
    int caught = 0;
    try {
        try {
            throwInt();
        } catch (...) {
            throw;
        }
    } catch (int value) {
        caught = value;
    }
    EXPECT_EQ(caught, 42);
}

TEST_F(Exceptions, ThrownInPlainCppIsCaughtInObjectiveCpp)
{
    EXPECT_EQ(thrownBy([] { throwIntInPlainCpp(); }), "int 7");
    EXPECT_EQ(thrownBy([] { throwErrorInPlainCpp(); }), "exception plain");
}

TEST_F(Exceptions, ThrownInObjectiveCppIsCaughtInPlainCpp)
{
    EXPECT_EQ(thrownByInPlainCpp(throwInt), "int 42");
    EXPECT_EQ(thrownByInPlainCpp(throwError), "exception error");
}

TEST_F(Exceptions, InlineHandlerServesBothLanguagesWhicheverCopyIsLinked)
{
    const PlainFunction function = throwInt;
    EXPECT_EQ(thrownBy(function), "int 42");
    EXPECT_EQ(thrownByInPlainCpp(function), "int 42");
}

TEST_F(Exceptions, MethodThrowsToItsCaller)
{
    EXPECT_EQ(thrownBy([this] { [m_thrower throwInt]; }), "int 42");
    EXPECT_EQ(thrownBy([this] { [m_thrower throwError]; }), "exception error");
}

TEST_F(Exceptions, DestructorsRunOnTheWay)
{
    int ends = 0;
    try {
        const Scope outer(ends);
        const auto frame = [&ends] {
            const Scope inner(ends);
            throwInt();
        };
        frame();
    } catch (int) {
        EXPECT_EQ(ends, 2);
    }
    EXPECT_EQ(ends, 2);
}

TEST_F(Exceptions, DestructorsRunForAnObjectiveCException)
{
    int ends = 0;
    const auto frame = [](void* argument) {
        const Scope scope(*static_cast<int*>(argument));
        raise();
    };
    EXPECT_EQ(raisedBy(frame, &ends), "TestException: reason");
    EXPECT_EQ(ends, 1);
}

TEST_F(Exceptions, ObjectiveCExceptionPassesTypedHandlers)
{
    int entered = 0;
    const auto frame = [](void* argument) {
        try {
            raise();
        } catch (int) {
            ++*static_cast<int*>(argument);
        } catch (const std::exception&) {
            ++*static_cast<int*>(argument);
        }
    };
    EXPECT_EQ(raisedBy(frame, &entered), "TestException: reason");
    EXPECT_EQ(entered, 0);
}

TEST_F(Exceptions, ObjectiveCExceptionIsCaughtByTheCatchAll)
{
    bool caught = false;
    try {
        raise();
    } catch (...) {
        caught = true;
    }
    EXPECT_TRUE(caught);
}

TEST_F(Exceptions, RethrownObjectiveCExceptionArrivesWhole)
{
    int entered = 0;
    const auto frame = [](void* argument) {
        try {
            raise();
        } catch (...) {
            ++*static_cast<int*>(argument);
            throw;
        }
    };
    EXPECT_EQ(raisedBy(frame, &entered), "TestException: reason");
    EXPECT_EQ(entered, 1);
}

TEST_F(Exceptions, IntPassesPerformSelector)
{
    EXPECT_EQ(thrownBy([this] { [m_thrower performSelector:@selector(throwInt)]; }), "int 42");
    EXPECT_EQ(thrownBy([this] { [m_thrower performSelector:@selector(throwError)]; }),
              "exception error");
}

TEST_F(Exceptions, IntPassesMakeObjectsPerformSelector)
{
    NSArray* const throwers = [NSArray arrayWithObjects:m_thrower, m_thrower, nil];
    EXPECT_EQ(thrownBy([throwers] { [throwers makeObjectsPerformSelector:@selector(throwInt)]; }),
              "int 42");
}

TEST_F(Exceptions, IntPassesATryFrameAndItsCleanups)
{
    TryFrame frame = {};
    EXPECT_EQ(thrownBy([&frame] { callInsideCatch([](void*) { throwInt(); }, nullptr, &frame); }),
              "int 42");
    EXPECT_EQ(frame.catches, 0);
    EXPECT_EQ(frame.cleanups, 1);
}

TEST_F(Exceptions, IntPassesAFinallyClause)
{
    TryFrame frame = {};
    EXPECT_EQ(thrownBy([&frame] { callInsideFinally([](void*) { throwInt(); }, nullptr, &frame); }),
              "int 42");
}

TEST_F(Exceptions, ObjectiveCExceptionEndsInItsTryFrame)
{
    TryFrame frame = {};
    EXPECT_EQ(thrownBy([&frame] { callInsideCatch([](void*) { raise(); }, nullptr, &frame); }),
              "nothing");
    EXPECT_EQ(frame.catches, 1);
    EXPECT_EQ(frame.cleanups, 1);
}

TEST_F(Exceptions, ObjectiveCExceptionRunsAFinallyClause)
{
    TryFrame frame = {};
    const auto call = [](void* argument) {
        callInsideFinally([](void*) { raise(); }, nullptr, static_cast<TryFrame*>(argument));
    };
    EXPECT_EQ(raisedBy(call, &frame), "TestException: reason");
    EXPECT_EQ(frame.finallies, 1);
}

} // namespace
