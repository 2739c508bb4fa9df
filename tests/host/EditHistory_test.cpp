#include "host/app/EditHistory.h"

#include <gtest/gtest.h>

using namespace host;

namespace {

using Assignment = EditHistory::Assignment;

class EditHistoryTest : public testing::Test {
protected:
    EditHistoryTest() { history.reset({0, -48, -48, 0, 5, 0, 50, 500, 0, 60000}); }

    void gesture(AudioUnitParameterID parameter, std::initializer_list<float> values)
    {
        history.begin(parameter);
        for (const float value : values) {
            history.change(parameter, value);
        }
        history.end(parameter);
    }

    EditHistory history;
};

TEST_F(EditHistoryTest, BeginsWithNothingToUndo)
{
    EXPECT_FALSE(history.canUndo());
    EXPECT_FALSE(history.canRedo());
}

TEST_F(EditHistoryTest, GestureIsOneStepHoweverManyValuesItHas)
{
    gesture(1, {-40, -30, -20});
    ASSERT_TRUE(history.canUndo());
    EXPECT_EQ(history.undoParameter(), 1u);
    EXPECT_EQ(history.undo(), (Assignment{1, -48}));
    EXPECT_FALSE(history.canUndo());
    ASSERT_TRUE(history.canRedo());
    EXPECT_EQ(history.redoParameter(), 1u);
    EXPECT_EQ(history.redo(), (Assignment{1, -20}));
    EXPECT_FALSE(history.canRedo());
}

TEST_F(EditHistoryTest, StepsAreTakenBackInReverse)
{
    gesture(1, {-40});
    gesture(4, {10});
    gesture(1, {-30});
    EXPECT_EQ(history.undo(), (Assignment{1, -40}));
    EXPECT_EQ(history.undo(), (Assignment{4, 5}));
    EXPECT_EQ(history.undo(), (Assignment{1, -48}));
    EXPECT_EQ(history.redo(), (Assignment{1, -40}));
    EXPECT_EQ(history.redo(), (Assignment{4, 10}));
    EXPECT_EQ(history.redo(), (Assignment{1, -30}));
}

TEST_F(EditHistoryTest, GestureThatEndsWhereItBeganIsNoStep)
{
    gesture(1, {-40, -48});
    gesture(2, {});
    EXPECT_FALSE(history.canUndo());
}

TEST_F(EditHistoryTest, EchoOfAnUndoIsNoStep)
{
    gesture(1, {-40});
    const Assignment undone = history.undo();
    history.change(undone.parameter, undone.value);
    EXPECT_TRUE(history.canRedo());
    EXPECT_FALSE(history.canUndo());
}

TEST_F(EditHistoryTest, NewStepForgetsWhatWasUndone)
{
    gesture(1, {-40});
    history.undo();
    gesture(2, {-10});
    EXPECT_FALSE(history.canRedo());
    EXPECT_EQ(history.undo(), (Assignment{2, -48}));
}

TEST_F(EditHistoryTest, GesturesMayNestAndOverlap)
{
    history.begin(1);
    history.begin(1);
    history.change(1, -40);
    history.end(1);
    history.begin(2);
    EXPECT_FALSE(history.canUndo());
    history.change(1, -30);
    history.end(1);
    history.change(2, -10);
    EXPECT_FALSE(history.canUndo());
    history.end(2);
    EXPECT_EQ(history.undo(), (Assignment{2, -48}));
    EXPECT_EQ(history.undo(), (Assignment{1, -48}));
    EXPECT_FALSE(history.canUndo());
}

TEST_F(EditHistoryTest, NothingIsUndoneDuringAGesture)
{
    gesture(1, {-40});
    history.undo();
    history.begin(2);
    EXPECT_FALSE(history.canUndo());
    EXPECT_FALSE(history.canRedo());
    history.end(2);
    EXPECT_TRUE(history.canRedo());
}

TEST_F(EditHistoryTest, ChangesWithoutAGestureJoinUntilSomethingElseHappens)
{
    history.change(1, -47);
    history.change(1, -46);
    history.change(2, -40);
    history.change(1, -45);
    history.separate();
    history.change(1, -44);
    EXPECT_EQ(history.undo(), (Assignment{1, -45}));
    EXPECT_EQ(history.undo(), (Assignment{1, -46}));
    EXPECT_EQ(history.undo(), (Assignment{2, -48}));
    EXPECT_EQ(history.undo(), (Assignment{1, -48}));
}

TEST_F(EditHistoryTest, UnknownParametersAndStrayEndsAreIgnored)
{
    history.begin(10);
    history.change(10, 3);
    history.end(10);
    history.end(1);
    history.change(0xFFFFFFFF, 1);
    EXPECT_FALSE(history.canUndo());
    gesture(1, {-40});
    EXPECT_TRUE(history.canUndo());
}

TEST_F(EditHistoryTest, ResetForgetsStepsAndOpenGestures)
{
    gesture(1, {-40});
    history.begin(2);
    history.reset({});
    EXPECT_FALSE(history.canUndo());
    gesture(1, {-40});
    EXPECT_EQ(history.undo(), (Assignment{1, 0}));
}

} // namespace
