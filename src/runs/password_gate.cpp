#include "runs/password_gate.h"

#include "base/runtime_error.h"
#include "base/text.h"
#include "profile/line_input.h"
#include "profile/scramble_text.h"
#include "profile/scrambler.h"
#include "runs/password_gate_texts.h"
#include "trace/error_tail.h"
#include "trace/messages.h"

#include <cstddef>
#include <optional>
#include <string>
#include <utility>

namespace vardelin::runs {
namespace {

using base::PendingError;
using base::RuntimeError;
using platform::FileSystem;
using profile::LineInput;
namespace error_number = base::error_number;
namespace format = profile::format;

constexpr std::string_view kTitle = "Vardelin";
constexpr std::string_view kModule = "MDIForm";
constexpr std::size_t kExtensionLength = 4;
constexpr std::size_t kShortestPassword = 6;
constexpr int kHintAttempts = 3; // wrong answers that are forgiven

void tell(const PasswordGateContext& context, std::string_view text)
{
    context.profiles.machine.messageBoxes.show(text, kTitle);
}

// A profile's path in the pieces that the gate works with.
struct ProfilePlace {
    std::string folder; // with its backslash
    std::string name;

    explicit ProfilePlace(std::string_view path)
    {
        const std::size_t slash = path.rfind('\\');
        if (slash == std::string_view::npos)
            throw RuntimeError(error_number::kInvalidCall, std::string(path));
        folder = path.substr(0, slash + 1);
        name = path.substr(slash + 1);
    }
    // The name without its extension.
    std::string stem() const
    {
        if (name.size() < kExtensionLength)
            throw RuntimeError(error_number::kInvalidCall, name);
        return name.substr(0, name.size() - kExtensionLength);
    }
    std::string plainCopy() const { return folder + "U" + stem() + ".txt"; }
};

void deletePlainCopy(PasswordGateContext& context)
{
    PendingError gone; // it may be deleted already
    gone.attempt([&] {
        context.profiles.machine.fileSystem.removeFile(
            ProfilePlace(context.profilePath).plainCopy());
    });
}

// Whether anything below the folder has a byte: an archive without one is none.
bool holdsData(FileSystem& fileSystem, std::string_view folder)
{
    const auto entries = fileSystem.list(folder);
    for (const platform::FolderEntryInfo& entry : entries) {
        if (entry.info.kind == platform::FileKind::Regular && entry.info.sizeBytes > 0)
            return true;
    }
    for (const platform::FolderEntryInfo& entry : entries) {
        if (entry.info.kind == platform::FileKind::Folder &&
            holdsData(fileSystem, platform::joinPath(folder, entry.name)))
            return true;
    }
    return false;
}

std::string nextLine(LineInput& lines)
{
    const auto line = lines.next();
    if (!line)
        throw RuntimeError(error_number::kPastEnd);
    return std::string(*line);
}

// What the profile's text says of its archive and its password.
struct Gate {
    bool archiveIsMissing = false;
    std::string passwordIsSet; // the section's first line
};

Gate readGate(PasswordGateContext& context, LineInput& lines, std::string_view stem, bool& found)
{
    state::FrameState& frame = context.profiles.frame;
    FileSystem& fileSystem = context.profiles.machine.fileSystem;
    Gate gate;
    while (const auto line = lines.next()) {
        frame.pb.value = frame.pb.maximum;
        if (base::equalsIgnoringCase(*line, format::kDestinationPath.opening)) {
            const std::string root = nextLine(lines) + "\\" + std::string(stem);
            if (!fileSystem.folderExists(root) || !holdsData(fileSystem, root)) {
                gate.archiveIsMissing = true;
                return gate;
            }
            found = true;
        } else if (base::equalsIgnoringCase(*line, format::kPassword.opening)) {
            gate.passwordIsSet = nextLine(lines);
            if (gate.passwordIsSet == format::kTrue) {
                frame.sGatePassword = nextLine(lines);
                frame.sHintQuestion = nextLine(lines);
                frame.sHintAnswer = nextLine(lines);
            } else if (gate.passwordIsSet == format::kFalse) {
                frame.bPwdPassed = true;
            }
            return gate;
        }
    }
    return gate;
}

// The gate of the profile in its plain copy. `step` is what an error is to be told as.
Gate readProfile(PasswordGateContext& context, std::string_view& step, bool& found)
{
    step = gate_texts::kSplitFailed;
    const ProfilePlace place(context.profilePath);
    const bool isPlain = profile::PrFileDecrypt(context.profiles, place.folder, place.name);
    // Told by the gate that stays shut; a later opening must not take it for its own.
    context.profiles.frame.bDecryptFileMissing = false;
    step = gate_texts::kNameFailed;
    const std::string plainCopy = place.plainCopy();
    // That was reported. A copy that lies there is of an earlier look and says what was then.
    if (!isPlain)
        return {};
    step = gate_texts::kPlainCopyMissing;
    LineInput lines(context.profiles.machine.fileSystem.readAll(plainCopy));
    step = trace::customMessage("PwdCheck");
    return readGate(context, lines, place.stem(), found);
}

void forgetSection(state::FrameState& frame)
{
    frame.sGatePassword.clear();
    frame.sHintQuestion.clear();
    frame.sHintAnswer.clear();
}

state::frmResPwd reviewForm()
{
    state::frmResPwd form;
    form.lblNewPass.visible = form.txtNewPass.visible = false;
    form.lblconfirm.visible = form.txtconfirm.visible = false;
    return form;
}

void ask(PasswordGateContext& context)
{
    context.profiles.frame.bPwdReviewMode = true;
    state::frmResPwd form = reviewForm();
    context.window.showReviewPassword(context, form);
}

void emptyAndFocus(PasswordGateContext& context, state::frmResPwd& form)
{
    form.txtRespwd.text.clear();
    context.window.setFocus("txtRespwd");
}

void emptyBothAndFocus(PasswordGateContext& context, state::frmResPwd& form)
{
    form.txtconfirm.text.clear();
    emptyAndFocus(context, form);
}

std::string hintCaption(const state::FrameState& frame)
{
    return frame.sHintQuestion + ":";
}

void checkPassword(PasswordGateContext& context, state::frmResPwd& form)
{
    state::FrameState& frame = context.profiles.frame;
    frame.bPwdPassed = form.txtRespwd.text == frame.sGatePassword;
    if (frame.bPwdPassed) {
        deletePlainCopy(context);
        form.loaded = false;
    } else {
        tell(context, gate_texts::kInvalidPassword);
        emptyAndFocus(context, form);
    }
}

void checkHintAnswer(PasswordGateContext& context, state::frmResPwd& form)
{
    state::FrameState& frame = context.profiles.frame;
    if (form.txtRespwd.text == frame.sHintAnswer) {
        form.txtconfirm.visible = form.lblconfirm.visible = true;
        form.Label1.caption = gate_texts::kConfirmNew;
        form.lblForgotPwd.visible = false;
        emptyAndFocus(context, form);
        return;
    }
    ++form.wrongHintAnswers;
    if (form.wrongHintAnswers <= kHintAttempts) {
        tell(context, gate_texts::kInvalidAnswer);
        emptyAndFocus(context, form);
        return;
    }
    form.loaded = false;
    deletePlainCopy(context);
    frame.bPwdPassed = false;
    tell(context, gate_texts::kCannotRetrieve);
    frame.panel1.text.clear();
}

void takeNewPassword(PasswordGateContext& context, state::frmResPwd& form)
{
    state::FrameState& frame = context.profiles.frame;
    const std::string first = form.txtRespwd.text;
    const std::string& second = form.txtconfirm.text;
    // One short entry passes here and the comparison decides.
    if (first.size() < kShortestPassword && second.size() < kShortestPassword) {
        tell(context, gate_texts::kTooShort);
        emptyBothAndFocus(context, form);
    } else if (first == second) {
        WriteTxtForNewProf(context, first);
        frame.bPwdPassed = true;
        form.loaded = false;
    } else {
        tell(context, gate_texts::kNotSame);
        emptyBothAndFocus(context, form);
        frame.bPwdPassed = false;
    }
}

// The archive's copy of the profile lies in the folder named by the profile's name up to its first
// dot, as far as this procedure goes.
void replaceArchiveCopy(PasswordGateContext& context, const ProfilePlace& place,
                        std::string_view destination)
{
    if (destination.empty())
        return;
    FileSystem& fileSystem = context.profiles.machine.fileSystem;
    const std::string root =
        std::string(destination) + "\\" + std::string(base::beforeFirst(place.name, "."));
    if (fileSystem.folderExists(root))
        fileSystem.replaceFile(platform::joinPath(root, place.name),
                               fileSystem.readAll(place.folder + place.name));
}

// The editor shows the same profile: its next save must not bring the former password back.
void renewInEditor(profile::ProfileContext& profiles, std::string_view newPassword)
{
    for (std::string* const held :
         {&profiles.store.scalars.sProfilePassword, &profiles.editor.txtPassWord.text}) {
        if (!held->empty() && *held == profiles.frame.sGatePassword)
            *held = newPassword;
    }
    ++profiles.editor.revision;
}

struct NewText {
    std::string text;
    std::string destination;
};

NewText withPassword(std::string plain, std::string_view oldPassword, std::string_view newPassword)
{
    NewText result;
    bool isDestination = false;
    LineInput lines(std::move(plain));
    while (const auto line = lines.next()) {
        if (std::exchange(isDestination, false))
            result.destination = *line;
        else
            isDestination = base::equalsIgnoringCase(*line, format::kDestinationPath.opening);
        result.text.append(*line == oldPassword ? newPassword : *line).append(format::kLineEnd);
    }
    return result;
}

} // namespace

void PwdCheck(PasswordGateContext& context, bool& found)
{
    constexpr std::string_view kName = "PwdCheck";
    state::FrameState& frame = context.profiles.frame;
    std::string_view step = trace::customMessage(kName);
    found = false;
    frame.bPwdReviewMode = false;
    frame.bPwdPassed = false;
    forgetSection(frame); // another profile's must not open this one
    PendingError failure;
    failure.attempt([&] {
        const trace::TraceScope scope(context.profiles.trace.trace, kName);
        const Gate gate = readProfile(context, step, found);
        frame.pb.value = 0;
        if (gate.archiveIsMissing)
            tell(context, gate_texts::kNoBackup);
        if (found && gate.passwordIsSet != format::kFalse)
            ask(context);
        else
            deletePlainCopy(context); // no dialog will
    });
    // The editor's own use of the form must not look like this one.
    frame.bPwdReviewMode = false;
    forgetSection(frame);
    if (!failure)
        return;
    frame.pb.value = 0;
    frame.bPwdPassed = false;
    deletePlainCopy(context);
    trace::errorTail(context.profiles.trace, {kName, kName, kModule, step}, failure);
}

void lblForgotPwd_Click(PasswordGateContext& context, state::frmResPwd& form)
{
    form.Label1.caption = hintCaption(context.profiles.frame);
    emptyAndFocus(context, form);
}

void cmdOk_Click(PasswordGateContext& context, state::frmResPwd& form)
{
    trace::runTraced(context.profiles.trace, "cmdOk_Click", "frmResPwd", "cmdOk_Click", [&] {
        const std::string& caption = form.Label1.caption;
        if (caption == gate_texts::kEnterPassword)
            checkPassword(context, form);
        else if (caption == hintCaption(context.profiles.frame))
            checkHintAnswer(context, form);
        else if (caption == gate_texts::kConfirmNew)
            takeNewPassword(context, form);
    });
}

void WriteTxtForNewProf(PasswordGateContext& context, std::string_view sNewPass)
{
    profile::ProfileContext& profiles = context.profiles;
    FileSystem& fileSystem = profiles.machine.fileSystem;
    trace::runTraced(
        profiles.trace, "WriteTxtForNewProf", kModule, trace::customMessage("WriteTxtForNewProf"),
        [&] {
            const ProfilePlace place(context.profilePath);
            const auto [text, destination] = withPassword(fileSystem.readAll(place.plainCopy()),
                                                          profiles.frame.sGatePassword, sNewPass);
            // Scrambled at once and not in a second step: the profile is never
            // missing, and never plain.
            fileSystem.replaceFile(place.folder + place.name, profile::scrambleText(text));
            renewInEditor(profiles, sNewPass);
            replaceArchiveCopy(context, place, destination);
        });
    deletePlainCopy(context);
}

} // namespace vardelin::runs
