#include "trace/messages.h"

#include <array>
#include <cstddef>
#include <utility>

namespace vardelin::trace {
namespace {

constexpr std::size_t kMessageCount = kLastMessage - kFirstMessage + 1;

// In the order of their numbers; each comment gives the number of the line below it. The formatter
// is off so that one line is one message.
// clang-format off
constexpr std::array<std::string_view, kMessageCount> kMessages{
    // 40001
    "Error Occurred When changing the Treeview backcolor",
    "Error occured while loading mdiform",
    "Error occured When executing the API related to change the back color of the Left Panel",
    "String processing error when accessing Profile name and path",
    "When calling the Backup process from Menu, Error has been notified",
    "When closing the current profile, Error has been notified",
    "Some Unhandled Errors occured",
    "Error occurred When being edited the current profile",
    "Error occurred When being Expanded the node",
    "When opening the already saved Profile, Error has been notified",
    // 40011
    "Error occurred When viewing the Backedup files",
    "Error occurred  When Saving the Profiles",
    " Error occured When Editing the Profiles",
    "Error occurred When calling the Backup process component",
    "Error occurred When Selecting a specific items from Left Panel",
    "Error occurred When being Expanded the node for a deepest level",
    "Error occurred When being collapsed the node to all levels",
    "Error occurred When reading the Other data group",
    "When accumulating the required data for the Profile to be saved, Undefined Error notified",
    "Before decrypting the profile, String operation leads the error  when checking the Password",
    // 40021
    "String operation leads the error when checking the Password",
    "The decrypted profile is not available",
    "When displaying the input dialog to get the profile name, Unhandled Error notified",
    "When associating the Progress bar with the Panel, Unhandled error notified",
    "Error Occurred while Browsing the  Folder for Destination Location",
    "Error while Opening the Profile to be restored",
    "Error Occurred when the  file associated for the VD storage is read after it reaches end of file",
    "Error occurred In the restoring process",
    "Error Occured in Queuing process",
    "Error occured while processing the size of backupfile",
    // 40031
    "Error ocurred when browisng for Destination",
    "Error ocurred While Loading profile form",
    "Error occured when clicking the Excluding option in the List",
    "Error occurred when selecting the exclude option",
    "Error occured while Clicking the Include Option.",
    "Error occured when selecting the Include Option",
    "Error occurred when checking the Other data",
    "Error Occurred while loading the drives in the collection",
    "Error Occurred in Build Drives when adding to the treeview",
    "Error occured while expanding the tree view node process",
    // 40041
    "Error Occured in Checking the Nodes children to green  and checked",
    "Error occured at node path",
    "Error Occured at process function while loading parent node",
    "Error Occured in Checking if sub tree is clicked while loading",
    "Error Occured inChecking if sub tree is checked",
    "Error Occured inChecking if sub node colour gets changed",
    "Error occurred at the  file association",
    "Error occrred while selecting  the Network Drives",
    "Error while editing the already saved profiles",
    "The File Does Not Exist while loading the VDStorage Form",
    // 40051
    "The File associated with the current profile  is already Open when loading the VDStorage Form",
    "The File is Reached the End of File while reading to display the VDStorage Form",
    "Error While loading the VDStorage Form",
    "Error occurred while expanding the childitems",
    "The File is Reached the End of File while expanding the directory node  to display the VDStorage Form",
    "Error Occurred while Loading the Childitems in ListView of VDStorage",
    "Error occurred when removed the childitems in Storage Form",
    " Error occurred while copying the file",
    " Error occurred while killing the file",
    "Error Occurred while restore delete option in Storage Form",
    // 40061
    "Error Occurred while Deleting the Folders in the Profile",
    " The file has reached End of file",
    "Error Occurred while Deleting the Files in the Profile",
    "Error occurred while getting the File Size to display in the Storage",
    "Error Occurred while getting the handle for File Information",
    "Error occurred while Getting th File date",
    "Error occurred while coverting the system time to date",
    "Error occurred while trimming the String Buffer",
    "Error occurred while getting the Created date",
    "Error occurred while browsing the folder for destination Media",
    // 40071
    "Error occured in the callback Procedure for browse dialo",
    " The file Does Not Exist while trying to Encrypt the File",
    "The File is already Open while trying to encrypt the File",
    "The File is already reached the End of File while Reading in encrypting process",
    "The file Does Not Exist while trying to Encrypt the File",
    "The file Does Not Exist while trying to Encrypt the File",
    "The File does not exist while trying to  Kill the file in the encrypting process",
    "The Source File Does Not Exist while trying to copy the File after encrypting.",
    "The File does not exist while trying to  Kill the file in the encrypting process",
    "Error occurred in the Encrypting Process",
    // 40081
    "The file Does Not Exist while trying to decrypt the File",
    "The File is already Open while trying to decrypt the File\"",
    "The File is already reached the End of File while Reading in decrypting process",
    "The file Does Not Exist while trying to decrypt the File",
    "The file Does Not Exist while trying to Decrypt the File",
    "Error occurred When creating Registry Key for Profile Icon",
    "Error occurend when Saving the Key in the Registry",
    "Error occured when Saving the value in the Registry for icon association",
    "When checking whether the mandatory items have been selected for the Backup process, Error has notified",
    "While processing the File (or) Folder name string, Error has identified.",
    // 40091
    "While processing the File (or) Folder name string, Error has identified.",
    "While processing the File (or) Folder name string, Error has identified.",
    "The Path to save the Profile is not available",
    "When importing the Schedule options to the system local registry, Error has identified",
    "When deleting the Registry file, Error has identified",
    "The Profile data associated with the currently selected profile was deleted.",
    "Reading the Lines from Profile has been terminated since no lines to read",
    "When adding a file to the TreeView to show the selected item, this Error notified.",
    "When processing the String for getting the selected version number, this Error notified",
    "Undefined Error in validating the inputs for the ProfileUndefined Error in validating the inputs for the Profile",
    // 40101
    "Error occurred When getting the *.vdp files",
    "Undefined Error in getting the included extension files",
    "Error Occurred when loading the images",
    "Error Occurred when loading the images",
    "Undefined error in loading list view for the VDStorage",
};

constexpr std::array<std::pair<std::string_view, std::string_view>, 13> kCustomMessages{{
    {"IsRecentProfile", "Error in Checking the existence of the Recent Profile"},
    {"RemoveRecVdpName", "Error occured in Removing the existent Recent Profile"},
    {"IsPrProFileExists", "Error in Checking the existence of the Primary Profile"},
    {"RemoveVdpName", "Error occured in Removing the existence Primary name"},
    {"DynRegFileCr", "Error in creating the Registry file for activating the Service"},
    {"EditSaveMode", "Error occured in Saving the profile by changing the already exsiting values"},
    {"CallingRestDlg", "Error occured when trying to restore the files\\folders"},
    {"PrFileDecrypt", "Error Occurred in the Decrypting process"},
    {"LineReverse", "Error occured whil reading and reversing the line"},
    {"ChangePrimaryProfile", "When Changing the Primary profile , Error has notified"},
    {"KillProcess", "Error occured in killing the process relevant to the Process Id"},
    {"GetActiveProcess", "Error in getting the Active process id for the VD application through Systray "},
    {"PrCopyFromDest", "Error when opening the profile from remote system"},
}};
// clang-format on

} // namespace

std::string_view message(int number)
{
    if (number < kFirstMessage || number > kLastMessage)
        return {};
    return kMessages[static_cast<std::size_t>(number - kFirstMessage)];
}

std::string_view customMessage(std::string_view procedure)
{
    for (const auto& [name, text] : kCustomMessages) {
        if (name == procedure)
            return text;
    }
    return procedure;
}

} // namespace vardelin::trace
