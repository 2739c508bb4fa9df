#include "Command.h"
#include "SourceTree.h"
#include "TemporaryTree.h"

#include <boost/property_tree/json_parser.hpp>
#include <boost/property_tree/ptree.hpp>
#include <gmock/gmock.h>

#include <atomic>
#include <fstream>
#include <future>
#include <iterator>
#include <mutex>
#include <regex>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace fs = std::filesystem;

namespace {

using testing::IsEmpty;

/// How the build compiles the clients of a library: header checks use the same options.
class Client {
public:
    /// Takes the command of the first source of the build whose path from the root matches
    /// `pattern`.
    explicit Client(const std::string& pattern)
    {
        boost::property_tree::ptree database;
        boost::property_tree::read_json(TARVEL_BINARY_DIR "/compile_commands.json", database);
        const std::regex source(TARVEL_SOURCE_DIR "/" + pattern);
        for (const auto& [name, entry] : database) {
            if (std::regex_match(entry.get<std::string>("file"), source)) {
                m_folder = entry.get<std::string>("directory");
                m_command = entry.get<std::string>("command");
                return;
            }
        }
    }

    bool exists() const { return !m_command.empty(); }

    /// The whole command but for source, outputs, later steps and headers it takes unasked.
    std::string sameCompiler() const
    {
        static const std::regex kDropped(
            R"( -(o|c|MT|MF) \S+| -MD| && .*| -Xclang -include(-pch)? -Xclang \S+)");
        return inFolder(std::regex_replace(m_command, kDropped, ""));
    }

    /// g++ with the command's include folders and definitions.
    std::string gcc() const
    {
        static const std::regex kKept(R"( (-I\S+|-D\S+|-isystem \S+))");
        std::string command = "g++ -std=c++20 -Wall -Wextra";
        for (std::sregex_iterator it(m_command.begin(), m_command.end(), kKept), end; it != end;
             ++it) {
            command += it->str();
        }
        return inFolder(command);
    }

private:
    std::string inFolder(const std::string& command) const
    {
        return "cd " + quoted(m_folder) + " && " + command;
    }

    std::string m_folder;
    std::string m_command;
};

bool isObjectiveC(const fs::path& header)
{
    static const std::regex kObjectiveC(R"((^|\n)\s*(#\s*import|@(interface|class|protocol)\b))");
    std::ifstream stream(header);
    const std::string text((std::istreambuf_iterator<char>(stream)), {});
    return std::regex_search(text, kObjectiveC);
}

/// What the compiler says to a source that includes nothing but `header`; empty when it is content.
std::string complaint(const std::string& compiler, const fs::path& header,
                      const std::string& extension)
{
    const TemporaryTree folder;
    const auto source = folder.write("alone" + extension, "#include \"" + header.string() + "\"\n");
    const CommandResult result =
        runCommand(compiler + " -fsyntax-only -Werror " + quoted(source.string()));
    return result.status == 0 ? "" : header.string() + ":\n" + result.output;
}

/// The complaints about many headers, on all processors.
std::vector<std::string> complaints(const std::string& compiler,
                                    const std::vector<fs::path>& headers,
                                    const std::string& extension)
{
    std::atomic<std::size_t> next = 0;
    std::mutex mutex;
    std::vector<std::string> all;
    const auto work = [&] {
        for (std::size_t i = next++; i < headers.size(); i = next++) {
            const std::string text = complaint(compiler, headers[i], extension);
            const std::lock_guard lock(mutex);
            if (!text.empty()) {
                all.push_back(text);
            }
        }
    };
    std::vector<std::future<void>> workers;
    for (unsigned i = 0; i < std::max(1u, std::thread::hardware_concurrency()); ++i) {
        workers.push_back(std::async(std::launch::async, work));
    }
    for (auto& worker : workers) {
        worker.get();
    }
    return all;
}

/// The headers of a folder that are, or are not, Objective-C.
std::vector<fs::path> headers(const std::string& folder, bool objectiveC)
{
    std::vector<fs::path> chosen;
    for (const std::string& header : SourceTree(TARVEL_SOURCE_DIR).headersIn(folder)) {
        const fs::path path = fs::path(TARVEL_SOURCE_DIR) / header;
        if (isObjectiveC(path) == objectiveC) {
            chosen.push_back(path);
        }
    }
    return chosen;
}

const char* const kKernel = "shared/XeKernel/inc/";
const char* const kKernelClient = "tests/kernel/core/XeString_test\\.cpp";
const char* const kControls = "shared/XeControls/";
const char* const kControlsClient = "tests/controls/.*\\.mm";

TEST(PublicHeaders, OfTheKernelCompileAloneWithTheBuildsCompiler)
{
    const Client client(kKernelClient);
    ASSERT_TRUE(client.exists());
    const auto all = headers(kKernel, false);
    ASSERT_GE(all.size(), 5u);
    EXPECT_THAT(complaints(client.sameCompiler(), all, ".cpp"), IsEmpty());
}

TEST(PublicHeaders, OfTheKernelCompileAloneWithGcc)
{
    const Client client(kKernelClient);
    ASSERT_TRUE(client.exists());
    EXPECT_THAT(complaints(client.gcc(), headers(kKernel, false), ".cpp"), IsEmpty());
}

TEST(PublicHeaders, OfTheControlsCompileAlone)
{
    const auto objectiveC = headers(kControls, true);
    const auto plain = headers(kControls, false);
    const Client client(kControlsClient);
    ASSERT_TRUE(client.exists() || (objectiveC.empty() && plain.empty()));
    EXPECT_THAT(complaints(client.sameCompiler(), objectiveC, ".mm"), IsEmpty());
    EXPECT_THAT(complaints(client.sameCompiler(), plain, ".mm"), IsEmpty());
}

// The kernel shows no Objective-C to its clients, who may be plain C++.
TEST(PublicHeaders, OfTheKernelArePlainCpp) { EXPECT_THAT(headers(kKernel, true), IsEmpty()); }

// ---- the check itself ----

TEST(PublicHeadersCheck, FindsAHeaderThatDoesNotCompileAlone)
{
    const Client client(kKernelClient);
    const TemporaryTree folder;
    const auto whole =
        folder.write("whole.h", "#pragma once\n#include <string>\nstd::string f();\n");
    const auto lacking = folder.write("lacking.h", "#pragma once\nstd::string f();\n");
    for (const std::string& compiler : {client.sameCompiler(), client.gcc()}) {
        SCOPED_TRACE(compiler);
        EXPECT_EQ(complaint(compiler, whole, ".cpp"), "");
        EXPECT_THAT(complaint(compiler, lacking, ".cpp"), testing::HasSubstr("lacking.h"));
    }
}

TEST(PublicHeadersCheck, KnowsObjectiveC)
{
    const TemporaryTree folder;
    EXPECT_TRUE(isObjectiveC(folder.write("a.h", "#pragma once\n#import <AppKit/AppKit.h>\n")));
    EXPECT_TRUE(isObjectiveC(folder.write("b.h", "@class NSView;\n")));
    EXPECT_FALSE(isObjectiveC(folder.write("c.h", "#include <string>\n/// @param x\n")));
}

} // namespace
