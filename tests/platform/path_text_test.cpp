#include "platform/file_system.h"

#include <gtest/gtest.h>

namespace vardelin::platform {
namespace {

struct PathRow {
    std::string path;
    std::string parent;
    std::string leaf;
};

TEST(PathTexts, SplitIntoParentAndLeaf)
{
    const std::vector<PathRow> rows{
        {"C:\\a\\b", "C:\\a\\", "b"},
        {"C:\\a\\b\\", "C:\\a\\", "b"},
        {"C:\\a", "C:\\", "a"},
        {"C:\\a\\b\\\\", "C:\\a\\", "b"},
        {"C:\\", "", ""},
        {"C:", "", "C:"},
        {"name", "", "name"},
        {"", "", ""},
    };
    for (const PathRow& row : rows) {
        EXPECT_EQ(parentOf(row.path), row.parent) << row.path;
        EXPECT_EQ(leafOf(row.path), row.leaf) << row.path;
    }
}

TEST(PathTexts, JoinWithOneBackslash)
{
    EXPECT_EQ(joinPath("C:\\", "a"), "C:\\a");
    EXPECT_EQ(joinPath("C:\\a", "b"), "C:\\a\\b");
    EXPECT_EQ(joinPath("", "b"), "b");
}

TEST(PathTexts, KnowADriveItself)
{
    for (const char* drive : {"C:", "C:\\", "z:"})
        EXPECT_TRUE(isDriveRoot(drive)) << drive;
    for (const char* other : {"", "C", "C:\\a", "1:", "C:x", "\\", "CC:"})
        EXPECT_FALSE(isDriveRoot(other)) << other;
}

} // namespace
} // namespace vardelin::platform
