#include "Batch.h"

#include "ExportFile.h"
#include "LengthArgument.h"
#include "host/effect/AudioFile.h"
#include "host/effect/TrimEngine.h"

#include <XeFileSystem.h>
#include <XeNativePath.h>

#include <new>
#include <set>

namespace host {

namespace {

std::string nameOf(const std::string& path) { return path.substr(path.rfind('/') + 1); }

/// Name of the result; other kinds of file become WAV and are called so.
std::string resultName(const Recording& recording)
{
    const std::string name = nameOf(recording.path);
    return containerOf(recording)
               ? name
               : name.substr(0, name.rfind('.')) + extensionOf(ExportContainer::Wav);
}

bool isFolder(const std::string& path)
{
    return XeFileSystem::isFolderPresent(xenon::path::fromNative(path));
}

class Batch {
public:
    Batch(const BatchOptions& options, std::ostream& out, std::ostream& err)
        : m_options(options), m_out(out), m_err(err)
    {
    }

    BatchStatus run()
    {
        if (!m_options.dryRun && !isFolder(m_options.outputFolder)) {
            tell("The output folder " + quotedPath(m_options.outputFolder) +
                 " is no folder that is there.");
            return kBatchWrongUse;
        }
        std::size_t failed = 0;
        for (const std::string& file : m_options.files) {
            ++m_number;
            const std::string problem = process(file);
            if (!problem.empty()) {
                tell(problem);
                ++failed;
            }
        }
        return failed == 0 ? kBatchDone : kBatchFailed;
    }

private:
    void tell(const std::string& problem) { m_err << "tarvel-host: " << problem << std::endl; }

    /// Does one file; what is wrong with it, or "".
    std::string process(const std::string& file)
    {
        const ReadResult read = readAudioFile(file);
        if (read.recording == nullptr) {
            return read.problem;
        }
        if (!read.warning.empty()) { // nobody is there to judge what is left of it
            return read.warning;
        }
        try {
            return process(read.recording);
        } catch (const std::bad_alloc&) {
            return quotedPath(file) + " does not fit into memory.";
        }
    }

    std::string process(const std::shared_ptr<const Recording>& recording)
    {
        const std::string name = resultName(*recording);
        if (m_names.contains(name)) {
            return quotedPath(recording->path) + " has the same name as a file before it, " +
                   quotedPath(name) + ".";
        }
        const TrimEngine engine(recording);
        const TrimPlan plan = engine.plan(settingsFor(m_options, recording->sampleRate));
        std::string problem = write(engine, plan, name);
        if (problem.empty()) {
            m_names.insert(name);
            report(*recording, plan);
        }
        return problem;
    }

    std::string write(const TrimEngine& engine, const TrimPlan& plan, const std::string& name) const
    {
        const Recording& recording = engine.recording();
        if (m_options.dryRun) {
            return plan.frames() > 0 ? "" : whyNothingIsKept(recording);
        }
        const ExportRequest request{m_options.outputFolder + "/" + name,
                                    containerOf(recording).value_or(ExportContainer::Wav)};
        return exportFile(engine, plan, request).problem;
    }

    void report(const Recording& recording, const TrimPlan& plan)
    {
        const auto text = [&](std::uint64_t frames, LengthKind kind) {
            return lengthText(frames, m_options.format.value_or(zqposfmt_time_ms), kind,
                              recording.sampleRate);
        };
        m_out << '[' << m_number << '/' << m_options.files.size() << "] "
              << quotedPath(recording.path) << ": " << text(plan.frames(), LengthKind::Duration)
              << " of " << text(recording.frames(), LengthKind::Duration)
              << (m_options.dryRun ? " would be kept" : " kept") << '\n';
        for (const KeptRegion& region : plan.regions) {
            if (m_options.dryRun) {
                m_out << "    from " << text(region.first, LengthKind::Position) << " to "
                      << text(region.end, LengthKind::Position) << ", fade-in "
                      << text(region.fadeIn, LengthKind::Duration) << ", fade-out "
                      << text(region.fadeOut, LengthKind::Duration) << '\n';
            }
        }
        m_out << std::flush;
    }

    const BatchOptions& m_options;
    std::ostream& m_out;
    std::ostream& m_err;
    std::size_t m_number = 0;
    std::set<std::string> m_names; // of the results so far
};

} // namespace

BatchStatus runBatch(const BatchOptions& options, std::ostream& out, std::ostream& err)
{
    return Batch(options, out, err).run();
}

} // namespace host
