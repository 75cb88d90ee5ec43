#pragma once

#include "engine/engine_world.h"
#include "support/temp_folder.h"

#include "base/runtime_error.h"
#include "platform/linux/linux_file_system.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

// A folder of the machine's real disk as the whole world of an engine: drive C: with an application
// folder, sources (C:\data), a destination (C:\store) and a script in front of every call. The
// other ports are those in memory.
namespace vardelin::proofs {

inline const std::string kStoreRoot = "C:\\store\\Work\\";

class DiskWorld {
public:
    DiskWorld()
        : disk(std::make_shared<const platform::DriveMap>(
              std::vector<platform::DriveRoot>{{'C', folder.path() + "/c"}})),
          files(disk, script), machine{files,       ports.drives,      ports.registry,
                                       ports.shell, ports.facts,       ports.processes,
                                       ports.clock, ports.messageLoop, ports.messageBoxes}
    {
        for (const char* name : {"c/app/Profiles", "c/store", "c/data", "outside"})
            std::filesystem::create_directories(folder / name);
        engine::ProfileText text;
        text.destination = "C:\\store";
        setProfile(text);
    }

    void setProfile(const engine::ProfileText& text)
    {
        disk.replaceFile(engine::kProfiles + "Work.vdp", profile::scrambleText(text.plain()));
    }
    std::string native(const std::string& below) const { return folder / ("c/" + below); }
    std::string outside() const { return folder / "outside"; }
    void write(const std::string& below, std::string_view bytes) const
    {
        folder.write("c/" + below, bytes);
    }
    std::string read(const std::string& below) const
    {
        return test::TempFolder::read(native(below));
    }

    engine::BackupReport backup()
    {
        engine::Engine engine(machine, engine::kApp, events);
        engine::TruthValue success = engine::kFalse;
        engine.EngineBackup(engine::kProfiles, "Work.vdp", success);
        return engine.backupReport();
    }

    // Raised errors are kept beside the report, since both tell a part.
    struct Restored {
        engine::RestoreReport report;
        std::optional<base::RuntimeError> raised;
        bool lostFlag = false;
    };
    Restored restore(const std::vector<std::string>& entries, const std::string& location,
                     const std::string& date = "NULL")
    {
        base::TextCollection chosen(base::KeyRule::Exact);
        for (const std::string& entry : entries)
            chosen.tryAdd(entry, entry);
        engine::Engine engine(machine, engine::kApp, events);
        Restored result;
        try {
            engine.EngineRestore(engine::kProfiles, "Work.vdp", chosen, location, date);
        } catch (const base::RuntimeError& error) {
            result.raised = error;
        }
        result.report = engine.restoreReport();
        result.lostFlag = engine.BackupFilesLost() != engine::kFalse;
        return result;
    }
    engine::VerifyReport verify()
    {
        return engine::verifyArchive(machine, engine::kProfiles + "Work.vdp", 100,
                                     [](std::string_view) { return true; });
    }

    test::TempFolder folder;
    platform::MemoryMachine ports;
    platform::LinuxFileSystem disk;
    platform::CallScript script;
    platform::ScriptedFileSystem files;
    platform::Machine machine;
    engine::RecordedEvents events;
};

} // namespace vardelin::proofs
