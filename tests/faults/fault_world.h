#pragma once

#include "engine/engine_world.h"
#include "faults/soak.h"

#include "platform/memory/power_cut_file_system.h"

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

// A machine whose file system dies, loses power, fills up or fails, with a tree of all that a
// source can hold, and a memory of what was true at which time.
namespace vardelin::faults {

using engine::BackupResult;
using engine::kApp;
using engine::kProfiles;
using engine::kRoot;
using engine::RestoreResult;

// Path to content of files (`=bytes`) and links (`>target`).
using Contents = std::map<std::string, std::string>;

struct Size {
    int files = 300;
    int largeFiles = 2; // of 4.5 MiB, which makes several frames
};

class FaultWorld {
public:
    // `withPowerCut` puts PowerCutFileSystem below the script.
    explicit FaultWorld(bool withPowerCut = false);

    // The state of another world: disks, clock, registry and memory. Nothing may be open.
    void become(const FaultWorld& other);

    // Makes the tree below C:\data and the settings; the first round.
    void makeSources(const Size& size, std::uint64_t seed);
    // The next round: changes some files, touches others, adds new ones; two days pass.
    void editSources(std::uint64_t seed);
    int round() const { return m_round; }
    // What the sources were in a round.
    const Contents& truth(int ofRound) const { return m_truth.at(ofRound); }

    void setProfile(const std::string& retention, bool compress = true);

    // What a backup that raised left in the flags.
    struct Flags {
        engine::TruthValue missed = engine::kFalse;
        engine::TruthValue noFiles = engine::kFalse;
    };
    Flags flagsOfFailure;

    BackupResult backup();
    RestoreResult restore(const std::string& location, const std::string& date = "NULL",
                          const std::vector<std::string>& entries = {"C:\\data\\"});
    // Runs the step with a script that kills at call `number`; whether it died.
    template <typename Step>
    bool diesAt(std::size_t number, Step&& step)
    {
        script.reset();
        script.killAtCall(number);
        try {
            step();
        } catch (const platform::Killed&) {
        }
        const bool died = script.wasKilled();
        script.reset();
        return died;
    }
    // How many calls a step makes, done in a copy of this world.
    template <typename Step>
    std::size_t callsOf(Step&& step) const
    {
        FaultWorld copy(withPowerCut);
        copy.become(*this);
        copy.script.reset();
        step(copy);
        return copy.script.callCount();
    }

    // Which calls of the script are meant.
    using Which = std::function<bool(const platform::CallScript::Call&)>;
    // The n-th call that is meant, counted from 1, raises `error`; with `forGood` so do all that
    // follow it. Until the script is reset.
    void failAt(const Which& which, std::size_t number, int error, bool forGood);
    // The subject of the call that failed first; empty where none did.
    std::string failedSubject() const;
    // How many calls that are meant a step makes, done in a copy of this world.
    template <typename Step>
    std::size_t countOf(const Which& which, Step&& step) const
    {
        FaultWorld copy(withPowerCut);
        copy.become(*this);
        copy.script.reset();
        step(copy);
        const auto calls = copy.script.calls();
        return static_cast<std::size_t>(std::count_if(calls.begin(), calls.end(), which));
    }

    // The date of a round, as a restore takes it.
    static std::string dateOf(int ofRound);
    // What lies below a folder, by the path that a restore to it came from.
    Contents look(const std::string& folder, const std::string& shownAs);
    // Everything of the engine's that should not outlive a run: temporaries and markers.
    std::vector<std::string> leftovers();

    // The checks; each adds failures that name `label`.
    // The restore as of the round gives, for each file, what it held in that round or, where
    // `orRound` is one, in that round.
    void expectRound(int ofRound, int orRound, const std::string& label);
    // The newest state restores as the sources are now, links and empty folders included.
    void expectNewest(const std::string& label);
    void expectSettings(int fromRound, const std::string& label);
    void expectNoDamage(const std::string& label);
    // Each finished round has its line in the log, and every line has its fields. A power cut may
    // tear the line behind them: then, until the next one is appended, the end is no line.
    void expectLog(int finishedRounds, const std::string& label, bool mayBeTorn = false);
    // One more run, with one more file, so that there is a line to append.
    void expectLogGoesOn(int finishedRounds, const std::string& label);
    // The records of this round count the copies that the archive has of it.
    void expectCountedCopies(const std::string& label);

    const bool withPowerCut;
    platform::MemoryTree tree{true};
    std::unique_ptr<platform::PowerCutFileSystem> disk; // where there is one
    platform::CallScript script;
    platform::ScriptedFileSystem files;
    platform::MemoryMachine ports; // all but its file system
    platform::Machine machine;

private:
    void put(const std::string& path, std::string_view bytes);
    void beginRound(int number);
    void remember();
    std::string freshFolder();

    Size m_size;
    bool m_compress = true;
    int m_round = 0;
    int m_folders = 0;
    std::map<int, Contents> m_truth;
    std::shared_ptr<std::string> m_failedSubject = std::make_shared<std::string>();
};

// Calls that change something in `place`; flushes and closes are among them.
FaultWorld::Which changesIn(std::string place);
// Those of them that take room on the disk.
FaultWorld::Which growsIn(std::string place);
// Calls that read something in `place`.
FaultWorld::Which readsIn(std::string place);

} // namespace vardelin::faults
