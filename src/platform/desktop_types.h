#pragma once

namespace vardelin::platform {

// The person's desktop, where it is told apart from the registry what a profile is, which program
// opens it, and how both look.
class DesktopTypes {
public:
    DesktopTypes() = default;
    DesktopTypes(const DesktopTypes&) = delete;
    DesktopTypes& operator=(const DesktopTypes&) = delete;
    virtual ~DesktopTypes() = default;

    // Tells the desktop, for this person alone, where it does not know it yet or knows it
    // otherwise; true where anything had to be told. What somebody else has put in the place is
    // left as it is. Does not wait for the desktop to take it in. Raises 70 or 57 with the first
    // file or program at fault as its subject; all that could be done is done by then.
    virtual bool registerProgram() = 0;
};

} // namespace vardelin::platform
