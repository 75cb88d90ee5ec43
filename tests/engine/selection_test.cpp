#include "runs/engine/selection.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vardelin::engine {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

EngineProfile profileOf(std::vector<std::string> sources)
{
    EngineProfile profile;
    profile.sources = std::move(sources);
    return profile;
}

TEST(Selection, TakesAnExtensionFromTheLastDotOn)
{
    EXPECT_EQ(extensionOf("report.doc"), ".doc");
    EXPECT_EQ(extensionOf("a.tar.gz"), ".gz");
    EXPECT_EQ(extensionOf(".bashrc"), ".bashrc");
    EXPECT_EQ(extensionOf("name."), ".");
    EXPECT_EQ(extensionOf("README"), "");
    EXPECT_EQ(extensionOf(""), "");
}

struct NameCase {
    std::string_view name;
    bool isHit;
};

TEST(Selection, ExcludesByExtensionWithoutRegardToCase)
{
    EngineProfile profile;
    profile.excludedExtensions = {".TMP", ".gz"};
    const Selection selection(profile, true);

    const NameCase cases[] = {{"a.tmp", true},   {"A.TMP", true}, {"a.tar.GZ", true},
                              {"a.tmpx", false}, {"tmp", false},  {"a.tmp.doc", false},
                              {"a.tmp ", false}, {".tmp", true},  {"", false},
                              {"\xC4.tmp", true}};
    for (const NameCase& one : cases)
        EXPECT_EQ(selection.isExcluded(one.name), one.isHit) << one.name;
}

TEST(Selection, ExcludesByNamePatterns)
{
    EngineProfile profile;
    profile.excludeNames = {"Tech*.*", "~$*", "exact.txt"};
    const Selection selection(profile, true);

    const NameCase cases[] = {{"technical.doc", true}, {"TECH.TXT", true},
                              {"tech", true}, // a trailing `.*` asks for no dot
                              {"mytech.doc", false},   {"~$letter.doc", true},
                              {"EXACT.TXT", true},     {"exact.txt.bak", false}};
    for (const NameCase& one : cases)
        EXPECT_EQ(selection.isExcluded(one.name), one.isHit) << one.name;
}

TEST(Selection, IncludesFromTheSystemByExtensionOrByName)
{
    EngineProfile profile;
    profile.includedExtensions = {".doc"};
    profile.includeNames = {"Inf*.*"};
    const Selection selection(profile, true);

    EXPECT_TRUE(selection.needsSystemScan());
    EXPECT_TRUE(selection.isIncludedBySystemScan("letter.DOC"));
    EXPECT_TRUE(selection.isIncludedBySystemScan("info.txt"));
    EXPECT_FALSE(selection.isIncludedBySystemScan("letter.docx"));
}

// Whoever scans applies the exclusions last, so an inclusion must not hide them.
TEST(Selection, AnswersInclusionAndExclusionApart)
{
    EngineProfile profile;
    profile.includedExtensions = {".doc"};
    profile.excludeNames = {"draft*"};
    const Selection selection(profile, true);

    EXPECT_TRUE(selection.isIncludedBySystemScan("draft.doc"));
    EXPECT_TRUE(selection.isExcluded("draft.doc"));
}

TEST(Selection, NeedsTheSystemScanOnlyForInclusions)
{
    EngineProfile profile = profileOf({"C:\\A\\"});
    profile.excludedExtensions = {".doc"};
    profile.excludeNames = {"x*"};
    EXPECT_FALSE(Selection(profile, true).needsSystemScan());

    profile.includeNames = {"y*"};
    EXPECT_TRUE(Selection(profile, true).needsSystemScan());
}

TEST(Selection, TellsFoldersFromFilesByTheBackslash)
{
    const Selection selection(
        profileOf({"C:\\Work\\b.txt", "C:\\Docs\\", "D:\\", "E:", "\\\\host\\share\\d\\"}), true);

    EXPECT_THAT(selection.folderSources(),
                ElementsAre("C:\\Docs\\", "D:\\", "E:\\", "\\\\host\\share\\d\\"));
    EXPECT_THAT(selection.fileSources(), ElementsAre("C:\\Work\\b.txt"));
}

TEST(Selection, WritesEachPathInOneWay)
{
    const Selection selection(profileOf({"c:\\\\Work\\\\\\a\\", "\\\\host\\\\share\\f"}), true);

    EXPECT_THAT(selection.folderSources(), ElementsAre("C:\\Work\\a\\"));
    EXPECT_THAT(selection.fileSources(), ElementsAre("\\\\host\\share\\f"));
}

TEST(Selection, DropsRepeatedSources)
{
    const Selection selection(
        profileOf({"C:\\A\\", "c:\\A\\", "C:\\\\A\\", "C:\\f", "C:\\f", "D:", "D:\\"}), true);

    EXPECT_THAT(selection.folderSources(), ElementsAre("C:\\A\\", "D:\\"));
    EXPECT_THAT(selection.fileSources(), ElementsAre("C:\\f"));
    EXPECT_THAT(selection.nestedSources(), IsEmpty());
}

TEST(Selection, SetsSourcesAsideThatLieInsideAnother)
{
    const Selection selection(
        profileOf({"C:\\A\\B\\f.txt", "C:\\A\\B\\", "C:\\A\\", "C:\\AB\\", "C:\\A.txt", "C:\\A"}),
        true);

    EXPECT_THAT(selection.folderSources(), ElementsAre("C:\\A\\", "C:\\AB\\"));
    EXPECT_THAT(selection.fileSources(), ElementsAre("C:\\A.txt", "C:\\A"));
    EXPECT_THAT(selection.nestedSources(), ElementsAre("C:\\A\\B\\f.txt", "C:\\A\\B\\"));
}

TEST(Selection, TakesAWholeDriveOverEverythingOnIt)
{
    const Selection selection(profileOf({"C:\\A\\", "C:\\f", "D:\\A\\", "C:\\"}), true);

    EXPECT_THAT(selection.folderSources(), ElementsAre("D:\\A\\", "C:\\"));
    EXPECT_THAT(selection.fileSources(), IsEmpty());
}

TEST(Selection, TellsPathsThatDifferInCaseApartByTheFileSystemsRule)
{
    const EngineProfile profile = profileOf({"C:\\Docs\\", "C:\\docs\\", "C:\\DOCS\\a.txt"});

    EXPECT_THAT(Selection(profile, true).folderSources(), ElementsAre("C:\\Docs\\", "C:\\docs\\"));
    EXPECT_THAT(Selection(profile, true).fileSources(), ElementsAre("C:\\DOCS\\a.txt"));
    EXPECT_THAT(Selection(profile, false).folderSources(), ElementsAre("C:\\Docs\\"));
    EXPECT_THAT(Selection(profile, false).nestedSources(), ElementsAre("C:\\DOCS\\a.txt"));
}

} // namespace
} // namespace vardelin::engine
