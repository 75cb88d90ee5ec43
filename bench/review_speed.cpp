// What the review of a large archive takes: to its first rows, to open rows of several sizes, and
// to delete a thousand.
//
//   review_speed make DIR FOLDERS COPIES [FLAT]   an archive of FOLDERS x COPIES empty copies, and
//                                                 one more folder with FLAT of them
//   review_speed run DIR [DELETED]                measures on it; deletes DELETED rows (1000)
//
// DIR is the whole world of the review: the application's folder, the profile's destination and the
// archive. `run` prints a line a step, with seconds on the clock, seconds of a processor and what
// it made, and at the end the most memory that the process ever held. What was deleted is gone from
// the archive.

#include "archive/deletion.h"
#include "archive/review.h"
#include "platform/linux/linux_clock.h"
#include "platform/linux/linux_file_system.h"
#include "platform/memory/memory_machine.h"
#include "process_figures.h"
#include "trace/run_trace.h"

#include <fmt/format.h>

#include <charconv>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

namespace {

namespace fs = std::filesystem;
using namespace vardelin;
using bench::cpuSeconds;
using bench::peakMebibytes;

constexpr std::size_t kVersions = 4; // copies of each source, the full one included

std::size_t number(std::string_view text)
{
    std::size_t value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (result.ec != std::errc() || result.ptr != text.data() + text.size())
        throw std::runtime_error(fmt::format("not a number: {}", text));
    return value;
}

// Empty files under the names that the engine gives its copies.
void makeFolder(const fs::path& folder, std::size_t copies)
{
    fs::create_directories(folder);
    const int handle = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (handle < 0)
        throw std::runtime_error(fmt::format("cannot open {}", folder.string()));
    for (std::size_t i = 0; i < copies; ++i) {
        const std::size_t version = i % kVersions;
        const std::string mark = version == 0 ? "FULL" : fmt::format("Ver{}", version);
        const std::string name = fmt::format("document {:07}.txt_{}_{:x}-17f{:013x}-18a{:013x}.zst",
                                             i / kVersions, mark, 9000 + i % 4000, i, i * 7);
        const int file = ::openat(handle, name.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
        if (file < 0)
            throw std::runtime_error(fmt::format("cannot make {}", name));
        ::close(file);
    }
    ::close(handle);
}

void makeArchive(const fs::path& dir, std::size_t folders, std::size_t copies, std::size_t flat)
{
    fs::create_directories(dir / "app/Data");
    const fs::path home = dir / "store/Home/C/home/person/documents";
    for (std::size_t i = 0; i < folders; ++i)
        makeFolder(home / fmt::format("part {:02}", i % 20) / fmt::format("folder {:05}", i),
                   copies);
    if (flat > 0)
        makeFolder(dir / "store/Home/C/flat", flat);
    fmt::print("{} copies in {} folders\n", folders * copies + flat,
               folders + (flat > 0 ? 1U : 0U));
}

// Every error ends the measurement.
class FailingDialog final : public trace::ErrorDialog {
public:
    void showModal(trace::frmErrLog& form) override
    {
        throw std::runtime_error(fmt::format("{}: {} {}", form.txtProcName.text,
                                             form.txtSysErrNo.text, form.txtInf.text));
    }
};

class Measured {
public:
    explicit Measured(const fs::path& dir)
        : m_files(std::make_shared<const platform::DriveMap>(
              std::vector<platform::DriveRoot>{{'C', fs::absolute(dir).string()}})),
          m_machine{m_files,       m_ports.drives,      m_ports.registry,
                    m_ports.shell, m_ports.facts,       m_ports.processes,
                    m_clock,       m_ports.messageLoop, m_ports.messageBoxes},
          m_runTrace(m_files, m_clock, m_ports.messageBoxes, "C:\\app", "Vardelin")
    {
        m_frame.ST_App_Path = "C:\\app";
        m_frame.ST_Current_Profile = "Home.vdp";
        m_profile.sDestinationPath = "C:\\store";
        m_profile.bCompressFiles = true;
    }

    void run(std::size_t deleted)
    {
        step("first rows", [&] { archive::frmVDStorage_Load(m_review); });
        open("Files And Folders");
        open("C:\\");
        if (has("C:\\home\\")) {
            for (const std::string_view key :
                 {"C:\\home\\", "C:\\home\\person\\", "C:\\home\\person\\documents\\",
                  "C:\\home\\person\\documents\\part 00\\",
                  "C:\\home\\person\\documents\\part 00\\folder 00000\\"})
                open(key);
        }
        if (has("C:\\flat\\"))
            open("C:\\flat\\");
        std::size_t selected = 0;
        for (state::ReviewRow& row : m_form.lstRestore) {
            if (selected < deleted && row.file) {
                row.selected = true;
                ++selected;
            }
        }
        m_ports.messageBoxes.answers = {platform::Answer::Yes};
        step(fmt::format("delete {} rows", selected), [&] { archive::mnuDel_Click(m_review); });
        fmt::print("peak memory {} MiB, {} yields\n", peakMebibytes(), m_ports.messageLoop.yields);
    }

private:
    void step(const std::string& name, const std::function<void()>& work)
    {
        const auto start = std::chrono::steady_clock::now();
        const double cpuStart = cpuSeconds();
        work();
        const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
        fmt::print("{:8.3f} s ({:.3f} s of a processor)  {}: {} rows, {} MiB so far\n",
                   seconds.count(), cpuSeconds() - cpuStart, name, m_form.lstRestore.size(),
                   peakMebibytes());
    }
    std::size_t rowOf(std::string_view key) const
    {
        for (std::size_t i = 0; i < m_form.lstRestore.size(); ++i) {
            if (m_form.lstRestore[i].key == key)
                return i + 1;
        }
        return 0;
    }
    bool has(std::string_view key) const { return rowOf(key) != 0; }
    void open(std::string_view key)
    {
        step("open " + std::string(key), [&] { archive::rowButtonClicked(m_review, rowOf(key)); });
    }

    platform::MemoryMachine m_ports;
    platform::LinuxFileSystem m_files;
    platform::LinuxClock m_clock;
    platform::Machine m_machine;
    trace::RunTrace m_runTrace;
    trace::ErrorRecord m_errors;
    FailingDialog m_dialog;
    trace::TraceContext m_trace{m_runTrace, m_errors, m_dialog};
    state::FrameState m_frame;
    state::ProfileScalars m_profile;
    state::frmVDStorage m_form;
    archive::ReviewState m_state;
    archive::ReviewContext m_review{m_machine, m_trace, m_frame, m_profile, m_form, m_state};
};

} // namespace

int main(int argc, char** argv)
{
    try {
        const std::vector<std::string_view> words(argv + 1, argv + argc);
        if ((words.size() == 4 || words.size() == 5) && words[0] == "make") {
            makeArchive(words[1], number(words[2]), number(words[3]),
                        words.size() == 5 ? number(words[4]) : 0);
        } else if ((words.size() == 2 || words.size() == 3) && words[0] == "run") {
            Measured(words[1]).run(words.size() == 3 ? number(words[2]) : 1000);
        } else {
            fmt::print(stderr, "usage: review_speed make DIR FOLDERS COPIES [FLAT]\n"
                               "       review_speed run DIR [DELETED]\n");
            return 2;
        }
        return 0;
    } catch (const std::exception& error) {
        fmt::print(stderr, "review_speed: {}\n", error.what());
        return 1;
    }
}
