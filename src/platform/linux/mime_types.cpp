#include "platform/linux/mime_types.h"

#include "base/text.h"
#include "platform/linux/native_text.h"

#include <utility>

namespace vardelin::platform {
namespace {

std::string unescaped(std::string_view xml)
{
    std::string text = base::replaceAll(xml, "&lt;", "<");
    text = base::replaceAll(text, "&gt;", ">");
    text = base::replaceAll(text, "&quot;", "\"");
    text = base::replaceAll(text, "&apos;", "'");
    // Last, so that what it brings forth is not taken for another entity.
    return base::replaceAll(text, "&amp;", "&");
}

} // namespace

MimeTypes::MimeTypes(std::vector<std::string> dataFolders) : m_dataFolders(std::move(dataFolders))
{
}

std::string MimeTypes::typeOf(std::string_view extension)
{
    load();
    const auto hit = m_claims.find(base::lowerAscii(extension));
    return hit == m_claims.end() ? std::string() : hit->second.type;
}

std::string MimeTypes::comment(std::string_view type)
{
    // A type is part of a path here; one that climbs out of the folder is none.
    if (type.empty() || type.find("..") != std::string_view::npos)
        return {};
    for (const std::string& folder : m_dataFolders) {
        const std::string xml = readNativeFile(folder + "/mime/" + std::string(type) + ".xml");
        const std::string_view behind = base::afterFirst(xml, "<comment>");
        if (behind.empty())
            continue;
        std::string text = unescaped(base::beforeFirst(behind, "</comment>"));
        if (!text.empty())
            text.replace(0, 1, base::upperAscii(text.substr(0, 1)));
        return text;
    }
    return {};
}

std::string MimeTypes::icon(std::string_view type)
{
    load();
    if (type.empty())
        return {};
    const std::string key(type);
    for (const auto* icons : {&m_icons, &m_genericIcons}) {
        if (const auto hit = icons->find(key); hit != icons->end())
            return hit->second;
    }
    return base::replaceAll(type, "/", "-");
}

std::vector<std::string> MimeTypes::extensions()
{
    load();
    std::vector<std::string> result;
    result.reserve(m_claims.size());
    for (const auto& [extension, claim] : m_claims)
        result.push_back(extension);
    return result;
}

void MimeTypes::load()
{
    if (std::exchange(m_loaded, true))
        return;
    for (const std::string& folder : m_dataFolders) {
        readGlobs(readNativeFile(folder + "/mime/globs2"));
        readPairs(readNativeFile(folder + "/mime/icons"), m_icons);
        readPairs(readNativeFile(folder + "/mime/generic-icons"), m_genericIcons);
    }
}

void MimeTypes::readGlobs(std::string_view text)
{
    for (std::string_view line : base::split(text, "\n"))
        takeGlob(line);
}

// `weight:type:glob`, with `:cs` behind it where the glob's case counts.
void MimeTypes::takeGlob(std::string_view line)
{
    if (line.starts_with('#'))
        return;
    const std::vector<std::string_view> fields = base::split(line, ":");
    if (fields.size() != 3 || !fields[2].starts_with("*."))
        return;
    const std::string_view extension = fields[2].substr(1);
    // An extension is what stands behind a name's last dot.
    if (extension.size() < 2 || extension.find_first_of("*?[].", 1) != std::string_view::npos)
        return;
    Claim claim{static_cast<int>(base::val(fields[0])), base::lowerAscii(extension) == extension,
                std::string(fields[1])};
    const auto [known, isNew] = m_claims.try_emplace(base::lowerAscii(extension), claim);
    if (!isNew && std::pair(claim.weight, claim.lowerCase) >
                      std::pair(known->second.weight, known->second.lowerCase))
        known->second = std::move(claim);
}

void MimeTypes::readPairs(std::string_view text, std::map<std::string, std::string>& pairs)
{
    for (std::string_view line : base::split(text, "\n")) {
        if (line.find(':') != std::string_view::npos)
            pairs.try_emplace(std::string(base::beforeFirst(line, ":")),
                              base::afterFirst(line, ":"));
    }
}

} // namespace vardelin::platform
