#pragma once

#include "editor/pages_context.h"
#include "editor_rig.h"

#include <deque>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace vardelin::test {

// Records what the handlers ask of the window. A modal form comes back at once unless the test
// says what a person does in it.
class ScriptedWindow final : public editor::EditorWindow {
public:
    std::vector<std::string> calls; // in their order
    std::function<void()> inOtherdata;
    std::function<void(state::frmResPwd&)> inResPwd;
    std::deque<std::string> folders; // the next choice of the folder browser; none cancels

    void showOtherdata() override
    {
        calls.emplace_back("showOtherdata");
        if (inOtherdata)
            inOtherdata();
    }
    void showResPwd(state::frmResPwd& form) override
    {
        calls.emplace_back("showResPwd");
        if (inResPwd)
            inResPwd(form);
    }
    std::string browseForFolder(std::string_view title, std::string_view start) override
    {
        calls.push_back("browse " + std::string(title) + ": " + std::string(start));
        if (folders.empty())
            return {};
        std::string folder = folders.front();
        folders.pop_front();
        return folder;
    }
    void setFocus(std::string_view control) override
    {
        calls.push_back("focus " + std::string(control));
    }
    void ensureVisible(std::string_view list) override
    {
        calls.push_back("visible " + std::string(list));
    }
    void clearClipboard() override { calls.emplace_back("clearClipboard"); }
};

// The editor's pages beside the tree. It is 10 March 2026, 9:05:03 in the morning, and a profile is
// being edited.
struct PagesRig : EditorRig {
    editor::PagesForm pagesForm;
    ScriptedWindow window;
    editor::PagesContext pages{machine, context, frame, record, store, form, pagesForm, window};

    PagesRig()
    {
        setLocalTime({{2026, 3, 10}, {9, 5, 3}});
        frame.BL_Edit_Mode = true;
    }
    void viewMode()
    {
        frame.BL_Open_Mode = true;
        frame.BL_Edit_Mode = frame.BL_New_Mode = false;
    }
    void firstRun() { frame.BL_First_Run = true; }
    std::vector<std::string> messages() const { return messageBoxes.texts(); }
    // Whether anything noted a change since the last call.
    bool changed()
    {
        const bool any = frame.BL_Edit_Changed || frame.BL_New_Changed;
        frame.BL_Edit_Changed = frame.BL_New_Changed = false;
        return any;
    }
    static std::vector<std::string> rowTexts(const state::ListBox& list)
    {
        std::vector<std::string> texts;
        for (const state::ListRow& row : list.rows)
            texts.push_back(row.text);
        return texts;
    }
    static std::vector<std::string> selectedRows(const state::ListBox& list)
    {
        std::vector<std::string> texts;
        for (const state::ListRow& row : list.rows) {
            if (row.selected)
                texts.push_back(row.text);
        }
        return texts;
    }
    static void select(state::ListBox& list, std::initializer_list<std::string_view> texts)
    {
        for (state::ListRow& row : list.rows) {
            for (const std::string_view text : texts)
                row.selected = row.selected || row.text == text;
        }
    }
    static std::size_t rowOf(const state::ListBox& list, std::string_view text)
    {
        for (std::size_t i = 0; i < list.rows.size(); ++i) {
            if (list.rows[i].text == text)
                return i;
        }
        throw base::RuntimeError(base::error_number::kElementNotFound, std::string(text));
    }
};

} // namespace vardelin::test
