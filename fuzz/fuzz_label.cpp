// Typed time code: equal to a slow reader that takes the rules one by one, inside the bounds of a
// label, and stable when written and read again.

#include "FuzzInput.h"
#include "SlowNumbers.h"
#include "XePosFmt.h"

#include <string>

namespace {

/// The text in four fields between colons, empty when there are more.
std::wstring fourFields(std::wstring text)
{
    for (wchar_t& c : text) {
        c = slow::isDigit(c) ? c : L':';
    }
    if (text.find(L':') == std::wstring::npos) {
        for (auto at = static_cast<std::ptrdiff_t>(text.size()) - 2; at >= 1; at -= 2) {
            text.insert(static_cast<std::size_t>(at), 1, L':');
        }
    }
    while (std::count(text.begin(), text.end(), L':') < 3) {
        text.insert(0, L"0:");
    }
    return std::count(text.begin(), text.end(), L':') == 3 ? text : L"";
}

unsigned takeField(std::wstring& text)
{
    const std::size_t end = text.find(L':');
    const auto value = static_cast<unsigned>(slow::readInteger(text.substr(0, end)).value);
    text.erase(0, end == std::wstring::npos ? text.size() : end + 1);
    return value;
}

bool slowLabel(std::wstring text, XESMPTEVAL& label, unsigned fps, bool halfStep)
{
    while (!text.empty() && slow::isSpace(text.front())) {
        text.erase(0, 1);
    }
    while (!text.empty() && slow::isSpace(text.back())) {
        text.pop_back();
    }
    const bool star = !text.empty() && text.back() == L'*';
    if (star) {
        text.pop_back();
    }
    text = fourFields(text);
    if (text.empty()) {
        return false;
    }
    label.hours = takeField(text);
    label.minutes = takeField(text);
    label.seconds = takeField(text);
    label.frames = takeField(text);
    if (halfStep && fps / 2 != 0) {
        label.seconds += label.frames / (fps / 2);
        label.frames = label.frames % (fps / 2) * 2 + (star ? 1 : 0);
    } else if (!halfStep && fps != 0) {
        label.seconds += label.frames / fps;
        label.frames = label.frames % fps;
        label.field = star;
    }
    label.minutes += label.seconds / 60;
    label.seconds %= 60;
    label.hours = (label.hours + label.minutes / 60) % 24;
    label.minutes %= 60;
    return true;
}

void checkWrittenAgain(const XESMPTEVAL& label, unsigned fps)
{
    XePosFmt format(zqposfmt_smpte_30);
    format.dFrameRate = fps;
    require(format.smpteFromString(format.smpteToString(label, 0)) == label);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 2) {
        return 0;
    }
    const unsigned fps = data[0];
    const bool halfStep = data[1] % 2 != 0;
    const _XeString<wchar_t> text = textOf(bytesOf(data + 2, size - 2));

    XESMPTEVAL expected;
    XESMPTEVAL label{1, 1, 1, 1, 1, true};
    const bool read = slowLabel(text, expected, fps, halfStep);
    require(AsciiToSMPTE(text, &label, fps, halfStep) == read);
    if (!read) {
        return 0;
    }
    require(label == expected);
    require(label.hours < 24 && label.minutes < 60 && label.seconds < 60);
    require(fps < 2 || label.frames < fps);
    if (!halfStep && fps != 0) {
        checkWrittenAgain(label, fps);
    }
    return 0;
}
