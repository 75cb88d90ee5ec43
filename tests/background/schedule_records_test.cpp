#include "background/schedule_records.h"
#include "support/profile_rig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace vardelin::background {
namespace {

using platform::RegistryRoot;
using platform::RegistryType;
using platform::RegistryValue;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr auto kMachine = RegistryRoot::LocalMachine;
const std::string kVersion = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\";
const std::string kHead = "[HKEY_LOCAL_MACHINE\\SOFTWARE\\MICROSOFT\\WINDOWS\\CurrentVersion\\";

// The records on a machine in memory. The text of a `.reg` file is caught in the registry's first
// call of the import, while it is on the disk.
struct ScheduleRig : test::ProfileRig {
    platform::MemoryFileSystem traceDisk;
    vardelin::trace::RunTrace ownTrace{traceDisk, clock, messageBoxes, "C:\\App", "Vardelin"};
    vardelin::trace::TraceContext ownContext{ownTrace, errors, dialog};
    platform::Machine own{disk,      drives, registry,    shell,       facts,
                          processes, clock,  messageLoop, messageBoxes};
    RegistryScheduleRecords records{{own, ownContext, frame, editor, store.save}};
    std::string regPath = "C:\\App\\Work_Sched.reg";
    std::string regText;

    ScheduleRig()
    {
        traceDisk.createFolder("C:\\App");
        disk.script().reset();
        registry.script().onCallsNamed("registry.transaction", [this](const auto&) {
            if (disk.fileExists(regPath))
                regText = disk.readAll(regPath);
        });
    }

    void schedule(const std::string& pattern,
                  std::initializer_list<std::pair<std::string_view, std::string_view>> more = {})
    {
        editor.chkAutoSched.value = 1;
        auto& values = store.save.clxnSchedule;
        values.clear();
        values.add("3/7/2003", "StDate");
        values.add("9:30:00 PM", "StTime");
        values.add(pattern, "RecOpt");
        values.add("2", "Recur");
        values.add("10:00:00 PM", "SetTime");
        for (const auto& [key, value] : more)
            values.add(std::string(value), key);
    }
    void idle(const std::string& minutes)
    {
        editor.chkIdle.value = minutes.empty() ? 0 : 1;
        editor.txtIdleTime.text = minutes;
    }
    std::vector<std::string> idleNames(const std::string& minutes)
    {
        std::vector<std::string> names;
        const std::string key = kVersion + "VdIdle\\" + minutes;
        for (const RegistryValue& value : registry.values(kMachine, key))
            names.push_back(value.name);
        return names;
    }
    std::vector<std::string> ownEntries()
    {
        return test::traceEntries(traceDisk.readAll(ownTrace.logFileName()));
    }
    std::string scheduleOf(const std::string& base, const std::string& value)
    {
        return registry.stringValue(kMachine, kVersion + "Vdschld\\" + base, value)
            .value_or("absent");
    }
};

const std::string kDaily = "REGEDIT4\r\n"
                           "\r\n" +
                           kHead +
                           "Vdschld\\Work]\r\n"
                           "\"ReadyToProcess\"=\"F\"\r\n"
                           "\"StartAtDate\"=\"3/7/2003\"\r\n"
                           "\"StartAtTime\"=\"9:30:00 PM\"\r\n"
                           "\"RecPattern\"=\"1\"\r\n"
                           "\"RecCycle\"=\"2\"\r\n"
                           "\"SetTime\"=\"10:00:00 PM\"\r\n"
                           "\"NextRun\"=\"\"\r\n";

// The text of another pattern: the same up to the number, its own lines behind `NextRun`.
std::string patternText(const std::string& number, const std::string& lines)
{
    return base::replaceAll(kDaily, "\"RecPattern\"=\"1\"", "\"RecPattern\"=\"" + number + "\"") +
           lines + "\r\n\r\n";
}

TEST(WriteSchedReg, WritesTheseBytesForEachPattern)
{
    const struct {
        const char* pattern;
        std::string text;
    } rows[] = {
        {"1", patternText("1", "")},
        {"2", patternText("2", "\"NextRunWDays\"=\"SxxSxxx\"\r\n")},
        {"3", patternText("3", "\"NextRunMDates\"=\"1,15,31\"\r\n")},
        {"4", patternText("4", "\"NextRunYMths\"=\"March,June\"\r\n"
                               "\"NextRunYDates\"=\"1,2\"\r\n")},
    };
    for (const auto& row : rows) {
        ScheduleRig rig;
        // Lists of every pattern are at hand; each pattern takes its own.
        rig.schedule(row.pattern, {{"NextRunWDays", "SxxSxxx"},
                                   {"NextRunMDates", "1,15,31"},
                                   {"NextRunYMths", "March,June"},
                                   {"NextRunYDates", "1,2"}});
        rig.records.WriteSchedReg("Work.vdp");
        EXPECT_EQ(rig.regText, row.text) << row.pattern;
        EXPECT_EQ(rig.scheduleOf("Work", "RecPattern"), row.pattern);
        EXPECT_FALSE(rig.disk.fileExists(rig.regPath));
        EXPECT_THAT(rig.dialog.shown, IsEmpty());
    }
}

TEST(WriteSchedReg, WritesTheIdleTimeAlone)
{
    ScheduleRig rig;
    rig.idle("15");
    rig.records.WriteSchedReg("Work.vdp");
    EXPECT_EQ(rig.regText, "REGEDIT4\r\n\r\n" + kHead + "VdIdle\\15]\r\n\"Work\"=\"\"\r\n");
    EXPECT_THAT(rig.registry.values(kMachine, kVersion + "VdIdle\\15"),
                ElementsAre(RegistryValue{"Work", RegistryType::String, ""}));
    EXPECT_FALSE(rig.registry.keyExists(kMachine, kVersion + "Vdschld"));
}

TEST(WriteSchedReg, WritesScheduleAndIdleTime)
{
    ScheduleRig rig;
    rig.schedule("1");
    rig.idle("20");
    rig.records.WriteSchedReg("Work.vdp");
    EXPECT_EQ(rig.regText, kDaily + "\r\n\r\n" + kHead + "VdIdle\\20]\r\n\"Work\"=\"\"\r\n");
    EXPECT_THAT(rig.registry.values(kMachine, kVersion + "Vdschld\\Work"),
                ElementsAre(RegistryValue{"ReadyToProcess", RegistryType::String, "F"},
                            RegistryValue{"StartAtDate", RegistryType::String, "3/7/2003"},
                            RegistryValue{"StartAtTime", RegistryType::String, "9:30:00 PM"},
                            RegistryValue{"RecPattern", RegistryType::String, "1"},
                            RegistryValue{"RecCycle", RegistryType::String, "2"},
                            RegistryValue{"SetTime", RegistryType::String, "10:00:00 PM"},
                            RegistryValue{"NextRun", RegistryType::String, ""}));
    EXPECT_THAT(rig.idleNames("20"), ElementsAre("Work"));
}

TEST(WriteSchedReg, ImportsAndDeletesAHeaderWhereThereIsNeither)
{
    ScheduleRig rig;
    rig.records.WriteSchedReg("Work.vdp");
    EXPECT_EQ(rig.regText, "REGEDIT4\r\n\r\n");
    EXPECT_EQ(rig.registry.script().countOf("registry.transaction"), 1U);
    EXPECT_FALSE(rig.disk.fileExists(rig.regPath));
    EXPECT_THAT(rig.registry.subKeys(kMachine, ""), IsEmpty());
    EXPECT_THAT(rig.dialog.shown, IsEmpty());
}

TEST(WriteSchedReg, LeavesOutWhatTheSaveDidNotGather)
{
    ScheduleRig rig;
    rig.editor.chkAutoSched.value = 1;
    rig.store.save.clxnSchedule.add("3/7/2003", "StDate");
    rig.records.WriteSchedReg("Work.vdp");
    EXPECT_EQ(rig.regText, "REGEDIT4\r\n\r\n" + kHead +
                               "Vdschld\\Work]\r\n\"ReadyToProcess\"=\"F\"\r\n"
                               "\"StartAtDate\"=\"3/7/2003\"\r\n\"NextRun\"=\"\"\r\n\r\n\r\n");
}

TEST(WriteSchedReg, NamesItsRecordsByTheTextBeforeTheFirstDot)
{
    ScheduleRig rig;
    rig.regPath = "C:\\App\\my_Sched.reg";
    rig.schedule("1");
    rig.idle("15");
    rig.records.WriteSchedReg("my.backup.vdp");
    EXPECT_THAT(rig.regText, testing::HasSubstr("Vdschld\\my]"));
    EXPECT_THAT(rig.idleNames("15"), ElementsAre("my"));
    // The key is looked for under another name and stays, as it always has.
    EXPECT_TRUE(rig.records.DeleteSchedKey("my.backup.vdp"));
    EXPECT_EQ(rig.scheduleOf("my", "RecPattern"), "1");
}

TEST(WriteSchedReg, StartsAScheduleAfreshAtEachSave)
{
    ScheduleRig rig;
    rig.schedule("1");
    rig.records.WriteSchedReg("Work.vdp");
    // What a monitor makes of it meanwhile.
    rig.registry.setString(kMachine, kVersion + "Vdschld\\Work", "NextRun", "4/7/2003");
    rig.registry.setString(kMachine, kVersion + "Vdschld\\Work", "ReadyToProcess", "T");
    rig.schedule("1");
    rig.store.save.clxnSchedule.remove("SetTime");
    rig.store.save.clxnSchedule.add("11:00:00 PM", "SetTime");
    rig.records.WriteSchedReg("Work.vdp");
    EXPECT_EQ(rig.scheduleOf("Work", "NextRun"), "");
    EXPECT_EQ(rig.scheduleOf("Work", "ReadyToProcess"), "F");
    EXPECT_EQ(rig.scheduleOf("Work", "SetTime"), "11:00:00 PM");
    EXPECT_EQ(rig.scheduleOf("Work", "StartAtDate"), "3/7/2003");
}

TEST(WriteSchedReg, WritesValuesAsTheyStand)
{
    ScheduleRig rig;
    rig.schedule("2", {{"NextRunWDays", "a\\b\"c\\"}});
    rig.records.WriteSchedReg("Work.vdp");
    EXPECT_THAT(rig.regText, testing::HasSubstr("\"NextRunWDays\"=\"a\\b\"c\\\"\r\n"));
    EXPECT_EQ(rig.scheduleOf("Work", "NextRunWDays"), "a\\b\"c\\");
}

TEST(WriteSchedReg, TakesTheIdleTimeAsItStands)
{
    ScheduleRig rig;
    rig.idle("15");
    rig.records.WriteSchedReg("Work.vdp");
    rig.idle("15 ");
    rig.records.WriteSchedReg("Home.vdp");
    // The monitors see two times; nothing here makes them one.
    EXPECT_THAT(rig.registry.subKeys(kMachine, kVersion + "VdIdle"), ElementsAre("15", "15 "));
    EXPECT_THAT(rig.idleNames("15"), ElementsAre("Work"));
    EXPECT_THAT(rig.idleNames("15 "), ElementsAre("Home"));
}

TEST(WriteSchedReg, LetsTwoProfilesShareAnIdleTime)
{
    ScheduleRig rig;
    rig.idle("15");
    rig.records.WriteSchedReg("Work.vdp");
    rig.records.WriteSchedReg("Home.vdp");
    EXPECT_THAT(rig.idleNames("15"), ElementsAre("Work", "Home"));
}

TEST(WriteSchedReg, DropsTheFormerIdleTimeByTheseRules)
{
    const struct {
        const char* why;
        const char* oldTime;
        const char* newTime; // empty: switched off
        bool editMode;
        bool changed;
        std::vector<std::string> at15;
        const char* oldTimeAfter;
    } rows[] = {
        {"the time was changed", "15", "20", true, true, {"Home"}, ""},
        {"the same time, switched off and on again",
         "15",
         "15",
         true,
         true,
         {"Work", "Home"},
         "15"},
        {"a blank makes another time", "15", "15 ", true, true, {"Home"}, ""},
        {"not in edit mode", "15", "20", false, true, {"Work", "Home"}, "15"},
        {"nothing counts as changed", "15", "20", true, false, {"Work", "Home"}, "15"},
        {"the time was not touched in this edit", "", "20", true, true, {"Work", "Home"}, ""},
        {"switched off, whatever the mode", "15", "", false, false, {"Home"}, ""},
        {"switched off, but not in this edit", "", "", true, true, {"Work", "Home"}, ""},
    };
    for (const auto& row : rows) {
        ScheduleRig rig;
        rig.idle("15");
        rig.records.WriteSchedReg("Work.vdp");
        rig.records.WriteSchedReg("Home.vdp");
        rig.frame.BL_Edit_Mode = row.editMode;
        rig.frame.BL_Edit_Changed = row.changed;
        rig.frame.sOldIdleTime = row.oldTime;
        rig.idle(row.newTime);
        rig.records.WriteSchedReg("Work.vdp");
        EXPECT_EQ(rig.idleNames("15"), row.at15) << row.why;
        EXPECT_EQ(rig.frame.sOldIdleTime, row.oldTimeAfter) << row.why;
        if (*row.newTime != '\0') {
            EXPECT_THAT(rig.idleNames(row.newTime), testing::Contains("Work")) << row.why;
        }
    }
}

TEST(WriteSchedReg, DropsTheFormerIdleTimeBeforeItImports)
{
    ScheduleRig rig;
    rig.frame.sOldIdleTime = "15";
    rig.records.WriteSchedReg("Work.vdp");
    std::vector<std::string> names;
    for (const auto& call : rig.registry.script().calls())
        names.push_back(call.name + " " + call.subject);
    EXPECT_THAT(names, ElementsAre("registry.deleteValue " + kVersion + "VDIdle\\15\\",
                                   "registry.transaction "));
}

TEST(WriteSchedReg, ShowsNothingWhereTheFormerIdleTimeCannotBeDropped)
{
    ScheduleRig rig;
    rig.frame.sOldIdleTime = "15";
    rig.registry.script().failCallsNamed("registry.deleteValue",
                                         base::error_number::kPermissionDenied);
    rig.records.WriteSchedReg("Work.vdp");
    EXPECT_THAT(rig.dialog.shown, IsEmpty());
    EXPECT_EQ(rig.frame.sOldIdleTime, "");
    EXPECT_FALSE(rig.disk.fileExists(rig.regPath));
}

TEST(WriteSchedReg, TracesUnderAnotherName)
{
    ScheduleRig rig;
    rig.records.WriteSchedReg("Work.vdp");
    EXPECT_THAT(rig.ownEntries(), ElementsAre("sPrName End 2"));
}

// Every call of a port fails in turn. The outcome is one of three, and the registry holds all of
// the text or nothing of it.
TEST(WriteSchedReg, EndsInOneOfTwoMessagesWhateverFails)
{
    const std::string importMessage = "When importing the Schedule options to the system local "
                                      "registry, Error has identified";
    const std::string deleteMessage = "When deleting the Registry file, Error has identified";
    int imports = 0;
    int deletes = 0;
    for (const bool failDisk : {true, false}) {
        for (std::size_t number = 1;; ++number) {
            ScheduleRig rig;
            rig.schedule("1");
            rig.idle("20");
            rig.registry.script().reset();
            platform::CallScript& script = failDisk ? rig.disk.script() : rig.registry.script();
            script.failCall(number, base::error_number::kPermissionDenied);
            rig.records.WriteSchedReg("Work.vdp");
            const bool reached = script.callCount() >= number;
            script.reset();
            if (!reached) {
                EXPECT_THAT(rig.dialog.shown, IsEmpty());
                break;
            }
            ASSERT_EQ(rig.dialog.shown.size(), 1U) << failDisk << number;
            const auto& form = rig.dialog.shown[0];
            EXPECT_EQ(form.txtModName.text, "modPrSaveOpen");
            EXPECT_EQ(form.txtProcName.text, "WriteToReg");
            EXPECT_EQ(form.txtSysErrNo.text, "70");
            EXPECT_THAT(form.txtSysErrMsg.text, testing::StartsWith("Permission denied"));
            EXPECT_THAT(rig.ownEntries(), testing::Contains("sPrName Error 2"));
            const bool isIn = rig.registry.keyExists(kMachine, kVersion + "Vdschld\\Work");
            EXPECT_EQ(rig.idleNames("20").empty(), !isIn);
            if (form.txtInf.text == importMessage) {
                ++imports;
                EXPECT_FALSE(isIn) << number;
            } else {
                ++deletes;
                EXPECT_EQ(form.txtInf.text, deleteMessage);
                EXPECT_TRUE(isIn) << number;
                EXPECT_TRUE(rig.disk.fileExists(rig.regPath)) << number;
            }
        }
    }
    EXPECT_GT(imports, 4);
    EXPECT_GT(deletes, 0);
}

TEST(WriteSchedReg, LeavesTheFileWhereTheImportFails)
{
    ScheduleRig rig;
    rig.schedule("1");
    rig.registry.script().failCallsNamed("registry.setValue", base::error_number::kDeviceIo);
    rig.records.WriteSchedReg("Work.vdp");
    EXPECT_EQ(rig.disk.readAll(rig.regPath), kDaily + "\r\n\r\n");
    EXPECT_FALSE(rig.registry.keyExists(kMachine, kVersion + "Vdschld\\Work"));
    ASSERT_EQ(rig.dialog.shown.size(), 1U);
    EXPECT_EQ(rig.dialog.shown[0].txtSysErrNo.text, "57");
}

TEST(WriteSchedReg, DoesNotImportAnOldTextWhereTheNewOneCannotBeWritten)
{
    ScheduleRig rig;
    rig.putFile(rig.regPath, "REGEDIT4\r\n[HKEY_LOCAL_MACHINE\\Old]\r\n");
    rig.disk.setReadOnly(rig.regPath);
    rig.records.WriteSchedReg("Work.vdp");
    EXPECT_FALSE(rig.registry.keyExists(kMachine, "Old"));
    ASSERT_EQ(rig.dialog.shown.size(), 1U);
    EXPECT_EQ(rig.dialog.shown[0].txtSysErrNo.text, "70");
}

TEST(WriteDefaultSchedReg, WritesTheseBytes)
{
    ScheduleRig rig;
    rig.regPath = "C:\\App\\Default_Sched.reg";
    rig.clock.setLocal({{2003, 7, 3}, {9, 5, 3}});
    rig.idle("15"); // the default profile has no idle time, whatever the editor shows
    rig.records.WriteDefaultSchedReg("Default.vdp");
    EXPECT_EQ(rig.regText, "REGEDIT4\r\n\r\n" + kHead +
                               "Vdschld\\Default]\r\n"
                               "\"ReadyToProcess\"=\"F\"\r\n"
                               "\"StartAtDate\"=\"3/7/2003\"\r\n"
                               "\"StartAtTime\"=\"9:06:03 AM\"\r\n"
                               "\"RecPattern\"=\"1\"\r\n"
                               "\"RecCycle\"=\"1\"\r\n"
                               "\"SetTime\"=\"9:10:03 AM\"\r\n"
                               "\"NextRun\"=\"\"\r\n"
                               "\r\n\r\n");
    EXPECT_EQ(rig.scheduleOf("Default", "SetTime"), "9:10:03 AM");
    EXPECT_FALSE(rig.registry.keyExists(kMachine, kVersion + "VdIdle"));
    EXPECT_FALSE(rig.disk.fileExists(rig.regPath));
    EXPECT_THAT(rig.ownEntries(), ElementsAre("sPrName End 2"));
}

TEST(WriteDefaultSchedReg, GoesOnBehindMidnightWithTheTimeAlone)
{
    ScheduleRig rig;
    rig.clock.setLocal({{2003, 12, 31}, {23, 57, 0}});
    rig.records.WriteDefaultSchedReg("Default.vdp");
    EXPECT_EQ(rig.scheduleOf("Default", "StartAtDate"), "31/12/2003");
    EXPECT_EQ(rig.scheduleOf("Default", "StartAtTime"), "11:58:00 PM");
    EXPECT_EQ(rig.scheduleOf("Default", "SetTime"), "12:02:00 AM");
}

TEST(WriteDefaultSchedReg, LeavesTheEditsFormerIdleTimeAlone)
{
    ScheduleRig rig;
    rig.frame.sOldIdleTime = "15";
    rig.records.WriteDefaultSchedReg("Default.vdp");
    EXPECT_EQ(rig.frame.sOldIdleTime, "15");
}

TEST(WriteDefaultSchedReg, ReportsLikeTheOtherWriter)
{
    ScheduleRig rig;
    rig.registry.script().failCallsNamed("registry.createKey", base::error_number::kDeviceIo);
    rig.records.WriteDefaultSchedReg("Default.vdp");
    ASSERT_EQ(rig.dialog.shown.size(), 1U);
    EXPECT_EQ(rig.dialog.shown[0].txtProcName.text, "WriteToReg");
    EXPECT_EQ(rig.dialog.shown[0].txtInf.text,
              "When importing the Schedule options to the system local registry, Error has "
              "identified");
    EXPECT_TRUE(rig.disk.fileExists("C:\\App\\Default_Sched.reg"));
}

TEST(DeleteSchedKey, DeletesTheKeyOfTheProfileInAnyCase)
{
    ScheduleRig rig;
    rig.schedule("1");
    for (const char* name : {"Work.vdp", "Home.vdp", "Work2.vdp"})
        rig.records.WriteSchedReg(name);
    EXPECT_TRUE(rig.records.DeleteSchedKey("WORK.VDP"));
    EXPECT_THAT(rig.registry.subKeys(kMachine, kVersion + "Vdschld"), ElementsAre("Home", "Work2"));
}

TEST(DeleteSchedKey, TakesTheNameUpToItsLastDot)
{
    ScheduleRig rig;
    rig.registry.createKey(kMachine, kVersion + "Vdschld\\my.backup");
    rig.registry.createKey(kMachine, kVersion + "Vdschld\\my");
    EXPECT_TRUE(rig.records.DeleteSchedKey("my.backup.vdp"));
    EXPECT_THAT(rig.registry.subKeys(kMachine, kVersion + "Vdschld"), ElementsAre("my"));
}

TEST(DeleteSchedKey, IsTrueWhereTheProfileHasNoKey)
{
    ScheduleRig rig;
    rig.registry.createKey(kMachine, kVersion + "Vdschld\\Home");
    EXPECT_TRUE(rig.records.DeleteSchedKey("Work.vdp"));
    EXPECT_THAT(rig.registry.subKeys(kMachine, kVersion + "Vdschld"), ElementsAre("Home"));
}

TEST(DeleteSchedKey, IsFalseWhereTheSchedulesCannotBeReached)
{
    ScheduleRig rig;
    EXPECT_FALSE(rig.records.DeleteSchedKey("Work.vdp")) << "no schedule was ever written";
    for (const char* call : {"registry.keyExists", "registry.subKeys"}) {
        ScheduleRig broken;
        broken.registry.createKey(kMachine, kVersion + "Vdschld\\Work");
        broken.registry.script().failCallsNamed(call, base::error_number::kPermissionDenied);
        EXPECT_FALSE(broken.records.DeleteSchedKey("Work.vdp")) << call;
        EXPECT_THAT(broken.dialog.shown, IsEmpty());
    }
}

TEST(DeleteSchedKey, PassesOverADeletionThatFails)
{
    ScheduleRig rig;
    rig.registry.createKey(kMachine, kVersion + "Vdschld\\Work");
    rig.registry.script().failCallsNamed("registry.deleteKey",
                                         base::error_number::kPermissionDenied);
    EXPECT_TRUE(rig.records.DeleteSchedKey("Work.vdp"));
    EXPECT_TRUE(rig.registry.keyExists(kMachine, kVersion + "Vdschld\\Work"));
}

} // namespace
} // namespace vardelin::background
