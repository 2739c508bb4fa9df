#pragma once

#include "host/effect/TarvelProtocol.h"

#include <array>
#include <cstddef>
#include <vector>

namespace host {

/// What the user has changed in the effect, step by step, to be undone and redone.
///
/// It is fed with what a listener on the effect hears, in that order. A gesture, from its begin to
/// its end, makes one step when the parameter ends with another value than it began with. A change
/// without a gesture, as by a key that moves a slider, is a step too; further ones of the same
/// parameter join it until something else happens. [main]
///
///     EditHistory history(values);
///     history.begin(1); history.change(1, -20); history.change(1, -12); history.end(1);
///     history.undo();  // parameter 1, back to what `values` say
class EditHistory {
public:
    using Values = std::array<AudioUnitParameterValue, kParameterCount>;

    /// A value to be given to the effect.
    struct Assignment {
        AudioUnitParameterID parameter = 0;
        AudioUnitParameterValue value = 0;

        friend bool operator==(const Assignment&, const Assignment&) = default;
    };

    /// Forgets everything. `values` are those the effect has now.
    void reset(const Values& values);

    /// The three kinds of event. Other parameters than the effect's are ignored, gestures may nest
    /// and overlap. While one is under way nothing can be undone.
    void begin(AudioUnitParameterID parameter);
    void change(AudioUnitParameterID parameter, AudioUnitParameterValue value);
    void end(AudioUnitParameterID parameter);

    /// Ends the joining of changes without a gesture.
    void separate() { m_joins = false; }

    bool canUndo() const { return m_done > 0 && m_open == 0; }
    bool canRedo() const { return m_done < m_steps.size() && m_open == 0; }

    /// Parameter of the step that undo() or redo() takes. Only when it can.
    AudioUnitParameterID undoParameter() const { return m_steps[m_done - 1].parameter; }
    AudioUnitParameterID redoParameter() const { return m_steps[m_done].parameter; }

    /// Take one step and tell what to set. The event of that set changes nothing here. Only when
    /// there is a step.
    Assignment undo();
    Assignment redo();

private:
    struct Step {
        AudioUnitParameterID parameter;
        AudioUnitParameterValue before;
        AudioUnitParameterValue after;
    };

    struct Gesture {
        int depth = 0;
        AudioUnitParameterValue before = 0;
    };

    void push(const Step& step);

    Values m_values{};
    std::array<Gesture, kParameterCount> m_gestures{};
    std::vector<Step> m_steps;
    std::size_t m_done = 0; // steps that are not undone
    unsigned m_open = 0;    // gestures under way
    bool m_joins = false;   // whether the last step takes further changes
};

} // namespace host
