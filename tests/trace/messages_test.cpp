#include "trace/messages.h"

#include <gtest/gtest.h>

#include <string>

namespace vardelin::trace {
namespace {

TEST(Messages, EveryNumberOfTheTableHasAText)
{
    for (int number = kFirstMessage; number <= kLastMessage; ++number)
        EXPECT_FALSE(message(number).empty()) << number;
    EXPECT_EQ(message(40000), "");
    EXPECT_EQ(message(40106), "");
}

struct KnownText {
    int number;
    std::string_view text;
};

// The texts are known to people and to support as they are: misspelt, doubled, with blanks in front
// and a cut last word. One that is put right here no longer is the text that is searched for.
TEST(Messages, TextsStandToTheLetter)
{
    constexpr KnownText kTexts[] = {
        {40001, "Error Occurred When changing the Treeview backcolor"},
        {40012, "Error occurred  When Saving the Profiles"},
        {40013, " Error occured When Editing the Profiles"},
        {40025, "Error Occurred while Browsing the  Folder for Destination Location"},
        {40031, "Error ocurred when browisng for Destination"},
        {40040, "Error occured while expanding the tree view node process"},
        {40045, "Error Occured inChecking if sub tree is checked"},
        {40048, "Error occrred while selecting  the Network Drives"},
        {40062, " The file has reached End of file"},
        {40066, "Error occurred while Getting th File date"},
        {40071, "Error occured in the callback Procedure for browse dialo"},
        {40072, " The file Does Not Exist while trying to Encrypt the File"},
        {40075, "The file Does Not Exist while trying to Encrypt the File"},
        {40076, "The file Does Not Exist while trying to Encrypt the File"},
        {40079, "The File does not exist while trying to  Kill the file in the encrypting process"},
        {40082, "The File is already Open while trying to decrypt the File\""},
        {40084, "The file Does Not Exist while trying to decrypt the File"},
        {40085, "The file Does Not Exist while trying to Decrypt the File"},
        {40093, "The Path to save the Profile is not available"},
        {40096, "The Profile data associated with the currently selected profile was deleted."},
        {40097, "Reading the Lines from Profile has been terminated since no lines to read"},
        {40098, "When adding a file to the TreeView to show the selected item, this Error "
                "notified."},
        {40099, "When processing the String for getting the selected version number, this Error "
                "notified"},
        {40100, "Undefined Error in validating the inputs for the ProfileUndefined Error in "
                "validating the inputs for the Profile"},
        {40105, "Undefined error in loading list view for the VDStorage"},
    };
    for (const KnownText& known : kTexts)
        EXPECT_EQ(message(known.number), known.text) << known.number;
}

struct KnownSentence {
    std::string_view procedure;
    std::string_view text;
};

TEST(CustomMessage, SomeProceduresHaveASentenceOfTheirOwn)
{
    constexpr KnownSentence kSentences[] = {
        {"IsRecentProfile", "Error in Checking the existence of the Recent Profile"},
        {"RemoveRecVdpName", "Error occured in Removing the existent Recent Profile"},
        {"IsPrProFileExists", "Error in Checking the existence of the Primary Profile"},
        {"RemoveVdpName", "Error occured in Removing the existence Primary name"},
        {"DynRegFileCr", "Error in creating the Registry file for activating the Service"},
        {"EditSaveMode",
         "Error occured in Saving the profile by changing the already exsiting values"},
        {"CallingRestDlg", "Error occured when trying to restore the files\\folders"},
        {"PrFileDecrypt", "Error Occurred in the Decrypting process"},
        {"LineReverse", "Error occured whil reading and reversing the line"},
        {"ChangePrimaryProfile", "When Changing the Primary profile , Error has notified"},
        {"KillProcess", "Error occured in killing the process relevant to the Process Id"},
        {"GetActiveProcess",
         "Error in getting the Active process id for the VD application through Systray "},
        {"PrCopyFromDest", "Error when opening the profile from remote system"},
    };
    for (const KnownSentence& known : kSentences)
        EXPECT_EQ(customMessage(known.procedure), known.text) << known.procedure;
}

TEST(CustomMessage, OtherProceduresGiveTheirName)
{
    EXPECT_EQ(customMessage("mnuSave_Click"), "mnuSave_Click");
    EXPECT_EQ(customMessage("editsavemode"), "editsavemode") << "names are exact";
}

} // namespace
} // namespace vardelin::trace
