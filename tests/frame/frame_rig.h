#pragma once

#include "../editor/pages_rig.h"
#include "frame/profile_commands.h"
#include "frame/window_commands.h"

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

class NoFileChosen final : public profile::FileChooser {
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
    profile::StateEditorLists lists{context, record};
    background::RegistryScheduleRecords schedules{{machine, context, frame, record, store.save}};
    profile::FileNumbers fileNumbers;
    profile::ProfileContext profiles{machine, context,   frame, record,
                                     store,   schedules, lists, fileNumbers};
    state::ProfileFormState formWindow;
    state::MainFrameForm mainForm;
    state::frmOpenProfile openForm;
    profile::ListingState listing;
    profile::clsFiles profileFiles{{disk, context, frame, listing}};
    NoFileChosen chooser;
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
    // The next name dialogs: a name is entered with OK.
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
    std::string list() { return disk.readAll(kList); }
};

} // namespace vardelin::test
