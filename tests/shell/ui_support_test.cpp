#include "base/runtime_error.h"
#include "platform/memory/memory_shell.h"
#include "shell/file_icons.h"
#include "shell/list_messages.h"
#include "shell/subclassing.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

namespace vardelin::shell {
namespace {

class RecordedWindows final : public WindowSystem {
public:
    std::map<WindowHandle, WindowProcedure> procedures{{0xAB12, 100}};

    WindowProcedure setProcedure(WindowHandle window, WindowProcedure procedure) override
    {
        const auto found = procedures.find(window);
        if (found == procedures.end())
            return 0;
        return std::exchange(found->second, procedure);
    }
    Error lastError() override { return {1400, "Invalid window handle."}; }
};

TEST(Subclassing, ASecondTimeOnOneWindowFailsAndLeavesTheFirst)
{
    RecordedWindows windows;
    Subclassing subclassing(windows);
    EXPECT_TRUE(subclassing.subclass(0xAB12, 200, 7));
    EXPECT_FALSE(subclassing.subclass(0xAB12, 300, 8));
    EXPECT_EQ(windows.procedures[0xAB12], 200);
    EXPECT_EQ(subclassing.oldWndProc(0xAB12), 100);
    EXPECT_EQ(subclassing.objectPtr(0xAB12), 7U);
}

TEST(Subclassing, IsTakenBackOnce)
{
    RecordedWindows windows;
    Subclassing subclassing(windows);
    EXPECT_FALSE(subclassing.unsubclass(0xAB12));
    EXPECT_EQ(windows.procedures[0xAB12], 100);
    subclassing.subclass(0xAB12, 200);
    EXPECT_EQ(subclassing.objectPtr(0xAB12), std::nullopt);
    EXPECT_TRUE(subclassing.unsubclass(0xAB12));
    EXPECT_EQ(windows.procedures[0xAB12], 100);
    EXPECT_EQ(subclassing.oldWndProc(0xAB12), std::nullopt);
    EXPECT_FALSE(subclassing.unsubclass(0xAB12));
    EXPECT_TRUE(subclassing.subclass(0xAB12, 300));
}

TEST(Subclassing, NamesTheWindowAndTheSystemsError)
{
    RecordedWindows windows;
    Subclassing subclassing(windows);
    try {
        subclassing.subclass(0xCAFE, 200);
        FAIL() << "nothing raised";
    } catch (const base::RuntimeError& error) {
        EXPECT_EQ(error.reason(),
                  "Error subclassing window &HCAFE\r\nErr# 1400: Invalid window handle.");
    }
    EXPECT_EQ(subclassing.oldWndProc(0xCAFE), std::nullopt);
}

TEST(ListState, HoldsItsImageFromTheTwelfthBitOn)
{
    EXPECT_EQ(stateWordOf(1), 4096U);
    EXPECT_EQ(stateWordOf(2), 8192U);
    EXPECT_EQ(stateImageOf(8192 + 3), 2U);
}

TEST(FileIconList, AFileNeedNotExistForItsIconAndItsType)
{
    platform::MemoryShell shell;
    FileIconList icons(shell, 9);
    EXPECT_EQ(icons.iconIndex("C:\\nowhere\\a.TXT"), 9);
    EXPECT_EQ(icons.iconIndex("C:\\b.doc"), 10);
    EXPECT_EQ(icons.iconIndex("c.txt"), 9) << "one icon an extension";
    EXPECT_EQ(icons.iconName(10), "x-office-document");
    EXPECT_EQ(icons.typeName("C:\\nowhere\\a.txt"), "Plain text document");
}

TEST(FileIconList, WhatTheDesktopDoesNotKnowHasNone)
{
    platform::MemoryShell shell;
    FileIconList icons(shell, 9);
    EXPECT_EQ(icons.iconIndex("a.unknown"), -1);
    EXPECT_EQ(icons.iconIndex("C:\\a.b\\noending"), -1);
    EXPECT_EQ(icons.typeName("a.unknown"), "");

    shell.script().failCallsNamed("shell.iconName", base::error_number::kDeviceIo);
    shell.script().failCallsNamed("shell.typeName", base::error_number::kDeviceIo);
    EXPECT_EQ(icons.iconIndex("a.jpg"), -1);
    EXPECT_EQ(icons.typeName("a.jpg"), "");
    shell.script().reset();
    EXPECT_EQ(icons.iconIndex("a.jpg"), 9) << "asked again once it answers";
}

} // namespace
} // namespace vardelin::shell
