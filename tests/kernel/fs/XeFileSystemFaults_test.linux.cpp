// Every function that takes a path meets every fault. What it answers is one character:
//
//   0 1        the result 0 or 1, and nothing has changed
//   *          success, and something has changed
//   G F S D I  the results 0x80000008, 0x8004E014, 0x8004E016, 0x8004E023 and 0x80000003
//   U          0x8004E015
//   t f        true or false
//   + -        a number that is not negative, or a negative one
//   g b        a stream that is good, or one that is not
//
// and what must not happen, but for the cases in brackets:
//
//   !          a failure that has changed something, or a question that has (a folder that is
//   copied
//              keeps what came through, a moved file that cannot be deleted its copy, and zip
//              leaves its temporary file on a full volume)
//   @          the pipe, the socket or the device was opened
//   ~          a descriptor was left open
//   #          it threw, crashed or took more than ten seconds

#include "FaultyTree.linux.h"
#include "OpenDescriptors.h"
#include "XeDevice.h"
#include "XeFileSystem.h"

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

namespace {

using Text = _XeString<wchar_t>;
using Paths = std::vector<Text>;

/// What functions with more than one path are given beside the faulty one.
struct Spare {
    Text file;
    Text folder;
    Text archive;
    Text none; // is not there
};

char answer(XeResult result)
{
    switch (static_cast<unsigned>(result)) {
    case 0:
        return '0';
    case 1:
        return '1';
    case 0x80000003:
        return 'I';
    case 0x80000008:
        return 'G';
    case 0x8004E014:
        return 'F';
    case 0x8004E015:
        return 'U';
    case 0x8004E016:
        return 'S';
    case 0x8004E023:
        return 'D';
    default:
        return '?';
    }
}
char answer(bool result) { return result ? 't' : 'f'; }
char answer(long long result) { return result < 0 ? '-' : '+'; }
char answer(const std::shared_ptr<std::istream>& stream) { return stream->good() ? 'g' : 'b'; }
char answer(const std::shared_ptr<std::ostream>& stream) { return stream->good() ? 'g' : 'b'; }

Text textOf(wchar_t const* path) { return path == nullptr ? L"" : path; }

struct Operation {
    const char* name;
    char (*run)(wchar_t const* path, const Spare& spare);
    bool changes;         // may change something when it succeeds
    const char* paths;    // answers to kPaths
    const char* noRights; // to kNoRights, of an ordinary user
    const char* refused;  // to kRefused, of root
    const char* lost;     // to a file on a volume whose server is gone, and to its mount point
};

struct Fault {
    const char* name;
    const char* path; // below the folder "items"
};

// clang-format off

// In the order of the answers in `paths`. Further ones follow that are no names: see pathOf.
const std::vector<Fault> kPaths = {
    {"missing",                 "missing.wav"},
    {"below what is missing",   "missing/below.wav"},
    {"below a file",            "file.wav/below.wav"},
    {"name not in UTF-8",       "not utf-8 \xE9\xFF.wav"},
    {"link that leads nowhere", "dangling.wav"},
    {"loop of links",           "loop.wav"},
    {"below a loop",            "loop.wav/below.wav"},
    {"pipe",                    "pipe.wav"},
    {"socket",                  "socket.wav"},
    {"device",                  "device.wav"},
    {"folder",                  "folder.wav"},
    {"empty folder",            "empty.wav"},
    {"long name",            nullptr},
    {"long path",            nullptr},
    {"no character",         nullptr},
    {"empty",                nullptr},
    {"null",                 nullptr},
};

const std::vector<Fault> kNoRights = {
    {"in a folder that may not be entered", "closed/file.wav"},
    {"file that may not be read",           "locked.wav"},
    {"folder that may not be read",         "shut"},
    {"file of a folder that may not be written", "fixed/file.wav"},
    {"missing in a folder that may not be written", "fixed/missing.wav"},
};

const std::vector<Fault> kRefused = {
    {"immutable file",           "pinned.wav"},
    {"immutable folder",         "pinned folder"},
    {"missing in an immutable folder", "pinned folder/missing.wav"},
    {"file of a read-only volume", "read-only/file.wav"},
    {"folder of a read-only volume", "read-only/folder"},
    {"missing on a read-only volume", "read-only/missing.wav"},
    {"missing on a full volume", "full/missing.wav"},
};

#define ONE(call) [](wchar_t const* path, [[maybe_unused]] const Spare& spare) { return answer(call); }
#define LIST(function, ...) [](wchar_t const* path, const Spare&) { Paths out; return answer(XeFileSystem::function(path, __VA_ARGS__)); }

namespace X = XeFileSystem;

const Operation kOperations[] = {
    {"isFilePresent",        ONE(X::isFilePresent(path)),          false, "ffftfffffffffffff", "ftftf", "tfftfff", "ff"},
    {"isFolderPresent",      ONE(X::isFolderPresent(path)),        false, "ffffffffffttfffff", "fftff", "ftfftff", "ff"},
    {"isFolder",             ONE(X::isFolder(path)),               false, "ffffffffffttfffff", "fftff", "ftfftff", "ff"},
    {"isFolderEmpty",        ONE(X::isFolderEmpty(path)),          false, "ffffffffffftfffff", "fffff", "fffffff", "ff"},
    {"isHidden",             ONE(X::isHidden(path)),               false, "fffffffffffffffff", "fffff", "fffffff", "ff"},
    {"isFileReadonly",       ONE(X::isFileReadonly(path)),         false, "fffffffffffffffff", "fttff", "ftfftff", "ff"},
    {"isFolderReadonly",     ONE(X::isFolderReadonly(path)),       false, "fffffffffffffffff", "fttff", "ftfftff", "ff"},
    {"isFileLocked",         ONE(X::isFileLocked(path)),           false, "fffffffffffffffff", "fffff", "ttfffff", "ff"},
    {"isFolderLocked",       ONE(X::isFolderLocked(path)),         false, "fffffffffffffffff", "fffff", "ttfffff", "ff"},
    {"isArchive",            ONE(X::isArchive(textOf(path))),      false, "fffffffffffffffff", "fffff", "fffffff", "ff"},

    {"createFolder",         ONE(X::createFolder(path)),           true,  "**FFFFFFFF00FFFFF", "FF0FF", "F0FF0F*", "FF"},
    {"copyFile from",        ONE(X::copyFile(path, spare.none.c_str(), false)),   true, "FFF*FFFFFFFFFFFFF", "FFF*F", "*FF*FFF", "FF"},
    {"copyFile onto",        ONE(X::copyFile(path, spare.file.c_str(), false)),   true, "FFF*FFFFFFFFFFFFF", "FFF*F", "*FF*FFF", "FF"},
    {"copyFile to",          ONE(X::copyFile(spare.file.c_str(), path, false)),   true, "*FF*FFFFFFFFFFFFF", "F*FGF", "GFFGFFF", "FF"},
    {"copyFile to new",      ONE(X::copyFile(spare.file.c_str(), path, true)),    true, "*FFGFFFFFFFFFFFFF", "FGFGF", "GFFGFFF", "FF"},
    {"copyFile to itself",   ONE(X::copyFile(path, path, false)),                 true, "FFFGFFFFFFFFFFFFF", "FGFGF", "GFFGFFF", "FF"},
    {"copyFolder from",      ONE(X::copyFolder(path, spare.none.c_str(), kCopyMerge)),          true, "SSSSSSSSSS**SSSSS", "SSFSS", "S*SS*SS", "SS"},
    {"copyFolder to",        ONE(X::copyFolder(spare.folder.c_str(), path, kCopyMerge)),        true, "*GGGGGGGGG**GGGGG", "GGFGG", "GGGGGG!", "GG"},
    {"copyFolder to new",    ONE(X::copyFolder(spare.folder.c_str(), path, kCopyFailIfExists)), true, "*GGGGGGGGGGGGGGGG", "GGGGG", "GGGGGG!", "GG"},
    {"copyFolder to itself", ONE(X::copyFolder(path, path, kCopyMerge)),          true, "SSSSSSSSSSGGSSSSS", "SSGSS", "SGSSGSS", "SS"},
    {"renameFile from",      ONE(X::renameFile(path, spare.none.c_str(), true)),  true, "GGG***G*****GGGGG", "G**GG", "GGGGGGG", "GG"},
    {"renameFile to",        ONE(X::renameFile(spare.file.c_str(), path, false)), true, "*GG***G***GGGGGGG", "G*GGG", "GGGGGGG", "GG"},
    {"renameFile to new",    ONE(X::renameFile(spare.file.c_str(), path, true)),  true, "*GGDDDGDDDDDGGGGG", "GDDDG", "DDGDDGG", "GG"},
    {"renameFile to itself", ONE(X::renameFile(path, path, false)),               true, "GGG000G00000GGGGG", "G000G", "00GGGGG", "G0"},
    {"moveFile from",        ONE(X::moveFile(path, spare.none.c_str())),          true, "GGG***G*****GGGFF", "G**GG", "GGG!FFF", "FG"},
    {"moveFile to",          ONE(X::moveFile(spare.file.c_str(), path)),          true, "*GG***G***GGGGGFF", "G*GGG", "GGGGFFF", "FG"},
    {"linkFile to, symbolic", ONE(X::linkFile(path, spare.none.c_str(), true)),   true, "*************FFFF", "*****", "*******", "**"},
    {"linkFile to, hard",    ONE(X::linkFile(path, spare.none.c_str(), false)),   true, "FFF***F***FFFFFFF", "FFF*F", "FFFFFFF", "FF"},
    {"linkFile at, symbolic", ONE(X::linkFile(spare.file.c_str(), path, true)),   true, "*FFDDDFDDDDDFFFFF", "FDDDF", "DDFDDF*", "FF"},
    {"linkFile at, hard",    ONE(X::linkFile(spare.file.c_str(), path, false)),   true, "*FFDDDFDDDDDFFFFF", "FDDDF", "DDFDDFF", "FF"},
    {"deleteFile",           ONE(X::deleteFile(path)),             true,  "GGG***G***GGGGGGG", "G*GGG", "GGGGGGG", "GG"},
    {"deleteFolder",         ONE(X::deleteFolder(path, false)),    true,  "0000000000**00000", "00G00", "0G00G00", "00"},
    {"deleteFolder if empty", ONE(X::deleteFolder(path, true)),    true,  "00000000000*00000", "00000", "0000000", "00"},
    {"deleteEmptyFolders",   ONE(X::deleteEmptyFolders(path, false)), true, "00000000000000000", "00G00", "0000000", "00"},
    {"deleteEmptyFolders, too", ONE(X::deleteEmptyFolders(path, true)), true, "00000000000*00000", "00G00", "0000000", "00"},
    {"moveFileToTrash",      ONE(X::moveFileToTrash(path)),        true,  "GGG***G*****GGGGG", "G*GGG", "GGGGGGG", "GG"},
    {"moveFolderToTrash",    ONE(X::moveFolderToTrash(path)),      true,  "GGG***G*****GGGGG", "G*GGG", "GGGGGGG", "GG"},
    {"setLockFile",          ONE(X::setLockFile(textOf(path), false)), true, "ffftffffffttfffff", "fffff", "ttfffff", "ff"},
    {"setFileReadonly",      ONE(X::setFileReadonly(path, true)),  true,  "fff*fff*****fffff", "fffff", "fffffff", "ff"},
    {"touchLastModified",    ONE(X::touchLastModified(path)),      true,  "GGG0GGG00000GGGGG", "GGG0G", "GGGGGGG", "GG"},

    {"getBrowsableSubFolders", LIST(getBrowsableSubFolders, out),             false, "GGGGGGGGGG00GGGGG", "GGGGG", "G0GG0GG", "GG"},
    {"getBrowsableSubFoldersNative", LIST(getBrowsableSubFoldersNative, out), false, "GGGGGGGGGG00GGGGG", "GGGGG", "G0GG0GG", "GG"},
    {"getBrowsableFilesInFolder", LIST(getBrowsableFilesInFolder, out),       false, "GGGGGGGGGG00GGGGG", "GGGGG", "G0GG0GG", "GG"},
    {"getBrowsableFilesWithAttribute",
     [](wchar_t const* path, const Spare&) { std::vector<std::pair<Text, tFileAtrribute>> out; return answer(X::getBrowsableFilesWithAttribute(path, out)); },
                                                                              false, "GGGGGGGGGG00GGGGG", "GGGGG", "G0GG0GG", "GG"},
    {"getFilesInFolder",     LIST(getFilesInFolder, nullptr, true, out, true), false, "GGGGGGGGGG00GGGGG", "GGGGG", "G0GG0GG", "GG"},
    {"getFilesAndFoldersInFolder", LIST(getFilesAndFoldersInFolder, L"*", out), false, "GGGGGGGGGG00GGGGG", "GGGGG", "G0GG0GG", "GG"},
    {"getSubFolders",        LIST(getSubFolders, true, out),       false, "GGGGGGGGGG00GGGGG", "GGGGG", "G0GG0GG", "GG"},

    {"getLastModified",      [](wchar_t const* path, const Spare&) { tFileTime time; return answer(X::getLastModified(path, time)); }, false, "GGG0GGG00000GGGGG", "G000G", "00G00GG", "GG"},
    {"getModifiedTime",      ONE(static_cast<long long>(X::getModifiedTime(path))), false, "---+---+++++-----", "-+++-", "++-++--", "--"},
    {"getCreationTime",      ONE(static_cast<long long>(X::getCreationTime(path))), false, "---+---+++++-----", "-+++-", "++-++--", "--"},
    {"getFileSize, result",  [](wchar_t const* path, const Spare&) { long long size = 0; return answer(X::getFileSize(path, size)); }, false, "GGG0GGGGGGGGGGGGG", "G0G0G", "0GG0GGG", "GG"},
    {"getFileSize",          ONE(X::getFileSize(path)),            false, "---+-------------", "-+-+-", "+--+---", "--"},
    {"getFileAttribute",     [](wchar_t const* path, const Spare&) { tFileAtrribute attribute; return answer(X::getFileAttribute(path, attribute)); }, false, "GGG0GGG00000GGGGG", "G000G", "00G00GG", "GG"},

    {"openIStream",          ONE(X::openIStream(textOf(path))),    false, "bbbgbbbbbbbbbbbbb", "bbbgb", "gbbgbbb", "bb"},
    {"openOStream",          ONE(X::openOStream(textOf(path))),    true,  "*bb**bbbbbbbbbbbb", "bbb*b", "bbbbbb*", "bb"},

    {"zipFolder of",         ONE(X::zipFolder(path, spare.none.c_str(), false)),      true, "FFFFFFFFFF*FFFFFF", "FFFFF", "F*FF*FF", "FF"},
    {"zipFolder to",         ONE(X::zipFolder(spare.folder.c_str(), path, false)),    true, "*FFF*FFFFFFFFFFFF", "FF*FF", "F*FFFF!", "FF"},
    {"unzipArchive of",      ONE(X::unzipArchive(path, spare.folder.c_str(), false)), true, "UUUUUUUUUUUUUUUUU", "UUUUU", "UUUUUUU", "UU"},
    {"unzipArchive to",      ONE(X::unzipArchive(spare.archive.c_str(), path, false)),   true, "UUUUUUUUUU**UUUUU", "UUUUU", "UUUUUUU", "UU"},

    {"getFileSystemFormat",  [](wchar_t const* path, const Spare&) { EFileSystem format{}; return answer(X::getFileSystemFormat(path, format)); }, false, "GGG0GGG00000GGGGG", "G000G", "00G00GG", "GG"},
    {"getVolumeMediaType",   [](wchar_t const* path, const Spare&) { EVolumeMediaType type{}; return answer(X::getVolumeMediaType(path, type)); }, false, "GGG0GGG00000GGGGG", "G000G", "00G00GG", "G0"},
    {"getVolumeName",        [](wchar_t const* path, const Spare&) { Text name; return answer(X::getVolumeName(path, name)); }, false, "00000000000000000", "00000", "0000000", "00"},
    {"getVolumeMountPoint",  [](wchar_t const* path, const Spare&) { Text at; return answer(X::getVolumeMountPoint(textOf(path), at)); }, false, "00G00GG00000G0GGG", "G0000", "0000000", "00"},
    {"getVolumeSpace",       [](wchar_t const* path, const Spare&) { unsigned long long free, total; return answer(X::getVolumeSpace(path, free, total)); }, false, "00G00GG00000G0GGG", "G0000", "0000000", "GG"},
    {"getFreeSpace",         ONE(X::getFreeSpace(path) > 0),       false, "ttfttfftttttftfff", "ftttt", "ttttttf", "ff"},
    {"isVolumeWritable",     [](wchar_t const* path, const Spare&) { bool writable; return answer(X::isVolumeWritable(textOf(path), writable)); }, false, "00G00GG00000G0GGG", "G0000", "0000000", "GG"},
    {"isSeekableVolume",     ONE(X::isSeekableVolume(textOf(path))), false, "ttfttfftttttftfff", "ftttt", "ttttttt", "ff"},
    {"getSubVolumes",        [](wchar_t const* path, const Spare&) { Paths out; return answer(X::getSubVolumes(textOf(path), out)); }, false, "00000000000000000", "00000", "0000000", "00"},
    {"getDisplayName",       [](wchar_t const* path, const Spare&) { Text name; return answer(X::getDisplayName(textOf(path), name)); }, false, "GGG000G00000GGGGG", "G000G", "00G00GG", "GG"},
    {"mountableShareVolume", [](wchar_t const* path, const Spare&) { Text url; return answer(X::mountableShareVolume(path, url)); }, false, "GGGGGGGGGGGGGGGGG", "GGGGG", "GGGGGGG", "GG"},
    {"getUserDefinedName",   [](wchar_t const* path, const Spare&) { Text name; return answer(X::getUserDefinedName(path, L"a", name)); }, false, "00000000000000000", "00000", "0000000", "00"},
    {"getStrictFileName",    [](wchar_t const* path, const Spare&) { Text name; return answer(X::getStrictFileName(textOf(path), name)); }, false, "ffftffftttttfffff", "ftttf", "ttfttff", "ff"},

    {"XeDevice::getUSBDeviceType", [](wchar_t const* path, const Spare&) { auto type = kVolumeRemovable; return answer(XeDevice::getUSBDeviceType(path, type)); }, false, "GGG0GGG00000GGGGG", "G000G", "00G00GG", "G0"},
    // ends the lost volume
    {"XeDevice::ejectVolume", ONE(XeDevice::ejectVolume(textOf(path))), true, "GGGGGGGGGGGGGGGGG", "GGGGG", "GGGGGGG", "G0"},
};

// clang-format on

class EveryPathFunction : public testing::Test {
protected:
    /// The answers to some faults, in their order.
    std::string answers(const Operation& operation, const std::vector<Fault>& faults, uid_t user)
    {
        std::string answers;
        for (const Fault& fault : faults) {
            answers += answerTo(operation, fault, user);
        }
        return answers;
    }

    FaultyTree m_faulty;

private:
    Text wide(const std::string& name) const { return m_faulty.tree().wide("items/" + name); }

    static std::string longPath()
    {
        std::string path;
        while (path.size() < 5000) {
            path += std::string(200, 'n') + '/';
        }
        return path + "file.wav";
    }

    Text pathOf(const Fault& fault) const
    {
        if (fault.path != nullptr) {
            return wide(fault.path);
        }
        const std::string name = fault.name;
        return name == "long name"      ? wide(std::string(252, 'n') + ".wav")
               : name == "long path"    ? wide(longPath())
               : name == "no character" ? wide("new") + L'\xD800'
                                        : Text();
    }

    char answerTo(const Operation& operation, const Fault& fault, uid_t user)
    {
        const Text text = pathOf(fault);
        return answerTo(operation, std::string(fault.name) == "null" ? nullptr : text.c_str(),
                        user);
    }

protected:
    char answerTo(const Operation& operation, wchar_t const* path, uid_t user)
    {
        const auto before = m_faulty.items();
        char answer = answerOfChild(operation, path, user);
        if (m_faulty.wasSpecialOpened()) {
            answer = '@';
        }
        const bool success = answer == '0' || answer == 't' || answer == 'g';
        const bool changed = m_faulty.items() != before;
        if (changed || (operation.changes && success)) { // flags and times are not among the items
            m_faulty.restore();
        }
        return !changed ? answer : operation.changes && success ? '*' : '!';
    }

private:
    char answerOfChild(const Operation& operation, wchar_t const* path, uid_t user) const
    {
        const pid_t child = fork();
        if (child == 0) {
            alarm(10);
            _exit(static_cast<unsigned char>(answerHere(operation, path, user)));
        }
        int status = 0;
        waitpid(child, &status, 0);
        return WIFEXITED(status) ? static_cast<char>(WEXITSTATUS(status)) : '#';
    }

    char answerHere(const Operation& operation, wchar_t const* path, uid_t user) const
    {
        if (user != geteuid() && (setgid(user) != 0 || setuid(user) != 0)) {
            return '#';
        }
        setenv("HOME", m_faulty.tree().path().c_str(), 1);
        setenv("XDG_DATA_HOME", m_faulty.tree().path("user data").c_str(), 1);
        const Spare spare{wide("spare.wav"), wide("spare folder"), wide("spare.zip"),
                          wide("none.wav")};
        const std::size_t descriptors = openDescriptors();
        const char answer = operation.run(path, spare);
        return openDescriptors() == descriptors ? answer : '~';
    }
};

constexpr uid_t kNobody = 65534;

TEST_F(EveryPathFunction, AnswersToEveryKindOfPath)
{
    std::vector<Fault> faults = kPaths;
    const std::size_t device = 9;
    ASSERT_STREQ(faults[device].name, "device");
    if (!m_faulty.isWhole()) {
        faults.erase(faults.begin() + device);
    }
    for (const Operation& operation : kOperations) {
        std::string expected = operation.paths;
        expected.erase(device, m_faulty.isWhole() ? 0 : 1);
        EXPECT_EQ(answers(operation, faults, geteuid()), expected) << operation.name;
    }
}

TEST_F(EveryPathFunction, AnswersToAnOrdinaryUserWithoutRights)
{
    if (geteuid() != 0) {
        GTEST_SKIP() << "needs the rights of root, to own what another user meets";
    }
    for (const Operation& operation : kOperations) {
        EXPECT_EQ(answers(operation, kNoRights, kNobody), operation.noRights) << operation.name;
    }
}

TEST_F(EveryPathFunction, AnswersToWhatTheSystemRefusesEvenToRoot)
{
    if (!m_faulty.isWhole()) {
        GTEST_SKIP() << "needs the rights of root, to mount volumes";
    }
    for (const Operation& operation : kOperations) {
        EXPECT_EQ(answers(operation, kRefused, geteuid()), operation.refused) << operation.name;
    }
}

TEST_F(EveryPathFunction, AnswersToAVolumeThatDoesNotAnswer)
{
    const auto volume = m_faulty.lostVolume();
    if (!volume) {
        GTEST_SKIP() << FuseVolume::reason();
    }
    for (const Operation& operation : kOperations) {
        std::string answers;
        for (const std::filesystem::path& path : {*volume / "file.wav", *volume}) {
            answers +=
                answerTo(operation, xenon::path::fromNative(path.native()).c_str(), geteuid());
        }
        EXPECT_EQ(answers, operation.lost) << operation.name;
    }
}

} // namespace
