#include "app/handler_runner.h"
#include "app/window_ports.h"
#include "platform/memory/counting_message_loop.h"
#include "platform/memory/scripted_message_boxes.h"
#include "support/trace_rig.h"

#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

namespace vardelin::app {
namespace {

using trace::ErrorAnswer;

class Runner : public testing::Test {
protected:
    test::TraceRig rig;
    int shown = 0;
    int ended = 0;
    HandlerRunner runner{rig.context, [this] { ++shown; }, [this] { ++ended; }};
};

TEST_F(Runner, TheViewsShowTheRecordsBehindEveryHandler)
{
    int ran = 0;
    EXPECT_TRUE(runner.run("chkIdle_Click", [&] { ran = 1 + shown; }));
    EXPECT_EQ(ran, 1) << "shown before the handler ran";
    EXPECT_EQ(shown, 1);
}

TEST_F(Runner, AnErrorThatGotOutIsShownUnderTheHandlersNameAndTheProgramGoesOn)
{
    EXPECT_FALSE(runner.run("chkIdle_Click",
                            [] { throw base::RuntimeError(70, "C:\\a.txt", "no permission"); }));
    ASSERT_EQ(rig.dialog.shown.size(), 1U);
    EXPECT_EQ(rig.dialog.shown[0].txtProcName.text, "chkIdle_Click");
    EXPECT_EQ(rig.dialog.shown[0].txtSysErrNo.text, "70");
    EXPECT_EQ(rig.dialog.shown[0].txtSysErrMsg.text,
              "Permission denied: C:\\a.txt (no permission)");
    EXPECT_EQ(shown, 1);
    EXPECT_EQ(ended, 0);
    EXPECT_TRUE(runner.run("chkIdle_Click", [] {}));
}

TEST_F(Runner, AnExceptionOfAnotherKindIsShownToo)
{
    EXPECT_FALSE(runner.run("mnuNew_Click", [] { throw std::out_of_range("no such row"); }));
    EXPECT_FALSE(runner.run("mnuNew_Click", [] { throw 7; }));
    ASSERT_EQ(rig.dialog.shown.size(), 2U);
    EXPECT_EQ(rig.dialog.shown[0].txtSysErrNo.text, "5");
    EXPECT_EQ(rig.dialog.shown[0].txtSysErrMsg.text, "no such row");
    EXPECT_EQ(rig.dialog.shown[1].txtSysErrMsg.text, "Invalid procedure call or argument");
}

TEST_F(Runner, AnErrorWhoseNumberTheDialogCannotShowIsReportedAsAnOverflow)
{
    EXPECT_FALSE(runner.run("mnuExpand_Click", [] { throw base::RuntimeError(35600); }));
    ASSERT_EQ(rig.dialog.shown.size(), 1U);
    EXPECT_EQ(rig.dialog.shown[0].txtSysErrNo.text, "6");
}

TEST_F(Runner, ExitOutOfTheErrorDialogEndsTheProgramAndNothingRunsAnyMore)
{
    rig.dialog.answers = {ErrorAnswer::Exit};
    EXPECT_FALSE(runner.run("mnuNew_Click", [] { throw base::RuntimeError(5); }));
    EXPECT_TRUE(runner.exitRequested());
    EXPECT_EQ(ended, 1);
    bool ran = false;
    EXPECT_FALSE(runner.run("mnuSave_Click", [&] { ran = true; }));
    EXPECT_FALSE(ran);
    EXPECT_EQ(ended, 1);
}

TEST_F(Runner, ExitRequestedByAHandlerEndsTheProgramWithoutADialog)
{
    EXPECT_FALSE(runner.run("mnuNew_Click", [] { throw trace::ExitRequested{}; }));
    EXPECT_TRUE(runner.exitRequested());
    EXPECT_TRUE(rig.dialog.shown.empty());
}

// A box that a handler shows runs an event loop, in which the person may end the program out of the
// dialog of another handler's error. The first handler must not go on as if its question had been
// answered.
TEST_F(Runner, AQuestionDuringWhichTheProgramWasEndedHasNoAnswer)
{
    class EndingBoxes final : public platform::MessageBoxes {
    public:
        explicit EndingBoxes(HandlerRunner& runner) : m_runner(runner) {}
        platform::Answer show(std::string_view, std::string_view, platform::Buttons,
                              platform::Icon) override
        {
            m_runner.run("inner", [] { throw trace::ExitRequested{}; });
            return platform::Answer::Yes;
        }

    private:
        HandlerRunner& m_runner;
    };
    EndingBoxes asked(runner);
    UnwindingMessageBoxes boxes(asked, runner, [] {});
    bool saved = false;
    runner.run("outer", [&] {
        boxes.show("Do you want to Save the Profile?", "Vardelin", platform::Buttons::YesNo,
                   platform::Icon::Question);
        saved = true;
    });
    EXPECT_FALSE(saved);
    EXPECT_TRUE(runner.exitRequested());
}

TEST_F(Runner, YieldingShowsTheRecordsFirst)
{
    platform::CountingMessageLoop inner;
    UnwindingMessageLoop loop(
        inner, runner, [this] { ++shown; }, [] { return false; });
    loop.yield();
    EXPECT_EQ(shown, 1);
    EXPECT_EQ(inner.yields, 1U);
}

// A backup yields twice for each file: were each shown, small files would take three times as long.
TEST_F(Runner, YieldingInARowShowsTheRecordsNowAndThenAndHandlesInputEachTime)
{
    constexpr int kFiles = 5000;
    platform::CountingMessageLoop inner;
    UnwindingMessageLoop loop(
        inner, runner, [this] { ++shown; }, [] { return false; });
    for (int i = 0; i < kFiles; ++i)
        loop.yield();
    EXPECT_LT(shown, kFiles);
    EXPECT_EQ(inner.yields, static_cast<std::size_t>(kFiles));
}

// The next turn may be far away: the window of a run whose first file is a large one.
TEST_F(Runner, AWindowThatHasToComeUpDoesNotWaitForItsTurn)
{
    platform::CountingMessageLoop inner;
    bool missing = false;
    UnwindingMessageLoop loop(
        inner, runner,
        [&] {
            ++shown;
            missing = false;
        },
        [&] { return missing; });
    loop.yield();
    missing = true;
    loop.yield();
    EXPECT_EQ(shown, 2);
}

TEST_F(Runner, AQuestionComesUpInFrontOfWhatTheHandlerLeft)
{
    platform::ScriptedMessageBoxes asked;
    std::size_t askedBefore = 1;
    UnwindingMessageBoxes boxes(asked, runner, [&] { askedBefore = asked.shown.size(); });
    boxes.show("Backup is completed successfully", "Vardelin", platform::Buttons::Ok,
               platform::Icon::None);
    EXPECT_EQ(askedBefore, 0U);
    EXPECT_EQ(asked.shown.size(), 1U);
}

} // namespace
} // namespace vardelin::app
