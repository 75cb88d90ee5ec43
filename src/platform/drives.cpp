#include "platform/drives.h"

#include <cctype>

namespace vardelin::platform {

bool Drives::exists(char letter)
{
    return typeOf(letter) != DriveType::NoRoot;
}

DriveType Drives::typeOf(char letter)
{
    const int wanted = std::toupper(static_cast<unsigned char>(letter));
    for (const Drive& drive : list()) {
        if (drive.letter == wanted)
            return drive.type;
    }
    return DriveType::NoRoot;
}

} // namespace vardelin::platform
