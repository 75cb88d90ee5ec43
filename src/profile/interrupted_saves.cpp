#include "profile/interrupted_saves.h"

#include "base/runtime_error.h"
#include "base/text.h"
#include "profile/profile_format.h"
#include "profile/scramble_text.h"
#include "profile/scrambler.h"

#include <algorithm>
#include <set>

#include <fmt/format.h>

namespace vardelin::profile {
namespace {

using base::PendingError;
using platform::FileKind;
using platform::FileSystem;

constexpr std::string_view kExtension = ".vdp";
constexpr std::string_view kOldEnd = ".old";
constexpr std::string_view kWritingEnd = ".tmp";
constexpr std::string_view kKeptEnd = ".kept"; // PrFileEncrypt moves a profile aside so
constexpr char kPlainBegin = '[';

// The name between `~` and `end`; empty where the file is not named so, or for no profile.
std::string_view nameWithin(std::string_view file, std::string_view end)
{
    if (!file.starts_with('~') || !file.ends_with(end) || file.size() <= end.size())
        return {};
    file = file.substr(1, file.size() - 1 - end.size());
    return base::endsWithIgnoringCase(file, kExtension) ? file : std::string_view();
}

// What a first byte tells saves the reading of every profile at every start.
bool beginsPlain(FileSystem& fileSystem, const std::string& path)
{
    std::byte first{};
    const auto file = fileSystem.open(path, platform::OpenMode::Read);
    return file->read({&first, 1}) == 1 && static_cast<char>(first) == kPlainBegin;
}

bool isWholeScrambled(std::string_view bytes)
{
    return wholePlainProfile(unscrambleText(bytes)).has_value();
}

class Finishing {
public:
    Finishing(FileSystem& fileSystem, std::string_view folder, std::string_view name)
        : m_fileSystem(fileSystem), m_folder(fileSystem.openFolder(folder)), m_folderPath(folder),
          m_name(name), m_temporary("U" + m_name), m_old(oldProfileName(name))
    {
    }

    std::optional<FinishedSave> run()
    {
        dropUnfinishedText();
        finishInterruptedScramble(m_fileSystem, m_folderPath, m_name);
        if (!isThere(m_name) && !findProfile())
            return {};
        const std::string bytes = read(m_name);
        if (wholePlainProfile(bytes))
            return scramble(bytes);
        if (isWholeScrambled(bytes))
            tidy(bytes);
        else if (bytes.empty() || bytes.front() == kPlainBegin)
            takeOldBack();
        return {};
    }

private:
    bool isThere(const std::string& name) const { return m_folder->find(name).has_value(); }
    std::string read(const std::string& name) const
    {
        return m_fileSystem.readAll(platform::joinPath(m_folderPath, name));
    }

    // It never came to its name, and holds whatever the profile's password is.
    void dropUnfinishedText()
    {
        const std::string writing = fmt::format("~{}{}", m_name, kWritingEnd);
        if (isThere(writing) &&
            beginsPlain(m_fileSystem, platform::joinPath(m_folderPath, writing)))
            m_folder->removeFile(writing);
    }

    // The profile was deleted and not made anew. Only the mark of a save tells its temporary file
    // from a profile of that name.
    bool findProfile()
    {
        if (!isThere(m_old))
            return false;
        if (isThere(m_temporary)) {
            const std::string plain = unscrambleText(read(m_temporary));
            const auto name = wholePlainProfile(plain);
            if (name && base::equalsIgnoringCase(*name, m_name)) {
                m_folder->rename(m_temporary, m_name);
                m_folder->flush();
                return true;
            }
        }
        takeOldBack();
        if (isThere(m_old) && read(m_old).empty())
            m_folder->removeFile(m_old); // there was no profile, and there is none
        return isThere(m_name);
    }

    FinishedSave scramble(const std::string& plain)
    {
        const std::string scrambled = scrambleText(plain);
        m_fileSystem.replaceFile(platform::joinPath(m_folderPath, m_name), scrambled);
        tidy(scrambled);
        return {m_name, lossyLines(plain)};
    }

    // The profile is whole: what holds no more than it does can go, its mark last.
    void tidy(const std::string& scrambled)
    {
        if (!isThere(m_old))
            return;
        if (isThere(m_temporary) && scrambled.starts_with(read(m_temporary))) {
            m_folder->removeFile(m_temporary);
            m_folder->flush();
        }
        m_folder->removeFile(m_old);
    }

    void takeOldBack()
    {
        if (isThere(m_old) && isWholeScrambled(read(m_old)))
            m_folder->rename(m_old, m_name);
    }

    FileSystem& m_fileSystem;
    std::unique_ptr<platform::Folder> m_folder;
    std::string m_folderPath;
    std::string m_name;
    std::string m_temporary;
    std::string m_old;
};

// The profiles of which anything says that their save did not end.
std::set<std::string> unfinished(FileSystem& fileSystem, const std::string& folder)
{
    std::set<std::string> names;
    for (const platform::FolderEntry& entry : fileSystem.openFolder(folder)->list()) {
        const std::string_view file = entry.name;
        if (entry.kind != FileKind::Regular)
            continue;
        for (const std::string_view end : {kOldEnd, kWritingEnd}) {
            if (const auto name = nameWithin(file, end); !name.empty())
                names.emplace(name);
        }
        if (const auto name = nameWithin(file, kKeptEnd); name.starts_with('U'))
            names.emplace(name.substr(1));
        PendingError unread; // told when it is opened
        unread.attempt([&] {
            if (base::endsWithIgnoringCase(file, kExtension) &&
                beginsPlain(fileSystem, platform::joinPath(folder, file)))
                names.emplace(file);
        });
    }
    return names;
}

} // namespace

std::optional<std::string_view> wholePlainProfile(std::string_view text)
{
    if (!text.starts_with(kPlainBegin) || !text.ends_with(format::kLineEnd) ||
        text.find('\0') != std::string_view::npos)
        return {};
    const auto lines = fileLines(text);
    const std::string_view first = lines.front();
    if (first.size() < 3 || first.back() != ']')
        return {};
    const std::string_view name = first.substr(1, first.size() - 2);
    const auto lineIs = [](std::string_view wanted) {
        return [wanted](std::string_view line) { return base::equalsIgnoringCase(line, wanted); };
    };
    const auto opening =
        std::find_if(lines.begin(), lines.end(), lineIs(format::kSourceFiles.opening));
    const bool isClosed = std::any_of(opening, lines.end(), lineIs(format::kSourceFiles.closing));
    if (!isClosed || !base::equalsIgnoringCase(lines.back(), fmt::format("[End of {}]", name)))
        return {};
    return name;
}

std::string oldProfileName(std::string_view name)
{
    return fmt::format("~{}{}", name, kOldEnd);
}

std::optional<FinishedSave> finishInterruptedSave(FileSystem& fileSystem, std::string_view folder,
                                                  std::string_view name)
{
    return Finishing(fileSystem, folder, name).run();
}

std::vector<FinishedSave> finishInterruptedSaves(FileSystem& fileSystem, std::string_view folder)
{
    std::vector<FinishedSave> finished;
    const std::string path(folder);
    PendingError untouched; // a save is under way, or there is no such folder
    untouched.attempt([&] {
        const auto lock = fileSystem.lockFolder(path);
        for (const std::string& name : unfinished(fileSystem, path)) {
            PendingError unfinishedYet; // of this profile alone
            unfinishedYet.attempt([&] {
                if (auto save = finishInterruptedSave(fileSystem, path, name))
                    finished.push_back(std::move(*save));
            });
        }
    });
    return finished;
}

std::string lossyLinesText(const FinishedSave& save)
{
    if (save.lossyLines.empty())
        return {};
    return fmt::format("The saving of {} was cut off and is finished now, but {} of it cannot be "
                       "kept exactly. Open the profile and check it.",
                       save.name, lineNumbersText(save.lossyLines));
}

} // namespace vardelin::profile
