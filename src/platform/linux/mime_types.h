#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace vardelin::platform {

// What the shared MIME database (freedesktop.org, "Shared MIME-info Database") knows of extensions.
// Files that are missing or unreadable count as empty; lines that make no sense are passed over.
// Read at the first question and kept. For one thread at a time.
class MimeTypes {
public:
    // Folders that hold a `mime` folder, in the machine's own form, the most important one first.
    explicit MimeTypes(std::vector<std::string> dataFolders);

    // The type of an extension (with its dot, any case), as `text/plain`; empty where none is
    // known. Where several claim it, the greatest weight wins, then the pattern in lower case, then
    // the folder that comes first.
    std::string typeOf(std::string_view extension);
    // The type's plain (untranslated) comment, with a capital first letter; empty where it has
    // none.
    std::string comment(std::string_view type);
    // The type's own icon, else its generic one, else its name with a dash.
    std::string icon(std::string_view type);
    // Every extension with a type, lower case with its dot, sorted.
    std::vector<std::string> extensions();

private:
    struct Claim {
        int weight = 0;
        bool lowerCase = false;
        std::string type;
    };

    void load();
    void readGlobs(std::string_view text);
    void takeGlob(std::string_view line);
    static void readPairs(std::string_view text, std::map<std::string, std::string>& pairs);

    std::vector<std::string> m_dataFolders;
    bool m_loaded = false;
    std::map<std::string, Claim> m_claims; // by lower-case extension
    std::map<std::string, std::string> m_icons;
    std::map<std::string, std::string> m_genericIcons;
};

} // namespace vardelin::platform
