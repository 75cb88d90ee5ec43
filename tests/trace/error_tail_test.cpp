#include "trace/error_tail.h"

#include "support/trace_rig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <type_traits>

namespace vardelin::trace {
namespace {

using base::PendingError;
using base::RuntimeError;
using test::TraceRig;
using testing::ElementsAre;
using testing::IsEmpty;
namespace error_number = base::error_number;

static_assert(!std::is_base_of_v<std::exception, ExitRequested>,
              "nothing between the dialog and main() may catch it by accident");

PendingError pending(int number, std::string description)
{
    return {number, std::move(description), {}};
}

TEST(ErrorForm, HasItsCaptionsAndLabels)
{
    const frmErrLog form;
    EXPECT_EQ(form.caption, "Vardelin Error Dialog");
    EXPECT_EQ(form.cmdCancel.caption, "&Continue");
    EXPECT_EQ(form.cmdOk.caption, "&Exit");
    std::vector<std::string_view> labels;
    labels.reserve(kErrorBoxes.size());
    for (const ErrorBox& box : kErrorBoxes)
        labels.push_back(box.label);
    EXPECT_THAT(labels,
                ElementsAre("Module Name", "Procedure\\Function Name", "System Error Number",
                            "System Error Message", "Custom Error Number", "Custom Error Message",
                            "Error Type", "Actions to be taken, If possible", "More information"));
}

TEST(ErrorForm, TheButtonsLeaveTheirAnswer)
{
    frmErrLog form;
    EXPECT_EQ(form.answer, ErrorAnswer::None);
    cmdCancel_Click(form);
    EXPECT_EQ(form.answer, ErrorAnswer::Continue);
    cmdOk_Click(form);
    EXPECT_EQ(form.answer, ErrorAnswer::Exit);
}

TEST(DisplayErrMSgDialog, FillsTheBoxesAndLeavesThreeEmpty)
{
    TraceRig rig;
    EXPECT_TRUE(DisplayErrMSgDialog(rig.context, "Informative", "Own sentence", 53,
                                    "File not found", "MDIForm", "EditSaveMode"));
    ASSERT_EQ(rig.dialog.shown.size(), 1U);
    const frmErrLog& form = rig.dialog.shown.front();
    EXPECT_EQ(form.txtModName.text, "MDIForm");
    EXPECT_EQ(form.txtProcName.text, "EditSaveMode");
    EXPECT_EQ(form.txtSysErrNo.text, "53");
    EXPECT_EQ(form.txtSysErrMsg.text, "File not found");
    EXPECT_EQ(form.txtErrType.text, "Informative");
    // The custom message is in the information box, and the box named after it stays empty.
    EXPECT_EQ(form.txtInf.text, "Own sentence");
    EXPECT_EQ(form.txtCusErrNo.text, "");
    EXPECT_EQ(form.txtCusErrMsg.text, "");
    EXPECT_EQ(form.txtActions.text, "");
    EXPECT_EQ(form.windowState, WindowState::Normal);
    EXPECT_THAT(rig.entries(), ElementsAre("DisplayErrMSgDialog End 2"));
}

TEST(DisplayErrMSgDialog, ASecondErrorShowsOnlyItsOwnTexts)
{
    TraceRig rig;
    DisplayErrMSgDialog(rig.context, "Informative", "first", 53, "File not found", "MDIForm", "A");
    DisplayErrMSgDialog(rig.context, "", "", 5, "", "", "");
    ASSERT_EQ(rig.dialog.shown.size(), 2U);
    const frmErrLog& form = rig.dialog.shown.back();
    for (const ErrorBox& box : kErrorBoxes) {
        const std::string expected = box.box == &frmErrLog::txtSysErrNo ? "5" : "";
        EXPECT_EQ((form.*box.box).text, expected) << box.label;
    }
    EXPECT_EQ(form.answer, ErrorAnswer::None);
}

TEST(DisplayErrMSgDialog, ANumberBeyond16BitsOverflowsBeforeAnythingIsShown)
{
    for (const int number : {32768, -32769, 40001}) {
        TraceRig rig;
        try {
            DisplayErrMSgDialog(rig.context, "Informative", "", number, "", "", "");
            FAIL() << number;
        } catch (const RuntimeError& error) {
            EXPECT_EQ(error.number(), error_number::kOverflow);
        }
        EXPECT_THAT(rig.dialog.shown, IsEmpty());
        EXPECT_THAT(rig.entries(), IsEmpty());
    }
    TraceRig rig;
    EXPECT_TRUE(DisplayErrMSgDialog(rig.context, "", "", 32767, "", "", ""));
    EXPECT_EQ(rig.dialog.shown.front().txtSysErrNo.text, "32767");
}

TEST(DisplayErrMSgDialog, ExitEndsWithNoFurtherTrace)
{
    TraceRig rig;
    rig.dialog.answers = {ErrorAnswer::Exit};
    EXPECT_THROW(DisplayErrMSgDialog(rig.context, "", "", 53, "", "", ""), ExitRequested);
    EXPECT_THAT(rig.entries(), ElementsAre("DisplayErrMSgDialog Start 1"));
}

TEST(DisplayErrMSgDialog, AnErrorOfTheDialogItselfIsNotShown)
{
    TraceRig rig;
    rig.dialog.raises = error_number::kDeviceIo;
    EXPECT_TRUE(DisplayErrMSgDialog(rig.context, "", "", 53, "", "", ""));
    EXPECT_THAT(rig.entries(), ElementsAre("DisplayErrMSgDialog End 2"));
}

TEST(ErrorTail, DoesNothingForANumberOfZeroOrBelow)
{
    for (const int number : {0, -1, -2147483647}) {
        TraceRig rig;
        errorTail(rig.context, {"P", "P", "MDIForm", "P"}, pending(number, "none"));
        EXPECT_THAT(rig.dialog.shown, IsEmpty());
        EXPECT_THAT(rig.entries(), IsEmpty());
        EXPECT_EQ(rig.errors.ST_Err_Type, "");
    }
}

TEST(ErrorTail, FillsTheRecordTracesErrorAndShowsTheDialog)
{
    TraceRig rig;
    errorTail(rig.context, {"EditSaveMode", "EditSaveMode", "MDIForm", "Own sentence"},
              pending(76, "Path not found"));
    EXPECT_EQ(rig.errors.ST_Err_Type, "Informative");
    EXPECT_EQ(rig.errors.ST_Err_Custom_Msg, "Own sentence");
    EXPECT_EQ(rig.errors.ST_Err_Proc_Name, "EditSaveMode");
    EXPECT_EQ(rig.errors.LG_Err_Number, 76);
    EXPECT_EQ(rig.errors.ST_Err_Description, "Path not found");
    ASSERT_EQ(rig.dialog.shown.size(), 1U);
    EXPECT_EQ(rig.dialog.shown.front().txtModName.text, "MDIForm");
    EXPECT_EQ(rig.dialog.shown.front().txtInf.text, "Own sentence");
    EXPECT_THAT(rig.entries(), ElementsAre("EditSaveMode Error 1", "DisplayErrMSgDialog End 2"));
}

TEST(ErrorTail, FieldAndTraceMayGoByDifferentNames)
{
    TraceRig rig;
    errorTail(rig.context, {"RemoveRecVdp", "RemoveRecVdpName", "MDIForm", "sentence"},
              pending(53, "File not found"));
    EXPECT_EQ(rig.dialog.shown.front().txtProcName.text, "RemoveRecVdp");
    EXPECT_THAT(rig.entries(),
                ElementsAre("RemoveRecVdpName Error 1", "DisplayErrMSgDialog End 2"));
}

TEST(RunTraced, TracesStartAndEnd)
{
    TraceRig rig;
    bool ran = false;
    runTraced(rig.context, "Outer", "MDIForm", "Outer",
              [&] { runTraced(rig.context, "Inner", "MDIForm", "Inner", [&] { ran = true; }); });
    EXPECT_TRUE(ran);
    EXPECT_THAT(rig.entries(), ElementsAre("Outer Start 1", "Inner End 2", "Outer End 1"));
}

TEST(RunTraced, AnErrorLeavesNoEndAndTheCallerGoesOn)
{
    TraceRig rig;
    int result = 7;
    bool wentOn = false;
    runTraced(rig.context, "Outer", "MDIForm", "Outer", [&] {
        runTraced(rig.context, "Inner", "modPrSaveOpen", "Inner sentence", [&] {
            result = 8;
            throw RuntimeError(error_number::kFileNotFound, "C:\\x");
        });
        wentOn = true;
    });
    EXPECT_TRUE(wentOn);
    EXPECT_EQ(result, 8) << "a result stays what it was when the error struck";
    ASSERT_EQ(rig.dialog.shown.size(), 1U);
    EXPECT_EQ(rig.dialog.shown.front().txtSysErrMsg.text, "File not found: C:\\x");
    EXPECT_EQ(rig.dialog.shown.front().txtModName.text, "modPrSaveOpen");
    // Start and Error of one name in a row share a record.
    EXPECT_THAT(rig.entries(), ElementsAre("Outer Start 1", "Inner Error 2",
                                           "DisplayErrMSgDialog End 2", "Outer End 1"));
}

// A description that names the thing already says it once.
TEST(ErrorTail, NamesTheThingBehindTheDescription)
{
    struct Case {
        const char* description;
        const char* subject;
        const char* shown;
    };
    for (const Case& c :
         {Case{"Permission denied", "C:\\data\\report.doc",
               "Permission denied: C:\\data\\report.doc"},
          Case{"Permission denied", "", "Permission denied"},
          Case{"Disk full: C:\\x (no space)", "C:\\x", "Disk full: C:\\x (no space)"}}) {
        TraceRig rig;
        base::PendingError error;
        error.number = error_number::kPermissionDenied;
        error.description = c.description;
        error.subject = c.subject;
        errorTail(rig.context, {"Save", "Save", "MDIForm", "Save"}, error);
        ASSERT_EQ(rig.dialog.shown.size(), 1U);
        EXPECT_EQ(rig.dialog.shown.front().txtSysErrMsg.text, c.shown);
    }
}

TEST(RunTraced, AnOverflowInATailEndsInTheCallersTail)
{
    TraceRig rig;
    runTraced(rig.context, "Outer", "MDIForm", "Outer", [&] {
        runTraced(rig.context, "Inner", "MDIForm", "Inner", [] { throw RuntimeError(40000); });
    });
    ASSERT_EQ(rig.dialog.shown.size(), 1U);
    EXPECT_EQ(rig.dialog.shown.front().txtProcName.text, "Outer");
    EXPECT_EQ(rig.dialog.shown.front().txtSysErrNo.text, "6");
    EXPECT_EQ(rig.dialog.shown.front().txtSysErrMsg.text, "Overflow: 40000");
}

TEST(RunTraced, ExitPassesThroughEveryCallerWithoutATrace)
{
    TraceRig rig;
    rig.dialog.answers = {ErrorAnswer::Exit};
    bool wentOn = false;
    EXPECT_THROW(runTraced(rig.context, "Outer", "MDIForm", "Outer",
                           [&] {
                               runTraced(rig.context, "Inner", "MDIForm", "Inner",
                                         [] { throw RuntimeError(error_number::kDiskFull); });
                               wentOn = true;
                           }),
                 ExitRequested);
    EXPECT_FALSE(wentOn);
    EXPECT_THAT(rig.entries(),
                ElementsAre("Outer Start 1", "Inner Error 2", "DisplayErrMSgDialog Start 1"));
}

TEST(RunTraced, StartAndEndMayGoByAnotherNameThanTheError)
{
    TraceRig rig;
    const TailNames names{"RemoveRecVdp", "RemoveRecVdpName", "MDIForm", "sentence"};
    runTraced(rig.context, "RemoveVdpName", names, [] {});
    runTraced(rig.context, "RemoveVdpName", names,
              [] { throw RuntimeError(error_number::kFileNotFound); });
    EXPECT_THAT(rig.entries(), ElementsAre("RemoveVdpName Start 3", "RemoveRecVdpName Error 1",
                                           "DisplayErrMSgDialog End 2"));
}

} // namespace
} // namespace vardelin::trace
