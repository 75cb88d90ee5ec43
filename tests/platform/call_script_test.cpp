#include "platform/memory/call_script.h"

#include "test_worlds.h"

#include <gmock/gmock.h>

#include <thread>
#include <type_traits>

namespace vardelin::platform {
namespace {

using test::errorOf;

TEST(CallScript, CountsEveryCallWithItsNameAndSubject)
{
    CallScript script;
    script.enter("folder.open", "C:\\a");
    script.enter("file.write", "C:\\a");
    script.enter("file.write", "C:\\a");
    EXPECT_EQ(script.callCount(), 3U);
    EXPECT_EQ(script.countOf("file.write"), 2U);
    EXPECT_EQ(script.calls().front().name, "folder.open");
    EXPECT_EQ(script.calls().front().subject, "C:\\a");
    script.reset();
    EXPECT_EQ(script.callCount(), 0U);
}

TEST(CallScript, FailsTheNthCallAlone)
{
    CallScript script;
    script.failCall(2, 61, "full");
    EXPECT_EQ(errorOf([&] { script.enter("a", "x"); }), 0);
    try {
        script.enter("a", "x");
        FAIL();
    } catch (const base::RuntimeError& error) {
        EXPECT_EQ(error.number(), 61);
        EXPECT_EQ(error.subject(), "x");
        EXPECT_EQ(error.reason(), "full");
    }
    EXPECT_EQ(errorOf([&] { script.enter("a", "x"); }), 0);
}

TEST(CallScript, FailsCallsByNameAndSubject)
{
    CallScript script;
    script.failCallsNamed("file.read", 57, "bad");
    EXPECT_EQ(errorOf([&] { script.enter("file.read", "C:\\good"); }), 0);
    EXPECT_EQ(errorOf([&] { script.enter("file.write", "C:\\bad"); }), 0);
    EXPECT_EQ(errorOf([&] { script.enter("file.read", "C:\\bad"); }), 57);
    EXPECT_EQ(errorOf([&] { script.enter("file.read", "C:\\bad"); }), 57);
}

TEST(CallScript, RunsAHookBeforeItsCallWhichMayUseThePorts)
{
    CallScript script;
    std::vector<std::string> seen;
    script.delayCall(2, [&](const CallScript::Call& call) {
        seen.push_back(call.name);
        script.enter("inner", "");
    });
    script.onCallsNamed("inner", [&](const auto& call) { seen.push_back(call.name); });
    script.enter("first", "");
    EXPECT_TRUE(seen.empty());
    script.enter("second", "");
    EXPECT_THAT(seen, testing::ElementsAre("second", "inner"));
}

TEST(CallScript, KillsAtACallAndEverAfter)
{
    static_assert(!std::is_base_of_v<std::exception, Killed>);
    CallScript script;
    script.killAtCall(2);
    script.enter("a", "");
    EXPECT_FALSE(script.wasKilled());
    EXPECT_THROW(script.enter("b", ""), Killed);
    EXPECT_THROW(script.enter("c", ""), Killed);
    EXPECT_TRUE(script.wasKilled());
    EXPECT_EQ(script.callCount(), 2U);
    script.reset();
    EXPECT_NO_THROW(script.enter("d", ""));
}

TEST(CallScript, CountsTheCallsOfSeveralThreads)
{
    CallScript script;
    const auto work = [&] {
        for (int i = 0; i < 1000; ++i)
            script.enter("call", "x");
    };
    std::thread other(work);
    work();
    other.join();
    EXPECT_EQ(script.countOf("call"), 2000U);
}

TEST(ScriptedFileSystem, ReportsEachPrimitiveWithItsPath)
{
    test::MemoryWorld world;
    CallScript script;
    ScriptedFileSystem files(world.fileSystem(), script);
    files.replaceFile("T:\\f", "x");
    std::vector<std::string> calls;
    for (const auto& call : script.calls())
        calls.push_back(call.name + " " + call.subject);
    EXPECT_THAT(calls, testing::ElementsAre("fs.openFolder T:\\", "folder.open T:\\~f.tmp",
                                            "file.write T:\\~f.tmp", "file.flush T:\\~f.tmp",
                                            "file.close T:\\~f.tmp", "folder.rename T:\\~f.tmp",
                                            "folder.flush T:\\"));
}

TEST(ScriptedFileSystem, DoesNothingAtACallThatFails)
{
    test::MemoryWorld world;
    CallScript script;
    ScriptedFileSystem files(world.fileSystem(), script);
    files.replaceFile("T:\\f", "x");
    script.failCallsNamed("folder.removeFile", 70);
    EXPECT_EQ(errorOf([&] { files.removeFile("T:\\f"); }), 70);
    EXPECT_TRUE(world.fileSystem().fileExists("T:\\f"));
}

} // namespace
} // namespace vardelin::platform
