#include "Command.h"

#include <gmock/gmock.h>

#include <regex>
#include <sstream>
#include <string>
#include <vector>

namespace {

using testing::Contains;
using testing::IsEmpty;
using testing::Not;

/// What must not be found in a linked file, as regular expressions.
struct Rule {
    std::string target;
    std::string libraries; // names of needed libraries
    std::string symbols;   // names of defined symbols, mangled
};

// All our libraries are static except the compatibility layer, so host and bundle need none of
// the others; what one contains of the other would show among its symbols.
const Rule kRules[] = {
    {"AudioUnitCompat", "[Tt]arvel|Xe|gnustep-gui", "XeString|XeSlider|TarvelEffect|TarvelCocoa"},
    {"Tarvel", "[Tt]arvel|Xe", "TarvelEffect|N4host"},
    {"tarvel-host", "[Tt]arvel|Xe", "XeSlider|XeParameterSetter|TarvelCocoaView"},
};

/// What `pattern` captures in the lines that `command` prints.
std::vector<std::string> captured(const std::string& command, const char* pattern)
{
    const CommandResult result = runCommand(command);
    EXPECT_EQ(result.status, 0) << command << '\n' << result.output;
    const std::regex expression(pattern);
    std::vector<std::string> found;
    std::istringstream lines(result.output);
    std::smatch match;
    for (std::string line; std::getline(lines, line);) {
        if (std::regex_search(line, match, expression)) {
            found.push_back(match[1]);
        }
    }
    return found;
}

std::vector<std::string> neededLibraries(const std::string& file)
{
    return captured("LC_ALL=C readelf -dW " + quoted(file), R"(\(NEEDED\).*\[(.*)\])");
}

// A row of the symbol table: number, value, size, type, binding, visibility, section, name. The
// section of a symbol that comes from elsewhere is "UND".
std::vector<std::string> definedSymbols(const std::string& file)
{
    return captured("LC_ALL=C readelf -sW " + quoted(file),
                    R"(^\s*\d+:(?:\s+\S+){5}\s+(?:\d+|ABS)\s+(\S.*)$)");
}

std::vector<std::string> matching(const std::vector<std::string>& names, const std::string& pattern)
{
    const std::regex expression(pattern);
    std::vector<std::string> found;
    for (const std::string& name : names) {
        if (std::regex_search(name, expression)) {
            found.push_back(name);
        }
    }
    return found;
}

std::vector<std::string> violations(const Rule& rule, const std::string& file)
{
    auto found = matching(neededLibraries(file), rule.libraries);
    const auto symbols = matching(definedSymbols(file), rule.symbols);
    found.insert(found.end(), symbols.begin(), symbols.end());
    return found;
}

// The build names what it has made of these: "target=file,target=file".
std::string fileOf(const std::string& target)
{
    std::istringstream stream(TARVEL_BINARIES);
    for (std::string entry; std::getline(stream, entry, ',');) {
        if (entry.starts_with(target + '=')) {
            return entry.substr(target.size() + 1);
        }
    }
    return "";
}

TEST(Binaries, NeedAndContainNothingFromTheOtherSide)
{
    for (const Rule& rule : kRules) {
        const std::string file = fileOf(rule.target);
        if (!file.empty()) {
            SCOPED_TRACE(file);
            EXPECT_THAT(violations(rule, file), IsEmpty());
        }
    }
}

// ---- the check itself: a program that needs libTarvelFixture.so and defines TarvelCocoaView ----

TEST(BinariesCheck, ReadsNeededLibrariesAndDefinedSymbols)
{
    const std::string fixture = fileOf("fixture");
    EXPECT_THAT(neededLibraries(fixture), Contains("libTarvelFixture.so"));
    EXPECT_THAT(neededLibraries(fixture), Contains(testing::StartsWith("libc.so")));
    EXPECT_THAT(definedSymbols(fixture), Contains("main"));
    EXPECT_THAT(definedSymbols(fixture), Contains("TarvelCocoaViewFixture"));
    EXPECT_THAT(definedSymbols(fixture), Not(Contains(testing::HasSubstr("usedByTheFixture"))));
}

TEST(BinariesCheck, FindsWhatIsForbidden)
{
    const Rule host = {"fixture", "[Tt]arvel|Xe", "XeSlider|XeParameterSetter|TarvelCocoaView"};
    EXPECT_THAT(violations(host, fileOf("fixture")),
                testing::ElementsAre("libTarvelFixture.so", "TarvelCocoaViewFixture"));
    EXPECT_THAT(violations({"fixture", "gnustep-gui", "N4host"}, fileOf("fixture")), IsEmpty());
}

} // namespace
