#pragma once

#include "base/dates.h"
#include "base/keyed_collection.h"
#include "platform/file_system.h"
#include "state/frame_state.h"
#include "trace/error_tail.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace vardelin::profile {

// Shared by all listings of the program.
struct ListingState {
    int depth = 0;            // how deep LoadFiles is in its recursion; 0 outside
    int SaveProgressStep = 3; // 3 to 7: the dots of the status text while a profile is saved
};

// What a listing works on. References only, kept by the application for longer than any listing.
struct ListingContext {
    platform::FileSystem& fileSystem;
    trace::TraceContext& trace;
    state::FrameState& frame;
    ListingState& listing;
};

// A file and a collection of files at once: a listing fills one instance with an instance per file.
class clsFiles {
public:
    explicit clsFiles(ListingContext context, std::string path = {});

    const std::string& sFilename() const noexcept { return m_path; }
    void sFilename(std::string_view path) { m_path = path; }
    std::string sName() const;             // without the extension
    std::string sNameAndExtension() const; // ends in a dot where there is no extension
    std::string sExtension() const;        // without its dot
    std::string sPath() const;             // the folder, with its backslash
    // UTC; 1 January 1601 for a file that cannot be opened.
    base::DateTime dCreated() const;

    // Lists the files that match `pattern`, a folder and a mask such as `C:\Data\*.vdp`, in place
    // of what the collection held, and sets `count`. With `recurse` the files of each subfolder
    // come before those of its folder. Within a folder the order is naturalLess. Links to files are
    // files; links to folders are left out, since they may lead in a circle. A folder that cannot
    // be listed has no files.
    //
    // Moves the frame's bar and, unless the list is for the open dialog, SaveProgressStep.
    void LoadFiles(std::string_view pattern, bool recurse, std::size_t& count);

    void Clear() { m_entries.clear(); }
    // The reference lives until the entry is removed. Raises 457 for a key that is taken.
    clsFiles& add(std::string_view path);
    clsFiles& add(std::string_view path, std::string_view key);
    // From 1. Raises 9 for an index out of range, 5 for an unknown key.
    clsFiles& Item(std::size_t index) const { return *m_entries.item(index); }
    clsFiles& Item(std::string_view key) const { return *m_entries.item(key); }
    std::size_t count() const noexcept { return m_entries.count(); }
    void Remove(std::size_t index) { m_entries.remove(index); }
    void Remove(std::string_view key) { m_entries.remove(key); }

private:
    void loadSubfolders(std::string_view pattern);
    void loadMatching(std::string_view pattern);
    void advance(double bound);

    ListingContext m_context;
    std::string m_path;
    base::KeyedCollection<std::unique_ptr<clsFiles>> m_entries;
};

} // namespace vardelin::profile
