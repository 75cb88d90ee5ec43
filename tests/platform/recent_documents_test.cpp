#include "platform/linux/recent_documents.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace vardelin::platform {
namespace {

constexpr std::int64_t kFirst = 1'773'133'503; // 2026-03-10 09:05:03 UTC

struct RecentRig {
    test::TempFolder folder;
    std::string data = folder / "share";
    std::string list() const { return test::TempFolder::read(data + "/recently-used.xbel"); }

    static std::size_t countOf(const std::string& text, const std::string& part)
    {
        std::size_t count = 0;
        for (std::size_t at = text.find(part); at != std::string::npos;
             at = text.find(part, at + 1))
            ++count;
        return count;
    }
};

TEST(RecentDocuments, MakeAListThatOnlyItsOwnerReads)
{
    const RecentRig rig;
    noteRecentDocument(rig.data, "/home/anna/Work.vdp", "text/plain", kFirst);
    EXPECT_EQ(rig.list(),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<xbel version=\"1.0\"\n"
              "      xmlns:bookmark=\"http://www.freedesktop.org/standards/desktop-bookmarks\"\n"
              "      xmlns:mime=\"http://www.freedesktop.org/standards/shared-mime-info\"\n"
              ">\n"
              "  <bookmark href=\"file:///home/anna/Work.vdp\" added=\"2026-03-10T09:05:03Z\" "
              "modified=\"2026-03-10T09:05:03Z\" visited=\"2026-03-10T09:05:03Z\">\n"
              "    <info>\n"
              "      <metadata owner=\"http://freedesktop.org\">\n"
              "        <mime:mime-type type=\"text/plain\"/>\n"
              "        <bookmark:applications>\n"
              "          <bookmark:application name=\"Vardelin\" exec=\"&apos;vardelin %u&apos;\" "
              "modified=\"2026-03-10T09:05:03Z\" count=\"1\"/>\n"
              "        </bookmark:applications>\n"
              "      </metadata>\n"
              "    </info>\n"
              "  </bookmark>\n"
              "</xbel>\n");
    const auto mode = std::filesystem::status(rig.data + "/recently-used.xbel").permissions();
    EXPECT_EQ(mode, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
}

TEST(RecentDocuments, KeepTheOtherEntriesAndWhatOthersSayOfThisOne)
{
    const RecentRig rig;
    const std::string others =
        "<xbel version=\"1.0\">\n"
        "  <bookmark href=\"file:///a.txt\" added=\"x\" modified=\"x\" visited=\"x\">\n"
        "    <info>theirs</info>\n  </bookmark>\n"
        "  <bookmark href=\"file:///b.vdp\" added=\"x\" modified=\"x\" visited=\"x\">\n"
        "    <info>also theirs</info>\n  </bookmark>\n</xbel>";
    rig.folder.write("share/recently-used.xbel", others);
    noteRecentDocument(rig.data, "/b.vdp", "", kFirst);
    const std::string list = rig.list();
    EXPECT_NE(list.find("<bookmark href=\"file:///a.txt\" added=\"x\" modified=\"x\" "
                        "visited=\"x\">\n    <info>theirs</info>"),
              std::string::npos);
    EXPECT_NE(list.find("<bookmark href=\"file:///b.vdp\" added=\"x\" "
                        "modified=\"2026-03-10T09:05:03Z\" visited=\"2026-03-10T09:05:03Z\">\n"
                        "    <info>also theirs</info>"),
              std::string::npos);
    EXPECT_EQ(RecentRig::countOf(list, "<bookmark href"), 2U);
}

TEST(RecentDocuments, ListADocumentOnce)
{
    const RecentRig rig;
    noteRecentDocument(rig.data, "/b.vdp", "", kFirst);
    noteRecentDocument(rig.data, "/c.vdp", "", kFirst);
    noteRecentDocument(rig.data, "/b.vdp", "", kFirst + 1);
    const std::string list = rig.list();
    EXPECT_EQ(RecentRig::countOf(list, "<bookmark href"), 2U);
    EXPECT_NE(list.find("added=\"2026-03-10T09:05:03Z\" modified=\"2026-03-10T09:05:04Z\""),
              std::string::npos);
    EXPECT_NE(list.find("application/octet-stream"), std::string::npos);
}

// A name must not break out of its attribute.
TEST(RecentDocuments, EncodeEveryByteOfAName)
{
    const RecentRig rig;
    noteRecentDocument(rig.data, "/a b\"<>&'%\n\xff\xc3\xa4.vdp", "", kFirst);
    EXPECT_NE(rig.list().find("href=\"file:///a%20b%22%3C%3E&amp;&apos;%25%0A%FF%C3%A4.vdp\""),
              std::string::npos)
        << rig.list();
}

TEST(RecentDocuments, LeaveAFileAloneThatIsNoList)
{
    const RecentRig rig;
    for (const char* text : {"", "something else", "<xbel version=\"1.0\">"}) {
        rig.folder.write("share/recently-used.xbel", text);
        noteRecentDocument(rig.data, "/b.vdp", "", kFirst);
        EXPECT_EQ(rig.list(), text);
    }
}

} // namespace
} // namespace vardelin::platform
