#pragma once

#include "profile/opening.h"
#include "profile/scramble_text.h"
#include "store_rig.h"

#include <string>
#include <string_view>
#include <vector>

namespace vardelin::test {

// Chooses `choice` and keeps what it was asked with.
class ScriptedChooser final : public profile::FileChooser {
public:
    std::string choice;
    std::vector<std::string> asked;

    std::string chooseFile(std::string_view title, std::string_view filter,
                           std::string_view startFolder) override
    {
        asked.push_back(std::string(title) + "; " + std::string(filter) + "; " +
                        std::string(startFolder));
        return choice;
    }
};

// The open dialog on a machine in memory. The trace goes to a disk of its own, so every call of
// `script` is one of the dialog's procedures.
struct OpeningRig : StoreRig {
    state::frmOpenProfile form;
    state::ProfileFormState window;
    profile::ListingState listing;
    profile::clsFiles found{{files, ownContext, frame, listing}};
    ScriptedChooser chooser;
    bool bProfileOpened = false;
    std::string lastSelected;
    profile::OpeningContext opening{quiet, form,    window,         listing,
                                    found, chooser, bProfileOpened, lastSelected};

    // The plain text of a profile with this file name, source and exclusion.
    static std::string plainText(std::string_view name, std::string_view source = "D:\\Work\\")
    {
        const std::string own(name);
        return textOf({"[" + own + "]", "{Source files}", std::string(source),
                       "{End Of Source files}", "{Destination path}", "E:\\Archive",
                       "{End Of Destination path}", "Backup versions =6?7", "Compress = True",
                       "Encrypt=False", "[End of " + own + "]"});
    }
    void putProfile(std::string_view path, std::string_view source = "D:\\Work\\")
    {
        disk.createFolders(platform::parentOf(path));
        putFile(path, profile::scrambleText(plainText(platform::leafOf(path), source)));
    }
    std::vector<std::string> rows() const
    {
        std::vector<std::string> texts;
        for (const state::ListRow& row : form.lstOpen.rows)
            texts.push_back(row.text + " in " + row.sub);
        return texts;
    }
    std::vector<std::string> names() const { return textsOf(form.lstOpen); }
    void list() { profile::GettingVdpFiles(opening); }
    void tick(std::string_view name, bool on = true)
    {
        for (std::size_t i = 0; i < form.lstOpen.rows.size(); ++i) {
            if (form.lstOpen.rows[i].text != name)
                continue;
            form.lstOpen.rows[i].checked = on;
            profile::lstOpen_ItemCheck(opening, i);
            return;
        }
        throw base::RuntimeError(base::error_number::kElementNotFound, std::string(name));
    }
    void open(std::string_view name)
    {
        list();
        tick(name);
        profile::cmdOpen_Click(opening);
    }
    std::vector<std::string> messages() const { return messageBoxes.texts(); }
    std::vector<std::string> sources() const { return store.opened.clxnOpenedSources.items(); }
};

} // namespace vardelin::test
