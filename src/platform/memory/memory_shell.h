#pragma once

#include "platform/machine.h"
#include "platform/memory/scripted_double.h"

#include <map>

namespace vardelin::platform {

// A desktop that knows what the test tells it; at first three types, no folder for documents and no
// settings. For one thread.
class MemoryShell final : public Shell, public ScriptedDouble {
public:
    struct Type {
        std::string name;
        std::string icon;
    };
    std::map<std::string, Type> types{// by lower-case extension with its dot
                                      {".doc", {"Word document", "x-office-document"}},
                                      {".jpg", {"JPEG image", "image-x-generic"}},
                                      {".txt", {"Plain text document", "text-x-generic"}}};
    std::vector<std::string> documentLines;
    std::vector<std::string> recentDocuments; // in the order in which they were noted
    std::map<std::string, std::vector<std::string>> settings; // by the group's exact name

    std::string typeName(std::string_view extension) override;
    std::string iconName(std::string_view extension) override;
    std::vector<std::string> extensions() override;
    std::vector<std::string> defaultDocumentLines() override;
    std::vector<std::string> settingsPaths(std::string_view group) override;
    void runKeyChanged(Registry& registry) override; // a call of the script and no more
    void addRecentDocument(std::string_view path) override;

private:
    Type typeOf(std::string_view extension) const;
};

} // namespace vardelin::platform
