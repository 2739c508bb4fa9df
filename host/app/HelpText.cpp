#include "HelpText.h"

namespace host {

namespace {

using Kind = HelpParagraph::Kind;

// clang-format off
const std::vector<HelpParagraph> kStartPage = {
    {Kind::Title,   "", "Tarvel"},
    {Kind::Text,    "", "Open a recording, see what will be cut, set it in the units you think in, and export the result. The recording itself is never changed."},
    {Kind::Heading, "", "How it goes"},
    {Kind::Term,    "Open", "Choose File, Open, drop a file on the window, or pick one of the recent files."},
    {Kind::Term,    "Look", "What is kept is blue and as loud as it becomes; what is cut is grey. Yellow lines are the fades. Dashed lines are the thresholds: green for attack, orange for release."},
    {Kind::Term,    "Point", "The line below the waveform tells the position under the pointer, in the format of the editor's fields."},
    {Kind::Term,    "Undo", "Every movement of a control is one step, however far it went."},
    {Kind::Term,    "Export", "The name's ending decides the kind of file: .wav, .flac or .aiff. Bit depth, rate and channels stay. A file gets its name only when it is whole."},
    {Kind::Term,    "Come back", "Settings are kept beside the recording, in a file of its name with \".tarvel\" behind it, and are there again when it is opened."},
    {Kind::Heading, "", "Shortcuts"},
    {Kind::Term,    "Super+O", "Open a recording"},
    {Kind::Term,    "Super+E", "Export the result"},
    {Kind::Term,    "Super+Z", "Undo"},
    {Kind::Term,    "Super+Shift+Z", "Redo"},
    {Kind::Term,    "Super+T", "Tempo and time signature"},
    {Kind::Term,    "Super+X, C, V, A", "Cut, copy, paste, select all in a field"},
    {Kind::Term,    "Super+?", "This page"},
    {Kind::Term,    "Super+W", "Close the window in front"},
    {Kind::Term,    "Super+Q", "Quit"},
    {Kind::Text,    "", "The editor's own controls and keys are on the page that its ? button opens."},
};

const std::vector<HelpParagraph> kEditorPage = {
    {Kind::Title,   "", "The editor"},
    {Kind::Text,    "", "Ten values decide what stays of a recording and how its edges sound. Every change shows in the waveform at once."},
    {Kind::Heading, "", "Function"},
    {Kind::Term,    "Trim Start and End", "Keeps everything from the first frame that reaches the attack threshold to the last that reaches the release threshold."},
    {Kind::Term,    "Remove Silence", "Takes out every silence that lasts at least as long as the minimum silence."},
    {Kind::Term,    "Crop", "Keeps what the crop start and the crop length cover."},
    {Kind::Term,    "Fades Only", "Keeps everything and fades its two ends."},
    {Kind::Heading, "", "Thresholds"},
    {Kind::Term,    "Attack", "Level at which sound begins, -60 to 0 dB of full scale. -60 means minus infinity: nothing is cut in front."},
    {Kind::Term,    "Release", "Level under which sound ends, in the same range."},
    {Kind::Term,    "dB and %", "The unit of the two fields: decibels, or percent of full scale. The sliders always move in dB."},
    {Kind::Heading, "", "Fades"},
    {Kind::Term,    "Fade in, fade out", "Length of the fade at every new edge. Fades that are longer than what is kept are shortened in proportion."},
    {Kind::Term,    "Curve", "Linear; equal power; logarithmic, early and flattening; exponential, late and steep; S-curve."},
    {Kind::Heading, "", "Lengths"},
    {Kind::Term,    "Minimum silence", "Shortest silence that Remove Silence takes out, 100 ms or more. Greyed in other functions."},
    {Kind::Term,    "Crop start, crop length", "What Crop keeps. Greyed in other functions."},
    {Kind::Term,    "Format", "Right-click a length to choose how all lengths are written and typed: samples, clock time, seconds, measures and beats, SMPTE time code, feet and frames, CD frames."},
    {Kind::Heading, "", "Keys on a slider"},
    {Kind::Term,    "Arrows, Page Up, Page Down", "One step, or a large one"},
    {Kind::Term,    "Alt with arrows", "A fine step, 0.1 dB"},
    {Kind::Term,    "Home, End", "An end of the range"},
    {Kind::Term,    "Double-click", "Back to the value it had when the editor opened"},
    {Kind::Heading, "", "Keys in a field"},
    {Kind::Term,    "Return, Tab", "Take what was typed; Tab goes on to the next control"},
    {Kind::Term,    "Escape", "Back to the value before typing"},
    {Kind::Term,    "Up, Down, wheel", "Step the part of a length that holds the caret: hours, seconds, frames"},
    {Kind::Term,    "Menu key, Shift+F10", "The format menu"},
    {Kind::Heading, "", "Keys in an open menu"},
    {Kind::Term,    "Arrows, Home, End", "Another item; the first arrow goes to the ticked one"},
    {Kind::Term,    "Return, space", "Take the item"},
    {Kind::Term,    "Escape", "Close the menu"},
};
// clang-format on

} // namespace

const std::vector<HelpParagraph>& helpPage(int topic)
{
    return topic == kEditorTopic ? kEditorPage : kStartPage;
}

} // namespace host
