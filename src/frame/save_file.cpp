#include "frame/save_file.h"

#include "editor/source_capture.h"
#include "frame/frame_texts.h"
#include "frame/steps.h"
#include "profile/profile_lists.h"
#include "profile/profile_writer.h"
#include "profile/scrambler.h"

#include <optional>
#include <utility>

namespace vardelin::frame {
namespace {

namespace texts = frame_texts;

// Keeps the old file beside the new one until the new one is scrambled: a plain profile must not
// stay, since reading it would unscramble it. The old file is kept as a copy, because the disk may
// be full by the time that it is needed, and a rename still works then.
class FileChange {
public:
    FileChange(FrameContext& context, const std::string& name)
        : m_files(context.profiles.machine.fileSystem), m_folder(profilesFolder(context)),
          m_name(name), m_profile(profilePath(context, name)),
          m_copy(profilePath(context, "~Profile.old"))
    {
        m_hadOld = m_files.fileExists(m_profile);
        if (m_hadOld)
            m_files.copyFile(m_profile, m_copy);
    }
    FileChange(const FileChange&) = delete;
    FileChange& operator=(const FileChange&) = delete;
    // Whatever ended the save, the person's wish to leave the program included.
    ~FileChange()
    {
        base::PendingError unsettled;
        if (!m_settled)
            unsettled.attempt([&] { settle(); });
    }

    // The plain text stands under the profile's name.
    void plainWritten() { m_plain = m_files.readAll(m_profile); }
    void scrambled()
    {
        m_settled = true;
        base::PendingError left; // the next save replaces a copy that stays
        if (m_hadOld)
            left.attempt([&] { m_files.removeFile(m_copy); });
    }
    // Something failed: where it came as far as the whole scrambled text, that is the profile;
    // otherwise the old file is, or none. True where the new one stands.
    bool settle();

private:
    bool isScrambled();

    platform::FileSystem& m_files;
    std::string m_folder;
    std::string m_name;
    std::string m_profile;
    std::string m_copy;
    std::optional<std::string> m_plain;
    bool m_hadOld = false;
    bool m_settled = false;
};

bool FileChange::isScrambled()
{
    if (!m_plain)
        return false; // it did not come that far
    const std::string scrambledFile = platform::joinPath(m_folder, "U" + m_name);
    profile::finishInterruptedScramble(m_files, m_folder, m_name);
    if (!m_files.find(m_profile) && m_files.find(scrambledFile))
        m_files.rename(scrambledFile, m_profile);
    return m_files.readAll(m_profile) != *m_plain;
}

bool FileChange::settle()
{
    if (isScrambled()) {
        scrambled();
        return true;
    }
    // What a failed write left under the name may be the whole plain text.
    if (m_hadOld)
        m_files.rename(m_copy, m_profile);
    else if (m_files.fileExists(m_profile))
        m_files.removeFile(m_profile);
    m_settled = true;
    return false;
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
        FileChange change(context, name);
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
