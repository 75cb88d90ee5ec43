#include "archive/deletion.h"

#include "review_rig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace vardelin::archive {
namespace {

using test::ReviewRig;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::string_view kFile = "C:\\App\\Data\\list.txt";
using Filter = void (*)(ReviewContext&, const base::TextCollection&, std::string_view);

base::TextCollection items(std::initializer_list<std::string_view> texts)
{
    base::TextCollection collection;
    for (const std::string_view text : texts)
        collection.add(std::string(text));
    return collection;
}

TEST(RestDelFolder, DropsLinesThatHoldAnItemAsItStands)
{
    ReviewRig rig;
    rig.putFile(kFile, "C:\\w\\a\r\nC:\\W\\b\r\n\r\nD:\\x\\C:\\w\\\r\nE:\\e\r\n");
    RestDelFolder(rig.review, items({"C:\\w\\", "E:"}), "list.txt");
    EXPECT_EQ(rig.disk.readAll(kFile), "C:\\W\\b\r\n\r\n");
    EXPECT_FALSE(rig.disk.fileExists("C:\\App\\Data\\Tmplist.txt"));
    EXPECT_THAT(rig.errorsShown(), IsEmpty());
}

TEST(RestDelFiles, DropsLinesThatEqualAnItemInAnyCase)
{
    ReviewRig rig;
    rig.putFile(kFile, "C:\\w\\a\r\nC:\\W\\A\r\nC:\\w\\ab\r\n");
    RestDelFiles(rig.review, items({"c:\\w\\a", "w"}), "list.txt");
    EXPECT_EQ(rig.disk.readAll(kFile), "C:\\w\\ab\r\n");
    EXPECT_THAT(rig.errorsShown(), IsEmpty());
}

TEST(RestDelFilters, LeaveTheFileAloneWithoutItems)
{
    ReviewRig rig;
    rig.putFile(kFile, "a\nb");
    RestDelFolder(rig.review, items({}), "list.txt");
    RestDelFiles(rig.review, items({}), "list.txt");
    EXPECT_EQ(rig.disk.readAll(kFile), "a\nb");
}

struct FilterFailure {
    std::string_view call; // of the file system
    std::string_view part; // of its subject
    int number;
    std::string_view folderText;
    std::string_view filesText;
};

TEST(RestDelFilters, SayWhereTheyStopped)
{
    const FilterFailure cases[] = {
        {"folder.open", "list.txt", 53,
         "The File entry Does Not Exist while trying to delete the Folder list.txt",
         "The file Does Not Exist while trying to delete the file list.txt"},
        {"folder.open", "list.txt", 55,
         "The File is already Open while trying to delete  the Folder list.txt",
         "The File is already Open while trying to delete  the File list.txt"},
        {"folder.open", "list.txt", 70, "Error Occurred while Deleting the Folders in the Profile",
         "Error Occurred while Deleting the Files in the Profile"},
        {"folder.open", "Tmplist.txt", 70,
         "Error Occurred while Deleting the Folders in the Profile",
         "Error Occurred while Deleting the Files in the Profile"},
        {"file.read", "list.txt", 62, "list.txt The file has reached End of file",
         "list.txt The file has reached End of file"},
        {"folder.removeFile", "list.txt", 70, "list.txt Error occurred while killing the file",
         "list.txt Error occurred while killing the file"},
        {"folder.removeFile", "Tmplist.txt", 70, "list.txt Error occurred while killing the file",
         "list.txt Error occurred while killing the file"},
    };
    const std::pair<Filter, std::string> filters[] = {{&RestDelFolder, "RestDelFolder"},
                                                      {&RestDelFiles, "RestDelFiles"}};
    for (const FilterFailure& one : cases) {
        for (const auto& [filter, name] : filters) {
            ReviewRig rig;
            rig.putFile(kFile, "a\r\n");
            rig.script.failCallsNamed(std::string(one.call), one.number, std::string(one.part));
            filter(rig.review, items({"b"}), "list.txt");
            const auto text = name == "RestDelFolder" ? one.folderText : one.filesText;
            EXPECT_THAT(rig.errorsShown(), ElementsAre(std::to_string(one.number) + " " + name +
                                                       ": " + std::string(text)));
        }
    }
}

TEST(RestDelFilters, SayThatCopyingBackFailed)
{
    ReviewRig rig;
    rig.putFile(kFile, "a\r\n");
    rig.script.onCallsNamed("folder.removeFile", [&](const platform::CallScript::Call&) {
        rig.script.failCallsNamed("folder.open", 61, "list.txt");
    });
    RestDelFiles(rig.review, items({"b"}), "list.txt");
    EXPECT_THAT(rig.errorsShown(),
                ElementsAre("61 RestDelFiles: list.txt Error occurred while copying the file"));
    EXPECT_EQ(rig.disk.readAll("C:\\App\\Data\\Tmplist.txt"), "a\r\n"); // nothing is lost
}

} // namespace
} // namespace vardelin::archive
