#include "proofs/seed.h"
#include "proofs/walk_model.h"

#include "engine/plain_reader.h"

#include "base/runtime_error.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <limits>
#include <sched.h>
#include <stdexcept>

// Thousands of steps of a person and of fate against one archive, compared with the model after
// each. VARDELIN_WALK_STEPS steps; VARDELIN_SEED replays a walk's steps, and one processor means
// one worker and so one order of calls. Salts and keys are random all the same.
namespace vardelin::proofs {
namespace {

using platform::FileKind;

constexpr std::int64_t kAlways = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kHourNs = 3'600'000'000'000;

class OneProcessor {
public:
    OneProcessor()
    {
        ::sched_getaffinity(0, sizeof(m_before), &m_before);
        cpu_set_t one;
        CPU_ZERO(&one);
        for (std::size_t cpu = 0; cpu < CPU_SETSIZE; ++cpu) {
            if (CPU_ISSET(cpu, &m_before)) {
                CPU_SET(cpu, &one);
                break;
            }
        }
        ::sched_setaffinity(0, sizeof(one), &one);
    }
    ~OneProcessor() { ::sched_setaffinity(0, sizeof(m_before), &m_before); }
    OneProcessor(const OneProcessor&) = delete;
    OneProcessor& operator=(const OneProcessor&) = delete;

private:
    cpu_set_t m_before{};
};

class Walk {
public:
    explicit Walk(std::uint64_t seed) : m_random(seed), m_files(m_world.ports.fileSystem) {}

    void step()
    {
        struct Choice {
            const char* name;
            std::size_t weight;
            void (Walk::*act)();
        };
        static const std::vector<Choice> choices{
            {"edit", 40, &Walk::edit},
            {"backup", 20, &Walk::backup},
            {"restore all", 4, &Walk::restoreAll},
            {"restore a folder", 4, &Walk::restoreFolder},
            {"restore entries", 6, &Walk::restoreEntries},
            {"restore as of a date", 5, &Walk::restoreDate},
            {"restore to its place", 4, &Walk::restoreInPlace},
            {"delete copies", 4, &Walk::deleteCopies},
            {"compression", 2, &Walk::toggleCompression},
            {"retention", 2, &Walk::changeRetention},
            {"prune", 2, &Walk::prune},
            {"password", 3, &Walk::changePassword},
            {"encryption", 2, &Walk::toggleEncryption},
            {"kill a backup", 6, &Walk::killBackup},
            {"kill a restore", 3, &Walk::killRestore},
            {"clock", 6, &Walk::moveClock},
        };
        std::size_t sum = 0;
        for (const Choice& choice : choices)
            sum += choice.weight;
        m_files.script().reset(); // its record of calls would grow for ever
        std::size_t at = m_random.below(sum);
        for (const Choice& choice : choices) {
            if (at < choice.weight) {
                m_now = choice.name;
                (this->*choice.act)();
                return;
            }
            at -= choice.weight;
        }
    }
    const std::string& now() const { return m_now; }
    std::size_t backups() const { return m_backups; }
    std::size_t restores() const { return m_restores; }
    std::size_t kills() const { return m_kills; }
    std::uint64_t pruned() const { return m_pruned; }
    std::uint64_t refused() const { return m_refused; }

private:
    [[noreturn]] static void fail(const std::string& text) { throw std::runtime_error(text); }
    static void require(bool good, const std::string& text)
    {
        if (!good)
            fail(text);
    }

    // --- the person's edits

    std::string someName()
    {
        static const std::vector<std::string> names{"a.txt",
                                                    "b",
                                                    "carefully.txt",
                                                    "Server.conf",
                                                    "x_FULL_1-2-3.zst",
                                                    "x_Ver2_",
                                                    "~0123456789abcdef.tmp",
                                                    "~folder_1ed-0-0-1.zst",
                                                    "Work.vdp",
                                                    "Case",
                                                    "case",
                                                    " in front",
                                                    "caf\xc3\xa9",
                                                    "cafe\xcc\x81",
                                                    "not utf8 \xe9",
                                                    "what\xef\x80\xbf",
                                                    "end\xef\x80\xae",
                                                    "new\xef\x80\x8aline"};
        return m_random.oneOf(names);
    }
    std::string someFolder()
    {
        static const std::vector<std::string> names{"d1\\", "d2\\", "full folder\\", "b\\",
                                                    "OtherData\\"};
        std::string folder = kData;
        while (m_random.chance(45) && folder.size() < 40)
            folder += m_random.oneOf(names);
        return folder;
    }
    // Every folder on the way that can be made; false where a file stands in it.
    bool makeFolders(const std::string& folder)
    {
        try {
            m_files.createFolders(folder);
            // A link to a folder would lead a writer elsewhere.
            return m_files.canonical(folder) + "\\" == folder;
        } catch (const base::RuntimeError&) {
            return false;
        }
    }
    std::string someContent()
    {
        if (m_random.chance(10))
            return {};
        return m_random.bytes(m_random.below(m_random.chance(5) ? 200'000 : 300));
    }
    void write(const std::string& path, std::string_view bytes)
    {
        const auto folder = m_files.openFolder(platform::parentOf(path));
        const auto info = folder->find(platform::leafOf(path));
        if (info && info->kind == FileKind::Folder)
            m_files.removeTree(path);
        else if (info && info->kind == FileKind::SymbolicLink)
            m_files.removeFile(path);
        const auto file =
            folder->open(platform::leafOf(path), platform::OpenMode::CreateOrTruncate);
        file->write(platform::asBytes(bytes));
    }

    void edit()
    {
        for (std::size_t i = m_random.below(6) + 1; i > 0; --i)
            editOne();
    }
    void editOne()
    {
        const Tree tree = treeOf(m_files, kData);
        const bool fresh = tree.empty() || (tree.size() < 40 && m_random.chance(40));
        if (fresh) {
            const std::string folder = someFolder();
            if (makeFolders(folder))
                write(folder + someName(), someContent());
            return;
        }
        auto place = tree.begin();
        std::advance(place, static_cast<std::ptrdiff_t>(m_random.below(tree.size())));
        const auto& [path, thing] = *place;
        const auto folder = m_files.openFolder(platform::parentOf(
            std::string_view(path).substr(0, path.size() - (path.ends_with('\\') ? 1 : 0))));
        const std::string bare = path.substr(0, path.size() - (path.ends_with('\\') ? 1 : 0));
        const std::string leaf(platform::leafOf(bare));
        const bool isFile = thing.kind == FileKind::Regular;
        switch (m_random.below(10)) {
        case 0:
        case 1: // change
            if (isFile)
                write(path, someContent());
            break;
        case 2: // append
            if (isFile)
                write(path, thing.content + someContent());
            break;
        case 3: // truncate
            if (isFile)
                write(path, thing.content.substr(0, m_random.below(thing.content.size() + 1)));
            break;
        case 4: { // touch
            const std::int64_t time =
                m_files.nowNs() - static_cast<std::int64_t>(m_random.below(1'000'000'000));
            folder->setTimes(leaf, time, time);
            break;
        }
        case 5: // delete
            if (thing.kind == FileKind::Folder)
                m_files.removeTree(bare);
            else
                m_files.removeFile(bare);
            break;
        case 6: { // rename
            const std::string to = someFolder();
            if ((to + "\\").starts_with(path) || !makeFolders(to))
                break;
            const auto target = m_files.openFolder(to);
            const std::string name = someName();
            if (!target->find(name) && folder->find(leaf))
                folder->moveTo(leaf, *target, name);
            break;
        }
        case 7: // a file becomes a folder, and the other way round
            if (thing.kind == FileKind::Folder) {
                write(bare, someContent());
            } else {
                m_files.removeFile(bare);
                m_files.createFolder(bare);
                if (m_random.chance(70))
                    write(bare + "\\" + someName(), someContent());
            }
            break;
        case 8: // chmod
            if (thing.kind != FileKind::SymbolicLink)
                folder->setMode(leaf, m_random.oneOf(std::vector<std::uint32_t>{
                                          0644, 0600, 0755, 0400, 0444, 0700, 01777}));
            break;
        default: // a link
            if (thing.kind != FileKind::Folder) {
                m_files.removeFile(bare);
                folder->createLink(leaf, m_random.oneOf(std::vector<std::string>{
                                             "a.txt", "../b", "/etc", "nowhere", "."}));
            }
            break;
        }
    }

    // --- backups

    std::map<std::string, engine::CopyRecord> listed()
    {
        std::map<std::string, engine::CopyRecord> result; // by path and version
        if (!m_files.folderExists(engine::kRoot))
            return result;
        engine::listCopies(m_world.machine, engine::kProfiles + "Work.vdp",
                           [&](const engine::CopyRecord& copy) {
                               const bool isNew = result.emplace(keyOf(copy), copy).second;
                               require(isNew, "two copies are one version of " + copy.sourcePath);
                               return true;
                           });
        return result;
    }
    static std::string keyOf(const engine::CopyRecord& copy)
    {
        return copy.sourcePath + "|" + std::to_string(copy.version);
    }
    static std::string keyOf(const std::string& path, int version)
    {
        return path + "|" + std::to_string(version);
    }

    static std::uint64_t tagOf(const engine::CopyRecord& copy)
    {
        const auto name = archive::parseCopyName(platform::leafOf(copy.archivePath));
        require(name && name->meta, copy.archivePath + " does not tell its tag");
        return name->meta->passwordTag;
    }

    // The content of an archive file by a reader that shares no code with the engine. `password` is
    // the one under which it was saved: the reader takes no other.
    Thing read(const engine::CopyRecord& copy, const std::string& password)
    {
        Thing thing;
        std::string bytes = m_files.readAll(copy.archivePath);
        if (copy.form == archive::Form::Stored) {
            thing.content = bytes;
            return thing;
        }
        if (copy.form == archive::Form::Encrypted)
            bytes = plain::decrypt(bytes, password);
        const plain::Copy whole = plain::read(bytes);
        require(whole.path == copy.sourcePath, copy.archivePath + " names another path");
        thing.kind = whole.isLink ? FileKind::SymbolicLink : FileKind::Regular;
        thing.content = whole.isLink ? whole.linkTarget : whole.content;
        return thing;
    }

    void compareArchive(bool contents)
    {
        const auto copies = listed();
        std::size_t expected = 0;
        for (const auto& [path, versions] : m_model.archive) {
            for (const auto& [version, saved] : versions) {
                ++expected;
                const auto hit = copies.find(keyOf(path, version));
                require(hit != copies.end(),
                        "version " + std::to_string(version) + " of " + path + " is missing");
                const engine::CopyRecord& copy = hit->second;
                require(copy.savedNs == saved.savedNs, path + " has another time of the run");
                require(copy.modifiedNs == saved.thing.modifiedNs, path + " has another time");
                require(copy.form == saved.form, path + " has another form");
                require(tagOf(copy) == saved.tag, path + " has the tag of another password");
                if (!contents && !m_random.chance(10))
                    continue;
                const Thing found = read(copy, saved.password);
                require(found.kind == saved.thing.kind, path + " is of another kind");
                require(found.content == saved.thing.content, path + " has another content");
            }
        }
        require(copies.size() == expected, "the archive holds copies that nobody saved");
    }
    void noTemporaries(const std::string& folder)
    {
        for (const auto& [path, thing] : treeOf(m_files, folder)) {
            require(thing.kind == FileKind::Folder ||
                        !archive::isTemporaryName(platform::leafOf(path)),
                    path + " was left behind");
        }
        require(!m_files.fileExists(engine::kRoot + "~run"), "the marker was left behind");
    }
    void verify()
    {
        const auto report = engine::verifyArchive(m_world.machine, engine::kProfiles + "Work.vdp",
                                                  100, [](std::string_view) { return true; });
        require(report.damaged.empty(),
                "damage: " + (report.damaged.empty()
                                  ? std::string()
                                  : report.damaged[0].path + ": " + report.damaged[0].reason));
        std::size_t files = 0;
        for (const engine::Gap& gap : report.mismatched) {
            if (!archive::parseFolderRecordName(platform::leafOf(gap.path)))
                ++files;
        }
        std::size_t expected = 0;
        for (const auto& [path, versions] : m_model.archive) {
            for (const auto& [version, copy] : versions) {
                // A check reads what is not encrypted whatever the password.
                if (copy.form == archive::Form::Encrypted &&
                    WalkModel::mismatches(copy, m_profile.password))
                    ++expected;
            }
        }
        require(files == expected,
                "another count of copies under another password: " + std::to_string(files));
    }

    Settings settings() const
    {
        Settings result;
        result.password = m_profile.password;
        result.encrypt = m_profile.encrypt;
        result.compress = m_profile.compress;
        result.newest = m_profile.retention == 7 ? 1 : m_profile.retentionCount;
        return result;
    }
    // The tag under which the last run saved. It is made of a random salt, so the archive tells it:
    // the new copies, which must agree, or where nothing was new, the copies that were good enough.
    std::uint64_t tagOfRun(const Tree& sources)
    {
        if (m_profile.password.empty())
            return 0;
        std::set<std::uint64_t> fresh;
        for (const auto& [key, copy] : listed()) {
            const auto known = m_model.archive.find(copy.sourcePath);
            if (known == m_model.archive.end() || !known->second.contains(copy.version))
                fresh.insert(tagOf(copy));
        }
        std::set<std::uint64_t> old;
        for (const auto& [path, thing] : sources) {
            const auto known = m_model.archive.find(path);
            if (thing.kind == FileKind::Folder || known == m_model.archive.end() ||
                known->second.empty())
                continue;
            const SavedCopy& last = known->second.rbegin()->second;
            Settings today = settings();
            today.tag = last.tag;
            if (today.accept(last))
                old.insert(last.tag);
        }
        // Which of several slots of one password a run takes is not checked: the others' copies are
        // saved once more, which costs room alone.
        if (fresh.empty())
            return old.empty() ? 0 : *old.begin();
        require(fresh.size() == 1 && !fresh.contains(0), "one run saved under several tags");
        return *fresh.begin();
    }

    void backup()
    {
        const Tree sources = treeOf(m_files, kData);
        const std::int64_t startNs = m_world.ports.clock.nowNs();
        const engine::BackupResult result = m_world.backup();
        ++m_backups;
        Settings today = settings();
        today.tag = tagOfRun(sources);
        const auto expected = m_model.backup(sources, startNs, today);
        require(result.success == engine::kTrue, "the backup did not come to its end");
        require(result.report.missed.empty(), "missed files");
        require(result.report.fullCopies == expected.fullCopies, "another count of full copies");
        require(result.report.versions == expected.versions, "another count of versions");
        require(result.report.renewed == expected.renewed, "another count of touched files");
        require(result.report.pruned == expected.pruned, "another count of removed versions");
        m_pruned += expected.pruned;
        const bool anything = !expected.saved.empty();
        require((result.noFiles == engine::kTrue) == !anything, "the flag of nothing to do");
        if (!m_files.folderExists(engine::kRoot))
            return;
        compareArchive(m_backups % 8 == 0);
        if (anything)
            noTemporaries(engine::kRoot);
        if (m_backups % 8 == 0)
            verify();
        require(differenceOf(sources, treeOf(m_files, kData)).empty(), "a backup changed a source");
        if (m_random.chance(15))
            restoreAndCompareSources(sources);
        moveOn();
    }

    // What a person hopes for: after a backup all that is there now comes back, rights and all.
    void restoreAndCompareSources(const Tree& sources)
    {
        const std::string place = freshPlace();
        restoreAnd({kData}, place, "NULL");
        const Tree found = treeOf(m_files, place + "\\C\\data\\");
        for (const auto& [path, thing] : sources) {
            const auto hit = found.find(place + "\\C" + path.substr(2));
            if (thing.kind != FileKind::Folder || hit == found.end())
                continue;
            require(hit->second.kind != FileKind::Folder || hit->second.mode == thing.mode,
                    path + " has other rights");
        }
        m_files.removeTree(place);
    }

    // Time goes on a little behind each run, so that two runs are told apart.
    void moveOn() { m_world.ports.clock.advance(std::chrono::seconds(1 + m_random.below(100))); }

    // --- restores

    std::string freshPlace() { return "D:\\back" + std::to_string(++m_places); }

    std::set<std::string> archiveFolders(const std::string& below)
    {
        std::set<std::string> result;
        const std::string root = engine::kRoot + "C\\data\\";
        if (!m_files.folderExists(root))
            return result;
        result.insert(kData);
        for (const auto& [path, thing] : treeOf(m_files, root)) {
            if (thing.kind == FileKind::Folder)
                result.insert(kData + path.substr(root.size()));
        }
        std::erase_if(result, [&](const std::string& path) { return !path.starts_with(below); });
        return result;
    }
    std::map<std::string, SavedCopy> newestBelow(const std::string& folder, std::int64_t limitNs)
    {
        std::map<std::string, SavedCopy> chosen;
        for (const auto& [path, versions] : m_model.archive) {
            if (!path.starts_with(folder))
                continue;
            if (const SavedCopy* const copy = WalkModel::newest(versions, limitNs))
                chosen.emplace(path, *copy);
        }
        return chosen;
    }

    // Restores to a place of its own and compares it, nothing more and nothing less.
    void restoreTo(const std::vector<std::string>& entries, const std::string& date,
                   const WalkModel::Restored& expected)
    {
        const std::string place = freshPlace();
        const std::set<std::string> failed = restoreAnd(entries, place, date);
        ++m_restores;
        checkMismatched(expected, failed);
        for (const std::string& path : failed)
            require(expected.isContested(path), path + " failed");
        Tree wanted;
        for (const auto& [path, thing] : expected.things) {
            wanted.emplace(place + "\\C" + path.substr(2), thing);
            // With the folders on the way.
            for (std::size_t at = path.find('\\'); at != std::string::npos;
                 at = path.find('\\', at + 1))
                wanted.emplace(place + "\\C" + path.substr(2, at - 1),
                               Thing{FileKind::Folder, {}, 0, 0});
        }
        Tree found;
        if (m_files.folderExists(place))
            found = treeOf(m_files, place + "\\");
        // The folders of a refused copy may be made before its password is known.
        for (const std::string& path : expected.mismatched) {
            for (std::size_t at = path.find('\\'); at != std::string::npos;
                 at = path.find('\\', at + 1)) {
                const std::string folder = place + "\\C" + path.substr(2, at - 1);
                if (found.contains(folder))
                    wanted.emplace(folder, Thing{FileKind::Folder, {}, 0, 0});
            }
        }
        // Of a name that was a file and a folder one comes, and what does not come is told.
        for (const auto& [path, thing] : expected.things) {
            const std::string target = place + "\\C" + path.substr(2);
            if (!expected.isContested(path) || found.contains(target))
                continue;
            require(thing.kind == FileKind::Folder || failed.contains(path),
                    path + " did not come and nobody said so");
            wanted.erase(target);
            std::erase_if(wanted, [&](const auto& entry) {
                return entry.first.ends_with('\\') && !found.contains(entry.first) &&
                       target.starts_with(entry.first) &&
                       expected.isContested("C:" + entry.first.substr(place.size() + 2));
            });
        }
        const std::string difference = differenceOf(wanted, found);
        require(difference.empty(), difference);
        if (m_files.folderExists(place))
            m_files.removeTree(place);
        moveOn();
    }

    void restoreAll()
    {
        if (!m_files.folderExists(engine::kRoot + "C\\data"))
            return;
        restoreTo({kData}, "NULL",
                  WalkModel::restored(newestBelow(kData, kAlways), archiveFolders(kData),
                                      m_profile.password));
    }
    void restoreFolder()
    {
        const auto folders = archiveFolders(kData);
        if (folders.empty())
            return;
        const std::string folder = *std::next(
            folders.begin(), static_cast<std::ptrdiff_t>(m_random.below(folders.size())));
        restoreTo({folder}, "NULL",
                  WalkModel::restored(newestBelow(folder, kAlways), archiveFolders(folder),
                                      m_profile.password));
    }
    void restoreEntries()
    {
        // An entry that two names share stands for the newer copy: not this walk's matter.
        std::map<std::string, const engine::CopyRecord*> byEntry;
        const auto copies = listed();
        std::set<std::string> shared;
        for (const auto& [key, copy] : copies) {
            if (!byEntry.emplace(copy.entry, &copy).second)
                shared.insert(copy.entry);
        }
        for (const std::string& entry : shared)
            byEntry.erase(entry);
        if (byEntry.empty())
            return;
        std::vector<std::string> entries;
        std::map<std::string, std::pair<int, SavedCopy>> newest;
        for (std::size_t i = m_random.below(4) + 1; i > 0; --i) {
            const auto& [entry, copy] = *std::next(
                byEntry.begin(), static_cast<std::ptrdiff_t>(m_random.below(byEntry.size())));
            entries.push_back(entry);
            auto& [version, saved] = newest[copy->sourcePath];
            if (copy->version >= version) {
                version = copy->version;
                saved = m_model.archive.at(copy->sourcePath).at(copy->version);
            }
        }
        std::map<std::string, SavedCopy> chosen;
        for (const auto& [path, copy] : newest)
            chosen.emplace(path, copy.second);
        restoreTo(entries, "NULL", WalkModel::restored(chosen, {}, m_profile.password));
    }
    void restoreDate()
    {
        if (!m_files.folderExists(engine::kRoot + "C\\data") || m_days.empty())
            return;
        auto& clock = m_world.ports.clock;
        const std::int64_t day = m_random.oneOf(m_days);
        const base::Date date = clock.toLocal(day).date;
        const std::int64_t limit =
            clock.fromLocal({base::dateFromDays(base::daysSinceEpoch(date) + 1), {}}) - 1;
        const std::string text = std::to_string(date.day) + "/" + std::to_string(date.month) + "/" +
                                 std::to_string(date.year);
        restoreTo({kData}, text,
                  WalkModel::restored(newestBelow(kData, limit), archiveFolders(kData),
                                      m_profile.password));
    }

    // Over the sources themselves: what stands in the way is told, the rest is as it was saved.
    void restoreInPlace()
    {
        const auto folders = archiveFolders(kData);
        if (folders.empty())
            return;
        const auto expected =
            WalkModel::restored(newestBelow(kData, kAlways), folders, m_profile.password);
        const Tree before = treeOf(m_files, kData);
        const auto blocked = [&](const std::string& path) {
            for (std::size_t at = path.find('\\', kData.size());
                 at != std::string::npos && at + 1 < path.size(); at = path.find('\\', at + 1)) {
                if (before.contains(path.substr(0, at)))
                    return true; // a file or link stands where a folder has to be
            }
            const bool isFolder = path.ends_with('\\');
            return isFolder ? before.contains(path.substr(0, path.size() - 1))
                            : before.contains(path + "\\");
        };
        const std::set<std::string> failed = restoreAnd({kData}, "", "NULL");
        ++m_restores;
        checkMismatched(expected, failed);
        const Tree found = treeOf(m_files, kData);
        Tree wanted = before;
        for (const auto& [path, thing] : expected.things) {
            const bool isFolder = path.ends_with('\\');
            if (path == kData)
                continue;
            if (blocked(path)) {
                require(isFolder || failed.contains(path), path + " was not told");
                continue;
            }
            if (expected.isContested(path) && !found.contains(path)) {
                require(isFolder || failed.contains(path), path + " was not told, either");
                continue;
            }
            require(!failed.contains(path) || expected.isContested(path), path + " failed");
            if (!failed.contains(path) && (!isFolder || !wanted.contains(path)))
                wanted[path] = thing;
        }
        const std::string difference = differenceOf(wanted, found);
        require(difference.empty(), difference);
        moveOn();
    }

    // Of a name that was a file and a folder, the copy can fail before its password is asked for.
    void checkMismatched(const WalkModel::Restored& expected, const std::set<std::string>& failed)
    {
        for (const std::string& path : m_mismatched)
            require(expected.mismatched.contains(path), path + " was refused for its password");
        for (const std::string& path : expected.mismatched)
            require(m_mismatched.contains(path) || failed.contains(path),
                    path + " of another password was not told");
        m_refused += m_mismatched.size();
    }

    // Gives the paths that could not be written, each told with a reason.
    std::set<std::string> restoreAnd(const std::vector<std::string>& entries,
                                     const std::string& place, const std::string& date)
    {
        base::TextCollection chosen(base::KeyRule::Exact);
        for (const std::string& entry : entries)
            chosen.tryAdd(entry, entry);
        engine::Engine engine(m_world.machine, engine::kApp, m_world.events);
        bool raised = false;
        try {
            engine.EngineRestore(engine::kProfiles, "Work.vdp", chosen, place, date);
        } catch (const base::RuntimeError&) {
            raised = true;
        }
        const engine::RestoreReport& report = engine.restoreReport();
        require(engine.BackupFilesLost() == engine::kFalse && report.lost.empty(),
                "copies were lost");
        require(raised == !report.failed.empty(), "raised without a failed file");
        require((engine.PasswordMismatch() == engine::kTrue) == !report.mismatched.empty(),
                "the flag of another password");
        m_mismatched.clear();
        for (const engine::Gap& gap : report.mismatched) {
            if (!gap.path.ends_with('\\')) // attributes of a folder have a password of their own
                m_mismatched.insert(gap.path);
        }
        std::set<std::string> failed;
        for (const engine::Gap& gap : report.failed) {
            require(!gap.reason.empty(), gap.path + " failed without a reason");
            failed.insert(gap.path);
        }
        return failed;
    }

    // --- what else a person and fate do

    void deleteCopies()
    {
        const auto copies = listed();
        for (std::size_t i = m_random.below(5); i > 0 && !copies.empty(); --i) {
            const auto& copy = std::next(copies.begin(),
                                         static_cast<std::ptrdiff_t>(m_random.below(copies.size())))
                                   ->second;
            if (!m_files.fileExists(copy.archivePath))
                continue;
            m_files.removeFile(copy.archivePath);
            m_model.archive[copy.sourcePath].erase(copy.version);
        }
        // An archive that only grows would make the walk slow and no better.
        while (listed().size() > 250) {
            for (const auto& [key, copy] : listed()) {
                if (m_random.chance(50)) {
                    m_files.removeFile(copy.archivePath);
                    m_model.archive[copy.sourcePath].erase(copy.version);
                }
            }
        }
        std::erase_if(m_model.archive, [](const auto& entry) { return entry.second.empty(); });
        compareArchive(false);
    }

    void toggleCompression()
    {
        m_profile.compress = !m_profile.compress;
        m_world.setProfile(m_profile);
    }

    void changeRetention()
    {
        // All, a few, or the full and the newest copy alone.
        m_profile.retention = m_random.chance(30) ? 7 : 6;
        m_profile.retentionCount =
            m_random.chance(30) ? 999 : static_cast<int>(1 + m_random.below(5));
        m_world.setProfile(m_profile);
    }

    void prune()
    {
        if (!m_files.folderExists(engine::kRoot))
            return;
        const auto report =
            engine::pruneArchive(m_world.machine, engine::kApp, engine::kProfiles + "Work.vdp",
                                 [](std::string_view) { return true; });
        const std::uint64_t expected = m_model.prune(settings().newest);
        require(report.failed.empty(), "versions could not be removed");
        require(report.removed == expected, "another count of removed versions");
        m_pruned += expected;
        compareArchive(false);
        moveOn();
    }

    void changePassword()
    {
        m_profile.password = m_random.oneOf(std::vector<std::string>{"", "first", "second"});
        m_world.setProfile(m_profile);
    }

    void toggleEncryption()
    {
        m_profile.encrypt = !m_profile.encrypt;
        m_world.setProfile(m_profile);
    }

    bool killed(const std::function<void()>& run)
    {
        auto& script = m_files.script();
        script.reset();
        script.killAtCall(1 + m_random.below(m_random.chance(50) ? 100 : 1000));
        try {
            run();
        } catch (const platform::Killed&) {
        } catch (const base::RuntimeError&) {
            // A target in the way, as without the kill.
        }
        const bool died = script.wasKilled();
        script.reset();
        ++m_kills;
        return died;
    }

    // A copy that the run before its death wrote anew.
    SavedCopy freshCopy(const engine::CopyRecord& copy, const Tree& sources, std::int64_t startNs)
    {
        const auto source = sources.find(copy.sourcePath);
        require(source != sources.end(), "a copy of " + copy.sourcePath + " that nobody planned");
        const auto known = m_model.archive.find(copy.sourcePath);
        const bool isFirst = known == m_model.archive.end() || known->second.empty();
        require(copy.version == (isFirst ? 0 : known->second.rbegin()->first + 1),
                "a dead run gave a wrong number to " + copy.sourcePath);
        const Settings today = settings();
        SavedCopy fresh{source->second, startNs, today.password, tagOf(copy),
                        today.formOf(source->second)};
        require((fresh.tag == 0) == today.password.empty() && copy.form == fresh.form &&
                    copy.savedNs == startNs && copy.modifiedNs == fresh.thing.modifiedNs,
                "a dead run left a wrong copy of " + copy.sourcePath);
        if (!isFirst) {
            Settings asSaved = today;
            asSaved.tag = fresh.tag;
            const SavedCopy& last = known->second.rbegin()->second;
            require(!asSaved.accept(last) || last.thing.content != fresh.thing.content ||
                        last.thing.kind != fresh.thing.kind,
                    "a dead run saved once more what is the same: " + copy.sourcePath);
        }
        return fresh;
    }

    void killBackup()
    {
        const Tree sources = treeOf(m_files, kData);
        const std::int64_t startNs = m_world.ports.clock.nowNs();
        killed([&] { m_world.backup(); });
        // Each copy is the one before or the one that the run would have made; none is gone but
        // those that fall out of what is kept.
        WalkModel found;
        for (const auto& [key, copy] : listed()) {
            const auto before = m_model.archive.find(copy.sourcePath);
            const bool known =
                before != m_model.archive.end() && before->second.contains(copy.version);
            SavedCopy now =
                known ? before->second.at(copy.version) : freshCopy(copy, sources, startNs);
            if (known && copy.modifiedNs != now.thing.modifiedNs) {
                const auto source = sources.find(copy.sourcePath);
                require(source != sources.end() && source->second.content == now.thing.content &&
                            source->second.kind == now.thing.kind &&
                            source->second.modifiedNs == copy.modifiedNs,
                        "a dead run gave a wrong time to " + copy.sourcePath);
                now.thing.modifiedNs = copy.modifiedNs;
            }
            const Thing content = read(copy, now.password);
            require(copy.savedNs == now.savedNs && tagOf(copy) == now.tag &&
                        content.content == now.thing.content && content.kind == now.thing.kind,
                    "a dead run left a wrong copy of " + copy.sourcePath);
            found.archive[copy.sourcePath].emplace(copy.version, std::move(now));
        }
        for (const auto& [path, versions] : m_model.archive) {
            std::set<int> numbers;
            for (const auto& [version, copy] : versions)
                numbers.insert(version);
            for (const auto& [version, copy] : found.archive[path])
                numbers.insert(version);
            const std::set<int> stay = WalkModel::kept(numbers, settings().newest);
            for (const auto& [version, copy] : versions)
                require(found.archive[path].contains(version) || !stay.contains(version),
                        "a dead run took a copy of " + path);
        }
        std::erase_if(found.archive, [](const auto& entry) { return entry.second.empty(); });
        m_model = found;
        if (m_files.folderExists(engine::kRoot))
            verify();
        moveOn();
    }

    void killRestore()
    {
        if (!m_files.folderExists(engine::kRoot + "C\\data"))
            return;
        const auto expected = WalkModel::restored(newestBelow(kData, kAlways),
                                                  archiveFolders(kData), m_profile.password);
        const bool inPlace = m_random.chance(40);
        const std::string place = inPlace ? std::string() : freshPlace();
        const Tree before = treeOf(m_files, kData);
        killed([&] { m_world.restore({kData}, place); });
        const std::string root = inPlace ? kData : place + "\\C\\data\\";
        Tree found;
        if (m_files.folderExists(root))
            found = treeOf(m_files, root);
        for (const auto& [path, thing] : found) {
            if (thing.kind == FileKind::Folder)
                continue;
            const std::string source = kData + path.substr(root.size());
            const auto saved = expected.things.find(source);
            const auto was = inPlace ? before.find(source) : before.end();
            const bool isSaved = saved != expected.things.end() && saved->second == thing;
            const bool isOld = was != before.end() && was->second == thing;
            if (isSaved || isOld)
                continue;
            const bool known = saved != expected.things.end() || was != before.end();
            require(!known && archive::isTemporaryName(platform::leafOf(path)),
                    "a dead restore left a wrong " + path);
            // The next restore would take it away; here it must not become a source.
            m_files.removeFile(path);
        }
        for (const auto& [path, thing] : before)
            require(!inPlace || found.contains(path), "a dead restore took " + path);
        if (!inPlace && m_files.folderExists(place))
            m_files.removeTree(place);
        moveOn();
    }

    void moveClock()
    {
        auto& clock = m_world.ports.clock;
        const std::int64_t now = clock.nowNs();
        m_days.push_back(now);
        if (m_random.chance(30))
            clock.setNowNs(now - static_cast<std::int64_t>(m_random.below(72)) * kHourNs - 1);
        else
            clock.setNowNs(now + static_cast<std::int64_t>(m_random.below(240)) * kHourNs + 1);
    }

    Random m_random;
    engine::World m_world;
    platform::MemoryFileSystem& m_files;
    engine::ProfileText m_profile;
    WalkModel m_model;
    std::vector<std::int64_t> m_days; // on which the clock stood
    std::string m_now;
    std::size_t m_places = 0;
    std::size_t m_backups = 0;
    std::size_t m_restores = 0;
    std::size_t m_kills = 0;
    std::uint64_t m_pruned = 0;
    std::uint64_t m_refused = 0;
    std::set<std::string> m_mismatched; // at the last restore
};

TEST(RandomWalk, TheArchiveIsWhatTheModelSays)
{
    const OneProcessor one;
    const std::size_t steps = countFrom("VARDELIN_WALK_STEPS", 250);
    const std::uint64_t seed = seedOf("TheArchiveIsWhatTheModelSays");
    Walk walk(seed);
    for (std::size_t step = 1; step <= steps; ++step) {
        try {
            walk.step();
        } catch (const std::exception& error) {
            FAIL() << "VARDELIN_SEED=" << seed << ", step " << step << " (" << walk.now()
                   << "): " << error.what();
        }
    }
    std::cout << walk.backups() << " backups, " << walk.restores() << " restores, " << walk.kills()
              << " kills, " << walk.pruned() << " versions removed, " << walk.refused()
              << " copies refused for their password\nran: random walk: " << steps << ", seed "
              << seed << "\n";
}

} // namespace
} // namespace vardelin::proofs
