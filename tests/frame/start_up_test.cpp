#include "start_up_rig.h"

#include "profile/scramble_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vardelin::frame {
namespace {

using test::StartUpRig;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;

constexpr const char* kDefaultText = "Displaying the Default profile";

// ---- Main

TEST(Main, TellsASecondInstanceAndLeavesEverythingUntouched)
{
    StartUpRig rig;
    rig.instance.heldElsewhere = true;
    rig.facts.longNames["C:\\x\\Work.vdp"] = "C:\\x\\Work.vdp";
    EXPECT_FALSE(Main(rig.starting, "C:\\x\\Work.vdp"));
    EXPECT_THAT(rig.boxes(),
                ElementsAre(test::ShownBox{"Vardelin Application is already Open", "Vardelin"}));
    EXPECT_THAT(rig.windows.calls, IsEmpty());
    EXPECT_THAT(rig.entries(), IsEmpty());
    EXPECT_EQ(rig.list(), "");
    EXPECT_FALSE(rig.splash.loaded);
    EXPECT_FALSE(rig.marked());
}

TEST(Main, ShowsTheSplashWithoutTracing)
{
    StartUpRig rig;
    EXPECT_TRUE(Main(rig.starting, ""));
    EXPECT_THAT(rig.windows.calls, ElementsAre("showSplash"));
    EXPECT_TRUE(rig.splash.loaded);
    EXPECT_EQ(rig.splash.Timer1.Interval, 800);
    EXPECT_THAT(rig.entries(), IsEmpty());
}

// The whole command line is one path, and its last three letters decide.
TEST(Main, TakesThePathOfAProfileForTheRecentOne)
{
    const struct {
        std::string commandLine;
        std::string recorded; // empty: not taken for a profile
    } rows[] = {
        {"C:\\x\\Work.vdp", "Work.vdp"},
        {"C:\\x\\WORK.VDP", "WORK.VDP"},
        {"C:\\x\\Work.Vdp  ", "Work.Vdp  .vdp"}, // the name's own blanks stay
        {"C:\\x\\workvdp", "workvdp.vdp"},       // no dot is asked for
        {"C:\\x\\vdp", "vdp.vdp"},
        {"C:\\x\\Work.vdb", ""},
        {"C:\\x\\Work.vdp.txt", ""},
        {"C:\\x\\two files\\My Work.vdp", "My Work.vdp"},
        {"\"C:\\x\\Work.vdp\"", ""}, // no such path
        {"C:\\x\\missing.vdp", ""},
        {"", ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.commandLine);
        StartUpRig rig;
        if (row.commandLine.find("missing") == std::string::npos &&
            !row.commandLine.starts_with('"'))
            rig.facts.longNames[row.commandLine] = row.commandLine;
        EXPECT_TRUE(Main(rig.starting, row.commandLine));
        std::string expected = row.recorded;
        if (expected == "Work.Vdp  .vdp")
            expected = "Work.Vdp  "; // it holds the extension, so none is added
        EXPECT_EQ(rig.list(), expected.empty() ? "" : "[Recent Profile]\r\n" + expected + "\r\n");
        EXPECT_EQ(rig.frame.BL_Command_Line_Profile, !row.recorded.empty());
        EXPECT_THAT(rig.windows.calls, ElementsAre("showSplash"));
    }
}

TEST(Main, ReplacesEarlierRecentEntries)
{
    StartUpRig rig;
    rig.primary("Default.vdp");
    rig.recent("Old.vdp");
    rig.facts.longNames["C:\\x\\Work.vdp"] = "C:\\x\\Work.vdp";
    Main(rig.starting, "C:\\x\\Work.vdp");
    EXPECT_EQ(rig.list(), "[Primary Profile]\r\nDefault.vdp\r\n[Recent Profile]\r\nWork.vdp\r\n");
}

TEST(Main, StartsWithoutTheProfileWhereItCannotBeRecorded)
{
    StartUpRig rig;
    rig.disk.removeTree("C:\\App\\Data");
    rig.facts.longNames["C:\\x\\Work.vdp"] = "C:\\x\\Work.vdp";
    EXPECT_TRUE(Main(rig.starting, "C:\\x\\Work.vdp"));
    EXPECT_THAT(rig.errorsShown(),
                ElementsAre("RemoveRecVdp: Error occured in Removing the existent Recent Profile",
                            "Main: Main"));
    EXPECT_FALSE(rig.frame.BL_Command_Line_Profile);
    EXPECT_TRUE(rig.splash.loaded);
}

TEST(GetLongFileName, GivesThePathThatExistsAndNothingElse)
{
    const std::string longest = "C:\\" + std::string(396, 'n'); // 399 and the closing zero
    const std::string tooLong = longest + "n";
    platform::MemoryMachineFacts facts;
    facts.longNames = {{"C:\\PROGRA~1\\W.VDP", "C:\\Program Files\\Work.vdp"},
                       {longest, longest},
                       {tooLong, tooLong}};
    EXPECT_EQ(GetLongFileName(facts, "C:\\PROGRA~1\\W.VDP"), "C:\\Program Files\\Work.vdp");
    EXPECT_EQ(GetLongFileName(facts, "C:\\missing"), "");
    EXPECT_EQ(GetLongFileName(facts, ""), "");
    EXPECT_EQ(GetLongFileName(facts, longest), longest);
    EXPECT_EQ(GetLongFileName(facts, tooLong), "");
    facts.script().failCallsNamed("facts.longPathName", base::error_number::kDeviceIo);
    EXPECT_EQ(GetLongFileName(facts, "C:\\PROGRA~1\\W.VDP"), "");
}

// Without its name it would not be found, and its entry in the list would go.
TEST(MDIForm_Load, FinishesASaveThatWasCutOffBeforeItLooksForTheRecentProfile)
{
    StartUpRig rig;
    rig.installed();
    rig.putProfile("Work.vdp", "D:\\Work\\\r\n");
    rig.disk.rename(rig.pathOf("Work.vdp"), rig.pathOf("UWork.vdp"));
    rig.putFile(rig.pathOf("~Work.vdp.old"), "");
    rig.recent("Work.vdp");
    rig.start();
    EXPECT_EQ(rig.frame.ST_Current_Profile, "Work.vdp");
    EXPECT_THAT(rig.names("C:\\App\\Profiles"), ElementsAre("Work.vdp"));
    EXPECT_EQ(rig.list(), "[Recent Profile]\r\nWork.vdp\r\n");
    EXPECT_THAT(rig.boxes(), IsEmpty());
}

TEST(MDIForm_Load, TellsTheLinesThatTheFinishedSaveCouldNotKeep)
{
    StartUpRig rig;
    rig.installed();
    // A line of 169 bytes is shifted by 9: its byte 0xF8 would come to 257.
    rig.putProfile("Work.vdp", "D:\\" + std::string(164, 'x') + "~\\\r\n");
    std::string plain = rig.saved("Work.vdp");
    plain[plain.find('~')] = '\xF8';
    rig.putFile(rig.pathOf("Work.vdp"), plain);
    rig.recent("Work.vdp");
    rig.start();
    EXPECT_THAT(rig.messages(),
                ElementsAre("The saving of Work.vdp was cut off and is finished now, but line 3 of "
                            "it cannot be kept exactly. Open the profile and check it."));
}

// ---- the splash

TEST(Splash, FindsTheFirstStartByItsMarkOnce)
{
    StartUpRig rig;
    Form_Load(rig.starting);
    EXPECT_TRUE(rig.frame.BL_First_Run);
    EXPECT_TRUE(rig.marked());
    rig.frame.BL_First_Run = false;
    Form_Load(rig.starting);
    EXPECT_FALSE(rig.frame.BL_First_Run);
}

// Were every start the first one, each would write the default profile anew over what the person
// made of it.
TEST(Splash, IsNoFirstStartWhereTheMarkCannotBeKept)
{
    for (const char* call : {"registry.value", "registry.setValue"}) {
        StartUpRig rig;
        rig.registry.script().failCallsNamed(call, base::error_number::kPermissionDenied);
        Form_Load(rig.starting);
        EXPECT_FALSE(rig.frame.BL_First_Run) << call;
        EXPECT_TRUE(rig.splash.loaded) << call;
    }
}

TEST(Splash, TakesAMarkOfAnyShapeForOne)
{
    StartUpRig rig;
    rig.registry.setValue(StartUpRig::kMachine, "SOFTWARE\\Vardelin",
                          {"Started", platform::RegistryType::DWord, std::string("\1\0\0\0", 4)});
    Form_Load(rig.starting);
    EXPECT_FALSE(rig.frame.BL_First_Run);
}

TEST(Splash, DeterminesNothingWhereTheFirstRunIsSetAlready)
{
    StartUpRig rig;
    rig.frame.BL_First_Run = true;
    rig.registry.script().reset();
    Form_Load(rig.starting);
    EXPECT_TRUE(rig.frame.BL_First_Run);
    EXPECT_EQ(rig.registry.script().callCount(), 0U);
    EXPECT_FALSE(rig.marked());
}

TEST(Splash, StaysOverTheFrameForOneTickMore)
{
    StartUpRig rig;
    Main(rig.starting, "");
    Timer1_Timer(rig.starting);
    EXPECT_TRUE(rig.mainForm.loaded);
    EXPECT_TRUE(rig.splash.loaded);
    EXPECT_EQ(rig.splash.Timer1.Interval, 1000);
    EXPECT_FALSE(rig.windows.called("unloadSplash"));
    Timer1_Timer(rig.starting);
    EXPECT_FALSE(rig.splash.loaded);
    EXPECT_FALSE(rig.splash.Timer1.Enabled);
    EXPECT_TRUE(rig.windows.called("unloadSplash"));
    EXPECT_FALSE(rig.windows.called("endApplication"));
}

TEST(Splash, EndsTheProgramAtAKeyBeforeTheFirstTick)
{
    StartUpRig rig;
    Main(rig.starting, "");
    Form_KeyDown(rig.starting);
    EXPECT_THAT(rig.windows.calls, ElementsAre("showSplash", "unloadSplash", "endApplication"));
    Timer1_Timer(rig.starting); // one that was under way
    EXPECT_FALSE(rig.mainForm.loaded);
    EXPECT_THAT(rig.entries(), IsEmpty());
}

TEST(Splash, GoesAtAKeyAndLeavesTheFrame)
{
    StartUpRig rig;
    Main(rig.starting, "");
    Timer1_Timer(rig.starting);
    Form_KeyDown(rig.starting);
    Form_KeyDown(rig.starting);
    EXPECT_FALSE(rig.splash.loaded);
    EXPECT_FALSE(rig.windows.called("endApplication"));
    EXPECT_EQ(std::count(rig.windows.calls.begin(), rig.windows.calls.end(), "unloadSplash"), 1);
}

// The frame lets events through while it loads: ticks and keys arrive then, too.
TEST(Splash, LoadsTheFrameOnceWhateverArrivesMeanwhile)
{
    const struct {
        const char* what;
        int ticks;
        bool key;
        bool splashStays;
    } rows[] = {{"a tick", 1, false, true},
                {"two ticks", 2, false, false},
                {"a key", 0, true, false},
                {"a key and a tick", 1, true, false}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        StartUpRig rig;
        Main(rig.starting, "");
        bool arrived = false;
        rig.messageLoop.onYield = [&] {
            if (arrived)
                return;
            arrived = true;
            if (row.key)
                Form_KeyDown(rig.starting);
            for (int i = 0; i < row.ticks; ++i)
                Timer1_Timer(rig.starting);
        };
        Timer1_Timer(rig.starting);
        EXPECT_TRUE(arrived);
        EXPECT_EQ(rig.splash.loaded, row.splashStays);
        EXPECT_EQ(std::count(rig.windows.calls.begin(), rig.windows.calls.end(), "frameSize"), 1);
        EXPECT_FALSE(rig.windows.called("endApplication"));
        EXPECT_TRUE(rig.frame.BL_Edit_Mode);
    }
}

// ---- what is on show afterwards

TEST(StartUp, ShowsTheDefaultProfileOnTheFirstStart)
{
    StartUpRig rig;
    rig.start();
    EXPECT_THAT(rig.errorsShown(), IsEmpty());
    EXPECT_TRUE(rig.disk.fileExists(StartUpRig::pathOf("Default.vdp")));
    EXPECT_EQ(rig.list(),
              "[Primary Profile]\r\nDefault.vdp\r\n[Recent Profile]\r\nDefault.vdp\r\n");
    EXPECT_EQ(rig.frame.ST_Current_Profile, "Default.vdp");
    EXPECT_EQ(rig.frame.ST_Last_Saved_Profile, "Default.vdp");
    EXPECT_EQ(rig.frame.ST_Current_Profile_Path, StartUpRig::pathOf("Default.vdp"));
    EXPECT_EQ(rig.frame.ST_Primary_Profile, "Default.vdp");
    EXPECT_EQ(rig.frame.ST_Recent_Profile, "Default.vdp");
    EXPECT_TRUE(rig.frame.BL_Edit_Mode);
    EXPECT_FALSE(rig.frame.BL_New_Mode);
    EXPECT_FALSE(rig.frame.BL_Open_Mode);
    EXPECT_TRUE(rig.frame.BL_First_Run);
    EXPECT_FALSE(rig.frame.BL_New_Changed);
    EXPECT_FALSE(rig.frame.BL_Edit_Changed);
    EXPECT_EQ(rig.record.chkPrimary.value, 1);
    EXPECT_EQ(rig.formWindow.caption, "Default Profile");
    EXPECT_EQ(rig.frame.panel1.text, kDefaultText);
    EXPECT_TRUE(rig.store.opened.clxnOpenedSources.contains("D:\\Documents\\*"));
}

TEST(StartUp, ShowsTheRecentProfile)
{
    StartUpRig rig;
    rig.installed();
    rig.putProfile("My.Work.vdp", "D:\\Work\\\r\n");
    rig.putProfile("Other.vdp", "D:\\Documents\\\r\n");
    rig.primary("Other.vdp");
    rig.recent("My.Work.vdp");
    const std::string list = rig.list();
    rig.start();
    EXPECT_THAT(rig.errorsShown(), IsEmpty());
    EXPECT_EQ(rig.list(), list);
    EXPECT_EQ(rig.frame.ST_Current_Profile, "My.Work.vdp");
    EXPECT_EQ(rig.frame.ST_Current_Profile_Path, StartUpRig::pathOf("My.Work.vdp"));
    EXPECT_EQ(rig.frame.ST_Last_Saved_Profile, "My.Work.vdp");
    EXPECT_EQ(rig.frame.ST_Primary_Profile, "Other.vdp");
    EXPECT_TRUE(rig.frame.BL_Recent_Found);
    EXPECT_TRUE(rig.frame.BL_Primary_Found);
    EXPECT_TRUE(rig.frame.BL_Edit_Mode);
    EXPECT_FALSE(rig.frame.BL_New_Mode);
    EXPECT_FALSE(rig.frame.BL_Open_Mode);
    EXPECT_FALSE(rig.frame.BL_First_Run);
    EXPECT_FALSE(rig.frame.BL_New_Changed);
    EXPECT_FALSE(rig.frame.BL_Edit_Changed);
    EXPECT_EQ(rig.record.chkPrimary.value, 0);
    EXPECT_EQ(rig.formWindow.caption, "My.Work Profile");
    EXPECT_EQ(rig.frame.panel1.text, "Displaying My.Work Profile...");
    EXPECT_TRUE(rig.store.opened.clxnOpenedSources.contains("D:\\Work\\*"));
    EXPECT_FALSE(rig.disk.fileExists(StartUpRig::pathOf("Default.vdp")));
}

TEST(StartUp, ShowsTheDefaultProfileWhereThereIsNoRecentOne)
{
    for (const bool exists : {false, true}) {
        SCOPED_TRACE(exists ? "it is there" : "it is made");
        StartUpRig rig;
        rig.installed();
        if (exists)
            rig.putProfile("Default.vdp", "D:\\Work\\\r\n");
        rig.start();
        EXPECT_THAT(rig.errorsShown(), IsEmpty());
        EXPECT_EQ(rig.frame.ST_Current_Profile, "Default.vdp");
        EXPECT_EQ(rig.frame.ST_Current_Profile_Path, StartUpRig::pathOf("Default.vdp"));
        EXPECT_TRUE(rig.frame.BL_Edit_Mode);
        EXPECT_FALSE(rig.frame.BL_New_Mode);
        EXPECT_TRUE(rig.frame.BL_First_Run);
        EXPECT_FALSE(rig.frame.BL_Recent_Found);
        EXPECT_FALSE(rig.frame.BL_New_Changed);
        EXPECT_FALSE(rig.frame.BL_Edit_Changed);
        EXPECT_EQ(rig.record.chkPrimary.value, 1);
        EXPECT_EQ(rig.formWindow.caption, "Default Profile");
        EXPECT_TRUE(rig.store.opened.clxnOpenedSources.contains(exists ? "D:\\Work\\*"
                                                                       : "D:\\Documents\\*"));
        EXPECT_EQ(rig.list(),
                  "[Primary Profile]\r\nDefault.vdp\r\n[Recent Profile]\r\nDefault.vdp\r\n");
    }
}

TEST(StartUp, PutsTheFirstStartsProfileBehindTheOneOfTheCommandLine)
{
    StartUpRig rig;
    rig.putProfile("Work.vdp", "D:\\Work\\\r\n");
    rig.facts.longNames["E:\\Work.vdp"] = "E:\\Work.vdp";
    rig.start("E:\\Work.vdp");
    EXPECT_EQ(rig.frame.ST_Current_Profile, "Default.vdp");
    EXPECT_EQ(rig.frame.ST_Recent_Profile, "Default.vdp");
    // The next start shows the first of the two recent pairs.
    EXPECT_EQ(rig.list(), "[Recent Profile]\r\nWork.vdp\r\n[Primary Profile]\r\nDefault.vdp\r\n"
                          "[Recent Profile]\r\nDefault.vdp\r\n");
}

TEST(StartUp, OpensTheProfileOfTheCommandLineFromTheApplicationsFolder)
{
    StartUpRig rig;
    rig.installed();
    rig.putProfile("Work.vdp", "D:\\Work\\\r\n");
    rig.facts.longNames["E:\\Work.vdp"] = "E:\\Work.vdp";
    rig.putFile("E:\\Work.vdp", "another one of the same name");
    rig.fileNumbers.fileNumber1 = rig.fileSystem().open("E:\\Work.vdp", platform::OpenMode::Read);
    rig.start("E:\\Work.vdp");
    EXPECT_THAT(rig.errorsShown(), IsEmpty());
    EXPECT_EQ(rig.frame.ST_Current_Profile, "Work.vdp");
    EXPECT_TRUE(rig.store.opened.clxnOpenedSources.contains("D:\\Work\\*"));
    EXPECT_EQ(rig.fileNumbers.fileNumber1, nullptr) << "the document is let go";
}

TEST(StartUp, ForgetsARecentProfileThatIsGone)
{
    StartUpRig rig;
    rig.installed();
    rig.putProfile("Default.vdp", "D:\\Work\\\r\n");
    rig.primary("Default.vdp");
    rig.recent("Gone.vdp");
    rig.start();
    EXPECT_EQ(rig.frame.ST_Current_Profile, "Default.vdp");
    EXPECT_EQ(rig.list(),
              "[Primary Profile]\r\nDefault.vdp\r\n[Recent Profile]\r\nDefault.vdp\r\n");
}

// A primary entry without its file cuts the list behind it, and the recent pair with it.
TEST(StartUp, LosesTheRecentEntryBehindADanglingPrimaryOne)
{
    StartUpRig rig;
    rig.installed();
    rig.putProfile("Work.vdp", "D:\\Work\\\r\n");
    rig.primary("Gone.vdp");
    rig.recent("Work.vdp");
    rig.start();
    EXPECT_EQ(rig.frame.ST_Current_Profile, "Default.vdp");
    EXPECT_EQ(rig.list(),
              "[Primary Profile]\r\nDefault.vdp\r\n[Recent Profile]\r\nDefault.vdp\r\n");
}

TEST(StartUp, MakesTheDefaultProfilePrimaryWhereNoneIs)
{
    StartUpRig rig;
    rig.installed();
    rig.putProfile("Default.vdp", "D:\\Work\\\r\n");
    rig.start();
    EXPECT_EQ(rig.record.chkPrimary.value, 1);
    EXPECT_EQ(rig.frame.ST_Primary_Profile, "Default.vdp");
    EXPECT_EQ(rig.list(),
              "[Primary Profile]\r\nDefault.vdp\r\n[Recent Profile]\r\nDefault.vdp\r\n");
}

// Where an exclusion of the default profile ends the first run, the entries alone decide.
TEST(StartUp, ChecksPrimaryByTheEntriesBehindAnExclusion)
{
    const struct {
        const char* primary; // empty: no entry
        bool excludes;
        int checked;
        bool firstRun;
        const char* primaryAfter;
    } rows[] = {
        {"", true, 1, false, "Default.vdp"},
        {"Default.vdp", true, 1, false, "Default.vdp"},
        {"Other.vdp", true, 0, false, "Other.vdp"},
        {"Other.vdp", false, 1, true, "Other.vdp"}, // the first run checks it, whatever is primary
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.primary) + (row.excludes ? " excluding" : ""));
        StartUpRig rig;
        rig.installed();
        rig.putProfile("Other.vdp", "D:\\Work\\\r\n");
        rig.putProfile("Default.vdp", "D:\\Work\\\r\n", row.excludes ? ".txt\r\n" : "");
        if (*row.primary != '\0')
            rig.primary(row.primary);
        rig.start();
        EXPECT_THAT(rig.errorsShown(), IsEmpty());
        EXPECT_EQ(rig.record.chkPrimary.value, row.checked);
        EXPECT_EQ(rig.frame.BL_First_Run, row.firstRun);
        EXPECT_EQ(rig.frame.ST_Primary_Profile, row.primaryAfter);
        EXPECT_EQ(rig.list(), "[Primary Profile]\r\n" + std::string(row.primaryAfter) +
                                  "\r\n[Recent Profile]\r\nDefault.vdp\r\n");
    }
}

TEST(StartUp, KeepsAnEditedDefaultProfileOnTheSecondStart)
{
    StartUpRig first;
    first.start();
    StartUpRig second;
    second.installed();
    second.putProfile("Default.vdp", "D:\\Work\\\r\n");
    second.primary("Default.vdp");
    second.recent("Default.vdp");
    const std::string edited = second.disk.readAll(StartUpRig::pathOf("Default.vdp"));
    second.start();
    EXPECT_EQ(second.disk.readAll(StartUpRig::pathOf("Default.vdp")), edited);
    EXPECT_EQ(second.record.chkPrimary.value, 1) << "by the entry";
    EXPECT_FALSE(second.frame.BL_First_Run);
}

// ---- the frame

TEST(MDIForm_Load, OpensTheCommandsOfAProfileInChange)
{
    StartUpRig rig;
    rig.mainForm.Toolbar1(8).enabled = rig.mainForm.Toolbar1(9).enabled = false;
    rig.mainForm.mnuBackup.enabled = rig.mainForm.mnure.enabled = false;
    rig.mainForm.Picture2Visible = true;
    rig.start();
    EXPECT_FALSE(rig.mainForm.Toolbar1(3).enabled);
    EXPECT_FALSE(rig.mainForm.mnuEdit.enabled);
    for (const std::size_t button : {4U, 5U, 8U, 9U})
        EXPECT_TRUE(rig.mainForm.Toolbar1(button).enabled) << button;
    EXPECT_TRUE(rig.mainForm.mnuBackup.enabled);
    EXPECT_TRUE(rig.mainForm.mnure.enabled);
    EXPECT_TRUE(rig.mainForm.maximizeBox);
    EXPECT_FALSE(rig.mainForm.hourglass);
    EXPECT_FALSE(rig.mainForm.Picture2Visible);
    EXPECT_FALSE(rig.mainForm.commandRunning);
    EXPECT_TRUE(rig.formWindow.loaded);
    EXPECT_TRUE(rig.formWindow.visible);
    EXPECT_TRUE(rig.frame.BL_Is_NT);
    EXPECT_EQ(rig.frame.ST_App_Path, "C:\\App");
}

TEST(MDIForm_Load, TakesTodayForAProfileWithoutASchedule)
{
    StartUpRig rig;
    rig.installed();
    rig.putProfile("Work.vdp", "D:\\Work\\\r\n");
    rig.recent("Work.vdp");
    rig.start();
    EXPECT_EQ(rig.store.scalars.dStartDate, (base::Date{2026, 3, 10}));
}

TEST(MDIForm_Load, TakesItsStepsInTheirOrder)
{
    StartUpRig rig;
    struct Seen {
        bool hourglass, maximizeBox, editorVisible, newMode;
        std::string caption;
    } seen{};
    rig.messageLoop.onYield = [&] {
        // Filling lists yields, too, before the activation and behind the default profile.
        if (!rig.disk.fileExists("C:\\App\\ServiceActive.reg") ||
            rig.disk.fileExists(StartUpRig::pathOf("Default.vdp")))
            return;
        rig.windows.calls.emplace_back("yield");
        seen = {rig.mainForm.hourglass, rig.mainForm.maximizeBox, rig.formWindow.visible,
                rig.frame.BL_New_Mode, rig.formWindow.caption};
        EXPECT_TRUE(rig.mainForm.commandRunning) << "a click must not meet half a frame";
        mnuNew_Click(rig.commands);
        EXPECT_EQ(rig.formWindow.caption, "Default Profile");
    };
    rig.start();
    EXPECT_THAT(rig.windows.calls,
                ElementsAre("showSplash", "frameSize", "showEditor", "showMainFrame",
                            "ActivateForIcon", "placeProgressBar", "yield", "showEditor",
                            "showMainFrame", "unloadSplash"));
    EXPECT_TRUE(seen.hourglass);
    EXPECT_FALSE(seen.maximizeBox);
    EXPECT_TRUE(seen.editorVisible);
    EXPECT_TRUE(seen.newMode);
    EXPECT_EQ(seen.caption, "Default Profile");

    std::vector<std::string> order;
    const std::vector<std::string> marks{"Application",         "MDIForm_Load",  "frm_profile_load",
                                         "DynRegFileCr",        "DefaultProf",   "PrFileDecrypt",
                                         "ActivateOpenProfile", "EditProfileChk"};
    for (const std::string& name : rig.procedures()) {
        if (std::find(marks.begin(), marks.end(), name) != marks.end())
            order.push_back(name);
    }
    EXPECT_EQ(order, marks);
    const std::vector<std::string> entries = rig.entries();
    EXPECT_EQ(entries.front(), "Application Start 1");
    EXPECT_EQ(entries.back(), "MDIForm_Load End 1");
}

TEST(MDIForm_Load, AsksForThePrimaryProfileBeforeTheRecentOne)
{
    StartUpRig rig;
    rig.installed();
    rig.putProfile("Work.vdp", "D:\\Work\\\r\n");
    rig.recent("Work.vdp");
    rig.start();
    std::vector<std::string> order;
    for (const std::string& name : rig.procedures()) {
        if (name == "IsPrProFileExists" || name == "IsRecentProfile" || name == "PrFileDecrypt")
            order.push_back(name);
    }
    EXPECT_THAT(order, ElementsAre("IsPrProFileExists", "IsRecentProfile", "PrFileDecrypt"));
}

TEST(MDIForm_Load, StartsTheMonitorsOnceOnly)
{
    StartUpRig first;
    first.start();
    EXPECT_EQ(first.processes.started.size(), 3U);
    EXPECT_EQ(first.services.serviceInstaller, "C:\\App\\instsrv.exe");

    StartUpRig later;
    later.installed();
    later.start();
    EXPECT_THAT(later.processes.started, IsEmpty());
    EXPECT_EQ(later.disk.readAll("C:\\App\\ServiceActive.reg"), "REGEDIT4\r\n");
}

TEST(MDIForm_Load, NeedsNoFileTypes)
{
    StartUpRig rig;
    rig.starting.fileTypes = nullptr;
    rig.start();
    EXPECT_THAT(rig.errorsShown(), IsEmpty());
    EXPECT_TRUE(rig.frame.BL_Edit_Mode);
}

TEST(MDIForm_Load, CollapsesTheTree)
{
    StartUpRig rig;
    rig.installed();
    rig.putProfile("Work.vdp", "D:\\Work\\plan.txt\r\n");
    rig.recent("Work.vdp");
    rig.start();
    ASSERT_GT(rig.tree.count(), 0U);
    for (std::size_t i = 1; i <= rig.tree.count(); ++i)
        EXPECT_FALSE(rig.tree.node(i).expanded) << rig.tree.node(i).text;
}

TEST(MDIForm_Resize, KeepsTheSizeThatTheFrameHadWhenItLoaded)
{
    StartUpRig rig;
    rig.startUpWindow.size = {1000, 600};
    rig.start();
    EXPECT_EQ(rig.mainForm.sizeAtLoad, (state::FrameSize{1000, 600}));
    EXPECT_EQ(MDIForm_Resize(rig.mainForm, false, {400, 300}), (state::FrameSize{1000, 600}));
    EXPECT_EQ(MDIForm_Resize(rig.mainForm, true, {160, 28}), (state::FrameSize{160, 28}));
}

// ---- failures

TEST(MDIForm_Load, StopsWhereAMonitorCannotBeStarted)
{
    StartUpRig rig;
    rig.processes.missing.insert("C:\\App\\VDIdleMon.exe");
    rig.start();
    EXPECT_THAT(rig.errorsShown(), ElementsAre("MDIForm_Load: MDIForm_Load"));
    EXPECT_EQ(rig.errors.LG_Err_Number, base::error_number::kFileNotFound);
    EXPECT_TRUE(rig.mainForm.hourglass);
    EXPECT_FALSE(rig.mainForm.maximizeBox);
    EXPECT_TRUE(rig.frame.BL_New_Mode);
    EXPECT_FALSE(rig.frame.BL_Edit_Mode);
    EXPECT_FALSE(rig.disk.fileExists("C:\\App\\ServiceActive.reg"));
    EXPECT_FALSE(rig.mainForm.commandRunning);
    EXPECT_TRUE(rig.windows.called("unloadSplash")) << "the frame stays as far as it came";
    EXPECT_EQ(rig.entries().back(), "DisplayErrMSgDialog End 2");
}

TEST(MDIForm_Load, EndsTheProgramWhereThePersonSaysSo)
{
    StartUpRig rig;
    rig.processes.missing.insert("C:\\App\\VDFileMon.exe");
    rig.dialog.answers = {trace::ErrorAnswer::Exit};
    Main(rig.starting, "");
    EXPECT_THROW(Timer1_Timer(rig.starting), trace::ExitRequested);
    EXPECT_FALSE(rig.mainForm.commandRunning);
}

TEST(MDIForm_Load, StopsWhereTheListCannotBeWritten)
{
    StartUpRig rig;
    rig.disk.removeTree("C:\\App\\Data");
    rig.start();
    EXPECT_THAT(rig.errorsShown(), ElementsAre("MDIForm_Load: MDIForm_Load"));
    EXPECT_EQ(rig.errors.LG_Err_Number, base::error_number::kPathNotFound);
    EXPECT_TRUE(rig.formWindow.visible);
    EXPECT_FALSE(rig.frame.BL_Edit_Mode);
}

// What cannot be read whole must not be put up for a save: the lines that were not read would be
// lost with it.
TEST(MDIForm_Load, PutsUpANewProfileWhereTheOneToShowCannotBeRead)
{
    const struct {
        const char* what;
        std::function<void(StartUpRig&)> damage;
    } rows[] = {
        {"it cannot be opened",
         [](StartUpRig& rig) { rig.disk.setUnreadable(StartUpRig::pathOf("Work.vdp")); }},
        {"its plain copy cannot be written",
         [](StartUpRig& rig) { rig.disk.setReadOnly("C:\\App\\Profiles"); }},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        StartUpRig rig;
        rig.installed();
        rig.putProfile("Work.vdp", "D:\\Work\\\r\nD:\\Documents\\\r\n");
        rig.recent("Work.vdp");
        row.damage(rig);
        rig.start();
        EXPECT_EQ(rig.dialog.shown.size(), 1U);
        EXPECT_TRUE(rig.frame.BL_New_Mode);
        EXPECT_FALSE(rig.frame.BL_Edit_Mode);
        EXPECT_FALSE(rig.frame.BL_Open_Mode);
        EXPECT_FALSE(rig.frame.BL_First_Run);
        EXPECT_FALSE(rig.frame.bDecryptFileMissing);
        EXPECT_EQ(rig.frame.ST_Current_Profile, "");
        EXPECT_EQ(rig.frame.ST_Current_Profile_Path, "");
        EXPECT_EQ(rig.formWindow.caption, "New Profile");
        EXPECT_TRUE(rig.formWindow.visible);
        EXPECT_FALSE(rig.mainForm.hourglass);
        EXPECT_TRUE(rig.disk.fileExists(StartUpRig::pathOf("Work.vdp")));
        EXPECT_EQ(rig.list(), "[Recent Profile]\r\nWork.vdp\r\n");
    }
}

// Any bytes unscramble to something: as a profile without a source they would be saved over what
// was there, an unscrambled profile among them.
TEST(MDIForm_Load, PutsUpANewProfileWhereTheOneToShowIsNone)
{
    const std::string cut = profile::scrambleText("[Work.vdp]\r\n{Source files}\r\nD:\\Wo");
    const std::string unscrambled =
        "[Work.vdp]\r\n{Source files}\r\nD:\\Work\\\r\n{End Of Source files}\r\n";
    for (const std::string& text : {std::string(), std::string("garbage"), cut, unscrambled}) {
        StartUpRig rig;
        rig.installed();
        rig.putProfile("Work.vdp", "D:\\Work\\\r\n");
        rig.putFile(StartUpRig::pathOf("Work.vdp"), text);
        rig.recent("Work.vdp");
        rig.start();
        EXPECT_THAT(rig.messageBoxes.texts(),
                    ElementsAre("Selected file, Work.vdp is not a valid Vardelin profile"));
        EXPECT_TRUE(rig.frame.BL_New_Mode);
        EXPECT_EQ(rig.frame.ST_Current_Profile, "");
        EXPECT_EQ(rig.disk.readAll(StartUpRig::pathOf("Work.vdp")), text);
    }
}

// Whatever fails on the way, the profile on the disk stays as it is, and it is put up for change
// either whole or not at all.
TEST(MDIForm_Load, KeepsTheProfileWhicheverCallOfTheDiskFails)
{
    const auto prepare = [](StartUpRig& rig) {
        rig.installed();
        rig.putProfile("Work.vdp", "D:\\Work\\\r\nD:\\Documents\\\r\n");
        rig.recent("Work.vdp");
        rig.disk.script().reset();
    };
    std::vector<std::size_t> calls;
    {
        StartUpRig rig;
        prepare(rig);
        rig.start();
        ASSERT_TRUE(rig.frame.BL_Edit_Mode);
        // Those of the trace, which is written between any two others, have tests of their own.
        const auto all = rig.disk.script().calls();
        for (std::size_t i = 0; i < all.size(); ++i) {
            if (all[i].subject.find("_Log_File") == std::string::npos &&
                all[i].subject != "C:\\App\\")
                calls.push_back(i + 1);
        }
    }
    ASSERT_GT(calls.size(), 30U);
    std::size_t whole = 0;
    std::size_t told = 0;
    for (const std::size_t call : calls) {
        SCOPED_TRACE(call);
        StartUpRig rig;
        prepare(rig);
        const std::string before = rig.disk.readAll(StartUpRig::pathOf("Work.vdp"));
        rig.disk.script().reset();
        rig.disk.script().failCall(call, base::error_number::kDeviceIo);
        rig.start();
        rig.disk.script().reset();
        EXPECT_EQ(rig.disk.readAll(StartUpRig::pathOf("Work.vdp")), before);
        EXPECT_FALSE(rig.mainForm.commandRunning);
        if (rig.frame.BL_Edit_Mode && rig.frame.ST_Current_Profile == "Work.vdp") {
            ++whole;
            EXPECT_TRUE(rig.store.opened.clxnOpenedSources.contains("D:\\Work\\*"));
            EXPECT_TRUE(rig.store.opened.clxnOpenedSources.contains("D:\\Documents\\*"));
        } else if (rig.frame.ST_Current_Profile == "Default.vdp") {
            // A file that cannot be looked at counts as gone, and its entry goes.
            EXPECT_TRUE(rig.store.opened.clxnOpenedSources.contains("D:\\Documents\\*"));
        } else {
            ++told;
            EXPECT_FALSE(rig.dialog.shown.empty()) << "not a word";
        }
    }
    EXPECT_GT(whole, 0U);
    EXPECT_GT(told, 0U);
}

} // namespace
} // namespace vardelin::frame
