#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vardelin::platform {

// A drive letter and the folder that it stands for, absolute; `/` may stand at the end.
struct DriveRoot {
    char letter = 'C'; // any case; kept as a capital
    std::string nativeRoot;

    friend bool operator==(const DriveRoot&, const DriveRoot&) = default;
};

// The drives of one moment and the way between their paths and the machine's own. Immutable, so it
// is shared between threads as it is. Two letters may stand for the same folder: the way back then
// gives the one that comes first in the list.
class DriveMap {
public:
    explicit DriveMap(std::vector<DriveRoot> roots);

    // With capital letters and without a `/` at the end, in the order given.
    const std::vector<DriveRoot>& roots() const noexcept { return m_roots; }

    // `C:\a\b` as `/a/b`, each name as the disk has it. Empty pieces and `.` are left out, `..`
    // stays and means what the system makes of it. Raises 76 where the letter has no drive or the
    // path has no letter, 75 for a name that holds `/` or a NUL byte.
    std::string toNative(std::string_view path) const;
    // The longest root that the path lies under wins. Raises 76 for a path that is not absolute or
    // that no drive reaches.
    std::string fromNative(std::string_view native) const;

private:
    std::vector<DriveRoot> m_roots;
};

// The disk's form of one name. Raises 75, with `folder` and the name as the subject, for what can
// be no name of a child: empty, `.`, `..`, or with `/` or a NUL byte in it.
std::string childToDisk(std::string_view folder, std::string_view name);

} // namespace vardelin::platform
