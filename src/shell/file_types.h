#pragma once

namespace vardelin::shell {

// The binding of the program's file types to its programs.
class FileTypes {
public:
    FileTypes() = default;
    FileTypes(const FileTypes&) = delete;
    FileTypes& operator=(const FileTypes&) = delete;
    virtual ~FileTypes() = default;

    // Binds profiles to the window and backup packages to the direct restore. Its own errors end in
    // the error dialog.
    virtual void ActivateForIcon() = 0;
};

} // namespace vardelin::shell
