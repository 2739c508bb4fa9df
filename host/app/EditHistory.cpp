#include "EditHistory.h"

namespace host {

void EditHistory::reset(const Values& values)
{
    *this = EditHistory();
    m_values = values;
}

void EditHistory::begin(AudioUnitParameterID parameter)
{
    if (parameter >= kParameterCount) {
        return;
    }
    Gesture& gesture = m_gestures[parameter];
    if (gesture.depth++ == 0) {
        gesture.before = m_values[parameter];
        ++m_open;
    }
}

void EditHistory::change(AudioUnitParameterID parameter, AudioUnitParameterValue value)
{
    if (parameter >= kParameterCount || m_values[parameter] == value) {
        return;
    }
    const AudioUnitParameterValue before = m_values[parameter];
    m_values[parameter] = value;
    if (m_gestures[parameter].depth > 0) {
        return;
    }
    if (m_joins && m_done == m_steps.size() && m_steps.back().parameter == parameter) {
        m_steps.back().after = value;
        return;
    }
    push({parameter, before, value});
    m_joins = true;
}

void EditHistory::end(AudioUnitParameterID parameter)
{
    if (parameter >= kParameterCount || m_gestures[parameter].depth == 0) {
        return;
    }
    Gesture& gesture = m_gestures[parameter];
    if (--gesture.depth > 0) {
        return;
    }
    --m_open;
    if (gesture.before != m_values[parameter]) {
        push({parameter, gesture.before, m_values[parameter]});
    }
}

void EditHistory::push(const Step& step)
{
    m_steps.resize(m_done);
    m_steps.push_back(step);
    m_done = m_steps.size();
    m_joins = false;
}

EditHistory::Assignment EditHistory::undo()
{
    m_joins = false;
    const Step& step = m_steps[--m_done];
    m_values[step.parameter] = step.before;
    return {step.parameter, step.before};
}

EditHistory::Assignment EditHistory::redo()
{
    m_joins = false;
    const Step& step = m_steps[m_done++];
    m_values[step.parameter] = step.after;
    return {step.parameter, step.after};
}

} // namespace host
