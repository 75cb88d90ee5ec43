#include "editor/destination.h"

#include "base/text.h"
#include "editor/options_texts.h"
#include "editor/source_tree.h"
#include "trace/messages.h"

namespace vardelin::editor {
namespace {

namespace texts = options_texts;
using base::beforeFirst;
using base::equalsIgnoringCase;
using base::trim;

constexpr int kDeleteKey = 46;

// Within a handler: a new text runs the box's own handler.
void assignDestination(PagesContext& context, const std::string& text)
{
    if (context.editor.txtDestLoc.text == text)
        return;
    context.editor.txtDestLoc.text = text;
    txtDestLoc_Change(context);
}

// The entry for a drive of the drive list; empty where the combo leaves it out.
std::string comboEntry(PagesContext& context, const std::string& drive)
{
    const std::string letters = base::upperAscii(drive.substr(0, 2));
    const auto bracketed = [&](std::string_view head) {
        return std::string(head) + letters + std::string(texts::kDriveEnd);
    };
    switch (context.machine.drives.typeOf(letters.front())) {
    case platform::DriveType::Removable:
        return letters == "A:" ? bracketed(texts::kRemovableDrive) : std::string();
    case platform::DriveType::Fixed:
        return bracketed(texts::kLocalDrive);
    case platform::DriveType::Remote:
        return base::upperAscii(drive);
    case platform::DriveType::Unknown:
    case platform::DriveType::NoRoot:
    case platform::DriveType::Optical:
    case platform::DriveType::Memory:
        break;
    }
    return {};
}

// Where the folder browser begins. A removable drive's entry gives its first letter, R.
std::string browseRoot(std::string_view combo)
{
    const bool isLocal = combo.find("Local") != std::string_view::npos;
    const std::string_view from =
        isLocal ? trim(combo).substr(std::min(texts::kLocalDrive.size(), trim(combo).size()))
                : combo;
    const std::string letter(from.substr(0, 1));
    return (isLocal ? letter : base::upperAscii(letter)) + ":\\";
}

bool archiveLiesAtOldDestination(PagesContext& context)
{
    const std::string& profile = context.frame.ST_Current_Profile;
    const std::string& folder = context.pages.sOldDestination;
    return !profile.empty() && !folder.empty() &&
           context.machine.fileSystem.folderExists(
               platform::joinPath(folder, base::beforeLast(profile, ".")));
}

void askToChange(PagesContext& context)
{
    tell(context, texts::kNewLocation);
    if (ask(context, texts::kChangeLocation)) {
        context.pages.bDestRevert = true;
        context.frame.BL_Dest_Moved = ask(context, texts::kCopyBackup);
        // Now, since the save that copies the archive has the new path here by then.
        if (context.frame.BL_Dest_Moved)
            context.store.scalars.sPreviousDestination = context.store.scalars.sDestinationPath;
    } else {
        context.pages.bDestRevert = true;
        assignDestination(context, context.pages.sOldDestination);
        context.pages.bDestRevert = false;
    }
}

} // namespace

void NetworkDriveList(PagesContext& context)
{
    runHandler(context, "NetworkDriveList", trace::message(texts::kDrivesFailed), [&] {
        state::ComboBox& combo = context.editor.CmbDestDrives;
        combo.items.clear();
        for (const std::string& drive : driveEntries(context.machine.drives)) {
            const std::string entry = comboEntry(context, drive);
            if (entry.empty())
                continue;
            combo.items.push_back(entry);
            combo.text = combo.items.front();
        }
    });
}

int CmbDestDrives_KeyPress(int)
{
    return 0;
}

int CmbDestDrives_KeyDown(int keyCode)
{
    return keyCode == kDeleteKey ? 0 : keyCode;
}

void CmbDestDrives_GotFocus(PagesContext& context)
{
    context.pages.bDestRevert = true;
}

void CmbDestDrives_Click(PagesContext& context)
{
    runHandler(context, "CmbDestDrives_Click", [&] {
        const std::string& path = context.editor.txtDestLoc.text;
        const std::string& picked = context.editor.CmbDestDrives.text;
        if (!path.empty() && !equalsIgnoringCase(beforeFirst(picked, ":"), beforeFirst(path, ":")))
            assignDestination(context, {});
        noteChange(context.frame);
    });
}

void cmdBrowse_Click(PagesContext& context)
{
    runHandler(context, "cmdBrowse_Click", trace::message(texts::kBrowseFailed), [&] {
        const std::string root = browseRoot(context.editor.CmbDestDrives.text);
        context.pages.bDestRevert = false;
        context.pages.sOldDestination = context.editor.txtDestLoc.text;
        context.store.scalars.bDestinationChanged = true;
        const std::string path = context.window.browseForFolder(texts::kBrowseTitle, root);
        if (path.empty())
            return;
        assignDestination(context, path);
        // Of the picked path even where the person then kept the old one: only the box is saved.
        context.editor.CmbDestDrives.text = beforeFirst(trim(path), "\\");
    });
}

int txtDestLoc_KeyPress(PagesContext& context, int key)
{
    if (key == ':')
        return trim(context.editor.txtDestLoc.text).size() == 1 ? key : 0;
    return refuseKeys(key, "/*?\"<>|,'.");
}

void txtDestLoc_GotFocus(PagesContext& context)
{
    context.pages.sOldDestination = context.editor.txtDestLoc.text;
    context.store.scalars.bDestinationChanged = true;
}

void txtDestLoc_Change(PagesContext& context)
{
    runHandler(context, "txtDestLoc_Change", [&] {
        noteChange(context.frame);
        if (!context.pages.bDestRevert && archiveLiesAtOldDestination(context))
            askToChange(context);
    });
}

} // namespace vardelin::editor
