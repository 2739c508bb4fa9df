#import "Batch.h"
#import "HostApplication.h"
#import "HostOptions.h"
#import "host/effect/AudioFile.h"

#include <XeFileSystem.h>
#include <XeNativePath.h>

#include <cstdio>
#include <iostream>

using namespace host;

namespace {

constexpr const char* kBundleName = "Tarvel.bundle";
constexpr const char* kFactoryClass = "TarvelCocoaViewFactory";
constexpr int kFailed = 1;
constexpr int kWrongUse = 2;

int fail(const std::string& problem, int status)
{
    std::fprintf(stderr, "tarvel-host: %s\n", problem.c_str());
    return status;
}

void report(const std::string& message)
{
    if (!message.empty()) {
        std::fprintf(stderr, "tarvel-host: %s\n", message.c_str());
    }
}

/// The editor that lies beside the program.
std::string bundleBesideProgram()
{
    _XeString<wchar_t> folder;
    XeFileSystem::getExecutableFolder(folder);
    return xenon::path::toNative(folder).value() + "/" + kBundleName;
}

int run(const HostOptions& options, std::shared_ptr<const Recording> recording,
        const char* programName)
{
    @autoreleasepool {
        prepareFrameworks(programName, options.scale);
        HostApplication* const application = [HostApplication prepare];
        HostWindow* const window =
            [[HostWindow alloc] initWithBundle:options.bundle.value_or(bundleBesideProgram())
                                       factory:kFactoryClass];
        [application setHostWindow:window];
        if (recording != nullptr) {
            report([window showRecording:std::move(recording)]);
        }
        [application setSnapshotPath:options.snapshot.value_or("")];
        [window release];
        [application run];
    }
    return 0;
}

int batch(const std::vector<std::string>& words)
{
    const ParsedBatchOptions parsed = parseBatchOptions(words);
    if (!parsed.problem.empty()) {
        return fail(parsed.problem, kWrongUse);
    }
    if (parsed.options.help) {
        std::fputs(usage().c_str(), stdout);
        return 0;
    }
    return runBatch(parsed.options, std::cout, std::cerr);
}

} // namespace

int main(int argc, char** argv)
{
    const std::vector<std::string> words(argv + 1, argv + argc);
    if (asksForBatch(words)) {
        return batch(words);
    }
    const ParsedOptions parsed = parseOptions(words);
    if (!parsed.problem.empty()) {
        return fail(parsed.problem, kWrongUse);
    }
    if (parsed.options.help) {
        std::fputs(usage().c_str(), stdout);
        return 0;
    }
    ReadResult read;
    if (parsed.options.recording) {
        read = readAudioFile(*parsed.options.recording);
        if (read.recording == nullptr) {
            return fail(read.problem, kFailed);
        }
        report(read.warning);
    }
    return run(parsed.options, read.recording, argv[0]);
}
