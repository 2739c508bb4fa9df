// Numbers to text and back beside the C library, {fmt}, Boost and the standard library. "floor" is
// the least that could give the same result: one pass over the characters for the readers, one copy
// of known text for the writers. Peers read and write what they like best. Ours comes last in each
// group.

#include "XePrint.h"
#include "XeUtil.h"

#include "ComparedRows.h"
#include "Hidden.h"

#include <boost/lexical_cast.hpp>
#include <fmt/xchar.h>

#include <charconv>
#include <cwchar>
#include <locale>
#include <sstream>
#include <string>

namespace {

using Text = _XeString<wchar_t>;

void addInteger()
{
    static const Text kText = L"178730000";
    static const std::string kNarrow = "178730000";

    addComparedRow("integer", "floor", [] {
        long long value = 0;
        for (const wchar_t c : hidden(kText)) {
            value = value * 10 + (c - L'0');
        }
        use(value);
    });
    addComparedRow("integer", "wcstoll",
                   [] { use(std::wcstoll(hidden(kText).c_str(), nullptr, 10)); });
    addComparedRow("integer", "from_chars_narrow", [] {
        long long value = 0;
        benchmark::DoNotOptimize(kNarrow.data());
        std::from_chars(kNarrow.data(), kNarrow.data() + kNarrow.size(), value);
        use(value);
    });
    addComparedRow("integer", "swscanf", [] {
        long long value = 0;
        std::swscanf(hidden(kText).c_str(), L"%lld", &value);
        use(value);
    });
    addComparedRow("integer", "lexical_cast", [] {
        const Text& text = hidden(kText);
        use(boost::lexical_cast<long long>(text.data(), text.size()));
    });
    addComparedRow("integer", "atoi", [] {
        const Text& text = hidden(kText);
        long long value = 0;
        use(xenon::util::atoi(text.begin(), text.end(), value));
        use(value);
    });
}

void addDecimal()
{
    static const Text kText = L"3723.5416";
    static const std::string kNarrow = "3723.5416";

    addComparedRow("decimal", "floor", [] {
        long long digits = 0;
        for (const wchar_t c : hidden(kText)) {
            digits = c == L'.' ? digits : digits * 10 + (c - L'0');
        }
        use(static_cast<double>(digits) / 1e4);
    });
    addComparedRow("decimal", "wcstod", [] { use(std::wcstod(hidden(kText).c_str(), nullptr)); });
    addComparedRow("decimal", "from_chars_narrow", [] {
        double value = 0;
        benchmark::DoNotOptimize(kNarrow.data());
        std::from_chars(kNarrow.data(), kNarrow.data() + kNarrow.size(), value);
        use(value);
    });
    addComparedRow("decimal", "swscanf", [] {
        double value = 0;
        std::swscanf(hidden(kText).c_str(), L"%lf", &value);
        use(value);
    });
    addComparedRow("decimal", "lexical_cast", [] {
        const Text& text = hidden(kText);
        use(boost::lexical_cast<double>(text.data(), text.size()));
    });
    addComparedRow("decimal", "myatof", [] {
        wchar_t* const text = const_cast<wchar_t*>(hidden(kText).c_str()); // has no tail to cut
        double value = 0;
        use(xenon::util::myatof(text, &value));
        use(value);
    });
    addComparedRow("decimal", "atof", [] {
        const Text& text = hidden(kText);
        double value = 0;
        use(xenon::util::atof(text.begin(), text.end(), value));
        use(value);
    });
}

/// The classic locale has a separator but never uses it.
class Grouping : public std::numpunct<wchar_t> {
protected:
    std::string do_grouping() const override { return "\3"; }
};

// {fmt} and the stream also print the number; the others get a fresh copy of the printed text,
// since grouping works in place.
void addGrouping()
{
    static const Text kPlain = L"-1234567.891";
    static const Text kGrouped = L"-1,234,567.891";
    static const std::locale kLocale(std::locale::classic(), new Grouping);

    addComparedRow("group", "floor", [] {
        static Text text;
        text = kPlain;
        text = kGrouped;
        use(text);
    });
    addComparedRow("group", "insert", [] {
        static Text text;
        text = kPlain;
        for (std::size_t at = text.find(L'.'); at > 4;) {
            at -= 3;
            text.insert(at, 1, L',');
        }
        use(text);
    });
    addComparedRow("group", "fmt", [] { use(fmt::format(kLocale, L"{:.3Lf}", -1234567.891)); });
    addComparedRow("group", "put_stream", [] {
        std::wostringstream out;
        out.imbue(kLocale);
        out.precision(3);
        out << std::fixed << -1234567.891;
        use(out);
    });
    addComparedRow("group", "PrettyNumber", [] {
        static Text text;
        text = kPlain;
        PrettyNumber(text);
        use(text);
    });
}

void addPrint()
{
    static const Text kResult = L"2.500";

    addComparedRow("print", "floor", [] {
        static Text text;
        text = hidden(kResult);
        use(text);
    });
    addComparedRow("print", "swprintf", [] {
        wchar_t buffer[40];
        benchmark::DoNotOptimize(buffer);
        use(std::swprintf(buffer, 40, L"%.*f", 3, 2.5));
    });
    addComparedRow("print", "fmt", [] { use(fmt::format(L"{:.{}f}", 2.5, 3)); });
    addComparedRow("print", "lexical_cast", [] { use(boost::lexical_cast<std::wstring>(2.5)); });
    addComparedRow("print", "XeSprintf", [] {
        Text text;
        XeSprintf(text, L"%.*f", 3, 2.5);
        use(text);
    });
    addComparedRow("print", "doubleToString_trim",
                   [] { use(xenon::util::doubleToString(2.5, 3, true)); });
    addComparedRow("print", "doubleToString_range",
                   [] { use(xenon::util::doubleToString(2.5, 3, 1)); });
    addComparedRow("print", "FormatFloatPretty", [] {
        Text text;
        Text pattern = L"0.000";
        FormatFloatPretty(text, 2.5, pattern, true);
        use(text);
    });
}

[[maybe_unused]] const bool g_added = [] {
    addInteger();
    addDecimal();
    addGrouping();
    addPrint();
    return true;
}();

} // namespace
