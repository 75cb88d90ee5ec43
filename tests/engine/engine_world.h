#pragma once

#include "base/text.h"
#include "platform/memory/memory_machine.h"
#include "profile/scramble_text.h"
#include "runs/engine/engine.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// A machine in memory with an application folder, a profile and a destination, for the tests of the
// engine as its callers see it.
namespace vardelin::engine {

inline const std::string kApp = "C:\\app";
inline const std::string kProfiles = "C:\\app\\Profiles\\";
inline const std::string kRoot = "D:\\store\\Work\\";

struct ProfileText {
    std::vector<std::string> sources{"C:\\data\\"};
    std::vector<std::string> excludedExtensions;
    std::vector<std::string> includedExtensions;
    std::vector<std::string> otherData;
    std::string includeNames;
    std::string excludeNames;
    std::string destination = "D:\\store";
    bool compress = true;
    bool encrypt = false;
    std::string password = {}; // empty: none
    int retention = 6;         // with its count: every version stays, as most tests want it
    int retentionCount = 999;

    std::string plain() const
    {
        std::vector<std::string> lines{"[Work.vdp]"};
        const auto section = [&](const std::string& name, const std::vector<std::string>& values) {
            lines.push_back("{" + name + "}");
            lines.insert(lines.end(), values.begin(), values.end());
            lines.push_back("{End Of " + name + "}");
        };
        const auto one = [](const std::string& text) {
            return text.empty() ? std::vector<std::string>{} : std::vector<std::string>{text};
        };
        section("Source files", sources);
        section("Excluded options", excludedExtensions);
        section("Included options", includedExtensions);
        section("Other Data", otherData);
        section("Include by names", one(includeNames));
        section("Exclude by names", one(excludeNames));
        section("Destination path", {destination});
        section("Password", password.empty()
                                ? std::vector<std::string>{"False"}
                                : std::vector<std::string>{"True", password, "Question", "Answer"});
        std::string kept = "Backup versions =" + std::to_string(retention);
        if (retention == 6 || retention == 8)
            kept += "?" + std::to_string(retentionCount);
        lines.push_back(kept);
        lines.push_back(compress ? "Compress = True" : "Compress = False");
        lines.push_back(encrypt ? "Encrypt=True" : "Encrypt=False");
        lines.push_back("[End of Work.vdp]");
        std::string text;
        for (const std::string& line : lines)
            text += line + "\r\n";
        return text;
    }
};

// Records every event, and runs a hook at each file.
class RecordedEvents : public EngineEvents {
public:
    void ProStatus(double increment) override { progress += increment; }
    void FileProStatus(std::string_view item) override
    {
        files.emplace_back(item);
        if (onFile)
            onFile(item);
    }

    double progress = 0;
    std::vector<std::string> files;
    std::function<void(std::string_view)> onFile;
};

struct BackupResult {
    TruthValue success = kFalse;
    TruthValue noFiles = kFalse;
    TruthValue missed = kFalse;
    std::int16_t units = 0;
    BackupReport report;
};

struct RestoreResult {
    TruthValue lost = kFalse;
    TruthValue mismatch = kFalse;
    TruthValue dateNotMatched = kFalse;
    RestoreReport report;
};

class World {
public:
    World() : machine(ports.machine())
    {
        for (const char* folder : {"C:\\app\\Profiles", "C:\\app\\Data", "C:\\data", "D:\\store"})
            ports.fileSystem.createFolders(folder);
        setProfile({});
    }

    void setProfile(const ProfileText& text)
    {
        writeRaw(kProfiles + "Work.vdp", profile::scrambleText(text.plain()));
    }

    void writeRaw(const std::string& path, std::string_view bytes)
    {
        ports.fileSystem.createFolders(platform::parentOf(path));
        const auto file = ports.fileSystem.open(path, platform::OpenMode::CreateOrTruncate);
        file->write(platform::asBytes(bytes));
        file->close();
    }
    void write(const std::string& name, std::string_view bytes)
    {
        writeRaw("C:\\data\\" + name, bytes);
    }
    std::string read(const std::string& path) { return ports.fileSystem.readAll(path); }
    bool exists(const std::string& path) { return ports.fileSystem.find(path).has_value(); }

    BackupResult backup()
    {
        Engine engine(machine, kApp, events);
        engine.useKeyCost(keyCost);
        BackupResult result;
        engine.EngineBackup(kProfiles, "Work.vdp", result.success);
        result.noFiles = engine.NoFilesIdentified();
        result.missed = engine.MissedFiles();
        result.units = engine.TotalUnits();
        result.report = engine.backupReport();
        return result;
    }

    RestoreResult restore(const std::vector<std::string>& entries, const std::string& location,
                          const std::string& date = "NULL")
    {
        base::TextCollection chosen(base::KeyRule::Exact);
        for (const std::string& entry : entries)
            chosen.tryAdd(entry, entry);
        Engine engine(machine, kApp, events);
        if (rescuePassword)
            engine.usePassword(*rescuePassword);
        engine.EngineRestore(kProfiles, "Work.vdp", chosen, location, date);
        RestoreResult result;
        result.lost = engine.BackupFilesLost();
        result.mismatch = engine.PasswordMismatch();
        result.dateNotMatched = engine.DateNotMatched();
        result.report = engine.restoreReport();
        return result;
    }

    // Every copy by its entry.
    std::map<std::string, CopyRecord> copies()
    {
        std::map<std::string, CopyRecord> result;
        listCopies(machine, kProfiles + "Work.vdp", [&](const CopyRecord& copy) {
            result.emplace(copy.entry, copy);
            return true;
        });
        return result;
    }
    std::vector<std::string> entries()
    {
        std::vector<std::string> result;
        for (const auto& [entry, copy] : copies())
            result.push_back(entry);
        return result;
    }

    // Path below `folder` to content, files alone.
    std::map<std::string, std::string> tree(const std::string& folder)
    {
        std::map<std::string, std::string> result;
        collect(folder, "", result);
        return result;
    }

    platform::MemoryMachine ports;
    platform::Machine machine;
    RecordedEvents events;
    KeyCost keyCost{1, 8}; // the least that there is: tests derive many keys
    std::optional<std::string> rescuePassword;

private:
    void collect(const std::string& folder, const std::string& below,
                 std::map<std::string, std::string>& result)
    {
        for (const auto& entry : ports.fileSystem.list(folder)) {
            const std::string path = platform::joinPath(folder, entry.name);
            if (entry.info.kind == platform::FileKind::Folder)
                collect(path, below + entry.name + "\\", result);
            else if (entry.info.kind == platform::FileKind::Regular)
                result[below + entry.name] = read(path);
        }
    }
};

} // namespace vardelin::engine
