#pragma once

#include <string>
#include <vector>

namespace vardelin::platform {

// The numbers that drive types have always had; they are shown and tested by number.
enum class DriveType : int {
    Unknown = 0,
    NoRoot = 1,
    Removable = 2,
    Fixed = 3,
    Remote = 4,
    Optical = 5,
    Memory = 6
};

struct Drive {
    char letter = 'C';
    DriveType type = DriveType::Fixed;
    std::string volumeLabel; // may be empty
    std::string shareName;   // `\\server\share` of a remote drive
    std::string nativeRoot;  // where it is mounted, in the machine's own form
};

// The drives that a person sees, by letter. A letter stays with its mount from one start to the
// next.
class Drives {
public:
    Drives() = default;
    Drives(const Drives&) = delete;
    Drives& operator=(const Drives&) = delete;
    virtual ~Drives() = default;

    // In the order of the letters, read afresh at each call.
    virtual std::vector<Drive> list() = 0;
    // Whether the letter (any case) has a drive now.
    bool exists(char letter);
    DriveType typeOf(char letter); // NoRoot where there is none
};

} // namespace vardelin::platform
