#include "base/runtime_error.h"
#include "base/text.h"
#include "ctl/commands.h"
#include "ctl/text_forms.h"
#include "platform/registry_text.h"

#include <array>
#include <istream>
#include <iterator>
#include <ostream>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace vardelin::ctl {
namespace {

constexpr std::array<std::string_view, 7> kFolders{
    "Profiles", "Data", "Log\\Backup", "Log\\Restore", "Queue", "BackupPackages", "Help"};
constexpr std::string_view kListFile = "Data\\Other_Dsk.txt";

std::string wholeRegistry(platform::Registry& registry)
{
    using platform::RegistryRoot;
    std::string text;
    for (const RegistryRoot root : {RegistryRoot::ClassesRoot, RegistryRoot::CurrentUser,
                                    RegistryRoot::LocalMachine, RegistryRoot::Users}) {
        const std::string part = platform::registryText(registry, root, "");
        // The first line names the format, once for the whole text.
        text += text.empty() ? std::string_view(part) : base::afterFirst(part, "\r\n");
    }
    return text;
}

std::string_view typeName(platform::DriveType type)
{
    switch (type) {
    case platform::DriveType::Unknown:
        return "unknown";
    case platform::DriveType::NoRoot:
        return "not there";
    case platform::DriveType::Removable:
        return "removable";
    case platform::DriveType::Fixed:
        return "fixed";
    case platform::DriveType::Remote:
        return "network";
    case platform::DriveType::Optical:
        return "optical";
    case platform::DriveType::Memory:
        return "memory";
    }
    return {};
}

} // namespace

int runInit(Session& session, const InitCommand& command)
{
    const std::string folder = session.typedPath(command.folder);
    for (const std::string_view name : kFolders)
        session.files().createFolders(platform::joinPath(folder, name));
    // It belongs to the person from then on: laying out again leaves it as it is.
    const std::string list = platform::joinPath(folder, kListFile);
    if (!session.files().fileExists(list))
        session.files().replaceFile(list, "");
    Json object{{"type", "init"}};
    putText(object, "path", session.shown(folder));
    session.output.object(object);
    session.output.note(
        fmt::format("Laid out the application folder {}", visibleText(session.shown(folder))));
    return kExitDone;
}

int runRegistry(Session& session, const RegistryCommand& command)
{
    session.requireApplicationFolder();
    platform::Registry& registry = session.machine.registry;
    if (!command.import) {
        const std::string text = wholeRegistry(registry);
        if (command.file.empty() || command.file == "-")
            session.terminal.out << text;
        else
            session.files().replaceFile(session.typedPath(command.file), text);
        return kExitDone;
    }
    const bool fromStream = command.file.empty() || command.file == "-";
    const std::string text = fromStream
                                 ? std::string(std::istreambuf_iterator<char>(session.terminal.in),
                                               std::istreambuf_iterator<char>())
                                 : session.files().readAll(session.typedPath(command.file));
    const auto changes = platform::parseRegistryText(text);
    platform::applyRegistryChanges(registry, changes);
    session.output.object(Json{{"type", "registryImport"}, {"changes", changes.size()}});
    session.output.note(fmt::format("Imported {}", countText(changes.size(), "change", "changes")));
    return changes.empty() ? kExitNothing : kExitDone;
}

int runDrives(Session& session)
{
    Table table({Align::Left, Align::Left, Align::Right, Align::Right, Align::Left, Align::Left});
    table.add({"Drive", "Type", "Free", "Size", "Label", "Place"});
    for (const platform::Drive& drive : session.machine.drives.list()) {
        const std::string letter = std::string(1, drive.letter) + ":";
        platform::Space space;
        base::PendingError unknown; // an empty optical drive has no size
        const bool known = unknown.attempt([&] { space = session.files().space(letter + "\\"); });
        const std::string& label = drive.shareName.empty() ? drive.volumeLabel : drive.shareName;
        table.add({letter, std::string(typeName(drive.type)),
                   known ? sizeText(space.freeBytes) : "", known ? sizeText(space.totalBytes) : "",
                   visibleText(label), visibleText(drive.nativeRoot)});
        Json object{{"type", "drive"}, {"drive", letter}, {"kind", typeName(drive.type)}};
        object["driveType"] = static_cast<int>(drive.type);
        putText(object, "label", drive.volumeLabel);
        putText(object, "share", drive.shareName);
        putText(object, "nativeRoot", drive.nativeRoot);
        if (known) {
            object["freeBytes"] = space.freeBytes;
            object["totalBytes"] = space.totalBytes;
        }
        session.output.object(object);
    }
    session.output.result(table.text());
    return kExitDone;
}

} // namespace vardelin::ctl
