#include "archive/catalog.h"

#include "archive/entry_names.h"
#include "base/runtime_error.h"
#include "platform/memory/counting_message_loop.h"
#include "platform/memory/scripted_file_system.h"
#include "support/trace_rig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vardelin::archive {
namespace {

using base::RuntimeError;
using test::TraceRig;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::string_view kRoot = "D:\\Backup\\Work\\";

std::string pathOf(std::string_view behindRoot)
{
    return std::string(kRoot).append(behindRoot);
}

struct NamingCase {
    std::string_view what;
    std::string_view behindRoot;
    std::optional<std::string_view> line;
};

TEST(CatalogLine, NamesAnArchiveFile)
{
    const NamingCase cases[] = {
        {"full copy", "C\\work\\report.doc_FULL_1f-2-3.zst",
         "Files And Folders\\C:\\work\\report.doc_000"},
        {"one digit", "C\\work\\report.doc_Ver7_1f-2-3.zst",
         "Files And Folders\\C:\\work\\report.doc_007"},
        {"two digits", "C\\work\\report.doc_Ver12_", "Files And Folders\\C:\\work\\report.doc_012"},
        {"three digits", "C\\w\\a_Ver123_x", "Files And Folders\\C:\\w\\a_123"},
        {"four digits stay", "C\\w\\a_Ver1234_x", "Files And Folders\\C:\\w\\a_1234"},
        {"no digits stay none", "C\\w\\a_Ver_x", "Files And Folders\\C:\\w\\a_"},
        {"right on a drive", "C\\a.txt_FULL_x", "Files And Folders\\C:\\a.txt_000"},
        {"marks in any case", "C\\w\\a.txt_full_x", "Files And Folders\\C:\\w\\a.txt_000"},
        {"versions in any case", "C\\w\\a.txt_vER3_x", "Files And Folders\\C:\\w\\a.txt_003"},
        {"no extension", "C\\w\\README_Ver1_x", "Files And Folders\\C:\\w\\README_001"},
        {"no mark", "C\\w\\a.txt", std::nullopt},
        {"a record of the archive's own", "C\\w\\~folder_1ed-0-0-5.zst", std::nullopt},
        {"a file still being written", "C\\w\\~0123456789abcdef.tmp", std::nullopt},
        {"the mark counts in the name alone", "C\\full\\Ver1_\\a.txt", std::nullopt},
        {"marks in folders leave the name alone", "C\\full\\Ver1_\\a_Ver2_x",
         "Files And Folders\\C:\\full\\Ver1_\\a_002"},
        {"the last mark counts", "C\\w\\a_FULL_FULL_x", "Files And Folders\\C:\\w\\a_FULL_000"},
        {"the last version counts", "C\\w\\server.conf_Ver4_x",
         "Files And Folders\\C:\\w\\server.conf_004"},
        // FULL is looked for first and in the whole name, so a source whose name holds it is cut.
        {"full in a version's name", "C\\w\\Fullerton.doc_Ver2_x", "Files And Folders\\C:\\w\\000"},
        {"full behind a version", "C\\w\\carefully.txt_Ver7_1-2-3_FULL.zst",
         "Files And Folders\\C:\\w\\carefully.txt_Ver7_1-2-3_000"},
        {"the profile's copy in the root", "Work.vdp", std::nullopt},
        {"a profile named with a mark, in the root", "FullBackup.vdp", std::nullopt},
        {"a profile named with the other mark", "Server.vdp", std::nullopt},
        {"names in other letters", "C\\\xC3\xA4\\\xC3\xB6_Ver1_x",
         "Files And Folders\\C:\\\xC3\xA4\\\xC3\xB6_001"},
        {"blanks inside stay", "C\\my work\\a b_Ver1_ x ",
         "Files And Folders\\C:\\my work\\a b_001"},
        {"a first folder that is no letter", "Stray\\a_Ver1_x", "Files And Folders\\S:tray\\a_001"},
    };
    for (const NamingCase& one : cases) {
        const auto line = catalogLine(kRoot, pathOf(one.behindRoot));
        EXPECT_EQ(line.has_value(), one.line.has_value()) << one.what;
        if (line && one.line) {
            EXPECT_EQ(*line, *one.line) << one.what;
        }
    }
    EXPECT_EQ(catalogLine(kRoot, kRoot), std::nullopt);
    EXPECT_EQ(catalogLine(kRoot, "D:\\"), std::nullopt);
}

TEST(CatalogLine, RaisesForAVersionWithoutAnUnderscoreBehindIt)
{
    for (const std::string_view name : {"C\\Version.txt", "C\\a_Ver7", "C\\w\\oliver.doc"}) {
        try {
            catalogLine(kRoot, pathOf(name));
            FAIL() << name;
        } catch (const RuntimeError& error) {
            EXPECT_EQ(error.number(), 5) << name;
            EXPECT_EQ(error.subject(), pathOf(name));
        }
        EXPECT_EQ(entryOfFile(kRoot, pathOf(name)), std::nullopt) << name;
    }
}

TEST(CatalogLine, IsWellFormedForEveryNameThatTheEngineGives)
{
    const CopyMeta meta{0x1234, 0x17ff00, -1, ContentHash{0xfe, 0xed}};
    for (const std::string_view source :
         {"a", "report.doc", "server.conf", "Version.txt", "FULL", "carefully", "Fullerton_Ver2_",
          "_Ver1_", "ver", "x_000"}) {
        for (const int version : {0, 1, 12, 999}) {
            for (const Form form : {Form::Compressed, Form::Encrypted, Form::Stored}) {
                const std::string name = *copyName(source, version, meta, form);
                const auto line = catalogLine(kRoot, pathOf("C\\w\\" + name));
                ASSERT_TRUE(line) << name;
                EXPECT_TRUE(parseCatalogLine(*line).versioned) << *line;
            }
        }
    }
}

TEST(CatalogLine, GivesTheEntryByWhichACopyIsFound)
{
    const std::string path = pathOf("C\\work\\report.doc_Ver7_1-2-3.zst");

    EXPECT_EQ(entryOfFile(kRoot, path), "C:\\work\\report.doc_007");
    EXPECT_EQ(entryOf(*catalogLine(kRoot, path)), "C:\\work\\report.doc_007");
    // Exact, so version 1 never stands for version 12.
    EXPECT_NE(entryOfFile(kRoot, pathOf("C\\w\\a_Ver1_x")),
              entryOfFile(kRoot, pathOf("C\\w\\a_Ver12_x")));
    EXPECT_EQ(entryOf("no group"), "");
}

struct ParseCase {
    std::string_view line;
    std::string_view group;
    std::string_view folder;
    std::string_view name;
    std::string_view tag;
    bool versioned;
};

TEST(CatalogLine, IsTakenApart)
{
    const ParseCase cases[] = {
        {"Files And Folders\\C:\\work\\report.doc_007", "Files And Folders", "C:\\work\\",
         "report.doc", "007", true},
        {"Files And Folders\\C:\\a_000", "Files And Folders", "C:\\", "a", "000", true},
        {"Files And Folders\\C:\\w\\a_1234", "Files And Folders", "C:\\w\\", "a_1234", "234",
         false},
        {"Files And Folders\\C:\\w\\000", "Files And Folders", "C:\\w\\", "000", "000", false},
        {"Files And Folders\\C:\\w\\_001", "Files And Folders", "C:\\w\\", "", "001", true},
        // The rule looks at one byte alone, a folder's underscore included.
        {"G\\C:\\w_\\ab", "G", "C:\\w_\\", "", "\\ab", true},
        {"Group", "", "", "Group", "oup", false},
        {"ab", "", "", "ab", "ab", false},
        {"", "", "", "", "", false},
    };
    for (const ParseCase& one : cases) {
        const CatalogLine line = parseCatalogLine(one.line);
        EXPECT_EQ(line.group, one.group) << one.line;
        EXPECT_EQ(line.folder, one.folder) << one.line;
        EXPECT_EQ(line.name, one.name) << one.line;
        EXPECT_EQ(line.tag, one.tag) << one.line;
        EXPECT_EQ(line.versioned, one.versioned) << one.line;
    }
}

// An archive on the rig's disk, and the procedures' context.
struct Review {
    TraceRig rig;
    platform::CallScript script; // of the calls that reach the disk through `files`
    platform::ScriptedFileSystem files{rig.disk, script};
    platform::CountingMessageLoop loop;
    PacedLoop paced{loop, rig.clock};
    CatalogContext context{files, paced, rig.context, "C:\\App"};
    ReviewState state;

    Review()
    {
        state.sStoreRoot = kRoot;
        rig.disk.createFolders("C:\\App\\Data");
        rig.disk.createFolders("D:\\Backup\\Work");
    }

    void put(std::string_view behindRoot)
    {
        const std::string path = pathOf(behindRoot);
        rig.disk.createFolders(platform::parentOf(path));
        rig.putFile(path, "x");
    }
    void walk() { RecursiveCallForSubFolders(context, state, "D:\\Backup\\Work"); }
    void write() { WritingFileFromClxn(context, state, kRoot); }
    std::vector<std::string> found() const
    {
        std::vector<std::string> paths;
        for (std::size_t i = 1; i <= state.clxnArchiveFiles.count(); ++i)
            paths.push_back(state.clxnArchiveFiles.item(i));
        return paths;
    }
    std::string listing() { return rig.disk.readAll("C:\\App\\Data\\ReviewFiles.txt"); }
};

TEST(ArchiveWalk, TakesSubfoldersFirstAndEverythingInTheFoldersOrder)
{
    Review review;
    review.put("C\\b\\z_FULL_1");
    review.put("C\\b\\a_Ver12_1");
    review.put("C\\b\\a_Ver2_1");
    review.put("C\\b\\a_FULL_1");
    review.put("C\\A\\x_FULL_1");
    review.put("C\\A\\sub\\y_FULL_1");
    review.put("C\\on drive_FULL_1");
    review.put("Work.vdp");

    review.walk();

    EXPECT_THAT(review.found(), ElementsAre(pathOf("C\\A\\sub\\y_FULL_1"), pathOf("C\\A\\x_FULL_1"),
                                            pathOf("C\\b\\a_FULL_1"), pathOf("C\\b\\a_Ver2_1"),
                                            pathOf("C\\b\\a_Ver12_1"), pathOf("C\\b\\z_FULL_1"),
                                            pathOf("C\\on drive_FULL_1"), pathOf("Work.vdp")));
    EXPECT_FALSE(review.state.bOtherDataExists);
    EXPECT_THAT(review.rig.dialog.shown, IsEmpty());
}

TEST(ArchiveWalk, SeesOtherDataInAnyCaseAndDoesNotEnterIt)
{
    Review review;
    review.put("oTHERdATA\\Desktop Settings\\C\\a_FULL_1");
    review.put("C\\OtherData\\b_FULL_1"); // a source folder of the same name is no such folder

    review.walk();

    EXPECT_TRUE(review.state.bOtherDataExists);
    EXPECT_THAT(review.found(), ElementsAre(pathOf("C\\OtherData\\b_FULL_1")));
}

// A yield for each of a million names would take longer than the names do.
TEST(ArchiveWalk, YieldsWhereFiftyMillisecondsHavePassed)
{
    Review review;
    review.put("C\\a_FULL_1");
    review.put("C\\b_FULL_1");
    review.put("C\\c_FULL_1");
    review.walk(); // the clock stands still
    EXPECT_EQ(review.loop.yields, 0U);

    // Each look at the clock comes 25 ms behind the last one; one comes behind a yield, too.
    review.rig.clock.script().onCallsNamed("clock.steady", [&](const platform::CallScript::Call&) {
        review.rig.clock.advance(std::chrono::milliseconds(25));
    });
    review.walk(); // one folder and three files
    EXPECT_EQ(review.loop.yields, 2U);
    review.state.clxnArchiveFiles.clear();
    review.walk();
    EXPECT_EQ(review.loop.yields, 4U);
    review.write();
    EXPECT_EQ(review.loop.yields, 5U); // three lines
}

TEST(PathList, GivesBackWhatWasAdded)
{
    PathList list;
    const std::vector<std::string> paths{"D:\\a\\1",
                                         "D:\\a\\2",
                                         "D:\\b\\1",
                                         "D:\\a\\3",
                                         "no folder",
                                         "D:\\a\\",
                                         std::string(3'000'000, 'x')};
    for (const std::string& path : paths)
        list.add(path);

    ASSERT_EQ(list.count(), paths.size());
    for (std::size_t i = 0; i < paths.size(); ++i)
        EXPECT_EQ(list.item(i + 1), paths[i]);
    EXPECT_THROW(list.item(0), RuntimeError);
    EXPECT_THROW(list.item(paths.size() + 1), RuntimeError);
    list.clear();
    EXPECT_EQ(list.count(), 0U);
}

TEST(ArchiveRoot, IsTheProfilesFolderBelowTheDestination)
{
    EXPECT_EQ(archiveRoot("D:\\store", "Work.vdp"), "D:\\store\\Work\\");
    EXPECT_EQ(archiveRoot("D:\\", "Work.vdp"), "D:\\Work\\");
    EXPECT_EQ(archiveRoot("D:\\store", "my.backup.vdp"), "D:\\store\\my.backup\\");
    // Anything else would be the destination itself, and what is deleted would be all of it.
    for (const std::string_view name : {"", ".vdp", "vdp"})
        EXPECT_EQ(archiveRoot("D:\\store", name), "") << name;
    EXPECT_EQ(archiveRoot("", "Work.vdp"), "");
}

TEST(ArchiveWalk, TracesOneEntryForAllItsLevels)
{
    Review review;
    review.put("C\\a\\x_FULL_1");
    review.walk();

    // Three levels, each with its start and end.
    EXPECT_THAT(review.rig.entries(), ElementsAre("RecursiveCallForSubFolders End 6"));
}

TEST(ArchiveWalk, ReportsAFolderThatCannotBeListedAndGoesOnWithTheOthers)
{
    Review review;
    review.put("C\\a\\x_FULL_1");
    review.put("C\\b\\y_FULL_1");
    review.script.failCallsNamed("fs.openFolder", base::error_number::kPermissionDenied, "C\\a");

    review.walk();

    EXPECT_THAT(review.found(), ElementsAre(pathOf("C\\b\\y_FULL_1")));
    ASSERT_EQ(review.rig.dialog.shown.size(), 1U);
    EXPECT_EQ(review.rig.errors.LG_Err_Number, 70);
    EXPECT_EQ(review.rig.errors.ST_Err_Proc_Name, "RecursiveCallForSubFolders");
    EXPECT_EQ(review.rig.errors.ST_Err_Custom_Msg, "RecursiveCallForSubFolders");
    EXPECT_EQ(review.rig.dialog.shown.front().txtModName.text, "frmVDStorage");
}

TEST(ReviewFiles, HoldTheLinesInTheOrderOfTheWalk)
{
    Review review;
    review.put("C\\work\\report.doc_Ver2_1");
    review.put("C\\work\\report.doc_FULL_1");
    review.put("C\\work\\stray.txt");
    review.put("Work.vdp");
    review.walk();

    review.write();

    EXPECT_EQ(review.listing(), "Files And Folders\\C:\\work\\report.doc_000\r\n"
                                "Files And Folders\\C:\\work\\report.doc_002\r\n");
    EXPECT_TRUE(review.state.bFilesExist);
}

TEST(ReviewFiles, AreWrittenAnew)
{
    Review review;
    review.rig.putFile("C:\\App\\Data\\ReviewFiles.txt", "of another profile, and much longer");
    review.put("Work.vdp");
    review.walk();

    review.write();

    EXPECT_EQ(review.listing(), "");
    EXPECT_FALSE(review.state.bFilesExist); // nothing with a line was there
}

// A foreign file dropped into an archive ends the review; the names in front of it have their
// lines.
TEST(ReviewFiles, EndInTheTailAtANameThatCannotBeCut)
{
    Review review;
    review.put("C\\a_FULL_1");
    review.put("C\\Version.txt");
    review.put("C\\z_FULL_1");
    review.walk();

    review.write();

    EXPECT_EQ(review.listing(), "Files And Folders\\C:\\a_000\r\n");
    EXPECT_TRUE(review.state.bFilesExist);
    EXPECT_EQ(review.rig.errors.LG_Err_Number, 5);
    EXPECT_EQ(review.rig.errors.ST_Err_Proc_Name, "WritingFileFromClxn");
    EXPECT_EQ(review.rig.errors.ST_Err_Custom_Msg, "WritingFileFromClxn");
    EXPECT_THAT(review.rig.errors.ST_Err_Description,
                testing::AllOf(testing::StartsWith("Invalid procedure call or argument: "),
                               testing::HasSubstr("Version.txt")));
    EXPECT_THAT(review.rig.entries(), testing::Contains("WritingFileFromClxn Error 2"));
}

TEST(ReviewFiles, ReportAFolderThatIsMissing)
{
    Review review;
    review.rig.disk.removeFolder("C:\\App\\Data");

    review.write();

    EXPECT_EQ(review.rig.errors.LG_Err_Number, 76);
    EXPECT_EQ(review.rig.dialog.shown.size(), 1U);
}

TEST(ReviewFiles, OfAWholeArchivePassOverNamesThatCannotBeCut)
{
    Review review;
    review.rig.disk.removeFolder("C:\\App\\Data");
    review.put("C\\b\\a_FULL_1");
    review.put("C\\Version.txt");
    review.put("C\\z_Ver3_1");
    review.put("OtherData\\IE Favorites\\C\\q_FULL_1");

    writeReviewFiles(review.files, "C:\\App", kRoot);

    EXPECT_EQ(review.listing(), "Files And Folders\\C:\\b\\a_000\r\n"
                                "Files And Folders\\C:\\z_003\r\n");
    EXPECT_THAT(review.rig.entries(), IsEmpty()); // no trace: the engine has none
}

TEST(ReviewFiles, OfAWholeArchiveRaiseWhatTheDiskRaises)
{
    Review review;
    review.put("C\\a_FULL_1");
    review.script.failCallsNamed("file.write", base::error_number::kDiskFull);

    EXPECT_THROW(writeReviewFiles(review.files, "C:\\App", kRoot), RuntimeError);
}

// What is left of a list, or another archive's, would pass for this one's.
TEST(ReviewFiles, OfAWholeArchiveAreGoneAfterAnError)
{
    std::size_t calls = 0;
    for (std::size_t n = 1;; ++n) {
        Review review;
        review.put("C\\a_FULL_1");
        review.rig.putFile("C:\\App\\Data\\ReviewFiles.txt",
                           "Files And Folders\\D:\\other_000\r\n");
        review.script.failCall(n, base::error_number::kDeviceIo);
        std::size_t steps = 0;
        bool done = false;
        try {
            writeReviewFiles(review.files, "C:\\App", kRoot, [&] { ++steps; });
            done = true;
        } catch (const RuntimeError&) {
            EXPECT_FALSE(review.rig.disk.fileExists("C:\\App\\Data\\ReviewFiles.txt")) << n;
        }
        if (done) {
            EXPECT_EQ(review.listing(), "Files And Folders\\C:\\a_000\r\n");
            EXPECT_EQ(steps, 1U);
        }
        calls = review.script.callCount();
        if (n > calls)
            break;
    }
    EXPECT_GT(calls, 4U);
}

// Many lines: the blocks in which they are written must not show.
TEST(ReviewFiles, AreWholeForManyLines)
{
    Review review;
    std::string expected;
    for (int i = 0; i < 5000; ++i) {
        const std::string name = "a file with a name of some length " + std::to_string(i);
        review.state.clxnArchiveFiles.add(pathOf("C\\d\\" + name + "_FULL_1"));
        expected += "Files And Folders\\C:\\d\\" + name + "_000\r\n";
    }

    review.write();

    EXPECT_EQ(review.listing(), expected);
}

} // namespace
} // namespace vardelin::archive
