#include "EventListener.h"

#include "HostClock.h"

#include <algorithm>

using audiounit_compat::Arrival;
using audiounit_compat::EventKey;
using audiounit_compat::Registration;

namespace audiounit_compat {

EventKey keyOf(const AudioUnitEvent& event)
{
    if (event.mEventType == kAudioUnitEvent_PropertyChange) {
        const AudioUnitProperty& property = event.mArgument.mProperty;
        return {property.mAudioUnit, event.mEventType, property.mPropertyID, property.mScope,
                property.mElement};
    }
    const AudioUnitParameter& parameter = event.mArgument.mParameter;
    return {parameter.mAudioUnit, event.mEventType, parameter.mParameterID, parameter.mScope,
            parameter.mElement};
}

AudioUnitEvent eventOf(const EventKey& key)
{
    AudioUnitEvent event{};
    event.mEventType = key.type;
    if (key.type == kAudioUnitEvent_PropertyChange) {
        event.mArgument.mProperty = {key.unit, key.id, key.scope, key.element};
    } else {
        event.mArgument.mParameter = {key.unit, key.id, key.scope, key.element};
    }
    return event;
}

namespace {

bool _isGesture(AudioUnitEventType type)
{
    return type == kAudioUnitEvent_BeginParameterChangeGesture ||
           type == kAudioUnitEvent_EndParameterChangeGesture;
}

EventKey _valueKey(EventKey key)
{
    key.type = kAudioUnitEvent_ParameterValueChange;
    return key;
}

} // namespace
} // namespace audiounit_compat

AUListenerBase::AUListenerBase(AUEventListenerProc proc, void* userData, Timing timing)
    : m_proc(proc), m_userData(userData), m_timing(timing)
{
}

OSStatus AUListenerBase::start(CFRunLoopRef runLoop, CFStringRef mode)
{
    if (m_timing.interval == 0) {
        return noErr;
    }
    return m_timer.start(runLoop, mode, [self = shared_from_this()] { self->deliverDue(); });
}

void AUListenerBase::notify(const Arrival& arrival)
{
    if (m_timing.interval == 0) {
        const std::lock_guard lock(m_delivery);
        call(arrival);
    } else if (m_inbox.put(arrival) && !audiounit_compat::isClockFake()) {
        m_timer.arm(arrival.time + m_timing.interval);
    }
}

// Events stay in the inbox until they are due: only the first one after that arms the timer.
void AUListenerBase::deliverDue()
{
    const auto self = shared_from_this();
    const std::lock_guard lock(m_delivery);
    if (m_disposed) {
        return;
    }
    if (isDue()) {
        collect();
    } else {
        armForWaiting();
    }
    workOff();
}

bool AUListenerBase::isDue() const
{
    return !m_inbox.isEmpty() &&
           audiounit_compat::hostTime() >= m_inbox.firstTime() + m_timing.interval;
}

void AUListenerBase::armForWaiting()
{
    if (!m_inbox.isEmpty() && !audiounit_compat::isClockFake()) {
        m_timer.arm(m_inbox.firstTime() + m_timing.interval);
    }
}

void AUListenerBase::deliverAll()
{
    const auto self = shared_from_this();
    const std::lock_guard lock(m_delivery);
    if (!m_disposed) {
        collect();
        workOff();
    }
}

void AUListenerBase::collect()
{
    std::vector<Arrival> arrivals;
    arrivals.swap(m_arrivals);
    m_inbox.takeAll(arrivals);
    for (const Arrival& arrival : arrivals) {
        enqueue(arrival);
    }
    arrivals.clear();
    m_arrivals.swap(arrivals);
}

void AUListenerBase::enqueue(Arrival arrival)
{
    Registration& registration = *arrival.registration;
    if (!registration.active.load(std::memory_order_acquire)) {
        return;
    }
    // A thread that was held up between the clock and the inbox comes after what was delivered.
    arrival.time = m_newestTime = std::max(arrival.time, m_newestTime);

    const std::uint64_t place = m_firstPlace + m_queue.size();
    if (registration.key.type == kAudioUnitEvent_ParameterValueChange) {
        mergeInto(arrival);
        registration.lastValue = place;
    } else if (audiounit_compat::_isGesture(registration.key.type)) {
        noteGesture(registration.key);
    }
    m_queue.push_back({arrival, false});
}

// The window slides: what counts is the distance to the value queued last, which a merged one has
// taken over.
void AUListenerBase::mergeInto(const Arrival& later)
{
    const std::uint64_t place = later.registration->lastValue;
    if (place < m_firstPlace || place < lastGesture(later.registration->key)) {
        return;
    }
    Pending& earlier = m_queue[place - m_firstPlace];
    if (later.time - earlier.arrival.time < m_timing.granularity) {
        earlier.merged = true;
    }
}

void AUListenerBase::noteGesture(const EventKey& gesture)
{
    const EventKey parameter = audiounit_compat::_valueKey(gesture);
    const std::uint64_t place = m_firstPlace + m_queue.size();
    for (auto& [key, newest] : m_gestures) {
        if (key == parameter) {
            newest = place;
            return;
        }
    }
    m_gestures.emplace_back(parameter, place);
}

std::uint64_t AUListenerBase::lastGesture(const EventKey& value) const
{
    for (const auto& [key, newest] : m_gestures) {
        if (key == value) {
            return newest;
        }
    }
    return 0;
}

void AUListenerBase::workOff()
{
    const LeftoverGuard guard{*this};
    while (!m_queue.empty()) {
        const Pending pending = m_queue.front();
        m_queue.pop_front();
        ++m_firstPlace;
        if (!pending.merged) {
            call(pending.arrival);
        }
    }
    m_gestures.clear();
}

// A callback that raises ends this delivery, not the events behind its own.
AUListenerBase::LeftoverGuard::~LeftoverGuard()
{
    if (!listener.m_queue.empty() && !audiounit_compat::isClockFake()) {
        listener.m_timer.arm(audiounit_compat::hostTime());
    }
}

void AUListenerBase::call(const Arrival& arrival)
{
    const Registration& registration = *arrival.registration;
    if (m_disposed || !registration.active.load(std::memory_order_acquire)) {
        return;
    }
    const AudioUnitEvent event = audiounit_compat::eventOf(registration.key);
    m_proc(m_userData, registration.object, &event, arrival.time, arrival.value);
}

void AUListenerBase::dispose()
{
    const auto self = shared_from_this();
    m_timer.stop();
    const std::lock_guard lock(m_delivery);
    m_disposed = true;
    m_queue.clear();
}

void AUListenerBase::clockChanged()
{
    const std::lock_guard lock(m_delivery);
    m_newestTime = 0;
    armForWaiting();
}
