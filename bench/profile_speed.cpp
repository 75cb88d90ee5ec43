// How long opening and saving a profile takes: the disk, the scrambling, the reader and the writer
// of the profile store, without a window.
//
//   profile_speed [LINES]     source lines of the generated profile; 100000 where none are given

#include "background/schedule_records.h"
#include "platform/linux/linux_machine.h"
#include "profile/opening.h"
#include "profile/profile_writer.h"
#include "profile/scrambler.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <stdexcept>
#include <string>

#include <fmt/format.h>

namespace {

using namespace vardelin;
namespace stdfs = std::filesystem;

constexpr int kLinesUnlessGiven = 100000;
constexpr int kFilesOfAFolder = 50;
constexpr int kRounds = 3; // the first one meets cold caches

class NoMessages final : public platform::MessageBoxes {
public:
    platform::Answer show(std::string_view text, std::string_view, platform::Buttons,
                          platform::Icon) override
    {
        throw std::runtime_error("unexpected message: " + std::string(text));
    }
};

class NoErrors final : public trace::ErrorDialog {
public:
    void showModal(trace::frmErrLog& form) override
    {
        throw std::runtime_error("unexpected error: " + form.txtProcName.text + ": " +
                                 form.txtInf.text + ": " + form.txtSysErrMsg.text);
    }
};

class NoLoop final : public platform::MessageLoop {
public:
    void yield() override {}
};

class NoChooser final : public profile::FileChooser {
public:
    std::string chooseFile(std::string_view, std::string_view, std::string_view) override
    {
        return {};
    }
};

// An application folder of its own, gone with the object.
class AppFolder {
public:
    AppFolder()
    {
        std::string pattern = (stdfs::temp_directory_path() / "vardelin-bench-XXXXXX").string();
        if (::mkdtemp(pattern.data()) == nullptr)
            throw std::runtime_error("no temporary folder at " + pattern);
        m_path = pattern;
        for (const char* name : {"Profiles", "Data"})
            stdfs::create_directory(m_path / name);
        if (std::FILE* list = std::fopen((m_path / "Data/Other_Dsk.txt").c_str(), "w"))
            std::fclose(list);
    }
    AppFolder(const AppFolder&) = delete;
    AppFolder& operator=(const AppFolder&) = delete;
    ~AppFolder()
    {
        std::error_code ignored;
        stdfs::remove_all(m_path, ignored);
    }
    std::string path() const { return m_path.string(); }

private:
    stdfs::path m_path;
};

struct World {
    AppFolder folder;
    NoMessages boxes;
    NoLoop loop;
    platform::LinuxMachine machine{folder.path(), boxes, loop};
    platform::Machine ports = machine.machine();
    NoErrors dialog;
    trace::RunTrace runTrace{ports.fileSystem, ports.clock, boxes, machine.appPath(), "Vardelin"};
    trace::ErrorRecord errors;
    trace::TraceContext trace{runTrace, errors, dialog};
    state::FrameState frame;
    state::ProfileEditorState editor;
    state::ProfileStore store;
    background::RegistryScheduleRecords schedules{{ports, trace, frame, editor, store.save}};
    profile::StateEditorLists lists{trace, editor};
    profile::FileNumbers fileNumbers;
    profile::ProfileContext profiles{ports, trace,     frame, editor,
                                     store, schedules, lists, fileNumbers};
    state::frmOpenProfile form;
    state::ProfileFormState window;
    profile::ListingState listing;
    profile::clsFiles found{{ports.fileSystem, trace, frame, listing}};
    NoChooser chooser;
    bool bProfileOpened = false;
    std::string lastSelected;
    profile::OpeningContext opening{profiles, form,    window,         listing,
                                    found,    chooser, bProfileOpened, lastSelected};
};

template <typename Step>
double secondsOf(Step&& step)
{
    const auto start = std::chrono::steady_clock::now();
    step();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Folders of files below one drive, as a person's own ticks give them.
void gatherSources(World& world, int lines)
{
    world.store.save.clxnSources.clear();
    for (int i = 0; i < lines; ++i) {
        const std::string source = fmt::format(
            "C:\\home\\anna\\Documents\\Letters and notes\\Folder {}\\Letter {} of the year.odt",
            i / kFilesOfAFolder, i);
        world.store.save.clxnSources.add(source, source);
    }
}

void save(World& world)
{
    const std::string folder = world.frame.ST_App_Path + "\\Profiles";
    double writing = 0;
    double schedule = 0;
    double scrambling = 0;
    const double all = secondsOf([&] {
        writing = secondsOf([&] { profile::CreatingVdpFile(world.profiles, "Speed.vdp", folder); });
        schedule = secondsOf([&] { world.schedules.WriteSchedReg("Speed.vdp"); });
        scrambling =
            secondsOf([&] { profile::PrFileEncrypt(world.profiles, folder, "Speed.vdp"); });
    });
    fmt::print("save {:7.3f} s  (writing {:.3f}, schedule {:.3f}, scrambling {:.3f})\n", all,
               writing, schedule, scrambling);
}

void open(World& world)
{
    world.form = {};
    world.frame.bProfileTicked = false;
    world.frame.ST_Last_Saved_Profile.clear();
    world.bProfileOpened = false;
    const double listing = secondsOf([&] { profile::GettingVdpFiles(world.opening); });
    world.form.lstOpen.rows.at(0).checked = true;
    profile::lstOpen_ItemCheck(world.opening, 0);
    const double opening = secondsOf([&] { profile::cmdOpen_Click(world.opening); });
    fmt::print("open {:7.3f} s  (listing {:.3f}; {} opened entries)\n", opening, listing,
               world.store.opened.clxnOpenedSources.count());
    if (!world.bProfileOpened)
        throw std::runtime_error("the profile did not open");
}

} // namespace

int main(int argc, char** argv)
{
    try {
        const int lines = argc > 1 ? std::atoi(argv[1]) : kLinesUnlessGiven;
        World world;
        world.frame.ST_App_Path = world.machine.appPath();
        world.editor.txtDestLoc.text = "D:\\Archive";
        for (int round = 0; round < kRounds; ++round) {
            gatherSources(world, lines);
            save(world);
            open(world);
        }
        return 0;
    } catch (const std::exception& error) {
        fmt::print(stderr, "profile_speed: {}\n", error.what());
        return 1;
    }
}
