#import "host/effect/TarvelEffect.h"
#import "host/loader/SavedState.h"

#import <AudioToolbox/AudioToolbox.h>
#import <AudioUnitCompat/Testing.h>
#import <Foundation/Foundation.h>

#include <gtest/gtest.h>

#include <map>

using namespace host;

namespace {

/// Last value of each parameter that a listener was told.
using Heard = std::map<AudioUnitParameterID, float>;

void hear(void* heard, void*, const AudioUnitEvent* event, UInt64, Float32 value)
{
    (*static_cast<Heard*>(heard))[event->mArgument.mParameter.mParameterID] = value;
}

} // namespace

TEST(SavedState, RestoringTellsListenersOfEveryParameter)
{
    TarvelEffect effect;
    for (UInt32 id = 0; id < kParameterCount; ++id) {
        AudioUnitSetParameter(&effect, id, kAudioUnitScope_Global, 0, static_cast<float>(id), 0);
    }
    CFTypeRef const state = copyState(&effect);
    ASSERT_NE(state, nullptr);
    for (UInt32 id = 0; id < kParameterCount; ++id) {
        AudioUnitSetParameter(&effect, id, kAudioUnitScope_Global, 0, 50, 0);
    }

    const audiounit_compat::FakeClock clock;
    Heard heard;
    AUEventListenerRef listener = nullptr;
    ASSERT_EQ(AUEventListenerCreate(hear, &heard, nullptr, nullptr, 0.05F, 0.05F, &listener),
              noErr);
    for (UInt32 id = 0; id < kParameterCount; ++id) {
        AudioUnitEvent event{};
        event.mEventType = kAudioUnitEvent_ParameterValueChange;
        event.mArgument.mParameter = {&effect, id, kAudioUnitScope_Global, 0};
        AUEventListenerAddEventType(listener, &heard, &event);
    }
    EXPECT_EQ(restoreState(&effect, state), noErr);
    audiounit_compat::deliverAll();
    for (UInt32 id = 0; id < kParameterCount; ++id) {
        EXPECT_EQ(heard[id], static_cast<float>(id));
    }
    AUListenerDispose(listener);
    CFRelease(state);
    EXPECT_EQ(effect.outstandingReferences(), 0U);
}

TEST(SavedState, RefusedStateIsReported)
{
    TarvelEffect effect;
    EXPECT_EQ(restoreState(&effect, (CFTypeRef) @"no state"), -10851);
}

TEST(SavedState, UnitThatIsGoneHasNone)
{
    auto* const effect = new TarvelEffect;
    AudioUnit const unit = effect;
    delete effect;
    EXPECT_EQ(copyState(unit), nullptr);
}
