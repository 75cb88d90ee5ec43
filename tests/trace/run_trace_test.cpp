#include "trace/run_trace.h"

#include "base/text.h"
#include "support/trace_rig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace vardelin::trace {
namespace {

using test::ShownBox;
using test::TraceRig;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::string_view kLog = "C:\\App\\Vardelin_Log_File.txt";

std::string blanks(std::size_t count)
{
    return std::string(count, ' ');
}

std::string header(std::string_view capacity, std::string_view next)
{
    return std::string(capacity) + blanks(10 - capacity.size()) + std::string(next) +
           blanks(10 - next.size()) + blanks(106) + "\r\n";
}

class RunTraceTest : public testing::Test {
protected:
    std::string log() { return rig.fileSystem().readAll(kLog); }
    std::string record(int number)
    {
        return log().substr(static_cast<std::size_t>(number - 1) * kLogRecordBytes,
                            kLogRecordBytes);
    }
    // Mark, procedure, kind and repeat count of a record, without padding.
    std::string entry(int number)
    {
        const std::string text = record(number);
        const auto field = [&text](std::size_t at, std::size_t width) {
            return std::string(base::trimEnd(std::string_view(text).substr(at, width)));
        };
        return field(0, 8) + " " + field(8, 40) + " " + field(48, 10) + " " + field(96, 10);
    }
    void putLog(std::string_view bytes) { rig.putFile(kLog, bytes); }
    bool write(std::string_view procedure, std::string_view kind = "Start")
    {
        return trace.WriteRunTrace(procedure, kind, true);
    }

    TraceRig rig;
    RunTrace& trace = rig.trace;
};

const ShownBox kOpenFailed{"Error in opening the log file: C:\\App\\Vardelin_Log_File.txt",
                           "Vardelin", platform::Buttons::OkCancel, platform::Icon::Critical};
const ShownBox kWriteFailed{"There was an error writing the information to Log File.", "Vardelin",
                            platform::Buttons::OkCancel, platform::Icon::Critical};
const ShownBox kNewOpenFailed{"Error while opening the new log file.", "Vardelin",
                              platform::Buttons::OkCancel, platform::Icon::Critical};
const ShownBox kNewWriteFailed{"There was an error writing the information to new log File.",
                               "Vardelin", platform::Buttons::OkCancel, platform::Icon::Critical};
// The code-like words are part of the text that people see.
const ShownBox kCreateFailed{"Error In Creating Log File: & ST_Log_File_Full_Name, vbOK + "
                             "vbCritical, MV_ST_App_Name",
                             "Vardelin", platform::Buttons::Ok, platform::Icon::None};

TEST_F(RunTraceTest, TheFirstTraceCreatesTheLogAndWritesRecordTwo)
{
    rig.setLocalTime({{2003, 7, 3}, {9, 5, 3}});
    EXPECT_TRUE(trace.WriteRunTrace("mnuSave_Click", "Start", true, "free text"));

    EXPECT_EQ(log(), "25000     3         " + blanks(106) + "\r\n" + "#2#     " + "mnuSave_Click" +
                         blanks(27) + "Start     " + "free text" + blanks(29) + "1         " +
                         "07-03-2003  " + "09:05:03" + "\r\n");
    EXPECT_EQ(log().size(), 256U);
    EXPECT_THAT(rig.boxes(), IsEmpty());
}

TEST_F(RunTraceTest, TheLogIsNamedAfterTheExecutable)
{
    EXPECT_EQ(trace.logFileName(), kLog);
}

TEST_F(RunTraceTest, StartAndEndOfOneProcedureShareARecord)
{
    write("ClearCollections", "Start");
    write("ClearCollections", "End");
    EXPECT_EQ(log().size(), 256U);
    EXPECT_EQ(entry(2), "#2# ClearCollections End 2");
    EXPECT_EQ(record(1), header("25000", "3"));
}

TEST_F(RunTraceTest, TwoPairsInARowLeaveOneRecordWithRepeatCountFour)
{
    for (int pair = 0; pair < 2; ++pair) {
        write("ClearCollections", "Start");
        write("ClearCollections", "End");
    }
    EXPECT_EQ(log().size(), 256U);
    EXPECT_EQ(entry(2), "#2# ClearCollections End 4");
}

TEST_F(RunTraceTest, ManyCallsAtOnceLeaveWhatTheyWouldOneByOne)
{
    write("PrFileEncrypt", "Start");
    rig.traceScript.reset();
    EXPECT_TRUE(trace.WriteRunTraceTimes("LineReverse", "End", 6));
    const std::size_t calls = rig.traceScript.callCount();
    EXPECT_EQ(entry(3), "#3# LineReverse End 6");
    EXPECT_EQ(record(1), header("25000", "4"));
    rig.traceScript.reset();
    EXPECT_TRUE(trace.WriteRunTraceTimes("LineReverse", "End", 2000));
    EXPECT_EQ(entry(3), "#3# LineReverse End 2006");
    EXPECT_EQ(record(1), header("25000", "4"));
    EXPECT_EQ(rig.traceScript.callCount(), calls);
}

TEST_F(RunTraceTest, NoCallsAtOnceLeaveNothing)
{
    write("PrFileEncrypt", "Start");
    const std::string before = log();
    EXPECT_TRUE(trace.WriteRunTraceTimes("LineReverse", "End", 0));
    EXPECT_EQ(log(), before);
    write("PrFileEncrypt", "End"); // still the newest name
    EXPECT_EQ(entry(2), "#2# PrFileEncrypt End 2");
}

TEST_F(RunTraceTest, CountStopsAtTheGreatestNumber)
{
    write("LineReverse", "Start");
    EXPECT_TRUE(trace.WriteRunTraceTimes("LineReverse", "End", 2147483647));
    write("LineReverse", "End");
    EXPECT_EQ(entry(2), "#2# LineReverse End 2147483647");
}

TEST_F(RunTraceTest, AnotherNameTakesTheNextRecordAndCountsFromOne)
{
    write("Outer", "Start");
    write("Inner", "Start");
    write("Inner", "End");
    write("Outer", "End");
    EXPECT_EQ(record(1), header("25000", "5"));
    EXPECT_EQ(entry(2), "#2# Outer Start 1");
    EXPECT_EQ(entry(3), "#3# Inner End 2");
    EXPECT_EQ(entry(4), "#4# Outer End 1");
}

TEST_F(RunTraceTest, NamesAreComparedWithRegardToCase)
{
    write("Versioncheck");
    write("VersionCheck");
    EXPECT_EQ(entry(3), "#3# VersionCheck Start 1");
}

TEST_F(RunTraceTest, ALongNameIsCutInTheFileYetComparedWhole)
{
    const std::string forty(40, 'n');
    write(forty + "A");
    write(forty + "B");
    write(forty + "B");
    EXPECT_EQ(log().size(), 3 * kLogRecordBytes) << "the names differ only behind what is written";
    EXPECT_EQ(entry(2), "#2# " + forty + " Start 1");
    EXPECT_EQ(entry(3), "#3# " + forty + " Start 2");
}

TEST_F(RunTraceTest, KindAndTextAreCutAtTheirWidths)
{
    trace.WriteRunTrace("P", "ElevenChars", true, std::string(50, 't'));
    EXPECT_EQ(record(2).substr(48, 10), "ElevenChar");
    EXPECT_EQ(record(2).substr(58, 38), std::string(38, 't'));
    EXPECT_EQ(record(2).size(), kLogRecordBytes);
    EXPECT_EQ(record(2).substr(126), "\r\n");
}

TEST_F(RunTraceTest, AnEarlierRunsLogGoesOnBehindItsLastRecord)
{
    putLog(header("25000", "4") + std::string(2 * kLogRecordBytes, 'o'));
    write("Application");
    EXPECT_EQ(record(1), header("25000", "5"));
    EXPECT_EQ(record(2), std::string(kLogRecordBytes, 'o'));
    EXPECT_EQ(entry(4), "#4# Application Start 1");
}

TEST_F(RunTraceTest, WrapsToRecordTwoBehindTheCapacity)
{
    putLog(header("25000", "25001") + std::string(24999 * kLogRecordBytes, 'o'));
    write("New");
    EXPECT_EQ(record(1), header("25000", "3"));
    EXPECT_EQ(entry(2), "#2# New Start 1");
    EXPECT_EQ(record(3), std::string(kLogRecordBytes, 'o')) << "the former lap stays";
    EXPECT_EQ(log().size(), 3200000U);
}

TEST_F(RunTraceTest, TheSameNameBehindTheCapacityRewritesTheLastRecordWithoutAWrap)
{
    putLog(header("25000", "25000") + std::string(24998 * kLogRecordBytes, 'o'));
    write("Last", "Start");
    EXPECT_EQ(record(1), header("25000", "25001"));
    write("Last", "End");
    EXPECT_EQ(record(1), header("25000", "25001"));
    EXPECT_EQ(entry(25000), "#25000# Last End 2");
    EXPECT_EQ(record(2), std::string(kLogRecordBytes, 'o'));
    EXPECT_EQ(log().size(), 3200000U) << "the file never grows past its capacity";
}

TEST_F(RunTraceTest, ADisabledCallWritesNothingYetItsNameCountsAsTheLast)
{
    write("A");
    EXPECT_TRUE(trace.WriteRunTrace("B", "Start", false));
    EXPECT_EQ(log().size(), 256U);
    // B is the last name, so its first entry goes over A's record and counts on from there.
    write("B");
    EXPECT_EQ(log().size(), 256U);
    EXPECT_EQ(entry(2), "#2# B Start 2");
}

TEST_F(RunTraceTest, ALogRemovedMeanwhileComesBackWithTheNextNewName)
{
    write("A");
    rig.fileSystem().removeFile(kLog);
    EXPECT_FALSE(write("A"));
    EXPECT_FALSE(rig.fileSystem().fileExists(kLog));
    EXPECT_THAT(rig.boxes(), ElementsAre(kOpenFailed, kWriteFailed));

    EXPECT_TRUE(write("B"));
    EXPECT_EQ(record(1), header("25000", "3"));
    EXPECT_EQ(entry(2), "#2# B Start 1");
}

TEST_F(RunTraceTest, AFailureLeavesTheLastNameAndTheCountGoesOn)
{
    write("A");
    rig.fileSystem().removeFile(kLog);
    write("A");
    trace.CreateRunLogFile(kLog, 25000);
    putLog(header("25000", "3") + std::string(kLogRecordBytes, 'o'));
    EXPECT_TRUE(write("A"));
    EXPECT_EQ(entry(2), "#2# A Start 3");
}

struct BrokenHeader {
    std::string_view defect;
    std::string bytes;
};

class BrokenHeaderTest : public RunTraceTest, public testing::WithParamInterface<BrokenHeader> {};

TEST_P(BrokenHeaderTest, ANewNameWritesTheHeaderAnew)
{
    putLog(GetParam().bytes);
    EXPECT_TRUE(write("A"));
    EXPECT_EQ(record(1), header("25000", "3"));
    EXPECT_EQ(entry(2), "#2# A Start 1");
    EXPECT_THAT(rig.boxes(), IsEmpty());
}

TEST_P(BrokenHeaderTest, TheSameNameReportsAFailedWrite)
{
    write("A");
    putLog(GetParam().bytes);
    EXPECT_FALSE(write("A"));
    EXPECT_EQ(log(), GetParam().bytes);
    EXPECT_THAT(rig.boxes(), ElementsAre(kWriteFailed));
}

INSTANTIATE_TEST_SUITE_P(
    Defects, BrokenHeaderTest,
    testing::Values(BrokenHeader{"empty", ""}, BrokenHeader{"cut_at_9_bytes", "25000    "},
                    BrokenHeader{"no_numbers", std::string(kLogRecordBytes, 'x')},
                    BrokenHeader{"no_next_record", header("25000", "")},
                    BrokenHeader{"negative_next_record", header("25000", "-3")},
                    BrokenHeader{"capacity_beyond_the_bound", header("25001", "2")},
                    BrokenHeader{"next_record_beyond_32_bits", header("25000", "4294967298")}),
    [](const auto& each) { return std::string(each.param.defect); });

TEST_F(RunTraceTest, ATargetBelowRecordTwoIsAFailedWrite)
{
    for (const std::string_view next : {"0", "1"}) {
        const std::string bytes = header("25000", next);
        putLog(bytes);
        EXPECT_FALSE(write("A" + std::string(next)));
        EXPECT_EQ(log(), bytes);
    }
    EXPECT_THAT(rig.boxes(), ElementsAre(kWriteFailed, kWriteFailed));
}

TEST_F(RunTraceTest, ALogThatCannotBeCreatedIsToldInThreeBoxes)
{
    rig.fileSystem().removeFolder("C:\\App");
    EXPECT_FALSE(write("A"));
    EXPECT_THAT(rig.boxes(), ElementsAre(kNewOpenFailed, kNewWriteFailed, kCreateFailed));
}

TEST_F(RunTraceTest, CreatingWritesTheHeaderAlone)
{
    EXPECT_TRUE(trace.CreateRunLogFile("C:\\App\\other.txt", 25000));
    EXPECT_EQ(rig.fileSystem().readAll("C:\\App\\other.txt"), header("25000", "2"));
}

TEST_F(RunTraceTest, AFailingCallIsShownAndRaisesNothing)
{
    // Fail the first call of the file system, then the second, until a trace gets through.
    int failing = 0;
    for (bool written = false; !written;) {
        ++failing;
        ASSERT_LT(failing, 100);
        rig.clearBoxes();
        rig.failTraceCall(failing);
        written = write("A" + std::to_string(failing));
        rig.stopFailing();
        EXPECT_EQ(rig.boxes().empty(), written) << "call " << failing;
        if (rig.fileSystem().fileExists(kLog)) {
            EXPECT_EQ(log().size() % kLogRecordBytes, 0U) << "call " << failing;
        }
    }
    EXPECT_GT(failing, 4) << "open, read and two writes at least";
    EXPECT_TRUE(write("after"));
}

} // namespace
} // namespace vardelin::trace
