#include "platform/registry_text.h"

#include "base/runtime_error.h"
#include "base/text.h"
#include "platform/registry_path.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace vardelin::platform {
namespace {

constexpr std::string_view kHeader4 = "REGEDIT4";
constexpr std::string_view kHeader5 = "Windows Registry Editor Version 5.00";
constexpr std::string_view kBlanks = " \t";
constexpr std::size_t kHexBytesPerLine = 25;

std::string_view stripped(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

// A backslash that says something of the byte behind it.
bool isEscape(std::string_view text, std::size_t at)
{
    return text[at] == '\\' && at + 1 < text.size() &&
           (text[at + 1] == '\\' || text[at + 1] == '"');
}

std::string unescaped(std::string_view text)
{
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (isEscape(text, i))
            ++i;
        result += text[i];
    }
    return result;
}

std::string escaped(std::string_view text)
{
    return base::replaceAll(base::replaceAll(text, "\\", "\\\\"), "\"", "\\\"");
}

std::optional<unsigned> hexNumber(std::string_view digits, std::size_t maxDigits)
{
    if (digits.empty() || digits.size() > maxDigits)
        return std::nullopt;
    unsigned number = 0;
    for (char digit : digits) {
        unsigned value = 0;
        if (digit >= '0' && digit <= '9')
            value = static_cast<unsigned>(digit - '0');
        else if (digit >= 'a' && digit <= 'f')
            value = static_cast<unsigned>(digit - 'a') + 10;
        else if (digit >= 'A' && digit <= 'F')
            value = static_cast<unsigned>(digit - 'A') + 10;
        else
            return std::nullopt;
        number = number * 16 + value;
    }
    return number;
}

void appendUtf8(std::string& text, unsigned code)
{
    const auto add = [&text](unsigned byte) { text += static_cast<char>(byte); };
    if (code < 0x80) {
        add(code);
    } else if (code < 0x800) {
        add(0xC0 | (code >> 6));
        add(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        add(0xE0 | (code >> 12));
        add(0x80 | ((code >> 6) & 0x3F));
        add(0x80 | (code & 0x3F));
    } else {
        add(0xF0 | (code >> 18));
        add(0x80 | ((code >> 12) & 0x3F));
        add(0x80 | ((code >> 6) & 0x3F));
        add(0x80 | (code & 0x3F));
    }
}

// UTF-16, little-endian, as UTF-8; a half of a pair alone becomes U+FFFD.
std::string fromUtf16(std::string_view bytes)
{
    const auto unit = [bytes](std::size_t at) {
        return static_cast<unsigned>(static_cast<unsigned char>(bytes[at])) |
               static_cast<unsigned>(static_cast<unsigned char>(bytes[at + 1])) << 8;
    };
    std::string text;
    for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
        unsigned code = unit(at);
        if (code >= 0xD800 && code < 0xDC00 && at + 3 < bytes.size() && unit(at + 2) >= 0xDC00 &&
            unit(at + 2) < 0xE000) {
            code = 0x10000 + ((code - 0xD800) << 10) + (unit(at + 2) - 0xDC00);
            at += 2;
        } else if (code >= 0xD800 && code < 0xE000) {
            code = 0xFFFD;
        }
        appendUtf8(text, code);
    }
    return text;
}

class Parser {
public:
    explicit Parser(std::string_view text)
    {
        if (text.starts_with("\xFF\xFE") || text.starts_with("\xFE\xFF")) {
            m_line = 1;
            fail("the text is UTF-16; only bytes are read here");
        }
        if (text.starts_with("\xEF\xBB\xBF"))
            text.remove_prefix(3);
        m_rest = text;
    }

    std::vector<RegistryChange> parse()
    {
        header();
        std::string_view line;
        while (nextLine(line)) {
            if (line.empty() || line.starts_with(';'))
                continue;
            if (line.starts_with('['))
                section(line);
            else
                value(line);
        }
        return std::move(m_changes);
    }

private:
    [[noreturn]] void fail(const std::string& reason) const
    {
        throw base::RuntimeError(base::error_number::kInvalidCall, "line " + std::to_string(m_line),
                                 reason);
    }

    // What registryText() could not write is not read either.
    void checkName(std::string_view name) const
    {
        if (name.find_first_of(std::string_view("\0\r", 2)) != std::string_view::npos)
            fail("the name holds a NUL or a line end");
    }

    bool nextLine(std::string_view& line)
    {
        if (m_rest.empty())
            return false;
        ++m_line;
        line = base::beforeFirst(m_rest, "\n");
        m_rest.remove_prefix(std::min(line.size() + 1, m_rest.size()));
        if (line.ends_with('\r'))
            line.remove_suffix(1);
        line = stripped(line);
        return true;
    }

    void header()
    {
        std::string_view line;
        while (nextLine(line)) {
            if (line.empty())
                continue;
            m_utf16 = line == kHeader5;
            if (line != kHeader4 && !m_utf16)
                fail("no registry text: it begins with neither \"" + std::string(kHeader4) +
                     "\" nor \"" + std::string(kHeader5) + "\"");
            return;
        }
        m_line = 1;
        fail("the text is empty");
    }

    // `[HKEY_...\key]` or `[-HKEY_...\key]`
    void section(std::string_view line)
    {
        if (!line.ends_with(']'))
            fail("the section has no closing bracket");
        std::string_view path = line.substr(1, line.size() - 2);
        const bool deletes = path.starts_with('-');
        if (deletes)
            path.remove_prefix(1);
        const std::string_view rootText = base::beforeFirst(path, "\\");
        const auto root = rootNamed(rootText);
        if (!root)
            fail("\"" + std::string(rootText) + "\" is no registry root");
        RegistryChange change;
        change.kind = deletes ? RegistryChange::Kind::DeleteKey : RegistryChange::Kind::CreateKey;
        change.root = *root;
        const std::vector<std::string_view> parts = registryPathParts(base::afterFirst(path, "\\"));
        change.key = base::join({parts.begin(), parts.end()}, "\\");
        if (parts.size() > kMaxRegistryDepth)
            fail("the key lies more than " + std::to_string(kMaxRegistryDepth) + " levels deep");
        checkName(change.key);
        if (deletes && change.key.empty())
            fail("a registry root cannot be deleted");
        m_section = change;
        m_changes.push_back(std::move(change));
    }

    void value(std::string_view line)
    {
        RegistryChange change;
        change.kind = RegistryChange::Kind::SetValue;
        std::string_view data = line;
        if (!takeName(data, change.value.name))
            fail("neither a section nor a value");
        checkName(change.value.name);
        if (!m_section)
            fail("the value stands before the first section");
        if (m_section->kind == RegistryChange::Kind::DeleteKey)
            fail("the value stands in a section that is deleted");
        change.root = m_section->root;
        change.key = m_section->key;
        if (data == "-")
            change.kind = RegistryChange::Kind::DeleteValue;
        else
            takeData(data, change.value);
        m_changes.push_back(std::move(change));
    }

    // Cuts `@=` or `"name"=` off; false where the line begins with neither. A quote that no equals
    // sign follows is part of the name, since some writers escape nothing.
    static bool takeName(std::string_view& line, std::string& name)
    {
        std::size_t close = 0;
        if (line.starts_with('"')) {
            do {
                ++close;
                while (close < line.size() && line[close] != '"')
                    close += isEscape(line, close) ? 2U : 1U;
                if (close >= line.size())
                    return false;
            } while (!stripped(line.substr(close + 1)).starts_with('='));
            name = unescaped(line.substr(1, close - 1));
        } else if (!line.starts_with('@')) {
            return false;
        }
        line = stripped(line.substr(close + 1));
        if (!line.starts_with('='))
            return false;
        line = stripped(line.substr(1));
        return true;
    }

    void takeData(std::string_view data, RegistryValue& value)
    {
        if (data.starts_with('"')) {
            // Up to the last quote: text that was written as it stands may hold quotes of its own
            // and end in a backslash.
            if (data.size() < 2 || !data.ends_with('"'))
                fail("the text of the value has no closing quote");
            value.data = unescaped(data.substr(1, data.size() - 2));
        } else if (base::startsWithIgnoringCase(data, "dword:")) {
            value.type = RegistryType::DWord;
            const auto number = hexNumber(stripped(data.substr(6)), 8);
            if (!number)
                fail("a number is one to eight hexadecimal digits");
            for (unsigned shift = 0; shift < 32; shift += 8)
                value.data += static_cast<char>((*number >> shift) & 0xFF);
        } else if (base::startsWithIgnoringCase(data, "hex")) {
            takeHex(data.substr(3), value);
        } else {
            fail("the value is neither a text nor a number nor a list of bytes");
        }
    }

    void takeHex(std::string_view data, RegistryValue& value)
    {
        value.type = RegistryType::Binary;
        if (data.starts_with('(')) {
            value.type = hexType(base::beforeFirst(data.substr(1), ")"));
            data = base::afterFirst(data, ")");
        }
        if (!data.starts_with(':'))
            fail("a list of bytes begins with \"hex:\" or \"hex(<type>):\"");
        takeBytes(stripped(data.substr(1)), value.data);
        if (value.type == RegistryType::DWord && value.data.size() != 4)
            fail("a number has four bytes");
        const bool isText = value.type != RegistryType::Binary && value.type != RegistryType::DWord;
        if (!isText)
            return;
        if (m_utf16)
            value.data = fromUtf16(value.data);
        if (value.data.ends_with('\0'))
            value.data.pop_back();
    }

    RegistryType hexType(std::string_view text) const
    {
        const auto number = hexNumber(text, 8);
        for (RegistryType known :
             {RegistryType::String, RegistryType::ExpandString, RegistryType::Binary,
              RegistryType::DWord, RegistryType::MultiString}) {
            if (number == static_cast<unsigned>(known))
                return known;
        }
        fail("values of type \"" + std::string(text) + "\" are not known here");
    }

    void takeBytes(std::string_view list, std::string& bytes)
    {
        while (list.ends_with('\\')) {
            list.remove_suffix(1);
            list = stripped(list);
            if (!list.empty() && !list.ends_with(','))
                fail("no comma stands before the end of the line");
            if (!list.empty())
                list.remove_suffix(1);
            takeByteGroup(list, bytes);
            if (!nextLine(list))
                fail("the list of bytes goes on, but the text ends");
        }
        takeByteGroup(list, bytes);
    }

    void takeByteGroup(std::string_view list, std::string& bytes) const
    {
        for (std::string_view piece : base::split(list, ",")) {
            const auto byte = hexNumber(stripped(piece), 2);
            if (!byte)
                fail("\"" + std::string(piece) + "\" is no byte in hexadecimal digits");
            bytes += static_cast<char>(*byte);
        }
    }

    std::string_view m_rest;
    std::size_t m_line = 0;
    bool m_utf16 = false; // how strings are written as bytes
    std::optional<RegistryChange> m_section;
    std::vector<RegistryChange> m_changes;
};

bool lessByName(std::string_view a, std::string_view b)
{
    const int order = base::compareIgnoringCase(a, b);
    return order != 0 ? order < 0 : a < b;
}

// Raises 5 for a name that a line of text cannot hold.
void checkName(const std::string& name)
{
    if (name.find_first_of(std::string_view("\0\r\n", 3)) != std::string::npos)
        throw base::RuntimeError(base::error_number::kInvalidCall, name,
                                 "a name with a line end cannot stand in registry text");
}

std::string hexText(std::string_view prefix, std::string_view bytes)
{
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string text(prefix);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (i > 0)
            text += i % kHexBytesPerLine == 0 ? ",\\\r\n  " : ",";
        const auto byte = static_cast<unsigned char>(bytes[i]);
        text += kDigits[byte >> 4];
        text += kDigits[byte & 0x0F];
    }
    return text;
}

std::string dataText(const RegistryValue& value)
{
    const std::string withNul = value.data + '\0';
    switch (value.type) {
    case RegistryType::String: {
        const auto isControl = [](char c) { return static_cast<unsigned char>(c) < 0x20; };
        if (std::any_of(value.data.begin(), value.data.end(), isControl))
            return hexText("hex(1):", withNul);
        return '"' + escaped(value.data) + '"';
    }
    case RegistryType::ExpandString:
        return hexText("hex(2):", withNul);
    case RegistryType::MultiString:
        return hexText("hex(7):", withNul);
    case RegistryType::DWord: {
        std::string bigEndian(value.data.rbegin(), value.data.rend());
        return "dword:" + base::replaceAll(hexText({}, bigEndian), ",", "");
    }
    case RegistryType::Binary:
        break;
    }
    return hexText("hex:", value.data);
}

} // namespace

std::vector<RegistryChange> parseRegistryText(std::string_view text)
{
    return Parser(text).parse();
}

void applyRegistryChanges(Registry& registry, const std::vector<RegistryChange>& changes)
{
    registry.transaction([&] {
        for (const RegistryChange& change : changes) {
            switch (change.kind) {
            case RegistryChange::Kind::CreateKey:
                registry.createKey(change.root, change.key);
                break;
            case RegistryChange::Kind::DeleteKey:
                registry.deleteKey(change.root, change.key);
                break;
            case RegistryChange::Kind::SetValue:
                registry.setValue(change.root, change.key, change.value);
                break;
            case RegistryChange::Kind::DeleteValue:
                registry.deleteValue(change.root, change.key, change.value.name);
                break;
            }
        }
    });
}

std::string registryText(Registry& registry, RegistryRoot root, std::string_view key,
                         RegistryOrder order)
{
    std::string text = std::string(kHeader4) + "\r\n";
    if (!registry.keyExists(root, key))
        return text;
    const std::vector<std::string_view> parts = registryPathParts(key);
    std::vector<std::string> ahead{
        base::join({parts.begin(), parts.end()}, "\\")}; // last comes next
    while (!ahead.empty()) {
        const std::string path = std::move(ahead.back());
        ahead.pop_back();
        text += "\r\n[" + std::string(rootName(root)) + (path.empty() ? "" : "\\") + path + "]\r\n";
        std::vector<RegistryValue> values = registry.values(root, path);
        std::vector<std::string> names = registry.subKeys(root, path);
        if (order == RegistryOrder::Sorted) {
            std::sort(names.begin(), names.end(), lessByName);
            std::sort(values.begin(), values.end(),
                      [](const RegistryValue& a, const RegistryValue& b) {
                          return lessByName(a.name, b.name);
                      });
        }
        for (const RegistryValue& value : values) {
            checkName(value.name);
            text += value.name.empty() ? "@" : '"' + escaped(value.name) + '"';
            text += "=" + dataText(value) + "\r\n";
        }
        for (auto name = names.rbegin(); name != names.rend(); ++name) {
            checkName(*name);
            ahead.push_back(path.empty() ? *name : path + "\\" + *name);
        }
    }
    return text;
}

} // namespace vardelin::platform
