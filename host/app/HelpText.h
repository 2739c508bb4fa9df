#pragma once

#include <string>
#include <vector>

namespace host {

/// A paragraph of the help, and how it is set.
struct HelpParagraph {
    enum class Kind { Title, Heading, Text, Term };
    Kind kind = Kind::Text;
    const char* term = ""; // Term: what is explained, a control or a key
    const char* text = ""; // UTF-8
};

/// Topic numbers by which pages are asked for.
inline constexpr int kStartTopic = -1;
inline constexpr int kEditorTopic = 11;

/// The page of a topic; the start page for a topic that has none. [any]
const std::vector<HelpParagraph>& helpPage(int topic);

} // namespace host
