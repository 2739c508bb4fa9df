#import "SettingsFile.h"

#import "PendingFile.h"
#import "host/effect/AudioFile.h"
#import "host/loader/HostTry.h"
#import "host/loader/SavedState.h"

#include <XeFileSystem.h>
#include <XeNativePath.h>

#include <cmath>
#include <cstring>

namespace host {

namespace {

NSString* const kVersionKey = @"version";
NSString* const kEffectKey = @"effect";
NSString* const kTempoKey = @"tempo";
NSString* const kNumeratorKey = @"time-signature-numerator";
NSString* const kDenominatorKey = @"time-signature-denominator";
constexpr int kVersion = 1;
constexpr std::size_t kLargestFile = 1 << 20; // far beyond what is ever written

constexpr double kSlowest = 1;
constexpr double kFastest = 999;
constexpr double kLargestPart = 32;

struct Parsing {
    NSData* data;
    id plist;
};

// A damaged list may raise instead of being refused.
void parse(void* context)
{
    auto* const parsing = static_cast<Parsing*>(context);
    parsing->plist = [NSPropertyListSerialization propertyListFromData:parsing->data
                                                      mutabilityOption:NSPropertyListImmutable
                                                                format:nullptr
                                                      errorDescription:nullptr];
}

NSDictionary* dictionaryFrom(NSData* data)
{
    Parsing parsing{data, nil};
    if (HostTry(parse, &parsing) != nil || ![parsing.plist isKindOfClass:[NSDictionary class]]) {
        return nil;
    }
    return parsing.plist;
}

double numberIn(NSDictionary* settings, NSString* key)
{
    id const value = [settings objectForKey:key];
    return [value isKindOfClass:[NSNumber class]] ? [value doubleValue] : 0;
}

bool restore(NSDictionary* settings, TarvelEffect& effect, HostMusic& music)
{
    const double tempo = numberIn(settings, kTempoKey);
    const double numerator = numberIn(settings, kNumeratorKey);
    const double denominator = numberIn(settings, kDenominatorKey);
    if (numberIn(settings, kVersionKey) != kVersion || !isTempo(tempo) ||
        !isTimeSignature(numerator, denominator) ||
        restoreState(&effect, (CFTypeRef)[settings objectForKey:kEffectKey]) != noErr) {
        return false;
    }
    music.tempo = tempo;
    music.numerator = static_cast<Float32>(numerator);
    music.denominator = static_cast<UInt32>(denominator);
    return true;
}

} // namespace

bool isTempo(double tempo) { return tempo >= kSlowest && tempo <= kFastest; }

bool isTimeSignature(double numerator, double denominator)
{
    const auto isPart = [](double part) {
        return part >= 1 && part <= kLargestPart && part == std::floor(part);
    };
    return isPart(numerator) && isPart(denominator) &&
           std::log2(denominator) == std::floor(std::log2(denominator));
}

std::string settingsPath(const std::string& recordingPath) { return recordingPath + ".tarvel"; }

NSData* settingsData(TarvelEffect& effect, const HostMusic& music)
{
    NSDictionary* const state = [(NSDictionary*)copyState(&effect) autorelease];
    NSDictionary* const settings = @{
        kVersionKey : @(kVersion),
        kEffectKey : state,
        kTempoKey : @(music.tempo),
        kNumeratorKey : @(music.numerator),
        kDenominatorKey : @(music.denominator),
    };
    return [NSPropertyListSerialization dataFromPropertyList:settings
                                                      format:NSPropertyListXMLFormat_v1_0
                                            errorDescription:nullptr];
}

std::string writeSettings(const std::string& path, NSData* data)
{
    PendingFile file(path);
    if (file.write([data bytes], [data length]) && file.finish(true)) {
        return "";
    }
    return "The settings " + quotedPath(path) +
           " cannot be written: " + std::strerror(file.error()) + ".";
}

std::string readSettings(const std::string& path, TarvelEffect& effect, HostMusic& music)
{
    const _XeString<wchar_t> name = xenon::path::fromNative(path);
    if (!XeFileSystem::isFilePresent(name) && !XeFileSystem::isFolderPresent(name)) {
        return "";
    }
    const auto file = XeFileSystem::openIStream(name);
    std::string bytes(kLargestFile, '\0');
    file->read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    NSData* const data = [NSData dataWithBytes:bytes.data()
                                        length:static_cast<NSUInteger>(file->gcount())];
    NSDictionary* const settings = dictionaryFrom(data);
    if (settings != nil && restore(settings, effect, music)) {
        return "";
    }
    return "The settings " + quotedPath(path) + " cannot be read and are ignored.";
}

} // namespace host
