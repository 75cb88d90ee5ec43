#pragma once

#include "window_story.h"

#include "profile/scramble_text.h"
#include "runs/engine/engine.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include <QAbstractItemView>
#include <QComboBox>

namespace vardelin::test {

// The files below a folder of this machine, by their paths in it, with their bytes.
using Tree = std::map<std::string, std::string>;

inline Tree treeOf(const std::filesystem::path& folder)
{
    Tree tree;
    if (!std::filesystem::exists(folder))
        return tree;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (entry.is_regular_file())
            tree[entry.path().lexically_relative(folder)] = TempFolder::read(entry.path());
    }
    return tree;
}

struct StoryProfile {
    bool compress = true;
    bool encrypt = false;
    std::string password = {}; // empty: none
    std::vector<std::string> otherData = {};
};

// A saved profile `Work` of the folder `sources`, whose archive the engine makes in `backups`, and
// the program with it in front.
class ArchiveStory : public WindowStory {
protected:
    void SetUp() override
    {
        rig.folder.write("sources/letters/one.txt", "first one\n");
        rig.folder.write("sources/letters/two.txt", "first two\n");
        rig.folder.write("sources/plans.doc", "plans\n");
        std::filesystem::create_directories(rig.folder / "backups");
        std::filesystem::create_directories(rig.folder / "elsewhere");
    }

    // Saves the profile and starts the program with it.
    void begin(const StoryProfile& profile = {})
    {
        using Lines = std::vector<std::string>;
        std::string text = "[Work.vdp]\r\n";
        const auto section = [&](const std::string& name, const Lines& lines) {
            text += "{" + name + "}\r\n";
            for (const std::string& line : lines)
                text += line + "\r\n";
            text += "{End Of " + name + "}\r\n";
        };
        section("Source files", {AppRig::drive(rig.folder / "sources") + "\\"});
        section("Other Data", profile.otherData);
        section("Destination path", {AppRig::drive(rig.folder / "backups")});
        section("Password", profile.password.empty()
                                ? Lines{"False"}
                                : Lines{"True", profile.password, "Your pet's name?", "Rex"});
        text += "Backup versions =6?999\r\n";
        text += profile.compress ? "Compress = True\r\n" : "Compress = False\r\n";
        text += profile.encrypt ? "Encrypt=True\r\n" : "Encrypt=False\r\n";
        text += "[End of Work.vdp]\r\n";
        rig.folder.write("app/Profiles/Work.vdp", profile::scrambleText(text));
        // On its first start the program makes a profile of its own.
        rig.makeMachine().registry.setString(platform::RegistryRoot::LocalMachine,
                                             "SOFTWARE\\Vardelin", "Started", "1");
        startWithProfile();
    }
    void startWithProfile()
    {
        rig.start(AppRig::drive(rig.folder / "app/Profiles/Work.vdp"));
        if (rig.program->frame.ST_Current_Profile != "Work.vdp")
            throw std::runtime_error("not opened: " + errors() + lastMessage());
        rig.messageBoxes.shown.clear();
        rig.errorDialog.shown.clear();
    }

    // ---- what a person does

    // What the program says about a backup.
    std::vector<std::string> backUp()
    {
        rig.messageBoxes.shown.clear();
        run("mnuBackup");
        return rig.messageBoxes.texts();
    }
    void openReview()
    {
        run("mnure");
        if (!storage().loaded || !storage().visible)
            throw std::runtime_error("no review: " + errors() + lastMessage());
    }
    void closeReview()
    {
        ASSERT_TRUE(rig.find<QWidget>("frmVDStorage").close());
        EXPECT_FALSE(storage().loaded);
    }
    QAbstractItemView& list() { return rig.find<QAbstractItemView>("lstRestore"); }

    // Goes to a row by the keyboard's cursor, whose keys then open and close it.
    void goTo(const std::string& key)
    {
        list().setFocus();
        list().setCurrentIndex(list().model()->index(rowOfKey(key), 0));
    }
    void open(const std::string& key)
    {
        goTo(key);
        QTest::keyClick(&list(), Qt::Key_Right);
        QApplication::processEvents();
    }
    // Opens everything down to the folder `sources`, and what is named below it.
    void openDown(const std::vector<std::string>& below = {})
    {
        open("Files And Folders");
        std::string key = "C:\\";
        open(key);
        const std::string top = AppRig::drive(rig.folder / "sources").substr(3) + "\\";
        for (std::size_t at = 0; at < top.size();) {
            const std::size_t end = top.find('\\', at) + 1;
            open(key += top.substr(at, end - at));
            at = end;
        }
        for (const std::string& folder : below)
            open(key + folder + "\\");
    }
    void select(const std::vector<std::string>& keys)
    {
        list().clearSelection();
        for (const std::string& key : keys)
            list().selectionModel()->select(list().model()->index(rowOfKey(key), 0),
                                            QItemSelectionModel::Select |
                                                QItemSelectionModel::Rows);
    }
    // Restore, By File\Folder.
    void restoreToPlaces()
    {
        inForm("frmRestDialog", [](QWidget& form) { click(form, "cmdOK"); });
        run("mnuAsOf");
    }
    // The same to a folder that is typed; where the dialog stays then, it is left by Cancel.
    void restoreTo(const std::string& folder)
    {
        inForm("frmRestDialog", [folder](QWidget& form) { typeLocation(form, folder); });
        run("mnuAsOf");
    }
    static void typeLocation(QWidget& form, const std::string& folder)
    {
        auto& mode = in<QComboBox>(form, "cmbRestLoc");
        mode.setFocus();
        QTest::keyClick(&mode, Qt::Key_Down);
        ASSERT_EQ(mode.currentText(), "Alternate Location");
        QTest::keyClicks(&in<QLineEdit>(form, "txtRestLoc"), QString::fromStdString(folder));
        click(form, "cmdOK");
        if (form.isVisible())
            click(form, "cmdCancel");
    }
    void remove(platform::Answer answer = platform::Answer::Yes)
    {
        rig.messageBoxes.shown.clear();
        rig.messageBoxes.answers = {answer};
        run("mnuDel");
    }

    // ---- what there is then

    const state::frmVDStorage& storage() const { return rig.program->archive.storage; }
    // The row's number in the list; the test ends where there is none.
    int rowOfKey(const std::string& key) const
    {
        const auto& rows = storage().lstRestore;
        const auto hit = std::find_if(rows.begin(), rows.end(),
                                      [&](const state::ReviewRow& row) { return row.key == key; });
        if (hit == rows.end())
            throw std::runtime_error("no row " + key);
        return static_cast<int>(hit - rows.begin());
    }
    // The texts of the rows right below one.
    std::vector<std::string> below(const std::string& key) const
    {
        const auto& rows = storage().lstRestore;
        auto at = static_cast<std::size_t>(rowOfKey(key));
        const auto level = rows[at].level;
        std::vector<std::string> texts;
        while (++at < rows.size() && rows[at].level > level) {
            if (rows[at].level == level + 1)
                texts.push_back(rows[at].text);
        }
        return texts;
    }
    std::vector<std::string> keys() const
    {
        std::vector<std::string> all;
        for (const state::ReviewRow& row : storage().lstRestore)
            all.push_back(row.key);
        return all;
    }
    // A path below `sources` as keys and profiles have it, and as a restore puts it elsewhere.
    std::string source(const std::string& name) const
    {
        return AppRig::drive(rig.folder / "sources/" + name);
    }
    std::string restored(const std::string& name) const
    {
        return rig.folder / "elsewhere/C" + rig.folder.path() + "/sources/" + name;
    }
    std::string original(const std::string& name) const { return rig.folder / "sources/" + name; }
    std::filesystem::path archive() const { return rig.folder / "backups/Work"; }
    // The archive's copies of the folder `sources`, without their times and sizes: `one.txt_FULL`.
    std::vector<std::string> copies(const std::string& folder = {}) const
    {
        std::vector<std::string> names;
        const std::filesystem::path place =
            archive() / "C" / std::filesystem::path(rig.folder / "sources").relative_path() /
            folder;
        if (!std::filesystem::exists(place))
            return names;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(place)) {
            const std::string name = entry.path().filename();
            for (const char* mark : {"_FULL", "_Ver"}) {
                const std::size_t at = name.rfind(mark);
                if (at != std::string::npos && entry.is_regular_file())
                    names.push_back(name.substr(0, name.find('_', at + 1)));
            }
        }
        std::sort(names.begin(), names.end());
        return names;
    }
    // Every copy is read, and every checksum compared.
    engine::VerifyReport verify()
    {
        return engine::verifyArchive(rig.machine->machine(),
                                     AppRig::drive(rig.folder / "app/Profiles/Work.vdp"), 100,
                                     [](std::string_view) { return true; });
    }
    bool isWhole(std::uint64_t copyCount)
    {
        const engine::VerifyReport report = verify();
        return report.copiesChecked == copyCount && report.damaged.empty() &&
               report.mismatched.empty();
    }
    std::string modelText() const { return TempFolder::read(rig.folder / "app/model.txt"); }
};

} // namespace vardelin::test
