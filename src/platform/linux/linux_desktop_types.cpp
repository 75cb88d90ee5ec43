#include "platform/linux/linux_desktop_types.h"

#include "base/runtime_error.h"
#include "platform/linux/desktop_assets.h"
#include "platform/linux/desktop_entry.h"
#include "platform/linux/native_text.h"

#include <cstdint>
#include <filesystem>
#include <fmt/format.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace vardelin::platform {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kEntryFile = "/applications/vardelin.desktop";
constexpr std::string_view kTypeFile = "/mime/packages/vardelin.xml";
// Beside the themes: a theme's folder that has no cache of its own is searched name by name, in
// each of its hundreds of folders, by programs of the person: two starts of the window took 85
// seconds with the icons there and 4 with them here.
constexpr std::string_view kProgramIconFile = "/icons/vardelin.svg";
constexpr std::string_view kProfileIconFile = "/icons/application-x-vardelin-profile.svg";
// What the database makes of the package.
constexpr std::string_view kKnownType = "/mime/application/x-vardelin-profile.xml";

std::string markText()
{
    return fmt::format("{} at its start; without this line the file stays as it is.", kDesktopMark);
}

std::string entryOf(std::string_view program, std::string_view icon)
{
    // TryExec lets a desktop pass over a program that is not there any more.
    return fmt::format("[Desktop Entry]\n"
                       "# {}\n"
                       "Type=Application\n"
                       "Name=Vardelin\n"
                       "Comment=Keeps copies and earlier versions of your files\n"
                       "TryExec={}\n"
                       "Exec={}\n"
                       "Icon={}\n"
                       "Terminal=false\n"
                       "Categories=Utility;Archiving;\n"
                       "MimeType=application/x-vardelin-profile;\n",
                       markText(), entryText(program), execWithFile(program), entryText(icon));
}

std::string markedXml(std::string_view text)
{
    return fmt::format("{}<!-- {} -->\n", text, markText());
}

enum class Place : std::uint8_t { Free, Ours, Theirs };

Place placeOf(const std::string& file)
{
    std::error_code error;
    const fs::file_status status = fs::symlink_status(file, error);
    // Of a folder that may not be read, writing tells why.
    if (status.type() == fs::file_type::not_found || status.type() == fs::file_type::none)
        return Place::Free;
    const bool isMarked =
        fs::is_regular_file(status) && readNativeFile(file).find(kDesktopMark) != std::string::npos;
    return isMarked ? Place::Ours : Place::Theirs;
}

// Root that keeps the home of the person who called it would leave files that this person cannot
// change: told by who has the folder, or what there is of the way to it.
bool isSomebodyElses(const std::string& folder)
{
    if (::geteuid() != 0)
        return false; // the system sees to that
    struct stat status {};
    for (fs::path path = folder;; path = path.parent_path()) {
        if (::stat(path.c_str(), &status) == 0)
            return status.st_uid != 0;
        if (!path.has_relative_path())
            return false;
    }
}

void makeFolder(const std::string& folder)
{
    std::error_code error;
    fs::create_directories(folder, error);
    if (error)
        raiseFileError(error, folder);
}

// True where the file had to be written.
bool give(const std::string& file, const std::string& text)
{
    const Place place = placeOf(file);
    if (place == Place::Theirs || (place == Place::Ours && readNativeFile(file) == text))
        return false;
    makeFolder(fs::path(file).parent_path().string());
    replaceNativeFile(file, text);
    return true;
}

bool isOlder(const std::string& index, const std::string& source)
{
    std::error_code error;
    const auto made = fs::last_write_time(index, error);
    if (error)
        return true;
    const auto written = fs::last_write_time(source, error);
    return !error && made < written;
}

} // namespace

LinuxDesktopTypes::LinuxDesktopTypes(DesktopFolders folders, std::string program,
                                     Processes& processes)
    : m_folders(std::move(folders)), m_program(std::move(program)), m_processes(processes)
{
}

bool LinuxDesktopTypes::registerProgram()
{
    if (m_folders.home.empty() || m_folders.data.empty() || !m_program.starts_with('/'))
        return false;
    const std::string& own = m_folders.data.front();
    const auto in = [&](std::string_view file) { return own + std::string(file); };
    // A relative folder is none ("XDG Base Directory Specification").
    if (!own.starts_with('/') || isSomebodyElses(own) ||
        (comesFromSharedFolder() && placeOf(in(kEntryFile)) != Place::Ours))
        return false;

    base::PendingError failure;
    bool isNew = false;
    const auto attempt = [&](auto&& step) {
        base::PendingError failed;
        failed.attempt(step);
        if (!failure)
            failure = std::move(failed);
    };
    std::error_code ignored;
    if (!fs::exists(own, ignored)) {
        attempt([&] { makeFolder(own); });
        fs::permissions(own, fs::perms::owner_all, ignored); // as the standard asks
    }
    attempt([&] { isNew |= give(in(kProgramIconFile), markedXml(kProgramIconSvg)); });
    attempt([&] { isNew |= give(in(kProfileIconFile), markedXml(kProfileIconSvg)); });
    attempt([&] { isNew |= give(in(kTypeFile), markedXml(kProfileTypeXml)); });
    attempt([&] { isNew |= give(in(kEntryFile), entryOf(m_program, in(kProgramIconFile))); });
    attempt([&] {
        startIndexer("update-mime-database", in("/mime"), in(kTypeFile), in("/mime/mime.cache"));
    });
    attempt([&] {
        startIndexer("update-desktop-database", in("/applications"), in(kEntryFile),
                     in("/applications/mimeinfo.cache"));
    });
    if (failure)
        throw base::RuntimeError(failure.number, failure.subject);
    return isNew;
}

// Of the shared entries of one name the first counts.
bool LinuxDesktopTypes::comesFromSharedFolder() const
{
    const std::string& own = m_folders.data.front();
    bool hasType = false;
    std::string entry;
    std::error_code missing;
    for (const std::string& folder : m_folders.data) {
        if (folder == own)
            continue;
        hasType = hasType || fs::exists(folder + std::string(kKnownType), missing);
        if (entry.empty())
            entry = readNativeFile(folder + std::string(kEntryFile));
    }
    if (!hasType || entry.empty())
        return false;
    const std::string_view exec = entryValue(entry, "Exec");
    return exec == execWithFile(m_program) || fs::equivalent(execProgram(exec), m_program, missing);
}

void LinuxDesktopTypes::startIndexer(const char* tool, const std::string& folder,
                                     const std::string& source, const std::string& index)
{
    if (placeOf(source) != Place::Ours || !isOlder(index, source))
        return;
    try {
        m_processes.start(tool, {folder}, WindowStyle::Normal);
    } catch (const base::RuntimeError& error) {
        if (error.number() != base::error_number::kFileNotFound)
            throw;
    }
}

} // namespace vardelin::platform
