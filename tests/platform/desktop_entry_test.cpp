#include "platform/linux/desktop_entry.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vardelin::platform {
namespace {

TEST(DesktopEntry, QuotesTheProgramThatItStarts)
{
    struct Row {
        std::string program;
        std::string exec;
    };
    const std::vector<Row> rows = {
        {"/opt/vardelin/vardelin", R"("/opt/vardelin/vardelin" %f)"},
        {"/home/anna/My backups/vardelin", R"("/home/anna/My backups/vardelin" %f)"},
        {R"(/a"b/vardelin)", R"("/a\\"b/vardelin" %f)"},
        {"/a$HOME`id`/vardelin", R"("/a\\$HOME\\`id\\`/vardelin" %f)"},
        {R"(/a\b/vardelin)", R"("/a\\\\b/vardelin" %f)"},
        {"/a\nb/vardelin", R"("/a\nb/vardelin" %f)"},
        {"/a'b;c&d~/vardelin", R"("/a'b;c&d~/vardelin" %f)"},
        // Neither may stand in the program's own word.
        {"/50%/vardelin", R"(/bin/sh -c "exec \\"\\$0\\" \\"\\$@\\"" "/50%%/vardelin" %f)"},
        {"/a=b/vardelin", R"(/bin/sh -c "exec \\"\\$0\\" \\"\\$@\\"" "/a=b/vardelin" %f)"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(execWithFile(row.program), row.exec);
        if (!row.exec.starts_with("/bin/sh")) {
            EXPECT_EQ(execProgram(row.exec), row.program);
        }
    }
}

TEST(DesktopEntry, FindsTheProgramOfALineThatSomebodyElseWrote)
{
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"/usr/bin/vardelin %f", "/usr/bin/vardelin"},
        {"vardelin", "vardelin"},
        {R"("/opt/a b/vardelin")", "/opt/a b/vardelin"},
        {R"("/opt/a\sb/vardelin" --x)", "/opt/a b/vardelin"},
        {R"("not closed)", "not closed"},
        {R"(ends\)", R"(ends\)"},
        {R"("ends\\)", R"(ends\)"},
        {"/opt/50%%/vardelin", "/opt/50%/vardelin"},
        {"", ""},
    };
    for (const auto& [exec, program] : rows)
        EXPECT_EQ(execProgram(exec), program) << exec;
}

TEST(DesktopEntry, TakesAValueOfItsOwnGroupAlone)
{
    const std::string entry = "# Exec=comment\nExec=before\n[Desktop Action New]\nExec=action\n"
                              "[Desktop Entry]\nTryExec=try\n Exec = \"mine\" %f \nExec=second\n";
    EXPECT_EQ(entryValue(entry, "Exec"), "\"mine\" %f");
    EXPECT_EQ(entryValue(entry, "TryExec"), "try");
    EXPECT_EQ(entryValue(entry, "Icon"), "");
    EXPECT_EQ(entryValue("", "Exec"), "");
}

} // namespace
} // namespace vardelin::platform
