#pragma once

#include "background/activation.h"
#include "frame/frame_context.h"
#include "platform/instance_lock.h"
#include "shell/file_types.h"
#include "state/splash_form.h"

#include <string>
#include <string_view>

// From the start of the process to a profile on show. Main puts up the splash; its timer loads the
// main frame (MDIForm_Load) and takes the splash away; from then on the program waits for commands.
namespace vardelin::frame {

// What start-up needs of the windows. A test answers from a script.
class StartUpWindow {
public:
    StartUpWindow() = default;
    StartUpWindow(const StartUpWindow&) = delete;
    StartUpWindow& operator=(const StartUpWindow&) = delete;
    virtual ~StartUpWindow() = default;

    // Comes back at once; from then on Timer1 ticks.
    virtual void showSplash() = 0;
    virtual void unloadSplash() = 0;
    // The main frame's size as it is going to be shown.
    virtual state::FrameSize frameSize() = 0;
    // Puts pb into the status bar's second panel, as large as that is.
    virtual void placeProgressBar() = 0;
    // Does nothing where the frame is on show already.
    virtual void showMainFrame() = 0;
};

// Holds references only, as FrameContext does.
struct StartUpContext {
    FrameContext& frame;
    state::frmSplash& splash;
    platform::InstanceLock& instance;
    StartUpWindow& window;
    background::ServicePlace& services;
    shell::FileTypes* fileTypes = nullptr; // none where the program registers no types
    std::string applicationFolder;         // in drive form, no backslash at its end
};

// The entry of the process. With another instance running in this folder it says so, and that is
// all. Otherwise a profile on the command line becomes the recent one, by its file name alone, and
// the splash comes up. False where the program is to end. Raises what the instance lock raises.
//
// `commandLine` is the whole of it as one path: the arguments with a blank between, made absolute,
// in drive form; empty where there are none. Quotation marks in it are part of the path.
bool Main(StartUpContext& context, std::string_view commandLine);

// The long form of a path; empty where it does not exist or is too long for one. Raises nothing.
std::string GetLongFileName(platform::MachineFacts& facts, std::string_view path);

// Handlers of frmSplash. Loading it finds out whether this is the first start after installation:
// BL_First_Run is set where the mark of the first start was missing and could be written. Without
// the mark every start would be the first one, which writes the default profile anew.
void Form_Load(StartUpContext& context);
// The first tick loads the main frame, the next one takes the splash away.
void Timer1_Timer(StartUpContext& context);
// Any key takes the splash away at once; before the first tick that ends the program.
void Form_KeyDown(StartUpContext& context);

// Fills the main frame and puts a profile on show: the default one on the first start, else the
// recent one, else the default one again. An error ends in the error dialog and leaves the frame as
// far as it came, which may be with the hourglass on. Commands that come in meanwhile do nothing.
//
// A profile that cannot be read whole, which was told, is not put up for change: an empty new one
// is, so that no save can put less in its place.
void MDIForm_Load(StartUpContext& context);

// The frame keeps the size that it had when it loaded, unless it is minimized.
state::FrameSize MDIForm_Resize(const state::MainFrameForm& form, bool minimized,
                                state::FrameSize now);

} // namespace vardelin::frame
