#pragma once

#include "state/controls.h"
#include "state/tree_view.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace vardelin::state {

// The working copy of the profile in the editor, one field a control and named like it. The profile
// writer reads it, the profile reader writes it, the editor's pages bind to it. There is one
// instance, owned by the application.
//
// Whoever changes fields for the views to show again adds 1 to `revision`; a view compares it with
// the one that it has shown last. The constructor gives the state of a new profile.
struct ProfileEditorState {
    ProfileEditorState();

    std::uint64_t revision = 0;

    // Files and settings.
    TreeView tvwDirectory;
    ListBox lstOtherData; // multi-select
    ListBox lstInclude;   // with boxes; sub is the type text of the extension
    ListBox lstExclude;   // the same, on the second form
    TextBox txtInclNames; // comma separated
    TextBox txtExclNames;
    Frame fmeInclude;
    Frame fmeOtherData;
    Frame fmeExclude;
    Frame fmeFilesByNames;

    // Backup options.
    ComboBox CmbDestDrives;
    TextBox txtDestLoc;
    CheckBox chkPassword;
    TextBox txtPassWord;
    ComboBox cmbHintQues;
    TextBox txtHintAns;
    CheckBox chkEncrypt;
    CheckBox chkCompress{.value = 1};
    CheckBox chkWarn;
    TextBox txtWarn; // percent, with or without its sign
    CheckBox chkIdle;
    TextBox txtIdleTime; // minutes
    CheckBox chkSizeOfBkp;
    TextBox txtSizeOfBkp; // in the unit beside it
    ComboBox cmbSizeOfBkp;
    CheckBox chkQueueThrld;
    TextBox txtQueueThrld; // files
    CheckBox chkPrimary;

    // Schedule. The list rows of a pattern are selected by `selected`.
    CheckBox chkAutoSched;
    DatePicker dtpStDate;
    TimePicker dtpStTime;
    OptionButton optDaily;
    OptionButton optWeekly;
    OptionButton optMonthly;
    OptionButton optYearly;
    TextBox txtDailyRecur; // days
    TimePicker dtpDaily;
    TextBox txtWeeklyRecur; // weeks
    TimePicker dtpWeekly;
    ListBox lstWeekDays;
    TextBox txtMonthlyRecur; // months
    TimePicker dtpMonthly;
    ListBox lstMonthDate;
    TextBox txtYearlyRecur; // years
    TimePicker dtpYearly;
    ListBox lstMonth;
    ListBox lstYearDate;

    // Retention.
    OptionButton optVer1;
    OptionButton optVer2;
    OptionButton optVer3;
    OptionButton optVer4;
    OptionButton optVer5;
    OptionButton optVer6;
    OptionButton optVer7{.value = true};
    OptionButton optVer8;
    TextBox txtLatestVer;     // number of versions, for optVer6
    TextBox txtLatestDaysVer; // number of days, for optVer8
    Label Label4;             // "Days" behind txtLatestDaysVer
    Label Label9;             // beside txtWarn

    // Frames: 2 retention, 3 to 5 schedule, 6 to 9 the pages of the patterns, 10 security, 12
    // start-up, 13 destination, 14 password.
    Frame Frame1;
    Frame Frame2;
    Frame Frame3{.enabled = false};
    Frame Frame4{.enabled = false};
    Frame Frame5{.enabled = false};
    Frame Frame6;
    Frame Frame7{.visible = false};
    Frame Frame8{.visible = false};
    Frame Frame9{.visible = false};
    Frame Frame10;
    Frame Frame11;
    Frame Frame12;
    Frame Frame13;
    Frame Frame14;

    // The groups in the order of their numbers, 1 standing at index 0.
    std::array<OptionButton*, 4> patternOptions();
    std::array<const OptionButton*, 4> patternOptions() const;
    std::array<OptionButton*, 8> retentionOptions();
    std::array<const OptionButton*, 8> retentionOptions() const;
    std::array<Frame*, 4> patternPages();
};

// Shows the page of one pattern, counted from 1, and hides the others: all stand at the same place.
void showPatternPage(ProfileEditorState& editor, int pattern);

// The full contents of the schedule lists, nothing selected.
void fillDayNames(ListBox& list);   // "Sunday" to "Saturday"
void fillMonthNames(ListBox& list); // "January" to "December"
void fillMonthDates(ListBox& list); // "1" to "31"

// The first option that is on, counted from 1; 0 where none is.
template <std::size_t N>
int chosen(const std::array<const OptionButton*, N>& group)
{
    for (std::size_t i = 0; i < N; ++i) {
        if (group[i]->value)
            return static_cast<int>(i) + 1;
    }
    return 0;
}

// Switches one option on, counted from 1, and the others off, as a group of buttons does.
template <std::size_t N>
void choose(const std::array<OptionButton*, N>& group, int number)
{
    for (std::size_t i = 0; i < N; ++i)
        group[i]->value = static_cast<int>(i) + 1 == number;
}

} // namespace vardelin::state
