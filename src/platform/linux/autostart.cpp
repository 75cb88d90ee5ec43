#include "platform/linux/autostart.h"

#include "base/runtime_error.h"
#include "base/text.h"
#include "platform/linux/desktop_entry.h"
#include "platform/linux/native_text.h"

#include <filesystem>
#include <map>
#include <optional>
#include <string_view>
#include <system_error>

namespace vardelin::platform {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kPrefix = "vardelin-";
constexpr std::string_view kSuffix = ".desktop";

// The keys that start a program: TryExec names it, so that a desktop passes over one that is not
// there ("Desktop Application Autostart Specification"), and Exec has what stands behind it, too.
// None where no drive reaches the program.
std::optional<std::string> execLines(std::string_view command, const FileSystem& fileSystem)
{
    std::string_view program = base::trim(command);
    std::string_view rest;
    if (program.starts_with('"')) {
        rest = base::trim(base::afterFirst(program.substr(1), "\""));
        program = base::beforeFirst(program.substr(1), "\"");
    }
    if (base::endsWithIgnoringCase(program, ".exe"))
        program.remove_suffix(4);
    std::string native;
    try {
        native = fileSystem.toNative(program);
    } catch (const base::RuntimeError&) {
        return std::nullopt; // a drive that is not there now: nothing could be started
    }
    std::string line = execStart(native);
    for (std::string_view word : base::split(rest, " ")) {
        if (!word.empty())
            line += " " + execWord(word);
    }
    return "TryExec=" + entryText(native) + "\nExec=" + entryText(line) + "\n";
}

// A value's name as a file's: bytes that a path or a shell would take otherwise become `_`.
std::string fileName(std::string_view valueName)
{
    std::string name(kPrefix);
    for (const char c : base::lowerAscii(valueName)) {
        const auto byte = static_cast<unsigned char>(c);
        const bool plain = (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' || c == '.';
        name += plain || byte >= 0x80 ? c : '_';
    }
    return name + std::string(kSuffix);
}

} // namespace

void mirrorRunKey(Registry& registry, const FileSystem& fileSystem, const std::string& configFolder)
{
    std::map<std::string, std::string> wanted; // text by file name
    for (const RegistryRoot root : {RegistryRoot::LocalMachine, RegistryRoot::CurrentUser}) {
        for (const RegistryValue& value : registry.values(root, kRunKey)) {
            if (value.name.empty() || value.type != RegistryType::String)
                continue;
            if (const auto exec = execLines(value.data, fileSystem))
                wanted[fileName(value.name)] =
                    "[Desktop Entry]\nType=Application\nName=" + entryText(value.name) + "\n" +
                    *exec + "Terminal=false\n";
        }
    }
    const std::string folder = configFolder + "/autostart";
    std::error_code error;
    if (!wanted.empty()) {
        fs::create_directories(folder, error);
        if (error)
            raiseFileError(error, folder);
    }
    for (const auto& entry : fs::directory_iterator(folder, error)) {
        const std::string name = entry.path().filename().string();
        if (!name.starts_with(kPrefix) || !name.ends_with(kSuffix) || wanted.contains(name))
            continue;
        std::error_code undeleted;
        fs::remove(entry.path(), undeleted);
        if (undeleted)
            raiseFileError(undeleted, entry.path().string());
    }
    for (const auto& [name, text] : wanted)
        replaceNativeFile((fs::path(folder) / name).string(), text);
}

} // namespace vardelin::platform
