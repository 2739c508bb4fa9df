#import "host/app/SettingsFile.h"

#include "TemporaryFolder.h"

#include <AudioToolbox/AudioToolbox.h>
#include <gmock/gmock.h>

using namespace host;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

class SettingsFileTest : public testing::Test {
protected:
    ~SettingsFileTest() override { [pool drain]; }

    static void set(TarvelEffect& effect, AudioUnitParameterID parameter, float value)
    {
        AudioUnitSetParameter(&effect, parameter, kAudioUnitScope_Global, 0, value, 0);
    }

    static float get(TarvelEffect& effect, AudioUnitParameterID parameter)
    {
        AudioUnitParameterValue value = 0;
        AudioUnitGetParameter(&effect, parameter, kAudioUnitScope_Global, 0, &value);
        return value;
    }

    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    TemporaryFolder folder;
    std::string path = folder.path("take.wav.tarvel");
    TarvelEffect effect;
    HostMusic music;
};

TEST_F(SettingsFileTest, LiesBesideItsRecording)
{
    EXPECT_EQ(settingsPath("/a/take.wav"), "/a/take.wav.tarvel");
}

TEST_F(SettingsFileTest, BringsBackEverything)
{
    for (UInt32 i = 0; i < kParameterCount; ++i) {
        set(effect, i, static_cast<float>(i) + 0.25F);
    }
    const UInt32 format = 9;
    AudioUnitSetProperty(&effect, kTimeFormatProperty, kAudioUnitScope_Global, 0, &format,
                         sizeof format);
    music.tempo = 92.5;
    music.numerator = 7;
    music.denominator = 8;
    ASSERT_EQ(writeSettings(path, settingsData(effect, music)), "");
    EXPECT_THAT(folder.names(), ElementsAre("take.wav.tarvel"));

    TarvelEffect other;
    HostMusic otherMusic;
    ASSERT_EQ(readSettings(path, other, otherMusic), "");
    for (UInt32 i = 0; i < kParameterCount; ++i) {
        EXPECT_EQ(get(other, i), static_cast<float>(i) + 0.25F) << i;
    }
    UInt32 read = 0;
    UInt32 size = sizeof read;
    AudioUnitGetProperty(&other, kTimeFormatProperty, kAudioUnitScope_Global, 0, &read, &size);
    EXPECT_EQ(read, 9u);
    EXPECT_EQ(otherMusic.tempo, 92.5);
    EXPECT_EQ(otherMusic.numerator, 7);
    EXPECT_EQ(otherMusic.denominator, 8u);
}

TEST_F(SettingsFileTest, EqualSettingsAreEqualBytes)
{
    NSData* const first = settingsData(effect, music);
    EXPECT_TRUE([first isEqualToData:settingsData(effect, music)]);
    set(effect, 1, -3);
    EXPECT_FALSE([first isEqualToData:settingsData(effect, music)]);
}

TEST_F(SettingsFileTest, MissingFileIsNoProblem)
{
    EXPECT_EQ(readSettings(path, effect, music), "");
}

TEST_F(SettingsFileTest, DamagedFileChangesNothingAndIsTold)
{
    ASSERT_EQ(writeSettings(path, settingsData(effect, music)), "");
    const std::string good = TemporaryFolder::contents(path);
    set(effect, 1, -7);
    music.tempo = 77;
    const std::string problem = "The settings \"" + path + "\" cannot be read and are ignored.";
    std::string otherVersion = good;
    otherVersion.replace(otherVersion.rfind("<integer>1<"), 11, "<integer>2<");
    const std::string bad[] = {"",          "text", good.substr(0, good.size() / 2),
                               "{a = b; }", "<",    std::string("\0\1\2", 3),
                               otherVersion};
    for (const std::string& bytes : bad) {
        SCOPED_TRACE(bytes);
        folder.write("take.wav.tarvel", bytes);
        EXPECT_EQ(readSettings(path, effect, music), problem);
        EXPECT_EQ(get(effect, 1), -7);
        EXPECT_EQ(music.tempo, 77);
    }
}

TEST_F(SettingsFileTest, FolderInItsPlaceIsTold)
{
    EXPECT_THAT(readSettings(folder.path().string(), effect, music), HasSubstr("cannot be read"));
}

TEST_F(SettingsFileTest, FileThatCannotBeWrittenIsTold)
{
    EXPECT_EQ(writeSettings("/nowhere/a.tarvel", settingsData(effect, music)),
              "The settings \"/nowhere/a.tarvel\" cannot be written: No such file or directory.");
}

TEST_F(SettingsFileTest, RangesOfAHostsMusic)
{
    EXPECT_TRUE(isTempo(1) && isTempo(120.5) && isTempo(999));
    EXPECT_FALSE(isTempo(0.99) || isTempo(999.1) || isTempo(-1) || isTempo(std::nan("")));
    EXPECT_TRUE(isTimeSignature(1, 1) && isTimeSignature(7, 8) && isTimeSignature(32, 32));
    EXPECT_FALSE(isTimeSignature(0, 4) || isTimeSignature(33, 4) || isTimeSignature(3.5, 4) ||
                 isTimeSignature(4, 3) || isTimeSignature(4, 64) || isTimeSignature(4, 0));
}

} // namespace
