#pragma once

#include "platform/machine.h"
#include "profile/opening.h"
#include "trace/error_tail.h"

#include <string>
#include <string_view>

class QWidget;

// The dialogs that choose folders and files, between the machine's own paths and those in drive
// form.
namespace vardelin::ui {

// What the choosers work with; holds references only.
struct ChooserContext {
    platform::FileSystem& fileSystem;
    platform::MessageBoxes& messageBoxes;
    trace::TraceContext& trace;
};

// The folder as the program takes it, a backslash at its end; empty where no drive reaches it or it
// cannot be read. `native` is in the machine's own form.
std::string usableFolder(platform::FileSystem& fileSystem, const std::string& native);

// Lets the person choose a folder, beginning at `start`, or at the nearest folder above it that
// there is. One that cannot be used is refused with a message, and the choice goes on. The folder
// ends in a backslash; empty where the choice was cancelled.
std::string BrowseForFolder(const ChooserContext& context, QWidget* owner, std::string_view title,
                            std::string_view start);

class QtFileChooser final : public profile::FileChooser {
public:
    // Of the context, the trace is not used. What it refers to must outlive this.
    explicit QtFileChooser(const ChooserContext& context) : m_context(context) {}

    void setParent(QWidget* parent) { m_parent = parent; }
    std::string chooseFile(std::string_view title, std::string_view filter,
                           std::string_view startFolder) override;

private:
    ChooserContext m_context;
    QWidget* m_parent = nullptr;
};

} // namespace vardelin::ui
