#include "frame/save_file.h"

#include "base/text.h"
#include "editor/source_capture.h"
#include "frame/frame_texts.h"
#include "frame/steps.h"
#include "profile/profile_change.h"
#include "profile/profile_format.h"
#include "profile/profile_lists.h"
#include "profile/profile_writer.h"
#include "profile/scramble_text.h"
#include "profile/scrambler.h"

#include <optional>
#include <utility>

namespace vardelin::frame {
namespace {

namespace texts = frame_texts;

constexpr std::string_view kEncryptKey = "Encrypt"; // with and without a blank before its `=`

// What the saved profile says of encryption; nothing where there is none, or it does not say.
std::optional<bool> savedEncryption(platform::FileSystem& files, const std::string& path)
{
    std::optional<bool> encrypts;
    base::PendingError unread;
    unread.attempt([&] {
        if (!files.fileExists(path))
            return;
        const std::string text = profile::unscrambleText(files.readAll(path));
        for (const std::string_view line : profile::fileLines(text)) {
            // The last one counts: one among the lines of the password is any text.
            if (base::equalsIgnoringCase(base::trim(base::beforeFirst(line, "=")), kEncryptKey))
                encrypts = base::equalsIgnoringCase(base::trim(profile::format::valueOf(line)),
                                                    profile::format::kTrue);
        }
    });
    return encrypts;
}

} // namespace

void SavePause::show(std::string_view text)
{
    state::FrameState& frame = m_context.profiles.frame;
    frame.panel1.text = text;
    const bool editChanged = std::exchange(frame.BL_Edit_Changed, false);
    const bool newChanged = std::exchange(frame.BL_New_Changed, false);
    m_context.profiles.machine.messageLoop.yield();
    m_sawChange = m_sawChange || frame.BL_Edit_Changed || frame.BL_New_Changed;
    frame.BL_Edit_Changed = frame.BL_Edit_Changed || editChanged;
    frame.BL_New_Changed = frame.BL_New_Changed || newChanged;
}

WrittenProfile writeProfile(FrameContext& context, const std::string& name, SavePause& pause)
{
    profile::ProfileContext& profiles = context.profiles;
    const std::string folder = profilesFolder(context);
    WrittenProfile result;
    // The writer sets them to what it writes; without a new file the old one's values hold.
    const state::ProfileScalars former = profiles.store.scalars;
    base::PendingError failure;
    failure.attempt([&] {
        profile::ProfileChange change(profiles.machine.fileSystem, folder, name);
        const std::optional<bool> encrypted =
            savedEncryption(profiles.machine.fileSystem, profilePath(context, name));
        editor::GettingChkedItems(context.form.tree);
        pause.show(texts::kSaving3);
        profile::GettingOtherBackUp(profiles);
        pause.show(texts::kSaving4);
        pause.show(texts::kSaving5);
        if (!profile::CreatingVdpFile(profiles, name, folder))
            return;
        change.plainWritten();
        pause.show(texts::kSaving5);
        context.schedules.WriteSchedReg(name);
        pause.show(texts::kSaving6);
        profile::ScrambleResult scrambled = profile::PrFileEncrypt(profiles, folder, name);
        if (scrambled.done)
            change.scrambled();
        result.done = scrambled.done || change.settle();
        result.encryptionChanged =
            encrypted && *encrypted != (profiles.editor.chkEncrypt.value == 1);
        result.lossyLines = std::move(scrambled.lossyLines);
    });
    if (!result.done)
        profiles.store.scalars = former;
    // Gathered anew for the next save; what stands in them twice would end it.
    profile::ClearCollectionsForSave(profiles);
    if (failure)
        throw base::RuntimeError(failure.number, failure.subject);
    return result;
}

} // namespace vardelin::frame
