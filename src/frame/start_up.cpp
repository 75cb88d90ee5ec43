#include "frame/start_up.h"

#include "base/runtime_error.h"
#include "base/text.h"
#include "editor/source_tree.h"
#include "frame/command.h"
#include "frame/frame_texts.h"
#include "frame/profile_commands.h"
#include "frame/steps.h"
#include "platform/file_system.h"
#include "profile/default_profile.h"
#include "profile/interrupted_saves.h"
#include "profile/list_file.h"
#include "profile/opening_texts.h"
#include "profile/plain_copy.h"
#include "profile/profile_reader.h"
#include "profile/scrambler.h"
#include "trace/messages.h"

#include <fmt/format.h>

namespace vardelin::frame {
namespace {

using platform::RegistryRoot;

constexpr std::string_view kDefaultName = "Default.vdp";
constexpr std::string_view kProfileLetters = "vdp"; // the end of a command line that is a profile
constexpr std::size_t kLongNameBytes = 400;         // room for a long name and its closing zero

// The mark of the first start.
constexpr std::string_view kMarkKey = "SOFTWARE\\Vardelin";
constexpr std::string_view kMarkName = "Started";
constexpr std::string_view kMarkText = "1";

// Timer1 goes from the first interval to the second when the main frame is loaded.
constexpr int kLoadInterval = 800; // milliseconds
constexpr int kShowInterval = 1000;

constexpr std::size_t kEditButton = 3;
constexpr std::size_t kBackupButton = 8;
constexpr std::size_t kReviewButton = 9;

// ---- the steps of MDIForm_Load, in their order

class Loading {
public:
    explicit Loading(StartUpContext& context)
        : m_context(context), m_profiles(context.frame.profiles), m_frame(m_profiles.frame),
          m_main(context.frame.main), m_form(context.frame.form)
    {
    }

    void run()
    {
        prepareFrame();
        showEmptyEditor();
        m_main.Toolbar1(kEditButton).enabled = false;
        m_main.mnuEdit.enabled = false;
        if (m_context.fileTypes != nullptr)
            m_context.fileTypes->ActivateForIcon();
        m_context.window.placeProgressBar();
        m_frame.BL_Is_NT = m_profiles.machine.facts.isNtPlatform();
        startMonitorsOnce();
        m_profiles.machine.messageLoop.yield();
        finishSaves();
        if (m_frame.BL_First_Run)
            makeDefaultProfile();
        else
            findRecentProfile();
        if (m_frame.BL_First_Run || m_frame.BL_Recent_Found) {
            displayProfile();
        } else {
            chooseDefaultProfile();
            if (displayProfile())
                repairPrimaryEntry();
        }
        m_frame.BL_Edit_Changed = false;
        m_main.maximizeBox = true;
    }

private:
    void prepareFrame()
    {
        m_main.hourglass = true;
        m_main.sizeAtLoad = m_context.window.frameSize();
        m_main.maximizeBox = false;
        m_frame.ST_App_Path = m_context.applicationFolder;
        m_main.Picture2Visible = false;
    }

    void showEmptyEditor()
    {
        editor::loadProfileForm(m_form);
        m_frame.BL_New_Mode = true;
        m_form.window.visible = false;
        m_form.window.caption = frame_texts::kDefaultCaption;
        showEditor();
        m_context.window.showMainFrame(); // a form of the frame that is shown shows the frame
    }

    void startMonitorsOnce()
    {
        background::ActivationContext activation{m_profiles.machine, m_profiles.trace};
        if (!background::isActivated(activation, m_frame.ST_App_Path))
            background::activateMonitors(activation, m_frame.ST_App_Path, m_frame.BL_Is_NT,
                                         m_context.services);
    }

    // Before anything looks for a profile: one that is missing would lose its entries.
    void finishSaves()
    {
        for (const profile::FinishedSave& save : profile::finishInterruptedSaves(
                 m_profiles.machine.fileSystem, profilesFolder(m_context.frame))) {
            if (!save.lossyLines.empty())
                refuse(m_context.frame, profile::lossyLinesText(save));
        }
    }

    void makeDefaultProfile()
    {
        profile::DefaultProf(m_profiles);
        m_frame.ST_Primary_Profile = kDefaultName;
        m_frame.ST_Recent_Profile = kDefaultName;
        m_frame.ST_Current_Profile = kDefaultName;
        profile::SetPrimaryProfile(m_profiles, kDefaultName);
        profile::SetRecentProfile(m_profiles, kDefaultName);
        m_frame.panel1.text = frame_texts::kDisplayingDefault;
    }

    void findRecentProfile()
    {
        profile::IsPrProFileExists(m_profiles, m_frame.BL_Primary_Found);
        profile::IsRecentProfile(m_profiles, m_frame.BL_Recent_Found);
        const std::string& name = m_frame.ST_Recent_Profile;
        if (name.empty())
            return;
        m_frame.ST_Current_Profile = name;
        m_frame.ST_Current_Profile_Path = profilePath(m_context.frame, name);
        captionEditor(m_context.frame, name);
        m_frame.panel1.text = fmt::format("{}{}{}", frame_texts::kDisplayingRecentStart,
                                          stemOf(name), frame_texts::kDisplayingRecentEnd);
    }

    void chooseDefaultProfile()
    {
        m_frame.BL_First_Run = true;
        if (!m_profiles.machine.fileSystem.fileExists(profilePath(m_context.frame, kDefaultName)))
            profile::DefaultProf(m_profiles);
        m_frame.ST_Primary_Profile = kDefaultName;
        m_frame.ST_Recent_Profile = kDefaultName;
        m_frame.ST_Current_Profile = kDefaultName;
    }

    // False where the profile could not be read.
    bool displayProfile()
    {
        m_form.window.visible = false;
        m_profiles.store.scalars.dStartDate = m_profiles.machine.clock.now().date;
        m_frame.BL_Loading_Profile = true;
        m_frame.BL_Open_Mode = true;
        clearSources();
        if (!readProfile()) {
            showNewProfile();
            return false;
        }
        m_frame.BL_Edit_Mode = true;
        m_frame.BL_New_Mode = false;
        m_frame.BL_New_Changed = false;
        m_frame.BL_Open_Mode = false;
        showEditor();
        editor::EditProfileChk(m_form);
        editor::TreeViewCollapse(m_form.tree, m_profiles.editor.tvwDirectory.count(), 1);
        openCommands();
        return true;
    }

    void clearSources()
    {
        m_profiles.store.save.clxnSources.clear();
        m_profiles.store.opened.clxnOpenedSources.clear();
        m_profiles.store.save.clxnFolderNames.clear();
        m_profiles.editor.tvwDirectory.clear();
    }

    bool readProfile()
    {
        const std::string folder = profilesFolder(m_context.frame) + "\\";
        const std::string& name = m_frame.ST_Recent_Profile;
        const bool isPlain = profile::PrFileDecrypt(m_profiles, folder, name);
        m_frame.bDecryptFileMissing = false; // the next Open would take it for its own
        const std::string plainName = fmt::format("U{}.txt", stemOf(name));
        if (!isPlain)
            return false;
        // Any bytes unscramble to something, and would come up as a profile without a source.
        if (!profile::adoptPlainCopy(m_profiles.machine.fileSystem, folder + plainName, name)) {
            refuse(m_context.frame, fmt::format("{}{}{}", profile::opening_texts::kNotValidStart,
                                                name, profile::opening_texts::kNotValidEnd));
            return false;
        }
        return profile::ActivateOpenProfile(m_profiles, plainName, folder);
    }

    void showNewProfile()
    {
        m_frame.BL_First_Run = false;
        m_frame.ST_Current_Profile.clear();
        m_frame.ST_Current_Profile_Path.clear();
        m_frame.BL_New_Changed = false;
        CreateNewProfile(m_context.frame);
    }

    void openCommands()
    {
        if (m_frame.BL_First_Run)
            checkPrimary();
        m_frame.BL_Edit_Changed = false;
        m_main.Toolbar1(kBackupButton).enabled = true;
        m_main.Toolbar1(kReviewButton).enabled = true;
        m_main.mnuBackup.enabled = true;
        m_main.mnure.enabled = true;
        m_frame.ST_Last_Saved_Profile = m_frame.ST_Current_Profile;
        m_frame.ST_Current_Profile_Path = profilePath(m_context.frame, m_frame.ST_Recent_Profile);
    }

    void repairPrimaryEntry()
    {
        bool found = false;
        profile::IsPrProFileExists(m_profiles, found);
        if (!found || !m_profiles.machine.fileSystem.fileExists(
                          profilePath(m_context.frame, m_frame.ST_Primary_Profile))) {
            profile::RemoveVdpName(m_profiles);
            profile::SetPrimaryProfile(m_profiles, kDefaultName);
            checkPrimary();
        } else if (base::equalsIgnoringCase(m_frame.ST_Primary_Profile, kDefaultName)) {
            checkPrimary();
        }
        bool hasRecent = false;
        profile::IsRecentProfile(m_profiles, hasRecent);
        if (hasRecent)
            profile::RemoveRecVdpName(m_profiles);
        profile::SetRecentProfile(m_profiles, kDefaultName);
    }

    void checkPrimary() { m_profiles.editor.chkPrimary.value = 1; }

    void showEditor()
    {
        m_form.window.visible = true;
        m_context.frame.window.showEditor();
    }

    StartUpContext& m_context;
    profile::ProfileContext& m_profiles;
    state::FrameState& m_frame;
    state::MainFrameForm& m_main;
    editor::EditorFormContext& m_form;
};

void unloadSplash(StartUpContext& context)
{
    context.splash.loaded = false;
    context.splash.Timer1.Enabled = false;
    context.window.unloadSplash();
}

void takeProfileOfCommandLine(StartUpContext& context, std::string_view path)
{
    if (!base::endsWithIgnoringCase(base::trim(path), kProfileLetters))
        return;
    profile::ProfileContext& profiles = context.frame.profiles;
    profile::RemoveRecVdpName(profiles);
    profile::SetRecentProfile(profiles, base::afterLast(path, "\\"));
    profiles.frame.BL_Command_Line_Profile = true;
}

} // namespace

bool Main(StartUpContext& context, std::string_view commandLine)
{
    constexpr std::string_view kName = "Main";
    profile::ProfileContext& profiles = context.frame.profiles;
    if (!context.instance.acquire()) {
        profiles.machine.messageBoxes.show(frame_texts::kAlreadyOpen, frame_texts::kTitle);
        return false;
    }
    // The list of recent profiles is found by it, before the main frame is there.
    profiles.frame.ST_App_Path = context.applicationFolder;
    base::PendingError unlisted;
    unlisted.attempt([&] {
        takeProfileOfCommandLine(context, GetLongFileName(profiles.machine.facts, commandLine));
    });
    // The person is told; the program starts without the profile that was asked for.
    trace::errorTail(profiles.trace, {kName, kName, kModule, trace::customMessage(kName)},
                     unlisted);
    Form_Load(context);
    context.window.showSplash();
    return true;
}

std::string GetLongFileName(platform::MachineFacts& facts, std::string_view path)
{
    std::string name;
    base::PendingError unknown;
    unknown.attempt([&] { name = facts.longPathName(path); });
    return name.size() < kLongNameBytes ? name : std::string();
}

void Form_Load(StartUpContext& context)
{
    context.splash.loaded = true;
    state::FrameState& frame = context.frame.profiles.frame;
    if (frame.BL_First_Run)
        return;
    platform::Registry& registry = context.frame.profiles.machine.registry;
    base::PendingError unmarked;
    unmarked.attempt([&] {
        if (registry.value(RegistryRoot::LocalMachine, kMarkKey, kMarkName))
            return;
        registry.setString(RegistryRoot::LocalMachine, kMarkKey, kMarkName, kMarkText);
        frame.BL_First_Run = true;
    });
}

void Timer1_Timer(StartUpContext& context)
{
    if (!context.splash.loaded)
        return; // a tick that was under way when the form went
    state::MainFrameForm& main = context.frame.main;
    if (context.splash.Timer1.Interval != kLoadInterval) {
        unloadSplash(context);
        return;
    }
    if (!main.loaded) {
        main.loaded = true;
        MDIForm_Load(context);
        context.window.showMainFrame(); // also as far as it came
    }
    // Ticks arrive while the frame loads, too.
    if (context.splash.loaded)
        context.splash.Timer1.Interval = kShowInterval;
}

void Form_KeyDown(StartUpContext& context)
{
    if (!context.splash.loaded)
        return;
    unloadSplash(context);
    if (!context.frame.main.loaded)
        context.frame.window.endApplication();
}

void MDIForm_Load(StartUpContext& context)
{
    constexpr std::string_view kName = "MDIForm_Load";
    profile::ProfileContext& profiles = context.frame.profiles;
    const CommandRun run(context.frame.main);
    profiles.trace.trace.WriteRunTrace("Application", "Start", true);
    bool done = false;
    trace::runTraced(profiles.trace, kName, kModule, trace::customMessage(kName), [&] {
        Loading(context).run();
        done = true;
    });
    if (done)
        context.frame.main.hourglass = false;
    ++profiles.editor.revision;
}

state::FrameSize MDIForm_Resize(const state::MainFrameForm& form, bool minimized,
                                state::FrameSize now)
{
    return minimized ? now : form.sizeAtLoad;
}

} // namespace vardelin::frame
