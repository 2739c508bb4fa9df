#pragma once

#include <AudioUnitCompat/InProcessUnit.h>

#include <atomic>
#include <cstring>
#include <map>
#include <tuple>
#include <vector>

/// A unit with ten parameters, global scope, element 0, and the properties a test gives it.
class TestUnit : public ComponentInstanceRecord {
public:
    static constexpr AudioUnitParameterID kParameters = 10;

    struct Property {
        std::vector<unsigned char> value;
        bool writable = true;
        OSStatus getError = noErr;
        unsigned sets = 0;
    };

    template <typename Value>
    void addProperty(AudioUnitPropertyID property, const Value& value,
                     AudioUnitScope scope = kAudioUnitScope_Global, AudioUnitElement element = 0)
    {
        Property& added = properties[{property, scope, element}];
        added.value.resize(sizeof value);
        std::memcpy(added.value.data(), &value, sizeof value);
    }

    Property& propertyAt(AudioUnitPropertyID property,
                         AudioUnitScope scope = kAudioUnitScope_Global,
                         AudioUnitElement element = 0)
    {
        return properties.at({property, scope, element});
    }

    OSStatus getPropertyInfo(AudioUnitPropertyID property, AudioUnitScope scope,
                             AudioUnitElement element, UInt32* outSize,
                             Boolean* outWritable) override
    {
        const auto found = properties.find({property, scope, element});
        if (found == properties.end()) {
            return kAudioUnitErr_InvalidProperty;
        }
        *outSize = static_cast<UInt32>(found->second.value.size());
        *outWritable = found->second.writable;
        return noErr;
    }

    OSStatus getProperty(AudioUnitPropertyID property, AudioUnitScope scope,
                         AudioUnitElement element, void* outData) override
    {
        const Property& wanted = propertyAt(property, scope, element);
        if (wanted.getError == noErr) {
            std::memcpy(outData, wanted.value.data(), wanted.value.size());
        }
        return wanted.getError;
    }

    OSStatus setProperty(AudioUnitPropertyID property, AudioUnitScope scope,
                         AudioUnitElement element, const void* data, UInt32 size) override
    {
        Property& changed = propertyAt(property, scope, element);
        const auto* const bytes = static_cast<const unsigned char*>(data);
        changed.value.assign(bytes, bytes + size);
        ++changed.sets;
        propertyChanged(property, scope, element);
        return noErr;
    }

    OSStatus getParameter(AudioUnitParameterID parameter, AudioUnitScope, AudioUnitElement,
                          AudioUnitParameterValue* outValue) override
    {
        if (parameter >= kParameters) {
            return kAudioUnitErr_InvalidParameter;
        }
        *outValue = values[parameter];
        return noErr;
    }

    OSStatus setParameter(AudioUnitParameterID parameter, AudioUnitScope, AudioUnitElement,
                          AudioUnitParameterValue value, UInt32 bufferOffsetInFrames) override
    {
        if (parameter >= kParameters) {
            return kAudioUnitErr_InvalidParameter;
        }
        values[parameter] = value;
        lastOffset = bufferOffsetInFrames;
        return noErr;
    }

    std::atomic<AudioUnitParameterValue> values[kParameters] = {};
    std::atomic<UInt32> lastOffset{0};
    std::map<std::tuple<AudioUnitPropertyID, AudioUnitScope, AudioUnitElement>, Property>
        properties;
};
