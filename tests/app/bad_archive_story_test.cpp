#include "archive_story.h"

#include "base/runtime_error.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

// Archives, lists and targets that are not as they should be, at the window. Whatever happens, no
// file comes to a place where it does not belong, and none half.
namespace vardelin {
namespace {

using test::treeOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
namespace error_number = base::error_number;

constexpr const char* kRestored = "File(s) have been successfully restored";

class BadArchive : public test::ArchiveStory {
protected:
    void savedAndOpen(const test::StoryProfile& profile = {})
    {
        rig.scripted = true;
        begin(profile);
        backUp();
        openReview();
        openDown({"letters"});
        rig.messageBoxes.shown.clear();
        m_sources = treeOf(rig.folder / "sources");
        m_copies = treeOf(archive());
    }
    std::string elsewhere() const { return test::AppRig::drive(rig.folder / "elsewhere"); }
    test::Tree inElsewhere() const { return treeOf(rig.folder / "elsewhere"); }
    // Everything below the story's folder but what the program keeps for itself.
    test::Tree outside() const
    {
        test::Tree tree = treeOf(rig.folder.path());
        std::erase_if(tree, [](const auto& file) { return file.first.starts_with("app/"); });
        return tree;
    }
    // What the error dialogs said, one line each.
    std::string told() const
    {
        std::string lines;
        for (const auto& shown : rig.errorDialog.shown)
            lines += shown.txtProcName.text + ": " + shown.txtInf.text + "\n";
        return lines;
    }
    void expectUntouched() const
    {
        EXPECT_EQ(treeOf(rig.folder / "sources"), m_sources);
        EXPECT_EQ(treeOf(archive()), m_copies);
    }

    test::Tree m_sources;
    test::Tree m_copies;
};

TEST_F(BadArchive, AnArchiveThatVanishesUnderTheReviewIsToldAndComesBack)
{
    savedAndOpen();
    goTo("Files And Folders");
    QTest::keyClick(&list(), Qt::Key_Left);
    const std::filesystem::path away = rig.folder / "away";
    std::filesystem::rename(archive(), away);

    openDown({"letters"});
    EXPECT_THAT(below(source("letters\\")), ElementsAre("one.txt_Org", "two.txt_Org"));
    EXPECT_EQ(storage()
                  .lstRestore[static_cast<std::size_t>(rowOfKey(source("letters\\one.txt_000")))]
                  .size,
              "");
    EXPECT_EQ(told(), "") << "the rows come out of the list";

    select({source("letters\\one.txt_000")});
    restoreTo(elsewhere());
    EXPECT_THAT(
        rig.messageBoxes.texts(),
        ElementsAre("Some\\All File(s) have not been successfully restored because of  loss "
                    "of Backup files"));
    EXPECT_THAT(inElsewhere(), IsEmpty());
    EXPECT_FALSE(std::filesystem::exists(archive()));
    EXPECT_EQ(told(), "");

    const auto before = keys();
    select({source("letters\\one.txt_000")});
    remove();
    EXPECT_EQ(told(), "RestoreDel: Error Occurred while restore delete option in Storage Form\n");
    EXPECT_EQ(keys(), before);

    rig.errorDialog.shown.clear();
    std::filesystem::rename(away, archive());
    select({source("letters\\one.txt_000")});
    restoreTo(elsewhere());
    EXPECT_EQ(lastMessage(), kRestored);
    EXPECT_EQ(inElsewhere().size(), 1U);
    expectUntouched();
    EXPECT_EQ(told(), "");
}

TEST_F(BadArchive, ForeignFilesAreLeftAloneAndBreakNothing)
{
    savedAndOpen();
    closeReview();
    const std::filesystem::path place =
        archive() / "C" / std::filesystem::path(rig.folder / "sources/letters").relative_path();
    const auto plant = [&](const std::string& name) {
        std::filesystem::create_directories((place / name).parent_path());
        std::ofstream(place / name) << "foreign";
    };
    plant("notes.txt");                       // no mark
    plant("odd|name?\n_FULL_x");              // not a name that this machine's paths can hold
    plant(std::string(240, 'l') + "_Ver3_x"); // as long as it gets
    plant("foreign folder/deep/\xFF_FULL_x"); // no text in any encoding
    std::filesystem::create_directories(place / "empty");
    std::filesystem::create_symlink("/etc", place / "link");
    std::filesystem::create_symlink("/etc/passwd", place / "passwd_FULL_x");
    const test::Tree planted = treeOf(archive());

    openReview();
    openDown({"letters"});
    EXPECT_THAT(below(source("letters\\")),
                ElementsAre("foreign folder", std::string(240, 'l') + "_003",
                            "odd\xEF\x81\xBCname\xEF\x80\xBF\xEF\x80\x8A_Org", "one.txt_Org",
                            "passwd_Org", "two.txt_Org"));
    std::filesystem::remove_all(original("letters"));
    select({source("letters\\")});
    restoreTo(elsewhere());
    EXPECT_EQ(lastMessage(),
              "Some\\All File(s) have not been successfully restored because of  loss "
              "of Backup files");
    EXPECT_EQ(test::TempFolder::read(restored("letters/one.txt")), "first one\n");
    EXPECT_EQ(inElsewhere().size(), 2U) << "ours alone";
    EXPECT_EQ(treeOf(archive()), planted);
    EXPECT_EQ(told(), "");
}

TEST_F(BadArchive, AListThatIsGoneIsToldAndTheNextOpeningMakesItAnew)
{
    savedAndOpen();
    std::filesystem::remove(rig.folder / "app/model.txt");
    select({source("letters\\")});
    restoreTo(elsewhere());
    EXPECT_EQ(told(), "cmdOk_Click: Error while Opening the Profile to be restored\n");
    EXPECT_THAT(rig.messageBoxes.texts(), IsEmpty());
    EXPECT_THAT(inElsewhere(), IsEmpty());

    rig.errorDialog.shown.clear();
    goTo(source("letters\\"));
    QTest::keyClick(&list(), Qt::Key_Left);
    open(source("letters\\"));
    EXPECT_THAT(told(), HasSubstr("Error Occurred while Opening the File"));
    EXPECT_THAT(below(source("letters\\")), IsEmpty());
    expectUntouched();

    rig.errorDialog.shown.clear();
    closeReview();
    openReview();
    openDown({"letters"});
    EXPECT_EQ(below(source("letters\\")).size(), 2U);
    EXPECT_EQ(told(), "");
}

TEST_F(BadArchive, AListThatCannotBeReadOrWrittenIsTold)
{
    savedAndOpen();
    const std::string model = rig.folder / "app/model.txt";
    std::filesystem::remove(model);
    std::filesystem::create_directories(model + "/in the way");
    select({source("letters\\")});
    restoreTo(elsewhere());
    EXPECT_EQ(told(), "cmdOk_Click: Error while Opening the Profile to be restored\n");
    EXPECT_THAT(inElsewhere(), IsEmpty());

    // A deletion takes the copies first, as it does without a list.
    rig.errorDialog.shown.clear();
    closeReview();
    run("mnure");
    EXPECT_EQ(told(), "frmVDStorage_Load: Error While loading the VDStorage Form\n");
    EXPECT_TRUE(storage().lstRestore.empty());
    expectUntouched();

    rig.errorDialog.shown.clear();
    std::filesystem::remove_all(model);
    closeReview();
    openReview();
    EXPECT_THAT(keys(), ElementsAre("Files And Folders"));
    EXPECT_EQ(told(), "");
}

TEST_F(BadArchive, ALineOfTheListThatLeadsOutsideWritesNothingThere)
{
    savedAndOpen();
    rig.folder.write("secret/plan.txt_FULL_x", "secret");
    const std::string top = test::AppRig::drive(rig.folder.path());
    const std::vector<std::string> lines{
        "Files And Folders\\" + source("letters\\..\\..\\..\\secret\\plan.txt_000"),
        "Files And Folders\\" + source("letters\\..\\plans.doc_000"),
        "Files And Folders\\..\\secret\\plan.txt_000",
        "Files And Folders\\C:\\..\\..\\letters\\up.txt_000",
        "Files And Folders\\\\letters\\root.txt_000",
        "letters\\",
        "",
    };
    std::string model = modelText();
    for (const std::string& line : lines)
        model += line + "\r\n";
    rig.folder.write("app/model.txt", model);
    const test::Tree before = outside();
    select({source("letters\\")});
    restoreTo(elsewhere());
    test::Tree after = outside();
    std::erase_if(after, [](const auto& file) { return file.first.starts_with("elsewhere/C/"); });
    EXPECT_EQ(after, before);
    for (const auto& [path, bytes] : inElsewhere())
        EXPECT_TRUE(path.ends_with("letters/one.txt") || path.ends_with("letters/two.txt")) << path;

    // The same lines as rows: neither restored nor deleted.
    goTo(source("letters\\"));
    QTest::keyClick(&list(), Qt::Key_Left);
    open(source("letters\\"));
    open(source("letters\\..\\"));
    std::vector<std::string> odd;
    for (const std::string& key : keys()) {
        if (key.find("..") != std::string::npos)
            odd.push_back(key);
    }
    ASSERT_THAT(odd, Not(IsEmpty()));
    select(odd);
    restoreToPlaces();
    EXPECT_EQ(treeOf(rig.folder / "sources"), m_sources);
    select(odd);
    remove();
    EXPECT_EQ(treeOf(archive()), m_copies);
    EXPECT_EQ(test::TempFolder::read(rig.folder / "secret/plan.txt_FULL_x"), "secret");
}

TEST_F(BadArchive, TwoOddCopiesHaveRowsOfTheirOwnAndAThirdEndsTheLoad)
{
    savedAndOpen();
    closeReview();
    const std::filesystem::path place =
        archive() / "C" / std::filesystem::path(rig.folder / "sources/letters").relative_path();
    // Without an underscore in front of its mark a name gives a line without a tag.
    for (const char* name : {"aFULL", "bFULL"})
        std::ofstream(place / name) << "foreign";
    openReview();
    EXPECT_THAT(keys(),
                ElementsAre("Files And Folders", "Files And Folders\\" + source("letters\\a000"),
                            "Files And Folders\\" + source("letters\\b000")));
    EXPECT_EQ(told(), "");
    // Such a row stands for nothing that could be found.
    select({"Files And Folders\\" + source("letters\\a000")});
    const test::Tree before = outside();
    restoreTo(elsewhere());
    remove();
    EXPECT_EQ(outside(), before);
    closeReview();

    std::ofstream(place / "cFULL") << "foreign";
    rig.errorDialog.shown.clear();
    run("mnure");
    EXPECT_EQ(told(), "frmVDStorage_Load: Error While loading the VDStorage Form\n");
    EXPECT_TRUE(storage().lstRestore.empty());
    closeReview();

    rig.errorDialog.shown.clear();
    std::filesystem::remove(place / "cFULL");
    openReview();
    EXPECT_EQ(keys().size(), 3U);
    EXPECT_EQ(told(), "");
}

TEST_F(BadArchive, ATargetThatCannotBeMadeIsRefused)
{
    savedAndOpen();
    rig.folder.write("elsewhere/file", "a file");
    const test::Tree before = outside();
    select({source("letters\\")});
    rig.messageBoxes.answers = {platform::Answer::Ok, platform::Answer::Yes};
    restoreTo(elsewhere() + "\\file\\below");
    EXPECT_THAT(rig.messageBoxes.texts(), ElementsAre("Given Restore path is not existing",
                                                      "Do you want to create the folder?",
                                                      "Enter a Accessible path to restore"));
    EXPECT_EQ(outside(), before);
    rig.messageBoxes.shown.clear();
    restoreTo("Z:\\nowhere");
    EXPECT_THAT(rig.messageBoxes.texts(), ElementsAre("Enter the Existing Drive name to restore"));
    rig.messageBoxes.shown.clear();
    restoreTo("nowhere");
    EXPECT_THAT(rig.messageBoxes.texts(), ElementsAre("Enter a valid path to restore"));
    EXPECT_EQ(outside(), before);
    EXPECT_EQ(told(), "");
}

// What the disk refuses, and at which of the calls below the target.
struct Refusal {
    const char* call;
    int error;
    const char* reason;
};

TEST_F(BadArchive, ATargetWithoutRightsOrSpaceIsToldAndHoldsNothingHalf)
{
    constexpr Refusal kRefusals[]{
        {"folder.createFolder", error_number::kPermissionDenied, "Permission denied"},
        {"folder.open", error_number::kPermissionDenied, "Permission denied"},
        {"file.write", error_number::kDiskFull, "Disk full"},
        {"file.close", error_number::kDiskFull, "Disk full"},
        {"folder.rename", error_number::kPermissionDenied, "Permission denied"},
    };
    savedAndOpen();
    const test::Tree before = outside();
    for (const Refusal& refusal : kRefusals) {
        SCOPED_TRACE(refusal.call);
        rig.errorDialog.shown.clear();
        rig.messageBoxes.shown.clear();
        rig.script.failCallsNamed(refusal.call, refusal.error, "elsewhere");
        select({source("letters\\")});
        restoreTo(elsewhere());
        rig.script.reset();
        EXPECT_EQ(told(), "cmdOk_Click: Error occurred In the restoring process\n");
        EXPECT_THAT(errors(), HasSubstr(refusal.reason));
        EXPECT_THAT(rig.messageBoxes.texts(), IsEmpty());
        EXPECT_EQ(outside(), before);
    }
    rig.errorDialog.shown.clear();
    select({source("letters\\")});
    restoreTo(elsewhere());
    EXPECT_EQ(lastMessage(), kRestored);
    EXPECT_EQ(told(), "");
}

TEST_F(BadArchive, AHeadingRestoresAndDeletesNothing)
{
    savedAndOpen();
    const test::Tree before = outside();
    select({"Files And Folders"});
    rig.messageBoxes.shown.clear();
    QTest::keyClick(&list(), Qt::Key_Menu);
    EXPECT_THAT(rig.messageBoxes.texts(),
                ElementsAre("Select any Files\\Folders [or] Settings to restore"));
    rig.messageBoxes.shown.clear();
    select({"Files And Folders"});
    restoreTo(elsewhere());
    EXPECT_THAT(rig.messageBoxes.texts(), IsEmpty());
    select({"Files And Folders"});
    remove();
    EXPECT_EQ(outside(), before);
    EXPECT_EQ(told(), "");
}

TEST_F(BadArchive, ADamagedCopyIsLostAndTheOthersComeBack)
{
    savedAndOpen();
    for (const auto& entry : std::filesystem::recursive_directory_iterator(archive())) {
        if (entry.path().filename().string().starts_with("one.txt_FULL"))
            std::filesystem::resize_file(entry.path(), entry.file_size() - 3);
    }
    select({source("letters\\")});
    restoreTo(elsewhere());
    EXPECT_EQ(lastMessage(),
              "Some\\All File(s) have not been successfully restored because of  loss "
              "of Backup files");
    EXPECT_FALSE(std::filesystem::exists(restored("letters/one.txt")));
    EXPECT_EQ(test::TempFolder::read(restored("letters/two.txt")), "first two\n");
    EXPECT_EQ(inElsewhere().size(), 1U);
    EXPECT_EQ(treeOf(rig.folder / "sources"), m_sources);
    EXPECT_EQ(told(), "");
}

// An uncompressed archive is listed by its backup; somebody may have put anything in its place.
TEST_F(BadArchive, AnUncompressedArchiveIsListedAnewAndItsFilesComeBack)
{
    savedAndOpen({.compress = false});
    EXPECT_EQ(below(source("letters\\")).size(), 2U);
    closeReview();
    rig.folder.write("app/Data/ReviewFiles.txt",
                     "x\r\ny\r\nz\r\nFiles And Folders\\C:\\..\\a_000\r\n");
    openReview();
    openDown({"letters"});
    EXPECT_EQ(below(source("letters\\")).size(), 2U);
    select({source("letters\\one.txt_000")});
    restoreTo(elsewhere());
    EXPECT_EQ(lastMessage(), kRestored);
    EXPECT_EQ(test::TempFolder::read(restored("letters/one.txt")), "first one\n");
    EXPECT_EQ(told(), "");
}

} // namespace
} // namespace vardelin
