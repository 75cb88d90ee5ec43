#include "profile/scrambler.h"

#include "profile/scramble_text.h"
#include "store_rig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

namespace vardelin::profile {
namespace {

using test::StoreRig;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::string_view kFolder = "C:\\App\\Profiles";
constexpr std::string_view kProfile = "C:\\App\\Profiles\\A.vdp";
constexpr std::string_view kTemporary = "C:\\App\\Profiles\\UA.vdp";
constexpr std::string_view kKept = "C:\\App\\Profiles\\~UA.vdp.kept";
constexpr std::string_view kPlainCopy = "C:\\App\\Profiles\\UA.txt";
constexpr std::string_view kPlain = "[A.vdp]\r\n{Source files}\r\nC:\\Work\\\r\n\r\n";

ScrambleResult encrypt(StoreRig& rig)
{
    return PrFileEncrypt(rig.quiet, kFolder, "A.vdp");
}

bool decrypt(StoreRig& rig, std::string_view name = "A.vdp")
{
    return PrFileDecrypt(rig.quiet, "C:\\App\\Profiles\\", name);
}

TEST(Scrambler, ScramblesAProfileInPlaceAndLeavesNoTemporaryFile)
{
    StoreRig rig;
    rig.putFile(kProfile, kPlain);
    const ScrambleResult result = encrypt(rig);
    EXPECT_TRUE(result.done);
    EXPECT_THAT(result.lossyLines, IsEmpty());
    EXPECT_EQ(rig.contentOf(kProfile), scrambleText(kPlain));
    EXPECT_EQ(rig.disk.list(kFolder).size(), 1U);
    EXPECT_THAT(rig.dialog.shown, IsEmpty());
}

TEST(Scrambler, UnscramblesIntoATextFileBesideTheProfileWhichStays)
{
    StoreRig rig;
    rig.putFile(kProfile, scrambleText(kPlain));
    EXPECT_TRUE(decrypt(rig));
    EXPECT_EQ(rig.contentOf(kPlainCopy), kPlain);
    EXPECT_EQ(rig.contentOf(kProfile), scrambleText(kPlain));
}

TEST(Scrambler, ReplacesThePlainCopyThatACrashLeft)
{
    StoreRig rig;
    rig.putFile(kProfile, scrambleText(kPlain));
    rig.putFile(kPlainCopy, std::string(5000, 'x'));
    EXPECT_TRUE(decrypt(rig));
    EXPECT_EQ(rig.contentOf(kPlainCopy), kPlain);
}

TEST(Scrambler, CutsFourCharactersWhateverTheyAre)
{
    StoreRig rig;
    rig.putFile("C:\\App\\Profiles\\a.backup", "");
    EXPECT_TRUE(decrypt(rig, "a.backup"));
    EXPECT_EQ(rig.contentOf("C:\\App\\Profiles\\Ua.ba.txt"), "");
}

TEST(Scrambler, NameBelowFourCharactersIsAnInvalidCall)
{
    StoreRig rig;
    EXPECT_FALSE(decrypt(rig, "A"));
    EXPECT_EQ(rig.newestDialog(), "ModProfileEncDec|PrFileDecrypt|5|"
                                  "Error Occurred in the Decrypting process");
}

TEST(Scrambler, UnscramblingAPlainFileGivesAsManyLines)
{
    StoreRig rig;
    rig.putFile(kProfile, kPlain);
    EXPECT_TRUE(decrypt(rig));
    EXPECT_EQ(fileLines(rig.contentOf(kPlainCopy)).size(), fileLines(kPlain).size());
    EXPECT_THAT(rig.dialog.shown, IsEmpty());
}

TEST(Scrambler, MissingProfileTurnsUpEmpty)
{
    // The first look opens it for reading and writing, which makes it; only a file that cannot be
    // made is missing.
    StoreRig rig;
    EXPECT_TRUE(encrypt(rig).done);
    EXPECT_EQ(rig.contentOf(kProfile), "");
    StoreRig other;
    EXPECT_TRUE(decrypt(other));
    EXPECT_EQ(other.contentOf(kProfile), "");
    EXPECT_EQ(other.contentOf(kPlainCopy), "");
    EXPECT_FALSE(other.frame.bDecryptFileMissing);
}

TEST(Scrambler, ReadsAProfileThatMayNotBeWritten)
{
    StoreRig rig;
    rig.putFile(kProfile, scrambleText(kPlain));
    rig.disk.setReadOnly(kProfile);
    EXPECT_TRUE(decrypt(rig));
    EXPECT_EQ(rig.contentOf(kPlainCopy), kPlain);
}

TEST(Scrambler, UnscramblingClosesTheFileOfTheCommandLine)
{
    StoreRig rig;
    rig.putFile(kProfile, "");
    rig.fileNumbers.fileNumber1 = rig.disk.open(kProfile, platform::OpenMode::Read);
    decrypt(rig);
    EXPECT_NE(rig.fileNumbers.fileNumber1, nullptr);
    rig.frame.BL_Command_Line_Profile = true;
    decrypt(rig);
    EXPECT_EQ(rig.fileNumbers.fileNumber1, nullptr);
}

TEST(Scrambler, EncryptingMovesTheBarByItsShareAndEndsAtZero)
{
    StoreRig rig;
    rig.putFile(kProfile, "a\r\nb\r\nc\r\nd\r\n");
    rig.frame.pb.value = 75;
    double highest = 0;
    // The last look at the bar before the end: the temporary file is written with all lines done.
    rig.script.onCallsNamed("file.write", [&](const auto& call) {
        if (call.subject == kTemporary)
            highest = rig.frame.pb.value;
    });
    encrypt(rig);
    EXPECT_DOUBLE_EQ(highest, 93.75); // 4 steps of 25 / 4, but the last would reach the maximum
    EXPECT_EQ(rig.frame.pb.value, 0);
}

TEST(Scrambler, DecryptingMovesTheBarBelowFiftyAndEndsThere)
{
    StoreRig rig;
    rig.putFile(kProfile, "a\r\nb\r\nc\r\n");
    double highest = 0;
    rig.script.onCallsNamed("file.write", [&](const auto&) { highest = rig.frame.pb.value; });
    decrypt(rig);
    EXPECT_NEAR(highest, 33.333334, 1e-9); // steps of 50 / 3, rounded to 6 places
    EXPECT_EQ(rig.frame.pb.value, 50);
}

TEST(Scrambler, FileWithoutALineEndDoesNotMoveTheBar)
{
    for (const std::string_view text : {"abc", ""}) {
        StoreRig rig;
        rig.putFile(kProfile, text);
        rig.frame.pb.value = 3;
        double before = 0;
        rig.script.onCallsNamed("file.write", [&](const auto&) { before = rig.frame.pb.value; });
        EXPECT_TRUE(decrypt(rig));
        EXPECT_EQ(before, 3);
    }
}

TEST(Scrambler, TracesOneRecordForAllLines)
{
    StoreRig rig;
    rig.putFile(kProfile, "a\r\nb\r\nc\r\n");
    encrypt(rig);
    EXPECT_THAT(rig.ownEntries(),
                ElementsAre("PrFileEncrypt Start 1", "LineReverse End 6", "PrFileEncrypt End 1"));
}

// An entry is a write to the disk: one for each line would take seconds for a large profile.
TEST(Scrambler, TracesALargeFileWithNoMoreWritesThanASmallOne)
{
    std::size_t calls[2] = {};
    for (const std::size_t lines : {1U, 500U}) {
        StoreRig rig;
        std::string text;
        for (std::size_t i = 0; i < lines; ++i)
            text += "a\r\n";
        rig.putFile(kProfile, text);
        encrypt(rig);
        EXPECT_TRUE(decrypt(rig));
        calls[lines > 1 ? 1 : 0] = rig.traceDisk.script().callCount();
    }
    EXPECT_GT(calls[0], 0U);
    EXPECT_EQ(calls[1], calls[0]);
}

TEST(Scrambler, NamesTheLinesThatWillNotComeBackInResultAndTrace)
{
    StoreRig rig;
    rig.putFile(kProfile, "[A.vdp]\r\nab\xFF\r\nok\r\n\xFE\xFE\r\n");
    const ScrambleResult result = encrypt(rig);
    EXPECT_TRUE(result.done);
    EXPECT_THAT(result.lossyLines, ElementsAre(2U, 4U));
    const std::string log = rig.traceDisk.readAll(rig.ownTrace.logFileName());
    EXPECT_THAT(log, testing::HasSubstr("Error     Lossy line 2, 4"));
    EXPECT_EQ(rig.ownEntries().back(), "PrFileEncrypt Error 2");
    EXPECT_THAT(rig.dialog.shown, IsEmpty());
}

TEST(Scrambler, LineReverseTurnsALineAround)
{
    StoreRig rig;
    EXPECT_EQ(LineReverse(rig.quiet, "abc"), "cba");
    EXPECT_EQ(LineReverse(rig.quiet, ""), "");
}

struct FailureRow {
    const char* why;
    bool decrypts;
    const char* call;
    int number;
    const char* subject;
    std::string dialog; // behind "ModProfileEncDec|"
};

class ScramblerFailures : public testing::TestWithParam<FailureRow> {};

TEST_P(ScramblerFailures, ReportsItsTextAndLeavesTheProfile)
{
    const FailureRow& row = GetParam();
    StoreRig rig;
    rig.putFile(kProfile, row.decrypts ? scrambleText(kPlain) : std::string(kPlain));
    rig.script.failCallsNamed(row.call, row.number, row.subject);
    if (row.decrypts)
        EXPECT_FALSE(decrypt(rig));
    else
        EXPECT_FALSE(encrypt(rig).done);
    EXPECT_EQ(rig.newestDialog(), "ModProfileEncDec|" + row.dialog);
    EXPECT_EQ(rig.dialog.shown.size(), 1U);
    EXPECT_THAT(rig.ownEntries(),
                testing::Contains(testing::MatchesRegex("PrFile..crypt Error .")));
    EXPECT_EQ(rig.frame.bDecryptFileMissing,
              row.decrypts && std::string_view(row.why) == "1, missing");
}

const FailureRow kFailureRows[] = {
    {"1, missing", false, "folder.open", 53, "Profiles\\A.vdp",
     "PrFileEncrypt|53|C:\\App\\Profiles\\A.vdp"
     " The file Does Not Exist while trying to Encrypt the File"},
    {"1, open", false, "folder.open", 55, "Profiles\\A.vdp",
     "PrFileEncrypt|55|C:\\App\\Profiles\\A.vdp"
     "The File is already Open while trying to encrypt the File"},
    {"1, no rights", false, "folder.open", 70, "Profiles\\A.vdp",
     "PrFileEncrypt|70|Error occurred in the Encrypting Process"},
    {"2", false, "file.read", 57, "Profiles\\A.vdp",
     "PrFileEncrypt|57|C:\\App\\Profiles\\A.vdp"
     "The File is already reached the End of File while Reading in encrypting process"},
    {"3, missing", false, "folder.open", 53, "Profiles\\UA.vdp",
     "PrFileEncrypt|53|C:\\App\\Profiles\\UA.vdp"
     "The file Does Not Exist while trying to Encrypt the File"},
    {"3, open", false, "folder.open", 55, "Profiles\\UA.vdp",
     "PrFileEncrypt|55|C:\\App\\Profiles\\UA.vdp"
     "The file Does Not Exist while trying to Encrypt the File"},
    {"4", false, "folder.removeFile", 70, "Profiles\\A.vdp",
     "PrFileEncrypt|70|C:\\App\\Profiles\\A.vdp"
     "The File does not exist while trying to  Kill the file in the encrypting process"},
    {"5", false, "folder.open", 61, "Profiles\\~A.vdp.tmp",
     "PrFileEncrypt|61|C:\\App\\Profiles\\A.vdp"
     "The Source File Does Not Exist while trying to copy the File after encrypting."},
    {"6", false, "folder.removeFile", 70, "Profiles\\UA.vdp",
     "PrFileEncrypt|70|C:\\App\\Profiles\\UA.vdp"
     "The File does not exist while trying to  Kill the file in the encrypting process"},
    {"other", false, "file.write", 61, "Profiles\\UA.vdp",
     "PrFileEncrypt|61|Error occurred in the Encrypting Process"},
    {"1, missing", true, "folder.open", 53, "Profiles\\A.vdp",
     "PrFileDecrypt|53|C:\\App\\Profiles\\A.vdp"
     "The file Does Not Exist while trying to decrypt the File"},
    {"1, open", true, "folder.open", 55, "Profiles\\A.vdp",
     "PrFileDecrypt|55|C:\\App\\Profiles\\A.vdp"
     "The File is already Open while trying to decrypt the File\""},
    {"2", true, "file.read", 57, "Profiles\\A.vdp",
     "PrFileDecrypt|57|C:\\App\\Profiles\\A.vdp"
     "The File is already reached the End of File while Reading in decrypting process"},
    {"3, missing", true, "folder.open", 53, "Profiles\\UA.txt",
     "PrFileDecrypt|53|C:\\App\\Profiles\\UA.txt"
     "The file Does Not Exist while trying to decrypt the File"},
    {"3, open", true, "folder.open", 55, "Profiles\\UA.txt",
     "PrFileDecrypt|55|C:\\App\\Profiles\\UA.txt"
     "The file Does Not Exist while trying to Decrypt the File"},
    {"other", true, "file.write", 61, "Profiles\\UA.txt",
     "PrFileDecrypt|61|Error Occurred in the Decrypting process"},
};

INSTANTIATE_TEST_SUITE_P(AllStatuses, ScramblerFailures, testing::ValuesIn(kFailureRows));

TEST(Scrambler, ProfileThatCannotBeMadeIsMissing)
{
    StoreRig rig;
    rig.disk.setReadOnly(kFolder);
    EXPECT_FALSE(decrypt(rig));
    EXPECT_TRUE(rig.frame.bDecryptFileMissing);
    EXPECT_EQ(rig.newestDialog(), "ModProfileEncDec|PrFileDecrypt|53|C:\\App\\Profiles\\A.vdp"
                                  "The file Does Not Exist while trying to decrypt the File");
}

TEST(Scrambler, ProfileInAMissingFolderIsMissing)
{
    StoreRig rig;
    rig.disk.removeTree(kFolder);
    EXPECT_FALSE(decrypt(rig));
    EXPECT_TRUE(rig.frame.bDecryptFileMissing);
    EXPECT_FALSE(encrypt(rig).done);
    EXPECT_EQ(rig.newestDialog(), "ModProfileEncDec|PrFileEncrypt|76|C:\\App\\Profiles\\A.vdp"
                                  " The file Does Not Exist while trying to Encrypt the File");
}

TEST(Scrambler, FullDiskKeepsThePlainProfile)
{
    StoreRig rig;
    rig.putFile(kProfile, kPlain);
    rig.disk.setCapacity('C', kPlain.size() + 5);
    EXPECT_FALSE(encrypt(rig).done);
    EXPECT_EQ(rig.contentOf(kProfile), kPlain);
}

TEST(Scrambler, FlushesTheTemporaryFileBeforeItDeletesTheProfile)
{
    StoreRig rig;
    rig.putFile(kProfile, kPlain);
    encrypt(rig);
    std::optional<std::size_t> flushed;
    std::optional<std::size_t> deleted;
    const auto calls = rig.script.calls();
    for (std::size_t i = 0; i < calls.size(); ++i) {
        if (calls[i].name == "file.flush" && calls[i].subject == kTemporary)
            flushed = i;
        if (calls[i].name == "folder.removeFile" && calls[i].subject == kProfile)
            deleted = i;
    }
    ASSERT_TRUE(flushed && deleted);
    EXPECT_LT(*flushed, *deleted);
}

TEST(Scrambler, ProfileOfTheTemporaryNameSurvives)
{
    // The temporary file of A.vdp is UA.vdp, which a person may have given to another profile.
    StoreRig rig;
    rig.putFile(kProfile, kPlain);
    rig.putFile(kTemporary, "another profile\r\n");
    EXPECT_TRUE(encrypt(rig).done);
    EXPECT_EQ(rig.contentOf(kProfile), scrambleText(kPlain));
    EXPECT_EQ(rig.contentOf(kTemporary), "another profile\r\n");
    EXPECT_EQ(rig.contentOf(kKept), "absent");
}

enum class Blow { Fail, Kill };

// True once the procedure ran to its end untouched.
bool encryptWithBlow(StoreRig& rig, Blow blow, std::size_t call)
{
    if (blow == Blow::Fail)
        rig.script.failCall(call, 57);
    else
        rig.script.killAtCall(call);
    try {
        encrypt(rig);
    } catch (const platform::Killed&) {
        EXPECT_EQ(blow, Blow::Kill);
    }
    const bool untouched = rig.script.callCount() < call;
    rig.script.reset();
    return untouched;
}

TEST(Scrambler, EveryFailureAndDeathLeavesTheProfileInOneForm)
{
    for (const Blow blow : {Blow::Fail, Blow::Kill}) {
        bool untouched = false;
        bool gapSeen = false;
        for (std::size_t call = 1; !untouched; ++call) {
            ASSERT_LT(call, 200U);
            StoreRig rig;
            rig.putFile(kProfile, kPlain);
            untouched = encryptWithBlow(rig, blow, call);
            const std::string profile = rig.contentOf(kProfile);
            if (profile == "absent") {
                gapSeen = true;
                EXPECT_EQ(rig.contentOf(kTemporary), scrambleText(kPlain)) << call;
            } else if (profile != kPlain) {
                EXPECT_EQ(profile, scrambleText(kPlain)) << call;
            }
        }
        EXPECT_TRUE(gapSeen);
    }
}

TEST(Scrambler, EveryFailureAndDeathKeepsTheProfileOfTheTemporaryName)
{
    const std::string other = "another profile\r\n";
    for (const Blow blow : {Blow::Fail, Blow::Kill}) {
        bool untouched = false;
        for (std::size_t call = 1; !untouched; ++call) {
            ASSERT_LT(call, 200U);
            StoreRig rig;
            rig.putFile(kProfile, kPlain);
            rig.putFile(kTemporary, other);
            untouched = encryptWithBlow(rig, blow, call);
            // The next opening of either brings both back.
            EXPECT_TRUE(decrypt(rig, call % 2 == 0 ? "A.vdp" : "UA.vdp"));
            EXPECT_EQ(rig.contentOf(kTemporary), other) << call;
            EXPECT_EQ(rig.contentOf(kKept), "absent") << call;
            const std::string profile = rig.contentOf(kProfile);
            if (profile != kPlain) {
                EXPECT_EQ(profile, scrambleText(kPlain)) << call;
            }
        }
    }
}

TEST(Scrambler, EveryFailureWhileUnscramblingLeavesTheProfile)
{
    std::size_t call = 1;
    for (bool untouched = false; !untouched; ++call) {
        ASSERT_LT(call, 200U);
        StoreRig rig;
        rig.putFile(kProfile, scrambleText(kPlain));
        rig.script.failCall(call, 57);
        const bool done = decrypt(rig);
        untouched = rig.script.callCount() < call;
        EXPECT_EQ(done, rig.dialog.shown.empty());
        EXPECT_EQ(rig.contentOf(kProfile), scrambleText(kPlain));
        if (done) {
            EXPECT_EQ(rig.contentOf(kPlainCopy), kPlain);
        }
    }
}

} // namespace
} // namespace vardelin::profile
