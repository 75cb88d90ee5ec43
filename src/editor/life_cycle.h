#pragma once

#include "editor/pages_context.h"
#include "profile/editor_lists.h"
#include "state/main_frame_form.h"
#include "state/profile_form.h"

// frmProfile from its loading to its end: how it is set up, what its tabs and its quick help show,
// and how a profile opened for viewing becomes one that may be edited.
namespace vardelin::editor {

// Holds references only, as EditorContext does.
struct EditorFormContext {
    EditorContext& tree;
    PagesContext& pages;
    state::ProfileFormState& window;
    state::MainFrameForm& main;
    profile::EditorLists& lists;
};

// Unless it is loaded: the records of the form and of its pages begin anew and Form_Load runs. The
// form stays hidden until somebody shows it.
void loadProfileForm(EditorFormContext& context);
// Forgets what the form holds, and frmOtherdata with it: the ticks of a profile must not outlive
// it.
void unloadProfileForm(EditorFormContext& context);

// Sets an empty form up: the date and time of now, the drives, the lists of extensions, the first
// tab.
void Form_Load(EditorFormContext& context);

// The person chose a tab, from 0: its quick help shows. A click on a heading of the quick help
// shows that text and leaves the tab.
void SSTab1_Click(EditorFormContext& context, int tab);
void Label31_Click(EditorFormContext& context); // the third tab's
void Label32_Click(EditorFormContext& context); // the second tab's
void Label33_Click(EditorFormContext& context); // the first tab's

// Opens the profile in the form for changes: full lists with the saved ticks, the tree with the
// saved sources on its drives, everything enabled. Expects BL_Edit_Mode set and the other two modes
// cleared; sets no change flag and runs no handler. Moves `pb` to its maximum. What goes wrong is
// shown and leaves the form as far as it came.
void EditProfileChk(EditorFormContext& context);

} // namespace vardelin::editor
