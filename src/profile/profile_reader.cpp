#include "profile/profile_reader.h"

#include "base/text.h"
#include "profile/line_input.h"
#include "profile/list_file.h"
#include "profile/profile_format.h"
#include "profile/schedule_section.h"
#include "profile/source_lines.h"
#include "trace/messages.h"

#include <cstddef>
#include <optional>
#include <string>
#include <utility>

#include <fmt/format.h>

namespace vardelin::profile {
namespace {

using base::equalsIgnoringCase;
using base::RuntimeError;
using base::trim;
using format::valueOf;
namespace error_number = base::error_number;

constexpr std::string_view kModule = "modPrSaveOpen";
constexpr int kFailedVersionText = 40099;
constexpr double kReadingShare = 50; // of the bar

// What stopped the reading; each has its message.
enum class Status : int { None = 0, NotOpened = 40096, NoMoreLines = 40097, NotAdded = 40098 };

// `UDefault.txt` is the plain copy of `Default.vdp`.
std::string profileNameOf(std::string_view copyName)
{
    const std::size_t length = copyName.size();
    const std::string_view stem = length > 4 ? copyName.substr(1, length - 4) : std::string_view{};
    return fmt::format("{}vdp", stem);
}

class Reader {
public:
    Reader(ProfileContext& context, std::string_view copyName)
        : m_context(context), m_editor(context.editor), m_opened(context.store.opened),
          m_scalars(context.store.scalars), m_name(profileNameOf(copyName))
    {
    }

    void reset();
    void read(const std::string& path);
    Status status() const noexcept { return m_status; }

private:
    void markPrimary();
    void readFile();
    bool readSection(std::string_view line);
    void yield() { m_context.machine.messageLoop.yield(); }

    void readSources();
    void readExcluded();
    void readIncluded();
    void readOtherData();
    void readNames(const format::Section& section, state::TextBox& box);
    void readDestination();
    void readPassword();
    void readFreeSpaceWarn();
    void readSystemIdle();
    void readConfirmBackup();
    void readThresholdQueue();
    void readLastLines(std::string_view retention);
    void readFlag(state::CheckBox& box, bool& flag);

    ProfileContext& m_context;
    state::ProfileEditorState& m_editor;
    state::OpenedLists& m_opened;
    state::ProfileScalars& m_scalars;
    std::string m_name; // of the profile, with its extension
    LineInput m_lines{{}};
    double m_step = 0;
    Status m_status = Status::None;
};

void Reader::reset()
{
    m_scalars.sProfilePassword.clear();
    m_scalars.bProfileHasPassword = false;
    m_editor.lstExclude.clear();
    m_editor.lstInclude.clear();
    m_editor.chkAutoSched.value = 0;
    // A profile without a timetable has no pattern: not that of the profile before it, which would
    // also keep retention options away.
    state::choose(m_editor.patternOptions(), 0);
    state::showPatternPage(m_editor, 1);
    for (state::OptionButton* const option : m_editor.retentionOptions())
        option->enabled = true;
    m_context.lists.Refreshlist(true, true, true, true);
}

void Reader::read(const std::string& path)
{
    platform::FileSystem& fileSystem = m_context.machine.fileSystem;
    m_status = Status::NotOpened;
    m_lines = LineInput(fileSystem.readAll(path));
    m_status = Status::None;
    if (const std::size_t highest = m_lines.highestIndex(); highest > 0)
        m_step = kReadingShare / static_cast<double>(highest);

    markPrimary();
    readFile();

    m_editor.chkAutoSched.enabled = false;
    m_context.frame.pb.value = m_context.frame.pb.maximum;
    m_context.frame.pb.value = 0;
    base::PendingError leftBehind; // the profile is open; the next unscrambling replaces the copy
    leftBehind.attempt([&] { fileSystem.removeFile(path); });
}

void Reader::markPrimary()
{
    bool found = false;
    IsPrProFileExists(m_context, found);
    const state::FrameState& frame = m_context.frame;
    const bool primary =
        found && equalsIgnoringCase(frame.ST_Primary_Profile, frame.ST_Current_Profile);
    m_editor.chkPrimary.value = primary ? 1 : 0;
    m_editor.chkPrimary.enabled = false;
}

void Reader::readFile()
{
    const std::string opening = fmt::format("[{}]", m_name);
    const std::string closing = fmt::format("[End of {}]", m_name);
    while (const auto line = m_lines.next()) {
        if (equalsIgnoringCase(*line, closing))
            return;
        if (!readSection(*line) && !equalsIgnoringCase(*line, opening))
            readLastLines(*line);
    }
}

// Whether the line opens a section; reads the section, then.
bool Reader::readSection(std::string_view line)
{
    const auto opens = [line](const format::Section& section) {
        return equalsIgnoringCase(line, section.opening);
    };
    if (opens(format::kSourceFiles))
        readSources();
    else if (opens(format::kExcludedOptions))
        readExcluded();
    else if (opens(format::kIncludedOptions))
        readIncluded();
    else if (opens(format::kOtherData))
        readOtherData();
    else if (opens(format::kIncludeByNames))
        readNames(format::kIncludeByNames, m_editor.txtInclNames);
    else if (opens(format::kExcludeByNames))
        readNames(format::kExcludeByNames, m_editor.txtExclNames);
    else if (opens(format::kDestinationPath))
        readDestination();
    else if (opens(format::kPassword))
        readPassword();
    else if (opens(format::kFreeSpaceWarn))
        readFreeSpaceWarn();
    else if (opens(format::kSystemIdle))
        readSystemIdle();
    else if (opens(format::kConfirmBackup))
        readConfirmBackup();
    else if (opens(format::kThresholdQueue))
        readThresholdQueue();
    else if (opens(format::kScheduling))
        readScheduleSection(m_lines, m_editor, m_scalars.dStartDate);
    else
        return false;
    return true;
}

void Reader::readSources()
{
    state::ProgressBar& bar = m_context.frame.pb;
    for (;;) {
        const auto line = m_lines.next();
        if (!line) {
            m_status = Status::NoMoreLines;
            throw RuntimeError(error_number::kPastEnd, m_name);
        }
        if (equalsIgnoringCase(*line, format::kSourceFiles.closing))
            break;
        m_scalars.bSourceLineRead = true;
        m_scalars.SourceChecked = true;
        m_status = Status::NotAdded;
        addOpenedSource(*line, m_opened.clxnOpenedSources, m_editor.tvwDirectory);
        m_status = Status::None;
        if (bar.maximum > bar.value + m_step)
            bar.value += m_step;
        yield();
    }
    state::TreeView& tree = m_editor.tvwDirectory;
    for (std::size_t i = 1; i <= tree.count(); ++i)
        tree.node(i).checked = true;
}

void Reader::readExcluded()
{
    while (const auto line = sectionLine(m_lines, format::kExcludedOptions)) {
        m_opened.clxnOpenedExcluded.tryAdd(std::string(*line), *line);
        yield();
    }
}

void Reader::readIncluded()
{
    platform::Shell& shell = m_context.machine.shell;
    while (const auto line = sectionLine(m_lines, format::kIncludedOptions)) {
        m_opened.clxnOpenedIncluded.tryAdd(std::string(*line), *line);
        state::ListRow& row = m_editor.lstInclude.addItem(*line);
        row.sub = shell.typeName(*line);
        row.icon = shell.iconName(*line);
        yield();
    }
    for (state::ListRow& row : m_editor.lstInclude.rows)
        row.checked = true;
}

void Reader::readOtherData()
{
    m_editor.lstOtherData.clear();
    while (const auto line = sectionLine(m_lines, format::kOtherData)) {
        m_opened.clxnOpenedOtherData.tryAdd(std::string(*line), *line);
        m_editor.lstOtherData.addItem(*line).selected = true;
    }
}

void Reader::readNames(const format::Section& section, state::TextBox& box)
{
    const auto line = sectionLine(m_lines, section);
    box.text = line.value_or("");
    if (line)
        m_lines.next(); // the closing line, whatever it says
}

void Reader::readDestination()
{
    while (const auto line = sectionLine(m_lines, format::kDestinationPath)) {
        const std::string_view trimmed = trim(*line);
        const bool bareDrive = trimmed.size() == 2 && trimmed.back() == ':';
        m_editor.txtDestLoc.text = fmt::format("{}{}", *line, bareDrive ? "\\" : "");
        m_scalars.sDestinationPath = *line;
        m_editor.CmbDestDrives.text = base::beforeFirst(*line, "\\");
    }
    m_editor.Frame13.enabled = false;
}

void Reader::readPassword()
{
    while (const auto line = sectionLine(m_lines, format::kPassword)) {
        if (*line == format::kTrue) {
            m_scalars.bOptionsLoaded = true;
            m_editor.chkPassword.value = 1;
            if (const auto password = m_lines.next()) {
                m_editor.txtPassWord.text = *password;
                m_scalars.sProfilePassword = *password;
                m_scalars.bProfileHasPassword = true;
            }
            m_editor.cmbHintQues.text = m_lines.next().value_or("");
            m_editor.txtHintAns.text = m_lines.next().value_or("");
            m_editor.Frame10.enabled = false;
        } else if (*line == format::kFalse) {
            m_editor.chkPassword.value = 0;
            m_editor.txtPassWord.enabled = false;
            m_editor.txtPassWord.text.clear();
            m_scalars.sProfilePassword.clear();
            m_scalars.bProfileHasPassword = false;
        }
    }
}

void Reader::readFreeSpaceWarn()
{
    while (const auto line = sectionLine(m_lines, format::kFreeSpaceWarn)) {
        const bool on = *line == format::kTrue;
        if (!on && *line != format::kFalse)
            continue;
        m_scalars.bOptionsLoaded = m_scalars.bOptionsLoaded || on;
        m_editor.chkWarn.value = on ? 1 : 0;
        m_editor.txtWarn.text = on ? trim(valueOf(m_lines.next().value_or(""))) : "";
        m_editor.chkWarn.enabled = false;
        m_editor.Label9.enabled = false;
        m_editor.txtWarn.enabled = false;
    }
}

void Reader::readSystemIdle()
{
    while (const auto line = sectionLine(m_lines, format::kSystemIdle)) {
        if (*line == format::kTrue) {
            m_scalars.bOptionsLoaded = true;
            m_editor.chkIdle.value = 1;
            m_editor.txtIdleTime.text = valueOf(m_lines.next().value_or(""));
            m_editor.Frame12.enabled = false;
        } else if (*line == format::kFalse) {
            m_editor.chkIdle.value = 0;
            m_editor.txtIdleTime.text.clear();
        }
    }
}

void Reader::readConfirmBackup()
{
    while (const auto line = sectionLine(m_lines, format::kConfirmBackup)) {
        if (*line == format::kTrue) {
            m_scalars.bOptionsLoaded = true;
            m_editor.chkSizeOfBkp.value = 1;
            // The writer's blank stays with the number; a value too short for a unit has no number.
            const std::string_view value = valueOf(m_lines.next().value_or(""));
            const std::size_t unitAt = value.size() < 2 ? 0 : value.size() - 2;
            if (value.size() >= 2)
                m_editor.txtSizeOfBkp.text = value.substr(0, unitAt);
            m_editor.cmbSizeOfBkp.text = value.substr(unitAt);
        } else if (*line == format::kFalse) {
            m_editor.chkSizeOfBkp.value = 0;
        }
    }
}

void Reader::readThresholdQueue()
{
    while (const auto line = sectionLine(m_lines, format::kThresholdQueue)) {
        if (*line == format::kTrue) {
            m_scalars.bOptionsLoaded = true;
            m_editor.chkQueueThrld.value = 1;
            m_editor.txtQueueThrld.text = valueOf(m_lines.next().value_or(""));
        } else if (*line == format::kFalse) {
            m_editor.chkQueueThrld.value = 0;
            m_editor.txtQueueThrld.text.clear();
        }
    }
}

void Reader::readLastLines(std::string_view retention)
{
    Versioncheck(m_context, valueOf(retention));
    m_scalars.bCompressFiles = false;
    m_scalars.bEncryptFiles = false;
    readFlag(m_editor.chkCompress, m_scalars.bCompressFiles);
    m_editor.Frame10.enabled = false;
    readFlag(m_editor.chkEncrypt, m_scalars.bEncryptFiles);
}

void Reader::readFlag(state::CheckBox& box, bool& flag)
{
    const std::string value = base::upperAscii(trim(valueOf(m_lines.next().value_or(""))));
    if (value == "TRUE") {
        box.value = 1;
        flag = true;
    } else if (value == "FALSE") {
        box.value = 0;
    }
}

} // namespace

bool ActivateOpenProfile(ProfileContext& context, std::string_view name, std::string_view folder)
{
    constexpr std::string_view kName = "ActivateOpenProfile";
    Reader reader(context, name);
    base::PendingError failure;
    failure.attempt([&] {
        const trace::TraceScope scope(context.trace.trace, kName);
        reader.reset();
        reader.read(fmt::format("{}{}", folder, name));
    });
    ++context.editor.revision;
    const std::string_view custom =
        reader.status() == Status::None ? kName : trace::message(static_cast<int>(reader.status()));
    trace::errorTail(context.trace, {kName, kName, kModule, custom}, failure);
    return !failure;
}

void Versioncheck(ProfileContext& context, std::string_view value)
{
    // The dialog names it with another capital than the trace does.
    const trace::TailNames names{"VersionCheck", "Versioncheck", kModule,
                                 trace::message(kFailedVersionText)};
    trace::runTraced(context.trace, "Versioncheck", names, [&] {
        state::ProfileEditorState& editor = context.editor;
        state::ProfileScalars& scalars = context.store.scalars;
        const std::string_view trimmed = trim(value);
        const char first = trimmed.empty() ? '\0' : trimmed.front();
        editor.txtLatestVer.text.clear();
        if (first >= '1' && first <= '8') {
            scalars.iRetentionOption = first - '0';
            state::choose(editor.retentionOptions(), scalars.iRetentionOption);
        }
        if (first == '6' || first == '8') {
            scalars.bOptionsLoaded = true;
            state::TextBox& box = first == '6' ? editor.txtLatestVer : editor.txtLatestDaysVer;
            box.text = base::afterFirst(trimmed, "?");
        }
        editor.Frame2.enabled = false;
    });
}

} // namespace vardelin::profile
