#include "frame/archive_commands.h"

#include "frame_rig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <vector>

namespace vardelin::frame {
namespace {

using platform::Answer;
using test::FrameRig;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

// What an engine was asked, and what it answers.
struct EngineScript {
    int made = 0;
    std::vector<std::string> runs;
    int totalUnits = 0;
    bool cancelRequested = false;
    bool noFiles = false;
    bool missed = false;
    std::function<void(engine::EngineEvents&)> during = [](engine::EngineEvents&) {};
};

class ScriptedEngine final : public runs::BackupEngine {
public:
    ScriptedEngine(EngineScript& script, engine::EngineEvents& events)
        : m_script(script), m_events(events)
    {
        ++script.made;
    }
    void EngineBackup(std::string_view folder, std::string_view name, bool& success) override
    {
        m_script.runs.push_back(std::string(folder) + "|" + std::string(name));
        m_script.during(m_events);
        success = true;
    }
    int TotalUnits() const override { return m_script.totalUnits; }
    bool CancelRequested() const override { return m_script.cancelRequested; }
    void CancelRequested(bool value) override { m_script.cancelRequested = value; }
    bool NoFilesIdentified() const override { return m_script.noFiles; }
    void NoFilesIdentified(bool value) override { m_script.noFiles = value; }
    bool MissedFiles() const override { return m_script.missed; }

private:
    EngineScript& m_script;
    engine::EngineEvents& m_events;
};

class Passwords final : public runs::PasswordWindow {
public:
    int shown = 0;
    std::function<void(runs::PasswordGateContext&, state::frmResPwd&)> person =
        [](runs::PasswordGateContext&, state::frmResPwd&) {};
    void showReviewPassword(runs::PasswordGateContext& gate, state::frmResPwd& form) override
    {
        ++shown;
        person(gate, form);
    }
    void setFocus(std::string_view) override {}
};

struct ArchiveCommands : testing::Test, FrameRig {
    EngineScript engine;
    state::frmCancel cancel;
    runs::BackupState run;
    runs::BackupContext backup{
        scripted, context, frame, cancel, run, [this](engine::EngineEvents& events) {
            return std::make_unique<ScriptedEngine>(engine, events);
        }};
    Passwords passwords;
    state::frmVDStorage storage;
    bool reviewIsOpen = false;
    archive::ReviewState state;
    int loads = 0;
    int raised = 0;
    bool hasArchive = true;
    ReviewCommandContext review{passwords,
                                storage,
                                state,
                                [this] {
                                    ++loads;
                                    EXPECT_FALSE(mainForm.Toolbar1Enabled);
                                    EXPECT_EQ(frame.panel1.text, "Reviewing Backup data...");
                                    storage.loaded = hasArchive;
                                    state.sStoreRoot = archive::archiveRoot(
                                        store.scalars.sDestinationPath, frame.ST_Current_Profile);
                                },
                                [this] { ++raised; },
                                reviewIsOpen};

    ArchiveCommands() { savedProfile("Work"); }

    void backUp() { mnuBackup_Click(commands, backup); }
    void openReview() { mnuBkpSto_Click(commands, review); }
    std::vector<std::string> texts() const { return messageBoxes.texts(); }
    void makeArchive()
    {
        disk.createFolders("E:\\Backup\\Work\\D");
        putFile("E:\\Backup\\Work\\D\\a_FULL_x", "x");
    }
};

// ---- a backup

TEST_F(ArchiveCommands, ABackupRunsTheSavedProfile)
{
    formWindow.SSTab1 = 2;
    engine.during = [&](engine::EngineEvents&) {
        EXPECT_TRUE(cancel.loaded && cancel.visible);
        EXPECT_EQ(cancel.caption, "Vardelin");
        EXPECT_EQ(frame.panel1.text, "Backup is going on...");
        EXPECT_FALSE(mainForm.Toolbar1Enabled || mainForm.mnuFile.enabled);
        EXPECT_FALSE(mainForm.maximizeBox);
        EXPECT_NE(run.objBackUp, nullptr);
    };
    backUp();

    EXPECT_THAT(engine.runs, ElementsAre("C:\\App\\Profiles\\|Work.vdp"));
    EXPECT_EQ(engine.made, 1);
    EXPECT_THAT(texts(), ElementsAre("Backup is completed successfully"));
    EXPECT_EQ(boxes()[0].title, "Vardelin");
    EXPECT_EQ(frame.panel1.text, "Backup is completed");
    EXPECT_EQ(mainForm.Toolbar1(8).toolTip, "BackupNow");
    EXPECT_EQ(formWindow.SSTab1, 0);
    EXPECT_FALSE(cancel.loaded || cancel.visible);
    EXPECT_TRUE(mainForm.Toolbar1Enabled && mainForm.mnuFile.enabled && mainForm.maximizeBox);
    EXPECT_EQ(run.objBackUp, nullptr) << "an engine lives as long as its run";
}

// What a person could reach of the frame: the toolbar, the five menus, the maximize box.
std::string open(const state::MainFrameForm& form)
{
    std::string text;
    for (const bool each :
         {form.Toolbar1Enabled, form.mnuFile.enabled, form.mnuActions.enabled,
          form.mnuTools.enabled, form.mnuWindow.enabled, form.mnuHelp.enabled, form.maximizeBox})
        text += each ? '1' : '0';
    return text;
}

// The warning comes before the run's form; the outcome when the frame is open again and the form
// gone; the first tab when all is told.
TEST_F(ArchiveCommands, TheStepsOfABackupComeInTheirOrder)
{
    std::vector<std::string> steps;
    const auto note = [&](const std::string& what) {
        steps.push_back(what + " frame " + open(mainForm) + (cancel.loaded ? " form " : " ") +
                        (run.objBackUp ? "engine " : "") + std::to_string(formWindow.SSTab1));
    };
    messageBoxes.script().onCallsNamed(
        "boxes.show", [&](const platform::CallScript::Call& call) { note(call.subject); });
    engine.during = [&](engine::EngineEvents&) { note("run"); };
    formWindow.SSTab1 = 2;
    mainForm.hourglass = true;
    record.chkWarn.value = 1;
    record.txtWarn.text = "100%";
    record.CmbDestDrives.text = "Local Drives[E:]";
    disk.setCapacity('E', 1'000'000);
    putFile("E:\\used", "not wholly free");
    backUp();
    note("end");
    EXPECT_THAT(steps,
                ElementsAre("Free space available in Backup media is less than 100   percentage "
                            "frame 1111111 engine 2",
                            "run frame 0000000 form engine 2",
                            "Backup is completed successfully frame 1111111 engine 2",
                            "end frame 1111111 0"));
    EXPECT_FALSE(mainForm.hourglass);
    for (const test::ShownBox& box : boxes()) {
        EXPECT_EQ(box.title, "Vardelin");
        EXPECT_EQ(box.buttons, platform::Buttons::Ok);
    }
}

// Its beginning and its end stand under two names in the trace.
TEST_F(ArchiveCommands, ABackupIsTracedUnderTwoNames)
{
    backUp();
    EXPECT_THAT(entries(), Contains(StartsWith("mnuBackup_Click Start")));
    EXPECT_THAT(entries(), Contains(StartsWith("mnurun_Click End")));
}

TEST_F(ArchiveCommands, AProfileThatWasNeverSavedRunsNothing)
{
    newProfile();
    answer({Answer::No});
    backUp();
    EXPECT_THAT(texts(),
                ElementsAre("New Profile (or) Edit Profile hasn't been saved to run Backup"))
        << "changes of a new profile are not asked about";
    EXPECT_EQ(boxes()[0].title, "Vardelin");
    EXPECT_EQ(boxes()[0].buttons, platform::Buttons::Ok);
    EXPECT_THAT(engine.runs, IsEmpty());
    EXPECT_FALSE(cancel.loaded);
    EXPECT_EQ(run.objBackUp, nullptr);
    EXPECT_EQ(formWindow.SSTab1, 0);
}

TEST_F(ArchiveCommands, ThePathIsSplitAtItsLastBackslash)
{
    struct Row {
        std::string_view path;
        bool remote;
        std::string_view run; // empty: refused
    };
    const Row rows[] = {
        {"C:\\App\\Profiles\\Work.vdp", false, "C:\\App\\Profiles\\|Work.vdp"},
        {"D:\\my profiles\\a.b\\Work.now.vdp", false, "D:\\my profiles\\a.b\\|Work.now.vdp"},
        {"D:\\Work.vdp", false, "D:\\|Work.vdp"},
        {"F:\\media\\Far.vdp", true, "C:\\App\\Profiles\\|Far.vdp"},
        {"", false, ""},
        {"", true, ""},
        {"C:\\App\\Profiles\\", false, ""},
        {"C:\\App\\Profiles\\", true, ""},
    };
    for (const Row& row : rows) {
        engine.runs.clear();
        frame.ST_Current_Profile_Path = row.path;
        frame.BL_Remote_Profile = row.remote;
        backUp();
        if (row.run.empty())
            EXPECT_THAT(engine.runs, IsEmpty()) << row.path;
        else
            EXPECT_THAT(engine.runs, ElementsAre(row.run)) << row.path;
    }
}

TEST_F(ArchiveCommands, AChangeIsSavedFirstOrNot)
{
    change();
    answer({Answer::No});
    backUp();
    EXPECT_EQ(engine.runs.size(), 1U) << "the file as it was last saved";

    change();
    answer({Answer::Yes});
    backUp();
    EXPECT_EQ(engine.runs.size(), 2U);
    EXPECT_FALSE(frame.BL_Edit_Changed);
}

TEST_F(ArchiveCommands, ARefusedSaveStopsTheBackup)
{
    change();
    record.txtDestLoc.text.clear();
    answer({Answer::Yes, Answer::No}); // save; not in the default folder
    backUp();
    EXPECT_THAT(engine.runs, IsEmpty());
    EXPECT_FALSE(frame.BL_Save_Blocked);
    EXPECT_EQ(formWindow.SSTab1, 1) << "the tab that shows what is missing";
    EXPECT_NE(mainForm.Toolbar1(8).toolTip, "BackupNow");
}

TEST_F(ArchiveCommands, AProfileFromMediaRunsFromItsWorkingCopy)
{
    frame.BL_Remote_Profile = true;
    frame.ST_Current_Profile_Path = "F:\\media\\Far.vdp";
    backUp();
    EXPECT_THAT(engine.runs, ElementsAre("C:\\App\\Profiles\\|Far.vdp"));
}

// Every combination of what can be known behind a run.
TEST_F(ArchiveCommands, EachOutcomeHasItsMessages)
{
    constexpr std::string_view kDone = "Backup is completed successfully";
    constexpr std::string_view kGaps =
        "Backup is completed successfully, But some files are missed during Backup\r\nThis may "
        "because of deleting some files\r\nCheck the Backup log to get the missed file names";
    constexpr std::string_view kNothing = "No files identified to Backup";
    std::vector<std::string> panels; // while a box is shown
    messageBoxes.script().onCallsNamed("boxes.show", [&](const platform::CallScript::Call&) {
        panels.push_back(frame.panel1.text);
    });
    for (unsigned bits = 0; bits < 16; ++bits) {
        const bool pressed = (bits & 1U) != 0;
        const bool requested = (bits & 2U) != 0;
        const bool missed = (bits & 4U) != 0;
        const bool nothing = (bits & 8U) != 0;
        clearBoxes();
        panels.clear();
        engine.during = [&](engine::EngineEvents&) {
            run.BL_Cancel_Pressed = pressed; // behind the last file
            engine.cancelRequested = requested;
            engine.missed = missed;
            engine.noFiles = nothing;
            cancel.pbBkp.value = 3;
        };
        backUp();

        std::vector<std::string> expected;
        std::vector<std::string> expectedPanels;
        if (!pressed && !requested) {
            expected.emplace_back(missed ? kGaps : kDone);
            expectedPanels.emplace_back("Backup is completed");
        }
        if (nothing) {
            expected.emplace_back(kNothing);
            expectedPanels.emplace_back(kNothing);
        }
        EXPECT_EQ(texts(), expected) << "a cancelled run shows no outcome; case " << bits;
        EXPECT_EQ(panels, expectedPanels) << bits;
        EXPECT_FALSE(engine.noFiles) << bits;
        const bool completed = !pressed && !requested;
        EXPECT_EQ(frame.panel1.text, completed && !nothing ? "Backup is completed" : "") << bits;
        EXPECT_EQ(cancel.pbBkp.value, completed ? cancel.pbBkp.maximum : 3) << bits;
        for (const test::ShownBox& box : boxes()) {
            EXPECT_EQ(box.title, "Vardelin");
            EXPECT_EQ(box.buttons, platform::Buttons::Ok);
        }
    }
}

TEST_F(ArchiveCommands, AnErrorOfTheEngineOpensTheFrameAgain)
{
    engine.during = [](engine::EngineEvents&) {
        throw base::RuntimeError(base::error_number::kDiskFull, "E:\\Backup");
    };
    backUp();
    ASSERT_EQ(dialog.shown.size(), 1U);
    EXPECT_EQ(dialog.shown[0].txtSysErrNo.text, "61");
    EXPECT_EQ(dialog.shown[0].txtModName.text, "MDIForm");
    EXPECT_EQ(dialog.shown[0].txtProcName.text, "mnuRun_Click");
    EXPECT_EQ(dialog.shown[0].txtInf.text, "mnuRun_Click");
    EXPECT_THAT(entries(), Contains(StartsWith("mnuRun_Click Error")));
    EXPECT_THAT(entries(), Contains(StartsWith("mnurun_Click End"))) << "goes on to the end";
    EXPECT_THAT(texts(), IsEmpty());
    EXPECT_EQ(open(mainForm), "1111111");
    EXPECT_FALSE(cancel.loaded);
    EXPECT_EQ(run.objBackUp, nullptr);
}

// Not only an error of the file system: nothing may leave a frame behind that cannot be used, or an
// engine whose events are gone.
TEST_F(ArchiveCommands, WhateverEndsARunTheFrameCanBeUsedAgain)
{
    const std::function<void()> ends[] = {
        [] { throw std::bad_alloc(); },
        [] { throw trace::ExitRequested{}; },
        [] { throw base::RuntimeError(base::error_number::kDeviceIo); },
    };
    for (const std::function<void()>& end : ends) {
        engine.during = [&](engine::EngineEvents&) { end(); };
        formWindow.SSTab1 = 2;
        try {
            backUp();
        } catch (const std::bad_alloc&) {
            EXPECT_THAT(dialog.shown, IsEmpty()) << "its caller tells of it";
        } catch (const trace::ExitRequested&) {
            EXPECT_THAT(dialog.shown, IsEmpty());
        }
        EXPECT_EQ(open(mainForm), "1111111");
        EXPECT_FALSE(mainForm.commandRunning);
        EXPECT_FALSE(cancel.loaded || cancel.visible || run.BL_Run_Closing);
        EXPECT_EQ(run.objBackUp, nullptr);
    }
}

// "&Exit" in the dialog of a failed run.
TEST_F(ArchiveCommands, APersonWhoEndsTheProgramLeavesNoEngine)
{
    engine.during = [](engine::EngineEvents&) { throw base::RuntimeError(57); };
    dialog.answers = {trace::ErrorAnswer::Exit};
    EXPECT_THROW(backUp(), trace::ExitRequested);
    EXPECT_EQ(run.objBackUp, nullptr);
    EXPECT_EQ(open(mainForm), "1111111");
}

TEST_F(ArchiveCommands, AnEngineThatCannotBeMadeIsReported)
{
    backup.make = [](engine::EngineEvents&) -> std::unique_ptr<runs::BackupEngine> {
        throw base::RuntimeError(base::error_number::kFileNotFound, "VDBackUp");
    };
    formWindow.SSTab1 = 2;
    backUp();
    ASSERT_EQ(dialog.shown.size(), 1U);
    EXPECT_EQ(dialog.shown[0].txtProcName.text, "mnuRun_Click");
    EXPECT_EQ(formWindow.SSTab1, 0);
    EXPECT_FALSE(cancel.loaded);
    EXPECT_THAT(entries(), Contains(StartsWith("mnurun_Click End")));
}

// One step of the bar: what it was, the engine's total, the increment, what it is.
TEST_F(ArchiveCommands, TheBarFollowsTheTotalThatTheEngineTells)
{
    struct Row {
        state::ProgressBar before;
        int total;
        double increment;
        state::ProgressBar after;
    };
    const Row rows[] = {
        {{0, 100}, 0, 5, {5, 100}},    {{7, 100}, 100, 5, {12, 100}},
        {{7, 100}, 40, 5, {5, 40}},    {{7, 0}, 40, 5, {12, 40}},
        {{7, 0}, 0, 5, {0, 0}},        {{39, 40}, 40, 1, {40, 40}},
        {{39, 40}, 40, 1.5, {40, 40}}, {{40, 40}, 40, 3, {40, 40}},
        {{7, 100}, -1, 5, {5, 100}},   {{7, 40}, 32767, 0.25, {0.25, 32767}},
    };
    engine.during = [&](engine::EngineEvents& events) {
        for (const Row& row : rows) {
            cancel.pbBkp = row.before;
            engine.totalUnits = row.total;
            events.ProStatus(row.increment);
            EXPECT_EQ(cancel.pbBkp.value, row.after.value) << row.total;
            EXPECT_EQ(cancel.pbBkp.maximum, row.after.maximum) << row.total;
        }
    };
    backUp();
}

TEST_F(ArchiveCommands, WaitingEventsRunBeforeAndBehindEachName)
{
    std::vector<std::string> seen;
    engine.during = [&](engine::EngineEvents& events) {
        messageLoop.onYield = [&] { seen.push_back(cancel.lblBkpFileNames.caption); };
        events.FileProStatus("D:\\a");
        events.FileProStatus("D:\\b");
        messageLoop.onYield = {};
    };
    backUp();
    EXPECT_THAT(seen, ElementsAre("", "D:\\a", "D:\\a", "D:\\b"));
}

// A click that comes while the name is shown is heard at once.
TEST_F(ArchiveCommands, ACancelBehindANameReachesTheEngineWithThatName)
{
    engine.during = [&](engine::EngineEvents& events) {
        for (const int before : {1, 2}) {
            engine.cancelRequested = false;
            int yields = 0;
            messageLoop.onYield = [&] {
                if (++yields == before) {
                    answer({Answer::Yes});
                    runs::cmdCancel_Click(backup);
                }
            };
            events.FileProStatus("D:\\a");
            EXPECT_TRUE(engine.cancelRequested) << before;
            EXPECT_FALSE(run.BL_Cancel_Pressed);
            messageLoop.onYield = {};
        }
    };
    backUp();
}

TEST_F(ArchiveCommands, TheBarTakesIncrementsAndNeverOverflows)
{
    engine.during = [&](engine::EngineEvents& events) {
        events.ProStatus(5); // no total is known yet
        EXPECT_EQ(cancel.pbBkp.value, 5);
        EXPECT_EQ(cancel.pbBkp.maximum, 100);
        engine.totalUnits = 40;
        events.ProStatus(10);
        EXPECT_EQ(cancel.pbBkp.value, 10) << "another total begins anew";
        EXPECT_EQ(cancel.pbBkp.maximum, 40);
        events.ProStatus(12.5);
        EXPECT_EQ(cancel.pbBkp.value, 22.5);
        engine.totalUnits = 50;
        events.ProStatus(1);
        EXPECT_EQ(cancel.pbBkp.value, 1);
        events.ProStatus(1000);
        events.ProStatus(1);
        EXPECT_EQ(cancel.pbBkp.value, 50);
        EXPECT_EQ(cancel.remainingSeconds, 0);
    };
    backUp();
}

TEST_F(ArchiveCommands, TheFormShowsNamesCountsAndTime)
{
    engine.during = [&](engine::EngineEvents& events) {
        engine.totalUnits = 100;
        events.FileProStatus("D:\\a");
        events.FileProStatus("D:\\a"); // the same large file goes on
        events.FileProStatus("D:\\b");
        EXPECT_EQ(cancel.lblBkpFileNames.caption, "D:\\b");
        EXPECT_EQ(cancel.files, 2U);
        clock.advance(std::chrono::seconds(10));
        events.ProStatus(25);
        EXPECT_DOUBLE_EQ(cancel.elapsedSeconds, 10);
        EXPECT_DOUBLE_EQ(cancel.remainingSeconds, 30);
    };
    backUp();
}

// Out of the first few of many files, hours would be told of a run of minutes.
TEST_F(ArchiveCommands, NoTimeLeftIsToldOutOfTheFirstFewFiles)
{
    engine.during = [&](engine::EngineEvents& events) {
        engine.totalUnits = 1000;
        clock.advance(std::chrono::seconds(10));
        events.ProStatus(19);
        EXPECT_EQ(cancel.remainingSeconds, 0);
        events.ProStatus(1);
        EXPECT_DOUBLE_EQ(cancel.remainingSeconds, 490);
    };
    backUp();
}

TEST_F(ArchiveCommands, CancelReachesTheEngineAtTheNextFileAndAsksOnce)
{
    engine.during = [&](engine::EngineEvents& events) {
        answer({Answer::No, Answer::Yes});
        runs::cmdCancel_Click(backup);
        events.FileProStatus("D:\\a");
        EXPECT_FALSE(engine.cancelRequested);
        runs::cmdCancel_Click(backup);
        EXPECT_FALSE(engine.cancelRequested) << "not before the next file";
        events.FileProStatus("D:\\b");
        EXPECT_TRUE(engine.cancelRequested);
        EXPECT_FALSE(run.BL_Cancel_Pressed);
        engine.cancelRequested = false; // consumed: the next file asks nobody and tells nothing
        events.FileProStatus("D:\\c");
        EXPECT_FALSE(engine.cancelRequested);
        engine.cancelRequested = true;
    };
    backUp();
    EXPECT_THAT(texts(), ElementsAre("Do you want to cancel the Backup process?",
                                     "Do you want to cancel the Backup process?"));
    EXPECT_EQ(boxes()[0].title, "Vardelin");
    EXPECT_EQ(boxes()[0].buttons, platform::Buttons::YesNo);
}

// The last answer counts, by the button and by the close box.
TEST_F(ArchiveCommands, ALaterNoTakesAnEarlierYesBack)
{
    engine.during = [&](engine::EngineEvents& events) {
        answer({Answer::Yes, Answer::No, Answer::Yes, Answer::No});
        runs::cmdCancel_Click(backup);
        EXPECT_TRUE(run.BL_Cancel_Pressed);
        runs::cmdCancel_Click(backup);
        EXPECT_FALSE(run.BL_Cancel_Pressed);
        runs::cmdCancel_Click(backup);
        EXPECT_FALSE(runs::Form_QueryUnload(backup));
        EXPECT_FALSE(run.BL_Cancel_Pressed);
        events.FileProStatus("D:\\a");
        EXPECT_FALSE(engine.cancelRequested);
        EXPECT_TRUE(cancel.loaded);
    };
    backUp();
}

TEST_F(ArchiveCommands, TheProgramItselfClosesTheFormUnasked)
{
    run.BL_Run_Closing = true;
    EXPECT_TRUE(runs::Form_QueryUnload(backup));
    EXPECT_THAT(texts(), IsEmpty());
    EXPECT_FALSE(run.BL_Cancel_Pressed);
}

TEST_F(ArchiveCommands, TheCloseBoxAsksAndTheFormMayGoBeforeTheRun)
{
    engine.during = [&](engine::EngineEvents& events) {
        answer({Answer::No, Answer::Yes});
        EXPECT_FALSE(runs::Form_QueryUnload(backup));
        EXPECT_TRUE(cancel.loaded);
        EXPECT_TRUE(runs::Form_QueryUnload(backup));
        EXPECT_FALSE(cancel.loaded);
        events.FileProStatus("D:\\a"); // there is no form to show it
        events.ProStatus(3);
        EXPECT_TRUE(engine.cancelRequested);
        EXPECT_EQ(cancel.lblBkpFileNames.caption, "");
    };
    backUp();
    EXPECT_THAT(texts().size(), 2U);
}

// A click behind the last file of one run must not end the next.
TEST_F(ArchiveCommands, ALateCancelDoesNotReachTheNextRun)
{
    engine.during = [&](engine::EngineEvents&) {
        answer({Answer::Yes});
        runs::cmdCancel_Click(backup);
    };
    backUp();
    engine.during = [](engine::EngineEvents& events) { events.FileProStatus("D:\\a"); };
    clearBoxes();
    backUp();
    EXPECT_FALSE(engine.cancelRequested);
    EXPECT_THAT(texts(), ElementsAre("Backup is completed successfully"));
}

TEST_F(ArchiveCommands, AMissingAnimationShowsNothing)
{
    engine.during = [&](engine::EngineEvents&) { EXPECT_EQ(cancel.animation, ""); };
    backUp();
    putFile("C:\\App\\Compress_ani.gif", "GIF89a");
    engine.during = [&](engine::EngineEvents&) { EXPECT_EQ(cancel.animation, "GIF89a"); };
    backUp();
    putFile("C:\\App\\Compress_ani.gif", std::string((4 << 20) + 1, 'x'));
    engine.during = [&](engine::EngineEvents&) { EXPECT_EQ(cancel.animation.size(), 0U); };
    backUp();
}

TEST_F(ArchiveCommands, ASecondCommandDuringABackupDoesNothing)
{
    engine.during = [&](engine::EngineEvents&) {
        backUp();
        openReview();
    };
    backUp();
    EXPECT_EQ(engine.runs.size(), 1U);
    EXPECT_EQ(loads, 0);
}

// ---- the review

TEST_F(ArchiveCommands, TheReviewOpensBehindThePassword)
{
    makeArchive();
    openReview();
    EXPECT_EQ(loads, 1);
    EXPECT_EQ(passwords.shown, 0);
    EXPECT_TRUE(reviewIsOpen && storage.visible);
    EXPECT_EQ(storage.caption, "Restore - 'Work 'Profile");
    EXPECT_EQ(frame.panel1.text, "Reviewing Backup data...");
    EXPECT_TRUE(mainForm.Toolbar1Enabled);
    EXPECT_FALSE(mainForm.Toolbar1(3).enabled || mainForm.Toolbar1(4).enabled ||
                 mainForm.Toolbar1(5).enabled);
    EXPECT_FALSE(mainForm.mnuEdit.enabled || mainForm.mnuSave.enabled ||
                 mainForm.mnuSaveAs.enabled);
    EXPECT_TRUE(mainForm.Toolbar1(11).enabled && mainForm.mnuProfile.enabled);
    EXPECT_TRUE(storage.enabled);
    EXPECT_EQ(raised, 1);

    mnuProfile_Click(commands);
    ASSERT_TRUE(mainForm.Toolbar1(4).enabled && mainForm.mnuSaveAs.enabled);
    storage.visible = false;
    openReview();
    EXPECT_EQ(loads, 1) << "an open review is not built anew";
    EXPECT_TRUE(storage.visible);
    EXPECT_EQ(raised, 2);
    EXPECT_FALSE(mainForm.Toolbar1(4).enabled || mainForm.mnuSaveAs.enabled)
        << "a Save As would leave the review with another profile's archive";
}

// A restore goes by the profile, a deletion by what is on show.
TEST_F(ArchiveCommands, AReviewOfAnotherArchiveIsBuiltAnew)
{
    makeArchive();
    openReview();
    mnuProfile_Click(commands);
    disk.createFolders("E:\\Backup\\Other\\D");
    putFile("E:\\Backup\\Other\\D\\a_FULL_x", "x");
    enterName("Other");
    mnuSaveAs_Click(commands);
    ASSERT_EQ(frame.ST_Current_Profile, "Other.vdp");
    windows.calls.clear();
    openReview();
    EXPECT_TRUE(windows.called("unloadReview"));
    EXPECT_EQ(loads, 2);
    EXPECT_EQ(storage.caption, "Restore - 'Other 'Profile");

    disk.createFolders("D:\\Else\\Other\\D");
    putFile("D:\\Else\\Other\\D\\a_FULL_x", "x");
    store.scalars.sDestinationPath = "D:\\Else";
    openReview();
    EXPECT_EQ(loads, 3) << "another destination";
    openReview();
    EXPECT_EQ(loads, 3);
}

TEST_F(ArchiveCommands, ARefusedSaveStopsTheReview)
{
    makeArchive();
    openReview();
    mnuProfile_Click(commands);
    markChanged(frame);
    record.txtDestLoc.text.clear();
    clearBoxes();
    answer({Answer::Yes});
    frame.panel1.text.clear();
    openReview();
    EXPECT_EQ(raised, 1) << "the editor stays in front";
    EXPECT_EQ(loads, 1);
    EXPECT_FALSE(frame.BL_Save_Blocked) << "so that it stops nothing else";
    EXPECT_EQ(frame.panel1.text.find("Reviewing"), std::string::npos);
}

TEST_F(ArchiveCommands, AnErrorOfTheLoadOpensTheFrameAgain)
{
    makeArchive();
    review.frmVDStorage_Load = [this] {
        storage.loaded = true;
        throw base::RuntimeError(base::error_number::kPathNotFound);
    };
    openReview();
    EXPECT_FALSE(reviewIsOpen || storage.loaded || storage.visible);
    EXPECT_EQ(raised, 0);
    EXPECT_TRUE(mainForm.Toolbar1Enabled);
    EXPECT_TRUE(dialog.shown.empty()) << "the load has shown its own";
    EXPECT_EQ(frame.panel1.text, "");
}

TEST_F(ArchiveCommands, AReviewNeedsASavedProfile)
{
    newProfile();
    answer({Answer::No});
    openReview();
    EXPECT_THAT(texts(), Contains("New Profile (or) Edit Profile hasn't been saved or Backedup to "
                                  "review Archive"));
    EXPECT_EQ(loads, 0);
}

TEST_F(ArchiveCommands, WithoutABackupTheReviewStaysShut)
{
    openReview();
    EXPECT_THAT(texts(), ElementsAre("Backup does not exist for this profile"));
    EXPECT_EQ(loads, 0);
    EXPECT_EQ(frame.panel1.text, "");

    makeArchive();
    hasArchive = false; // gone meanwhile
    openReview();
    EXPECT_FALSE(reviewIsOpen || storage.visible);
    EXPECT_TRUE(mainForm.Toolbar1Enabled);
}

TEST_F(ArchiveCommands, APasswordKeepsTheReviewShut)
{
    makeArchive();
    record.chkPassword.value = 1;
    record.txtPassWord.text = "secret";
    record.cmbHintQues.text = "Favorite Pet's Name?";
    record.txtHintAns.text = "rex";
    frame::markChanged(frame);
    mnuSave_Click(commands);
    clearBoxes();

    passwords.person = [this](runs::PasswordGateContext&, state::frmResPwd&) {
        EXPECT_EQ(frame.panel1.text, "Reviewing Archive...");
    };
    openReview();
    EXPECT_EQ(passwords.shown, 1);
    EXPECT_EQ(loads, 0);
    EXPECT_EQ(raised, 0);
    EXPECT_EQ(frame.panel1.text, "");

    passwords.person = [](runs::PasswordGateContext& gate, state::frmResPwd& asked) {
        asked.txtRespwd.text = "secret";
        runs::cmdOk_Click(gate, asked);
    };
    openReview();
    EXPECT_EQ(loads, 1);
}

} // namespace
} // namespace vardelin::frame
