#pragma once

#include <AudioUnitCompat/Testing.h>

#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace host {

/// The client calls of a test in order, one readable line each:
///
///     AUEventListenerCreate interval 0.05 granularity 0.05
///     AUEventListenerAddEventType listener 1 value-change 3 global/0 object view
///     AudioUnitGetProperty 3020 global/0 size 8
///     AudioUnitSetParameter 1 global/0 value -20
///     AUListenerDispose listener 1 -> -50
///
/// A line has only the fields that the function has, and a result when the call was made to fail.
/// Listeners are numbered from 1 in order of appearance; an object without a name is "#1", "#2"
/// and so on. [any]
class CallLog {
public:
    /// Has `object` written as `name`. Null is always written "nil".
    void name(const void* object, std::string name);

    /// Has lines about `unit` end with " on " and its name, for tests with several units.
    void nameUnit(AudioUnit unit, std::string name);

    void add(const audiounit_compat::Call& call, OSStatus injectedResult);

    /// What was written since the last take.
    std::vector<std::string> take();

private:
    std::string lineOf(const audiounit_compat::Call& call);
    std::string objectName(const void* object);
    std::string listenerName(AUEventListenerRef listener);

    std::mutex m_mutex;
    std::vector<std::string> m_lines;
    std::map<const void*, std::string> m_names;
    std::map<const void*, std::string> m_listeners;
    std::map<const void*, std::string> m_units;
    int m_listenerCount = 0;
    int m_objectCount = 0;
};

} // namespace host
