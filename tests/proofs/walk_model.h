#pragma once

#include "engine/engine_world.h"

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

// What a random walk expects of the engine, kept beside it in plain maps: the rules of what is
// saved, what a restore brings, and what a run that died may leave.
namespace vardelin::proofs {

inline const std::string kData = "C:\\data\\";

// A file or link of a tree as it stands; folders have no content.
struct Thing {
    platform::FileKind kind = platform::FileKind::Regular;
    std::string content; // of a file, or a link's target
    std::uint32_t mode = 0;
    std::int64_t modifiedNs = 0;
    friend bool operator==(const Thing&, const Thing&) = default;
};
using Tree = std::map<std::string, Thing>; // full paths, folders with a backslash at their end

// A tree of the machine, links as they stand. `base` ends in a backslash.
Tree treeOf(platform::FileSystem& files, const std::string& base);
// In words; empty where both are alike. Folders count by their being there alone, and links by
// their targets.
std::string differenceOf(const Tree& expected, const Tree& found);

struct SavedCopy {
    Thing thing;
    std::int64_t savedNs = 0;
    std::string password;  // in force when it was saved; empty for none
    std::uint64_t tag = 0; // of the password, as the copy's name has it
    archive::Form form = archive::Form::Compressed;
};

// What the profile says at a backup.
struct Settings {
    std::string password;
    std::uint64_t tag = 0; // under which the run saves
    bool encrypt = false;
    bool compress = true;
    int newest = 0; // so many versions stay beside the full copy, the newest in any case; 0: all

    archive::Form formOf(const Thing& thing) const;
    // Whether a copy is what today's settings would save.
    bool accept(const SavedCopy& copy) const;
};

class WalkModel {
public:
    using Versions = std::map<int, SavedCopy>;
    std::map<std::string, Versions> archive; // by source path

    struct Expected {
        std::uint64_t fullCopies = 0;
        std::uint64_t versions = 0;
        std::uint64_t renewed = 0;
        std::uint64_t pruned = 0;
        std::vector<std::string> saved; // paths with a new copy
    };
    // What a backup of `sources` does to `archive`.
    Expected backup(const Tree& sources, std::int64_t startNs, const Settings& settings);
    // Removes the versions beyond the newest ones and tells how many.
    std::uint64_t prune(int newest);
    // The numbers that stay of these; 0 keeps all.
    static std::set<int> kept(const std::set<int>& numbers, int newest);

    // The newest copy by number, among those saved at `limitNs` or before it; null for none.
    static const SavedCopy* newest(const Versions& versions, std::int64_t limitNs);

    struct Restored {
        Tree things;                      // by source path, what is to be at the target
        std::set<std::string> mismatched; // left out: saved under another password
        std::set<std::string> contested;  // names that are a file and a folder: one has room
        bool isContested(const std::string& path) const;
    };
    // What a restore of these copies brings. `folders` are the archive's, as source paths.
    static Restored restored(const std::map<std::string, SavedCopy>& chosen,
                             const std::set<std::string>& folders, const std::string& password);
    // Whether this password does not open a copy. Copies stored as they are open to anybody.
    static bool mismatches(const SavedCopy& copy, const std::string& password);
};

} // namespace vardelin::proofs
