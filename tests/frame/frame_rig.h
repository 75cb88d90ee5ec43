#pragma once

#include "../editor/pages_rig.h"
#include "frame/main_frame.h"
#include "frame/profile_commands.h"
#include "frame/window_commands.h"
#include "profile/scramble_text.h"

#include <algorithm>
#include <deque>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace vardelin::test {

// What the commands ask of the windows. A modal form does what the test says, which is nothing by
// itself: the person closes it by its frame.
class ScriptedFrameWindow final : public frame::FrameWindow {
public:
    std::vector<std::string> calls; // in their order
    std::deque<std::function<void(state::frmRestDialog&)>> inRestDialog;
    std::function<void(profile::OpeningContext&)> inOpenProfile;

    void showRestDialog(state::frmRestDialog& form) override
    {
        calls.emplace_back("showRestDialog");
        if (inRestDialog.empty())
            return;
        const auto act = inRestDialog.front();
        inRestDialog.pop_front();
        act(form);
    }
    void showOpenProfile(profile::OpeningContext& opening) override
    {
        calls.emplace_back("showOpenProfile");
        if (inOpenProfile)
            inOpenProfile(opening);
    }
    void showAbout() override { calls.emplace_back("showAbout"); }
    void unloadReview() override { calls.emplace_back("unloadReview"); }
    void unloadLogs() override { calls.emplace_back("unloadLogs"); }
    void showEditor() override { calls.emplace_back("showEditor"); }
    void endApplication() override { calls.emplace_back("endApplication"); }

    bool called(std::string_view name) const
    {
        return std::find(calls.begin(), calls.end(), name) != calls.end();
    }
};

class ChosenFile final : public profile::FileChooser {
public:
    std::string path; // what the person chooses
    std::string chooseFile(std::string_view, std::string_view, std::string_view) override
    {
        return path;
    }
};

// The main frame on a machine in memory: folders of the application at C:\App, sources on D:, the
// destination E:\Backup, and the list of recent and primary profiles empty.
struct FrameRig : PagesRig {
    platform::CallScript script; // of the calls that the commands and the profile store make
    platform::ScriptedFileSystem files{disk, script};
    platform::Machine scripted{files,     drives, registry,    shell,       facts,
                               processes, clock,  messageLoop, messageBoxes};
    profile::StateEditorLists lists{context, record};
    background::RegistryScheduleRecords schedules{{scripted, context, frame, record, store.save}};
    profile::FileNumbers fileNumbers;
    profile::ProfileContext profiles{scripted, context,   frame, record,
                                     store,    schedules, lists, fileNumbers};
    state::ProfileFormState formWindow;
    state::MainFrameForm mainForm;
    state::frmOpenProfile openForm;
    profile::ListingState listing;
    profile::clsFiles profileFiles{{disk, context, frame, listing}};
    ChosenFile chooser;
    bool profileOpened = false;
    std::string lastSelected;
    profile::OpeningContext opening{profiles,     openForm, formWindow,    listing,
                                    profileFiles, chooser,  profileOpened, lastSelected};
    editor::EditorFormContext editorForm{editing, pages, formWindow, mainForm, lists};
    ScriptedFrameWindow windows;
    frame::FrameContext commands{profiles, opening, editorForm, schedules, mainForm, windows};

    static constexpr const char* kList = "C:\\App\\Data\\Other_Dsk.txt";

    FrameRig()
    {
        for (const char* folder :
             {"C:\\App\\Profiles", "C:\\App\\Data", "C:\\App\\BackupPackages", "E:\\Backup"})
            disk.createFolders(folder);
        put({"D:\\Data\\a.txt", "D:\\Data\\b.txt"});
        putFile(kList, "");
        frame.ST_App_Path = "C:\\App";
        frame.BL_Edit_Mode = false;
    }

    static std::string pathOf(std::string_view name)
    {
        return "C:\\App\\Profiles\\" + std::string(name);
    }
    void answer(std::initializer_list<platform::Answer> answers)
    {
        messageBoxes.answers.insert(messageBoxes.answers.end(), answers);
    }
    // The next name dialogs: a name is entered with OK, or none.
    void enterName(const std::string& name)
    {
        windows.inRestDialog.emplace_back([this, name](state::frmRestDialog& asked) {
            asked.txtProfileName.text = name;
            frame::cmdProfileOK_Click(commands, asked);
        });
    }
    void cancelName()
    {
        windows.inRestDialog.emplace_back(
            [this](state::frmRestDialog& asked) { frame::cmdResCancel_Click(commands, asked); });
    }
    // In the open dialog a person ticks this profile and presses Open.
    void openByDialog(const std::string& name)
    {
        windows.inOpenProfile = [name](profile::OpeningContext& asked) {
            for (std::size_t i = 0; i < asked.form.lstOpen.rows.size(); ++i) {
                if (asked.form.lstOpen.rows[i].text != name)
                    continue;
                asked.form.lstOpen.rows[i].checked = true;
                profile::lstOpen_ItemCheck(asked, i);
            }
            profile::cmdOpen_Click(asked);
        };
    }
    void openFromMedia(const std::string& path)
    {
        chooser.path = path;
        windows.inOpenProfile = [](profile::OpeningContext& asked) {
            profile::cmdSelProfile_Click(asked);
        };
    }

    // A new profile with a source and a destination, not saved yet.
    void newProfile()
    {
        frame::mnuNew_Click(commands);
        fill();
    }
    void fill()
    {
        expand("D:\\");
        tick("D:\\Data\\");
        record.txtDestLoc.text = "E:\\Backup";
        frame::markChanged(frame);
    }
    // It is primary, recent and in the editor for change; nothing was changed since.
    void savedProfile(const std::string& stem)
    {
        newProfile();
        enterName(stem);
        answer({platform::Answer::Yes});
        frame::mnuSave_Click(commands);
        messageBoxes.shown.clear();
        messageBoxes.answers.clear();
        windows.calls.clear();
    }
    void change()
    {
        record.txtIdleTime.text += "1";
        frame::markChanged(frame);
    }
    // The lines of a profile on the disk.
    std::string saved(std::string_view name)
    {
        return profile::unscrambleText(disk.readAll(pathOf(name)));
    }
    bool isSaved(std::string_view name) { return disk.fileExists(pathOf(name)); }
    std::vector<std::string> names(std::string_view folder)
    {
        std::vector<std::string> found;
        for (const platform::FolderEntryInfo& entry : disk.list(folder))
            found.push_back(entry.name);
        return found;
    }
    std::string list() { return disk.readAll(kList); }
    // Buttons 3, 4, 5, 8, 9, then mnuEdit, mnuSave, mnuSaveAs, mnuBackup, mnure, as 1 and 0.
    std::string enabled() const
    {
        std::string text;
        for (const std::size_t button : {3U, 4U, 5U, 8U, 9U})
            text += mainForm.Toolbar1(button).enabled ? '1' : '0';
        text += ' ';
        for (const state::MenuEntry& entry :
             {mainForm.mnuEdit, mainForm.mnuSave, mainForm.mnuSaveAs, mainForm.mnuBackup,
              mainForm.mnure})
            text += entry.enabled ? '1' : '0';
        return text;
    }
    // Button 6, mnuClose, mnuProfile.
    std::string leaving() const
    {
        std::string text;
        for (const bool each :
             {mainForm.Toolbar1(6).enabled, mainForm.mnuClose.enabled, mainForm.mnuProfile.enabled})
            text += each ? '1' : '0';
        return text;
    }
    // N, E and O of the modes, then n and e of the changes.
    std::string modes() const
    {
        std::string text;
        text += frame.BL_New_Mode ? "N" : "";
        text += frame.BL_Edit_Mode ? "E" : "";
        text += frame.BL_Open_Mode ? "O" : "";
        text += frame.BL_New_Changed ? "n" : "";
        text += frame.BL_Edit_Changed ? "e" : "";
        return text;
    }
};

} // namespace vardelin::test
