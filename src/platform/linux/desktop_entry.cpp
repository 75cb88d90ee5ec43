#include "platform/linux/desktop_entry.h"

#include "base/text.h"

namespace vardelin::platform {
namespace {

// The text behind a string's escapes; one that the standard does not know stays as it is.
std::string plainText(std::string_view value)
{
    std::string text;
    for (std::size_t i = 0; i < value.size(); ++i) {
        if (value[i] != '\\' || i + 1 == value.size()) {
            text += value[i];
            continue;
        }
        switch (const char next = value[++i]) {
        case 's':
            text += ' ';
            break;
        case 'n':
            text += '\n';
            break;
        case 't':
            text += '\t';
            break;
        case 'r':
            text += '\r';
            break;
        case '\\':
            text += '\\';
            break;
        default:
            text += {'\\', next};
        }
    }
    return text;
}

} // namespace

std::string entryText(std::string_view text)
{
    std::string result = base::replaceAll(text, "\\", "\\\\");
    result = base::replaceAll(result, "\n", "\\n");
    return base::replaceAll(result, "\r", "\\r");
}

std::string execWord(std::string_view word)
{
    std::string quoted = "\"";
    for (const char c : word) {
        if (c == '"' || c == '`' || c == '$' || c == '\\')
            quoted += '\\';
        quoted += c;
        if (c == '%')
            quoted += '%';
    }
    return quoted + '"';
}

std::string execStart(std::string_view program)
{
    // The program itself may have no `=` in its path, and desktops look for it before they take the
    // doubled `%` for one. An argument may hold both, so a shell starts such a program.
    if (program.find_first_of("=%") != std::string_view::npos)
        return "/bin/sh -c " + execWord("exec \"$0\" \"$@\"") + " " + execWord(program);
    return execWord(program);
}

std::string execWithFile(std::string_view program)
{
    return entryText(execStart(program) + " %f");
}

std::string_view entryValue(std::string_view entry, std::string_view key)
{
    bool inGroup = false;
    for (const std::string_view line : base::split(entry, "\n")) {
        if (line.starts_with('['))
            inGroup = base::trim(line) == "[Desktop Entry]";
        else if (inGroup && base::trim(base::beforeFirst(line, "=")) == key)
            return base::trim(base::afterFirst(line, "="));
    }
    return {};
}

std::string execProgram(std::string_view value)
{
    const std::string line = plainText(value);
    std::string word;
    const bool quoted = line.starts_with('"');
    for (std::size_t i = quoted ? 1 : 0; i < line.size(); ++i) {
        if (line[i] == (quoted ? '"' : ' '))
            break;
        if (quoted && line[i] == '\\' && i + 1 < line.size())
            ++i;
        word += line[i];
    }
    return base::replaceAll(word, "%%", "%");
}

} // namespace vardelin::platform
