#include "CallLog.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <iterator>
#include <string_view>
#include <utility>

namespace host {

namespace {

enum Fields : unsigned {
    kListener = 1U << 0,
    kTiming = 1U << 1,
    kEventType = 1U << 2,
    kAddress = 1U << 3,
    kSize = 1U << 4,
    kValue = 1U << 5,
    kObject = 1U << 6,
    kEverything = ~0U,
};

struct FunctionRow {
    std::string_view function;
    unsigned fields;
};

constexpr unsigned kEventFields = kListener | kEventType | kAddress | kObject;

// clang-format off
constexpr FunctionRow kFunctions[] = {
    { "AudioUnitGetPropertyInfo",                        kAddress },
    { "AudioUnitGetProperty",                            kAddress | kSize },
    { "AudioUnitSetProperty",                            kAddress | kSize },
    { "AudioUnitGetParameter",                           kAddress },
    { "AudioUnitSetParameter",                           kAddress | kValue },
    { "AUEventListenerCreate",                           kTiming },
    { "AUEventListenerAddEventType",                     kEventFields },
    { "AUEventListenerRemoveEventType",                  kEventFields },
    { "AUEventListenerNotify",                           kEventFields },
    { "AUParameterSet",                                  kListener | kAddress | kValue | kObject },
    { "AUParameterListenerNotify",                       kListener | kAddress | kObject },
    { "AUListenerDispose",                               kListener },
};
constexpr std::array<const char*, 4> kEventNames  = { "value-change", "begin-gesture", "end-gesture", "property-change" };
constexpr std::array<const char*, 8> kScopeNames  = { "global", "input", "output", "group", "part", "note", "layer", "layer-item" };
// clang-format on

/// A function that is not in the table shows all it has.
unsigned fieldsOf(std::string_view function)
{
    const auto* const row =
        std::find_if(std::begin(kFunctions), std::end(kFunctions),
                     [function](const FunctionRow& each) { return each.function == function; });
    return row == std::end(kFunctions) ? static_cast<unsigned>(kEverything) : row->fields;
}

template <std::size_t Count>
std::string codeName(const std::array<const char*, Count>& names, UInt32 code)
{
    return code < Count ? names[code] : std::to_string(code);
}

std::string number(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%g", value);
    return text;
}

} // namespace

void CallLog::name(const void* object, std::string name)
{
    const std::lock_guard lock(m_mutex);
    m_names[object] = std::move(name);
}

void CallLog::nameUnit(AudioUnit unit, std::string name)
{
    const std::lock_guard lock(m_mutex);
    m_units[unit] = std::move(name);
}

void CallLog::add(const audiounit_compat::Call& call, OSStatus injectedResult)
{
    const std::lock_guard lock(m_mutex);
    std::string line = lineOf(call);
    if (injectedResult != noErr) {
        line += " -> " + std::to_string(injectedResult);
    }
    m_lines.push_back(std::move(line));
    if (std::string_view(call.function) == "AUListenerDispose") {
        m_listeners.erase(call.listener); // its address may come back as another listener's
    }
}

std::vector<std::string> CallLog::take()
{
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_lines, {});
}

std::string CallLog::lineOf(const audiounit_compat::Call& call)
{
    const unsigned fields = fieldsOf(call.function);
    std::string line = call.function;
    if ((fields & kListener) != 0) {
        line += " " + listenerName(call.listener);
    }
    if ((fields & kTiming) != 0) {
        line += " interval " + number(call.interval) + " granularity " + number(call.granularity);
    }
    if ((fields & kEventType) != 0) {
        line += " " + codeName(kEventNames, call.eventType);
    }
    if ((fields & kAddress) != 0) {
        line += " " + std::to_string(call.id) + " " + codeName(kScopeNames, call.scope) + "/" +
                std::to_string(call.element);
    }
    if ((fields & kSize) != 0) {
        line += " size " + std::to_string(call.size);
    }
    if ((fields & kValue) != 0) {
        line += " value " + number(call.value);
    }
    if ((fields & kObject) != 0) {
        line += " object " + objectName(call.object);
    }
    const auto unit = m_units.find(call.unit);
    return unit == m_units.end() ? line : line + " on " + unit->second;
}

std::string CallLog::objectName(const void* object)
{
    if (object == nullptr) {
        return "nil";
    }
    auto& name = m_names[object];
    if (name.empty()) {
        name = "#" + std::to_string(++m_objectCount);
    }
    return name;
}

std::string CallLog::listenerName(AUEventListenerRef listener)
{
    if (listener == nullptr) {
        return "no listener";
    }
    auto& name = m_listeners[listener];
    if (name.empty()) {
        name = "listener " + std::to_string(++m_listenerCount);
    }
    return name;
}

} // namespace host
