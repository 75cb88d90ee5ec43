#include "profile/opening.h"
#include "profile/opening_texts.h"
#include "trace/messages.h"

#include <algorithm>

#include <fmt/format.h>

namespace vardelin::profile {
namespace {

namespace texts = opening_texts;

constexpr std::string_view kName = "ActivateSaveProfile";
constexpr std::string_view kModule = "modPrSaveOpen";
constexpr int kSourcesTab = 1;
constexpr int kOptionsTab = 2;

// A node with an empty text only stands for contents that were not read yet.
bool hasTickedNode(const state::TreeView& tree)
{
    for (std::size_t i = 1; i <= tree.count(); ++i) {
        const state::TreeNode& node = tree.node(i);
        if (node.checked && !node.text.empty())
            return true;
    }
    return false;
}

class SaveCheck {
public:
    SaveCheck(ProfileContext& context, state::ProfileFormState& window)
        : m_context(context), m_scalars(context.store.scalars), m_window(window)
    {
    }

    bool findSources();
    void refuseEmpty();
    void findDestination();

private:
    void block(int tab);
    void offerDefault();

    ProfileContext& m_context;
    state::ProfileScalars& m_scalars;
    state::ProfileFormState& m_window;
};

bool SaveCheck::findSources()
{
    if (m_scalars.bHaveSources || m_scalars.bHaveOtherData)
        return true;
    const state::ProfileEditorState& editor = m_context.editor;
    if (hasTickedNode(editor.tvwDirectory))
        m_scalars.bHaveSources = true;
    if (std::ranges::any_of(editor.lstOtherData.rows, &state::ListRow::selected))
        m_scalars.bHaveOtherData = true;
    if (m_scalars.bHaveSources || m_scalars.bHaveOtherData)
        return true;
    if (std::ranges::any_of(editor.lstInclude.rows, &state::ListRow::checked))
        m_scalars.bHaveIncluded = true;
    return m_scalars.bHaveIncluded;
}

// A plain save is not blocked by this check: its flags alone end it.
void SaveCheck::block(int tab)
{
    if (m_context.frame.BL_Confirm_Save_Running)
        m_context.frame.BL_Save_Blocked = true;
    m_scalars.iValidationTab = tab;
}

void SaveCheck::refuseEmpty()
{
    m_context.machine.messageBoxes.show(texts::kNothingSelected, texts::kTitle,
                                        platform::Buttons::Ok, platform::Icon::Exclamation);
    block(kSourcesTab);
    if (m_context.frame.BL_Confirm_Save_Running)
        m_window.SSTab1 = 0;
}

void SaveCheck::findDestination()
{
    m_scalars.bHaveDestination = !m_context.editor.txtDestLoc.text.empty();
    if (!m_scalars.bHaveDestination)
        offerDefault();
}

void SaveCheck::offerDefault()
{
    m_context.machine.messageLoop.yield();
    std::string& folder = m_scalars.sBackupPackageFolder;
    if (folder.empty())
        folder = m_context.frame.ST_App_Path + "\\BackupPackages";
    platform::MessageBoxes& boxes = m_context.machine.messageBoxes;
    const auto answer =
        boxes.show(fmt::format("{}{}{}", texts::kDefaultPathStart, folder, texts::kDefaultPathEnd),
                   texts::kTitle, platform::Buttons::YesNo, platform::Icon::Question);
    if (answer == platform::Answer::Yes) {
        m_context.editor.txtDestLoc.text = folder;
        m_scalars.bHaveDestination = true;
        const std::string_view trimmed = base::trim(folder);
        m_context.editor.CmbDestDrives.text = trimmed.substr(0, trimmed.find(':') + 1);
        return;
    }
    boxes.show(texts::kSelectLocation, texts::kTitle, platform::Buttons::Ok,
               platform::Icon::Exclamation);
    block(kOptionsTab);
}

} // namespace

void ActivateSaveProfile(ProfileContext& context, state::ProfileFormState& window)
{
    ++context.editor.revision;
    trace::runTraced(context.trace, kName, kModule, trace::message(texts::kSaveCheckFailed), [&] {
        SaveCheck check(context, window);
        if (check.findSources())
            check.findDestination();
        else
            check.refuseEmpty();
    });
}

} // namespace vardelin::profile
