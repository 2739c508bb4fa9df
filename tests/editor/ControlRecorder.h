#pragma once

#import "OpenEditor.h"

#include <map>
#include <string>
#include <vector>

namespace editor_test {

/// Stands between an editor and some of its controls and writes down, in order, every message that
/// the editor sends them:
///
///     fadeInLengthTextField setFormat: 9
///     fadeInLengthTextField setIsLength: 1
///     fadeInLengthTextField getIncrement
///
/// The messages still arrive. Numbers are written with %.10g, other objects by their class. The
/// editor gets its controls back when the recorder goes; it must not be closed before. [main]
class ControlRecorder {
public:
    ControlRecorder(OpenEditor& editor, std::vector<std::string> outlets);
    ~ControlRecorder();
    ControlRecorder(const ControlRecorder&) = delete;
    ControlRecorder& operator=(const ControlRecorder&) = delete;

    /// What was written since the last take; with words, only the lines that contain one of them.
    std::vector<std::string> take();
    std::vector<std::string> take(const std::vector<std::string>& words);

private:
    OpenEditor& m_editor;
    std::vector<std::string> m_lines;
    std::map<std::string, id> m_proxies;
};

} // namespace editor_test
