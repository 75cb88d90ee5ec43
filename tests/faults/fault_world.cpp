#include "faults/fault_world.h"

#include "logs/run_records.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <mutex>
#include <set>

#include <fmt/format.h>

namespace vardelin::faults {
namespace {

using platform::FileKind;
using testing::IsEmpty;

const std::string kData = "C:\\data\\";
const std::string kDesktopFile = "C:\\home\\Desktop\\note.desktop";
const std::string kRegistryKey = "Software\\Mine";

using Random = std::mt19937_64;

// Text that packs well and differs everywhere, so that large files are cut into several frames.
std::string textOf(Random& random, std::size_t bytes)
{
    std::string text;
    while (text.size() < bytes)
        text += fmt::format("{:016x} the quick brown fox jumps over the lazy dog\n", random());
    text.resize(bytes);
    return text;
}

platform::MemoryTree& withDrives(platform::MemoryTree& tree)
{
    tree.addDrive('C');
    tree.addDrive('D');
    return tree;
}

platform::FileSystem& below(platform::MemoryTree& tree,
                            const std::unique_ptr<platform::PowerCutFileSystem>& disk)
{
    if (disk)
        return *disk;
    return tree;
}

std::unique_ptr<platform::PowerCutFileSystem> diskOf(platform::MemoryTree& tree, bool withPowerCut)
{
    withDrives(tree);
    return withPowerCut ? std::make_unique<platform::PowerCutFileSystem>(tree) : nullptr;
}

} // namespace

FaultWorld::FaultWorld(bool cut)
    : withPowerCut(cut), disk(diskOf(tree, cut)),
      files(below(tree, disk), script), machine{files,       ports.drives,      ports.registry,
                                                ports.shell, ports.facts,       ports.processes,
                                                ports.clock, ports.messageLoop, ports.messageBoxes}
{
    for (const char* folder : {"C:\\app\\Profiles", "C:\\app\\Data", "C:\\data", "D:\\store"})
        tree.createFolders(folder);
    ports.shell.settings["Desktop Settings"] = {"C:\\home\\Desktop"};
    setProfile("0");
    if (disk)
        disk->settle();
}

void FaultWorld::become(const FaultWorld& other)
{
    tree.copyFrom(other.tree);
    if (disk)
        disk->settle();
    m_size = other.m_size;
    m_compress = other.m_compress;
    m_folders = other.m_folders;
    m_truth = other.m_truth;
    beginRound(other.m_round);
}

void FaultWorld::beginRound(int number)
{
    m_round = number;
    ports.clock.setLocal({{2003, 7, 1 + 2 * number}, {9, 5, 3}});
    ports.registry.setString(platform::RegistryRoot::CurrentUser, kRegistryKey, "round",
                             std::to_string(number));
}

void FaultWorld::setProfile(const std::string& retention, bool compress)
{
    m_compress = compress;
    engine::ProfileText text;
    text.otherData = {"Desktop Settings", "Registry Settings"};
    text.compress = compress;
    std::string plain = text.plain();
    const std::string key = "Backup versions =";
    const std::size_t at = plain.find(key) + key.size();
    plain.replace(at, plain.find("\r\n", at) - at, retention);
    put(kProfiles + "Work.vdp", profile::scrambleText(plain));
}

void FaultWorld::put(const std::string& path, std::string_view bytes)
{
    tree.createFolders(platform::parentOf(path));
    tree.open(path, platform::OpenMode::CreateOrTruncate)->write(platform::asBytes(bytes));
}

void FaultWorld::makeSources(const Size& size, std::uint64_t seed)
{
    m_size = size;
    Random random(seed);
    for (int i = 0; i < size.files; ++i) {
        const std::string name =
            fmt::format("{}f{:03}.txt", kData + (i % 3 == 0 ? "a\\" : "b\\deep\\x\\"), i);
        put(name, i % 25 == 7 ? std::string{} : textOf(random, random() % 6000));
    }
    for (int i = 0; i < size.largeFiles; ++i)
        put(fmt::format("{}large{}.bin", kData, i), textOf(random, 4'700'000));
    put(kData + "long\\" + std::string(200, 'n'), "a long name");
    put(kData + "long\\" + std::string(240, 'm'), "a name that leaves no room for more");
    put(kData + "carefully full.txt", "a name that holds a mark's word");
    tree.createFolders(kData + "empty\\inner");
    const auto folder = tree.openFolder(kData);
    folder->createLink("link", "a/f000.txt");
    folder->createLink("dangling", "nowhere");
    folder->createHardLink("twin", *tree.openFolder(kData + "a"), "f000.txt");
    folder->setMode("long", 0700);
    tree.openFolder(kData + "a")->setExtendedAttribute("f000.txt", {"user.note", "kept"});
    put(kDesktopFile, "round 1");
    beginRound(1);
    remember();
    if (disk)
        disk->settle();
}

void FaultWorld::editSources(std::uint64_t seed)
{
    beginRound(m_round + 1);
    Random random(seed + static_cast<std::uint64_t>(m_round));
    Contents all = look("C:\\data", "C:\\data");
    for (auto& [path, content] : all) {
        if (!content.starts_with('='))
            continue;
        const bool isLarge = content.size() > 4'000'000;
        const std::uint64_t chance = random() % 10;
        if (chance < 3 || isLarge) {
            std::string bytes = content.substr(1);
            const std::size_t at = bytes.size() / 2;
            bytes.replace(at, std::min<std::size_t>(bytes.size() - at, 100),
                          textOf(random, 100 + random() % 100));
            put(path, bytes);
        } else if (chance == 3) {
            const std::int64_t when = tree.now() + 1;
            tree.openFolder(platform::parentOf(path))->setTimes(platform::leafOf(path), when, when);
        }
    }
    for (int i = 0; i < std::max(1, m_size.files / 30); ++i)
        put(fmt::format("{}new{}\\n{}.txt", kData, m_round, i), textOf(random, random() % 3000));
    const std::int64_t when = tree.now() + 1;
    tree.openFolder(kData + "empty")->setTimes("inner", when, when);
    put(kDesktopFile, fmt::format("round {}", m_round));
    remember();
    if (disk)
        disk->settle();
}

void FaultWorld::remember()
{
    m_truth[m_round] = look("C:\\data", "C:\\data");
}

BackupResult FaultWorld::backup()
{
    engine::RecordedEvents events;
    engine::Engine engine(machine, kApp, events);
    BackupResult result;
    try {
        engine.EngineBackup(kProfiles, "Work.vdp", result.success);
    } catch (const base::RuntimeError&) {
        flagsOfFailure = {engine.MissedFiles(), engine.NoFilesIdentified()};
        throw;
    }
    result.noFiles = engine.NoFilesIdentified();
    result.missed = engine.MissedFiles();
    result.report = engine.backupReport();
    return result;
}

RestoreResult FaultWorld::restore(const std::string& location, const std::string& date,
                                  const std::vector<std::string>& entries)
{
    base::TextCollection chosen;
    for (const std::string& entry : entries)
        chosen.tryAdd(entry, entry);
    engine::RecordedEvents events;
    engine::Engine engine(machine, kApp, events);
    engine.EngineRestore(kProfiles, "Work.vdp", chosen, location, date);
    RestoreResult result;
    result.lost = engine.BackupFilesLost();
    result.mismatch = engine.PasswordMismatch();
    result.dateNotMatched = engine.DateNotMatched();
    result.report = engine.restoreReport();
    return result;
}

void FaultWorld::failAt(const Which& which, std::size_t number, int error, bool forGood)
{
    static constexpr std::array kNames{"fs.openFolder",
                                       "fs.lockFolder",
                                       "fs.canonical",
                                       "fs.isPseudo",
                                       "folder.list",
                                       "folder.listWithInfo",
                                       "folder.find",
                                       "folder.info",
                                       "folder.extendedAttributes",
                                       "folder.open",
                                       "folder.openFolder",
                                       "folder.createFolder",
                                       "folder.removeFile",
                                       "folder.removeFolder",
                                       "folder.rename",
                                       "folder.moveTo",
                                       "folder.readLink",
                                       "folder.createLink",
                                       "folder.flush",
                                       "folder.createHardLink",
                                       "folder.flushFileSystem",
                                       "file.read",
                                       "file.readAt",
                                       "file.write",
                                       "file.writeAt",
                                       "file.resize",
                                       "file.flush",
                                       "file.info",
                                       "file.nextData",
                                       "file.appendRange",
                                       "file.close",
                                       "file.extendedAttributes"};
    struct State {
        std::mutex mutex;
        std::size_t count = 0;
    };
    const auto state = std::make_shared<State>();
    m_failedSubject->clear();
    for (const char* name : kNames) {
        script.onCallsNamed(name,
                            [=, subject = m_failedSubject](const platform::CallScript::Call& call) {
                                if (!which(call))
                                    return;
                                const std::lock_guard held(state->mutex);
                                ++state->count;
                                if (state->count != number && (!forGood || state->count < number))
                                    return;
                                if (subject->empty())
                                    *subject = call.subject;
                                throw base::RuntimeError(error, call.subject,
                                                         error == base::error_number::kDiskFull
                                                             ? "No space left on device"
                                                             : "Input/output error");
                            });
    }
}

std::string FaultWorld::failedSubject() const
{
    return *m_failedSubject;
}

namespace {

FaultWorld::Which callsOf(std::string place, std::set<std::string> names, bool writingOpens)
{
    return [=](const platform::CallScript::Call& call) {
        if (!call.subject.starts_with(place))
            return false;
        // What is opened for writing has a name of its own kind everywhere in the engine.
        if (call.name == "folder.open")
            return writingOpens == (call.subject.find("\\~") != std::string::npos &&
                                    call.subject.find("\\~folder") == std::string::npos);
        return names.contains(call.name);
    };
}

} // namespace

FaultWorld::Which changesIn(std::string place)
{
    return callsOf(std::move(place),
                   {"folder.createFolder", "folder.removeFile", "folder.rename",
                    "folder.createLink", "folder.createHardLink", "folder.flush",
                    "folder.flushFileSystem", "file.write", "file.writeAt", "file.appendRange",
                    "file.flush", "file.close"},
                   true);
}

FaultWorld::Which growsIn(std::string place)
{
    return callsOf(std::move(place),
                   {"folder.createFolder", "folder.rename", "folder.createLink", "file.write",
                    "file.writeAt", "file.appendRange", "file.flush"},
                   true);
}

FaultWorld::Which readsIn(std::string place)
{
    return callsOf(std::move(place),
                   {"fs.openFolder", "folder.list", "folder.listWithInfo", "folder.info",
                    "folder.extendedAttributes", "folder.readLink", "file.read", "file.readAt",
                    "file.info", "file.extendedAttributes"},
                   false);
}

std::string FaultWorld::dateOf(int ofRound)
{
    return fmt::format("{}/7/2003", 1 + 2 * ofRound);
}

std::string FaultWorld::freshFolder()
{
    return fmt::format("D:\\back{}", ++m_folders);
}

Contents FaultWorld::look(const std::string& folder, const std::string& shownAs)
{
    Contents result;
    if (!tree.folderExists(folder))
        return result;
    for (const auto& entry : tree.list(folder)) {
        const std::string path = platform::joinPath(folder, entry.name);
        const std::string shown = platform::joinPath(shownAs, entry.name);
        if (entry.info.kind == FileKind::Folder)
            result.merge(look(path, shown));
        else if (entry.info.kind == FileKind::SymbolicLink)
            result[shown] = ">" + tree.openFolder(folder)->readLink(entry.name);
        else
            result[shown] = "=" + tree.readAll(path);
    }
    return result;
}

std::vector<std::string> FaultWorld::leftovers()
{
    std::vector<std::string> result;
    std::vector<std::string> waiting{"C:\\", "D:\\"};
    while (!waiting.empty()) {
        const std::string folder = std::move(waiting.back());
        waiting.pop_back();
        for (const auto& entry : tree.openFolder(folder)->list()) {
            const std::string path = platform::joinPath(folder, entry.name);
            if (entry.kind == FileKind::Folder)
                waiting.push_back(path);
            else if (entry.name.starts_with("~") && !entry.name.starts_with("~folder_"))
                result.push_back(path);
        }
    }
    return result;
}

void FaultWorld::expectRound(int ofRound, int orRound, const std::string& label)
{
    const std::string place = freshFolder();
    const RestoreResult result = restore(place, dateOf(ofRound));
    for (const engine::Gap& gap : result.report.lost)
        ADD_FAILURE() << label << ", round " << ofRound << ": " << gap.path << ": " << gap.reason;
    const Contents back = look(place + "\\C\\data", "C:\\data");
    const Contents& wanted = truth(ofRound);
    const Contents& other = truth(orRound);
    for (const auto& [path, content] : back) {
        const auto one = wanted.find(path);
        const auto two = other.find(path);
        const bool isTrue = (one != wanted.end() && one->second == content) ||
                            (two != other.end() && two->second == content);
        EXPECT_TRUE(isTrue) << label << ", round " << ofRound << ": " << path
                            << " holds what it never held";
    }
    for (const auto& [path, content] : other.size() < wanted.size() ? other : wanted)
        EXPECT_TRUE(back.contains(path)) << label << ", round " << ofRound << ": " << path;
    tree.removeTree(place);
}

void FaultWorld::expectNewest(const std::string& label)
{
    const std::string place = freshFolder();
    const RestoreResult result = restore(place);
    EXPECT_EQ(result.lost, engine::kFalse) << label;
    const Contents back = look(place + "\\C\\data", "C:\\data");
    const Contents& wanted = truth(m_round);
    EXPECT_EQ(back.size(), wanted.size()) << label;
    for (const auto& [path, content] : wanted) {
        const auto hit = back.find(path);
        EXPECT_TRUE(hit != back.end() && hit->second == content) << label << ": " << path;
    }
    const auto folder = tree.openFolder(place + "\\C\\data");
    EXPECT_TRUE(tree.folderExists(place + "\\C\\data\\empty\\inner")) << label;
    // A copy that is stored as it is has no room for the other name.
    if (m_compress) {
        EXPECT_EQ(folder->find("twin")->inode,
                  tree.find(place + "\\C\\data\\a\\f000.txt").value().inode)
            << label;
    }
    EXPECT_EQ(folder->find("long")->mode, 0700U) << label;
    tree.removeTree(place);
}

void FaultWorld::expectSettings(int fromRound, const std::string& label)
{
    put(kDesktopFile, "lost");
    ports.registry.setString(platform::RegistryRoot::CurrentUser, kRegistryKey, "round", "lost");
    const RestoreResult result = restore("", "NULL", {"Desktop Settings", "Registry Settings"});
    EXPECT_EQ(result.lost, engine::kFalse) << label;
    const std::string text = tree.readAll(kDesktopFile);
    const std::string value =
        ports.registry.stringValue(platform::RegistryRoot::CurrentUser, kRegistryKey, "round")
            .value_or("");
    const auto isTrue = [&](const std::string& found, const std::string& before) {
        for (int number = fromRound; number <= m_round; ++number) {
            if (found == before + std::to_string(number))
                return true;
        }
        return false;
    };
    EXPECT_TRUE(isTrue(text, "round ")) << label << ": " << text;
    EXPECT_TRUE(isTrue(value, "")) << label << ": " << value;
    put(kDesktopFile, fmt::format("round {}", m_round));
    beginRound(m_round);
}

void FaultWorld::expectNoDamage(const std::string& label)
{
    const engine::VerifyReport report = engine::verifyArchive(
        machine, kProfiles + "Work.vdp", 100, [](std::string_view) { return true; });
    for (const engine::Gap& gap : report.damaged)
        ADD_FAILURE() << label << ": " << gap.path << ": " << gap.reason;
    EXPECT_THAT(report.foreign, IsEmpty()) << label;
}

void FaultWorld::expectLogGoesOn(int finishedRounds, const std::string& label)
{
    put(kData + "one more.txt", label);
    backup();
    expectLog(finishedRounds, label);
}

void FaultWorld::expectLog(int finishedRounds, const std::string& label, bool mayBeTorn)
{
    const auto log = logs::readBackupLog(files, kApp);
    for (const auto& fault : log.faults) {
        if (mayBeTorn && fault.lineNumber > static_cast<std::size_t>(finishedRounds))
            continue;
        ADD_FAILURE() << label << ": " << fault.path << " line " << fault.lineNumber << ": "
                      << fault.reason;
    }
    for (int number = 1; number <= finishedRounds; ++number) {
        const std::string day = fmt::format("2003-07-{:02} 09:05:03", 1 + 2 * number);
        const auto hits = std::count_if(log.lines.begin(), log.lines.end(),
                                        [&](const auto& line) { return line.date == day; });
        EXPECT_GE(hits, 1) << label << ": no record of round " << number;
    }
}

void FaultWorld::expectCountedCopies(const std::string& label)
{
    std::uint64_t copies = 0;
    const std::int64_t now = ports.clock.nowNs();
    if (tree.folderExists(kRoot)) {
        engine::listCopies(machine, kProfiles + "Work.vdp", [&](const engine::CopyRecord& copy) {
            copies += copy.savedNs == now ? 1U : 0U;
            return true;
        });
    }
    std::uint64_t counted = 0;
    const std::string day = fmt::format("2003-07-{:02} 09:05:03", 1 + 2 * m_round);
    for (const auto& line : logs::readBackupLog(files, kApp).lines) {
        if (line.date == day)
            counted += std::stoull(line.files);
    }
    EXPECT_EQ(counted, copies) << label << ": the record counts other copies than there are";
}

} // namespace vardelin::faults
