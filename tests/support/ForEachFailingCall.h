#pragma once

#include "FailingCalls.h"

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <exception>

/// The fault of one run. See forEachFailingCall.
class Fault {
public:
    explicit Fault(const FailingCallPlan& plan) : m_plan(plan) {}

    /// Runs the operation under test with the fault in place, and fails the test when it throws.
    /// Once in a run.
    template <typename Operation>
    void during(Operation operation)
    {
        bool threw = false;
        armFailingCalls(&m_plan);
        try {
            operation();
        } catch (...) {
            threw = true;
        }
        m_calls = disarmFailingCalls();
        EXPECT_FALSE(threw) << "the operation has thrown";
    }

    /// True when the operation has met the fault.
    bool happened() const { return m_plan.nth != 0 && m_calls >= m_plan.nth; }

    /// Calls that the operation made, of the plan's functions.
    unsigned long calls() const { return m_calls; }

private:
    const FailingCallPlan m_plan;
    unsigned long m_calls = 0;
};

enum class FaultRun { met, notMet, broken };

/// Runs `body(fault)` with one plan, in a child process. Broken is a run that ends in a signal or
/// in which an expectation fails.
template <typename Body>
FaultRun runWithFault(const FailingCallPlan& plan, Body& body)
{
    const testing::TestResult& results =
        *testing::UnitTest::GetInstance()->current_test_info()->result();
    const int resultsBefore =
        results.total_part_count(); // failures of the parent's are not its own
    const pid_t child = fork();
    if (child == 0) {
        Fault fault(plan);
        body(fault);
        _exit(results.total_part_count() != resultsBefore ? 1 : fault.happened() ? 0 : 2);
    }
    int status = -1;
    if (child < 0 || waitpid(child, &status, 0) != child || !WIFEXITED(status)) {
        return FaultRun::broken;
    }
    return WEXITSTATUS(status) == 0   ? FaultRun::met
           : WEXITSTATUS(status) == 2 ? FaultRun::notMet
                                      : FaultRun::broken;
}

/// Runs `body` again and again, each time with the next call of a group of functions failing, until
/// a run ends that does not come to its fault any more. Each run has a process of its own, so what
/// it leaves in memory does not matter; its files are its own to make and to remove.
///
///     forEachFailingCall(kFailOpen | kFailWrite, {.error = ENOSPC}, [&](Fault& fault) {
///         const TemporaryFolder folder;
///         XeResult result = kXeOk;
///         fault.during([&] { result = doSomethingIn(folder); });
///         EXPECT_EQ(result, fault.happened() ? kXeFileOperationFailed : kXeOk);
///     });
///
/// The first run in which an expectation fails ends it, and fails the test.
///
/// @param plan  Its `functions` and `nth` are not looked at.
/// @return      How many calls were made to fail; a test that expects some should say so.
template <typename Body>
unsigned long forEachFailingCall(unsigned functions, FailingCallPlan plan, Body body)
{
    constexpr unsigned long kMostCalls = 100000;

    plan.functions = functions;
    for (plan.nth = 1; plan.nth <= kMostCalls; ++plan.nth) {
        const FaultRun run = runWithFault(plan, body);
        if (run == FaultRun::notMet) {
            return plan.nth - 1;
        }
        if (run == FaultRun::broken) {
            ADD_FAILURE() << "with call " << plan.nth << " failing (error " << plan.error
                          << ", mode " << plan.mode << ')';
            return plan.nth;
        }
    }
    ADD_FAILURE() << "no end after " << kMostCalls << " calls";
    return kMostCalls;
}
