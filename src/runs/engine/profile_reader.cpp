#include "runs/engine/profile_reader.h"

#include "base/runtime_error.h"
#include "base/text.h"
#include "profile/scramble_text.h"
#include "runs/engine/settings_groups.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>
#include <cstdint>

#include <fmt/format.h>

namespace vardelin::engine {
namespace {

using base::RuntimeError;
namespace error_number = base::error_number;

enum class Section : std::uint8_t {
    Sources,
    Excluded,
    Included,
    OtherData,
    IncludeNames,
    ExcludeNames,
    Destination,
    Password,
    SpaceWarn,
    SystemIdle,
    ConfirmBackup,
    ThresholdQueue,
    Scheduling,
};

struct SectionName {
    Section section;
    std::string_view name;
};

constexpr std::array kSections{
    SectionName{Section::Sources, "Source files"},
    SectionName{Section::Excluded, "Excluded options"},
    SectionName{Section::Included, "Included options"},
    SectionName{Section::OtherData, "Other Data"},
    SectionName{Section::IncludeNames, "Include by names"},
    SectionName{Section::ExcludeNames, "Exclude by names"},
    SectionName{Section::Destination, "Destination path"},
    SectionName{Section::Password, "Password"},
    SectionName{Section::SpaceWarn, "Free Space Warn"},
    SectionName{Section::SystemIdle, "System Idle"},
    SectionName{Section::ConfirmBackup, "Confirm Backup"},
    SectionName{Section::ThresholdQueue, "Threshold Queue"},
    SectionName{Section::Scheduling, "Scheduling"},
};

constexpr std::string_view kClosingHead = "End Of ";
constexpr std::string_view kRetentionKey = "Backup versions";
constexpr std::string_view kCompressKey = "Compress";
constexpr std::string_view kEncryptKey = "Encrypt";
constexpr double kHighestCount = 1'000'000;

// A line with braces around it, as a section's opening or closing line.
struct Mark {
    const SectionName* section = nullptr;
    bool closes = false;
};

Mark markOf(std::string_view line)
{
    line = base::trim(line);
    if (line.size() < 2 || line.front() != '{' || line.back() != '}')
        return {};
    line = line.substr(1, line.size() - 2);
    Mark mark;
    if (base::startsWithIgnoringCase(line, kClosingHead)) {
        mark.closes = true;
        line.remove_prefix(kClosingHead.size());
    }
    for (const SectionName& section : kSections) {
        if (base::equalsIgnoringCase(line, section.name))
            mark.section = &section;
    }
    return mark;
}

bool isKey(std::string_view line, std::string_view key)
{
    return line.find('=') != std::string_view::npos &&
           base::equalsIgnoringCase(base::trim(base::beforeFirst(line, "=")), key);
}

std::string valueOf(std::string_view line)
{
    return std::string(base::trim(base::afterFirst(line, "=")));
}

bool isPath(std::string_view text)
{
    if (text.starts_with("\\\\"))
        return text.size() > 2;
    return text.size() >= 2 && std::isalpha(static_cast<unsigned char>(text[0])) != 0 &&
           text[1] == ':' && (text.size() == 2 || text[2] == '\\');
}

std::string normalDestination(std::string_view text)
{
    while (text.size() > 2 && text.back() == '\\')
        text.remove_suffix(1);
    std::string result(text);
    if (platform::isDriveRoot(result))
        result += '\\';
    return result;
}

class Parser {
public:
    explicit Parser(std::string_view text) : m_lines(base::split(text, "\r\n"))
    {
        if (!m_lines.empty() && m_lines.back().empty())
            m_lines.pop_back(); // behind the last line's end
    }

    EngineProfile parse()
    {
        while (m_next < m_lines.size()) {
            const std::string_view line = m_lines[m_next++];
            if (m_section == nullptr)
                readOutside(line);
            else
                readInside(line);
        }
        if (m_section != nullptr)
            tell(fmt::format("the section {{{}}} is not closed", m_section->name));
        reviewWhole();
        return std::move(m_profile);
    }

private:
    void tell(std::string problem) { m_profile.problems.push_back(std::move(problem)); }

    // For the line that was taken last.
    void tellLine(std::string_view problem) { tell(fmt::format("line {}: {}", m_next, problem)); }

    void readOutside(std::string_view line)
    {
        const Mark mark = markOf(line);
        if (mark.section != nullptr && !mark.closes)
            return enter(*mark.section);
        if (mark.section != nullptr)
            return tellLine(
                fmt::format("closes the section {{{}}}, which is not open", mark.section->name));
        if (readFreeLine(line))
            return;
        const std::string_view text = base::trim(line);
        if (!text.empty() && text.front() == '[' && text.back() == ']')
            return;
        tellLine("stands outside every section and has no meaning there");
    }

    void enter(const SectionName& section)
    {
        m_section = &section;
        m_profile.hasSections = true;
        bool& seen = m_seen[static_cast<std::size_t>(section.section)];
        if (seen)
            tellLine(fmt::format("the section {{{}}} occurs again", section.name));
        seen = true;
        switch (section.section) {
        case Section::IncludeNames:
            return readNames(m_profile.includeNames);
        case Section::ExcludeNames:
            return readNames(m_profile.excludeNames);
        case Section::Scheduling:
            m_profile.schedule.emplace();
            return;
        case Section::Sources:
        case Section::Excluded:
        case Section::Included:
        case Section::OtherData:
        case Section::Destination:
        case Section::Password:
        case Section::SpaceWarn:
        case Section::SystemIdle:
        case Section::ConfirmBackup:
        case Section::ThresholdQueue:
            return;
        }
    }

    bool closesHere(std::size_t index) const
    {
        if (index >= m_lines.size())
            return false;
        const Mark mark = markOf(m_lines[index]);
        return mark.closes && mark.section == m_section;
    }

    // The list stands on the section's first line, whatever it says, unless that closes it.
    void readNames(std::vector<std::string>& names)
    {
        if (m_next >= m_lines.size() || closesHere(m_next))
            return;
        // Without a closing line behind it, a line that has its own place elsewhere is no list.
        if (!closesHere(m_next + 1) && leavesSection(m_next))
            return;
        names.clear();
        for (const std::string_view piece : base::split(m_lines[m_next++], ",")) {
            const std::string_view name = base::trim(piece);
            if (!name.empty())
                names.emplace_back(name);
        }
    }

    // The three lines behind `True` are the person's own texts and may look like anything, a
    // closing line included, so they are taken by their place.
    void readPassword()
    {
        const std::size_t first = m_next;
        std::size_t count = 3;
        if (!closesHere(first + count)) {
            count = 0;
            while (count < 3 && first + count < m_lines.size() && !leavesSection(first + count))
                ++count;
        }
        m_profile.hasPassword = count > 0;
        std::string* const fields[] = {&m_profile.password, &m_profile.hintQuestion,
                                       &m_profile.hintAnswer};
        for (std::size_t i = 0; i < count; ++i)
            *fields[i] = m_lines[first + i];
        m_profile.saysPassword = count > 0 && !m_profile.password.empty();
        m_next = first + count;
        if (count == 0)
            tellLine("a password is said to be set and none follows");
        else if (count < 3)
            tellLine("the password has no hint question or no answer behind it");
    }

    bool leavesSection(std::size_t index) const
    {
        return markOf(m_lines[index]).section != nullptr || isFreeLine(m_lines[index]);
    }

    void readInside(std::string_view line)
    {
        const Mark mark = markOf(line);
        if (mark.section == m_section && mark.closes) {
            m_section = nullptr;
            return;
        }
        if (mark.section != nullptr || isFreeLine(line)) {
            // The closing line is missing. What follows is worth more than the rest of a section
            // that would otherwise swallow the whole file.
            tellLine(fmt::format("the section {{{}}} is not closed before it", m_section->name));
            m_section = nullptr;
            if (mark.section == nullptr || !mark.closes)
                readOutside(line);
            return;
        }
        readValue(line);
    }

    void readValue(std::string_view line)
    {
        const std::string_view text = base::trim(line);
        switch (m_section->section) {
        case Section::Sources:
            // Not trimmed: a name may end in a blank.
            if (!isPath(line))
                return tellUnknown();
            m_profile.sources.emplace_back(line);
            return;
        case Section::Excluded:
            return readExtension(text, m_profile.excludedExtensions);
        case Section::Included:
            return readExtension(text, m_profile.includedExtensions);
        case Section::OtherData:
            return readGroup(text);
        case Section::Destination:
            if (!isPath(text))
                return tellUnknown();
            m_profile.destination = normalDestination(text);
            return;
        case Section::SpaceWarn:
            return readSwitch(line, m_profile.warnPercent, "Percentage");
        case Section::SystemIdle:
            return readSwitch(line, m_profile.idleMinutes, "Time");
        case Section::ThresholdQueue:
            return readSwitch(line, m_profile.queueCount, "Count");
        case Section::ConfirmBackup:
            return readConfirm(line);
        case Section::Scheduling:
            return readSchedule(line);
        case Section::Password:
            if (line == "True")
                return readPassword();
            m_profile.saysPassword = line == "False";
            if (!m_profile.saysPassword)
                tellUnknown();
            return;
        case Section::IncludeNames:
        case Section::ExcludeNames:
            return tellUnknown();
        }
    }

    void tellUnknown()
    {
        tellLine(fmt::format("has no meaning in the section {{{}}}", m_section->name));
    }

    void readExtension(std::string_view text, std::vector<std::string>& list)
    {
        if (text.size() < 2 || text.front() != '.')
            return tellUnknown();
        list.emplace_back(text);
    }

    void readGroup(std::string_view text)
    {
        const std::string_view group = settingsGroup(text);
        if (group.empty())
            return tellUnknown();
        m_profile.otherData.emplace_back(group);
    }

    // `True` with one key, or `False`; the two words are compared exactly, as the editor does.
    void readSwitch(std::string_view line, std::optional<std::string>& option, std::string_view key)
    {
        if (line == "True")
            option.emplace();
        else if (line == "False")
            option.reset();
        else if (option && isKey(line, key))
            option = valueOf(line);
        else
            tellUnknown();
    }

    void readConfirm(std::string_view line)
    {
        if (line == "True") {
            m_profile.confirmSize.emplace();
        } else if (line == "False") {
            m_profile.confirmSize.reset();
        } else if (m_profile.confirmSize && isKey(line, "Size")) {
            const std::string value = valueOf(line);
            const std::size_t cut = value.size() < 2 ? 0 : value.size() - 2;
            m_profile.confirmSize->size = base::trim(std::string_view(value).substr(0, cut));
            m_profile.confirmSize->unit = value.substr(cut);
        } else {
            tellUnknown();
        }
    }

    void readSchedule(std::string_view line)
    {
        ProfileSchedule& schedule = *m_profile.schedule;
        const bool yearly = schedule.pattern == 4;
        if (isKey(line, "Start Date"))
            schedule.startDate = valueOf(line);
        else if (isKey(line, "Start Time"))
            schedule.startTime = valueOf(line);
        else if (isKey(line, "RecurrencePattern"))
            readPattern(valueOf(line));
        else if (isKey(line, "Recur"))
            schedule.recur = valueOf(line);
        else if (isKey(line, "TimeAt"))
            schedule.timeAt = valueOf(line);
        else if (isKey(line, "Days"))
            schedule.days = valueOf(line);
        else if (isKey(line, "Dates"))
            (yearly ? schedule.yearDates : schedule.dates) = valueOf(line);
        else if (isKey(line, "Months"))
            schedule.months = valueOf(line);
        else
            tellUnknown();
    }

    void readPattern(std::string_view value)
    {
        if (value.size() == 1 && value[0] >= '1' && value[0] <= '4')
            m_profile.schedule->pattern = value[0] - '0';
        else
            tellLine("names no schedule pattern");
    }

    static bool isFreeLine(std::string_view line)
    {
        return isKey(line, kRetentionKey) || isKey(line, kCompressKey) || isKey(line, kEncryptKey);
    }

    bool readFreeLine(std::string_view line)
    {
        if (isKey(line, kRetentionKey))
            readRetention(valueOf(line));
        else if (isKey(line, kCompressKey))
            m_saysCompress = readTruth(valueOf(line), m_profile.compress) || m_saysCompress;
        else if (isKey(line, kEncryptKey))
            m_profile.saysEncrypt =
                readTruth(valueOf(line), m_profile.encrypt) || m_profile.saysEncrypt;
        else
            return false;
        return true;
    }

    bool readTruth(std::string_view value, bool& flag)
    {
        const bool yes = base::equalsIgnoringCase(value, "True");
        if (!yes && !base::equalsIgnoringCase(value, "False")) {
            tellLine("says neither True nor False");
            return false;
        }
        flag = yes;
        return true;
    }

    void readRetention(std::string_view value)
    {
        m_saysRetention = true;
        m_profile.retentionOption = 0;
        m_profile.retentionCount = 0;
        if (value.empty() || value[0] < '0' || value[0] > '8')
            return tellLine("names no retention option");
        m_profile.retentionOption = value[0] - '0';
        if (m_profile.retentionOption != 6 && m_profile.retentionOption != 8)
            return;
        const double count = base::val(base::afterFirst(value, "?"));
        if (count < 1)
            return tellLine("has no count for its retention option, so that nothing is pruned");
        m_profile.retentionCount = static_cast<int>(std::min(count, kHighestCount));
    }

    void reviewWhole()
    {
        if (!m_profile.hasSections)
            return tell("no known section is there");
        const bool nothing = m_profile.sources.empty() && m_profile.includedExtensions.empty() &&
                             m_profile.includeNames.empty() && m_profile.otherData.empty();
        if (nothing)
            tell("nothing is selected: no sources, no included extensions or names, no settings");
        if (m_profile.destination.empty())
            tell("no destination is set");
        if (!m_saysRetention)
            tell("the line for the retention is missing");
        if (!m_saysCompress)
            tell("the line for the compression is missing");
        if (!m_profile.saysEncrypt)
            tell("the line for the encryption is missing");
    }

    std::vector<std::string_view> m_lines;
    std::size_t m_next = 0; // index of the next line, so the number of the line taken last
    const SectionName* m_section = nullptr;
    std::array<bool, kSections.size()> m_seen{};
    bool m_saysRetention = false;
    bool m_saysCompress = false;
    EngineProfile m_profile;
};

std::string readFile(platform::FileSystem& fileSystem, std::string_view path)
{
    try {
        return fileSystem.readAll(path);
    } catch (const RuntimeError& error) {
        // A missing folder on the way is a missing profile, too.
        if (error.number() != error_number::kPathNotFound)
            throw;
        throw RuntimeError(error_number::kFileNotFound, std::string(path), error.reason());
    }
}

} // namespace

EngineProfile parseProfile(std::string_view plainText)
{
    return Parser(plainText).parse();
}

EngineProfile readProfile(platform::FileSystem& fileSystem, std::string_view path)
{
    const std::string bytes = readFile(fileSystem, path);
    EngineProfile profile = parseProfile(profile::unscrambleText(bytes));
    if (profile.hasSections)
        return profile;
    std::string_view reason = "not a profile: no section can be read from it";
    if (bytes.empty())
        reason = "not a profile: the file is empty";
    else if (parseProfile(bytes).hasSections)
        reason = "the profile is plain text: its saving was broken off, save it again";
    throw RuntimeError(error_number::kInvalidCall, std::string(path), std::string(reason));
}

} // namespace vardelin::engine
