#pragma once

#include "CallLog.h"

#include <AudioUnitCompat/Testing.h>

#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace host {

/// Which calls fail, and how.
struct Fault {
    std::string function;     // "AudioUnitGetParameter"; empty: every function
    std::optional<UInt32> id; // property or parameter; none: every one
    int nth = 0;              // 1 fails the first call that matches from now on, 0 all of them
    OSStatus result = kAudioUnitErr_InvalidProperty;
};

/// Logs every client call of the process for as long as it lives and fails the chosen ones. One
/// at a time. Made and destroyed while no other thread makes client calls; else [any].
class EffectProbe final : public audiounit_compat::CallProbe {
public:
    EffectProbe();
    ~EffectProbe() override;
    EffectProbe(const EffectProbe&) = delete;
    EffectProbe& operator=(const EffectProbe&) = delete;

    /// Adds a fault. Of several that match a call, the first one added decides.
    void inject(Fault fault);
    void clearFaults();

    CallLog& log() { return m_log; }

    OSStatus willCall(const audiounit_compat::Call& call) override;

private:
    struct Armed {
        Fault fault;
        int matches = 0;
    };

    OSStatus injectedResult(const audiounit_compat::Call& call);

    CallLog m_log;
    std::mutex m_mutex;
    std::vector<Armed> m_faults;
};

} // namespace host
