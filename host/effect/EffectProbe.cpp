#include "EffectProbe.h"

#include <utility>

namespace host {

namespace {

bool matches(const Fault& fault, const audiounit_compat::Call& call)
{
    return (fault.function.empty() || fault.function == call.function) &&
           (!fault.id || *fault.id == call.id);
}

} // namespace

EffectProbe::EffectProbe() { audiounit_compat::setCallProbe(this); }

EffectProbe::~EffectProbe() { audiounit_compat::setCallProbe(nullptr); }

void EffectProbe::inject(Fault fault)
{
    const std::lock_guard lock(m_mutex);
    m_faults.push_back({std::move(fault)});
}

void EffectProbe::clearFaults()
{
    const std::lock_guard lock(m_mutex);
    m_faults.clear();
}

OSStatus EffectProbe::willCall(const audiounit_compat::Call& call)
{
    const OSStatus result = injectedResult(call);
    m_log.add(call, result);
    return result;
}

// Every fault counts the calls that match it, also those which an earlier fault has failed.
OSStatus EffectProbe::injectedResult(const audiounit_compat::Call& call)
{
    const std::lock_guard lock(m_mutex);
    OSStatus result = noErr;
    for (Armed& armed : m_faults) {
        if (!matches(armed.fault, call)) {
            continue;
        }
        ++armed.matches;
        const bool due = armed.fault.nth == 0 || armed.fault.nth == armed.matches;
        if (due && result == noErr) {
            result = armed.fault.result;
        }
    }
    return result;
}

} // namespace host
