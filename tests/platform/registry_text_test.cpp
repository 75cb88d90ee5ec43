#include "base/runtime_error.h"
#include "platform/memory/memory_registry.h"
#include "platform/registry_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace vardelin::platform {
namespace {

constexpr auto kMachine = RegistryRoot::LocalMachine;
using Kind = RegistryChange::Kind;

// The value that one line in a section gives.
RegistryValue valueOf(const std::string& line)
{
    const auto changes =
        parseRegistryText("REGEDIT4\r\n\r\n[HKEY_LOCAL_MACHINE\\K]\r\n" + line + "\r\n");
    EXPECT_EQ(changes.size(), 2U) << line;
    EXPECT_EQ(changes.back().kind, Kind::SetValue) << line;
    return changes.back().value;
}

void import(Registry& registry, std::string_view text)
{
    applyRegistryChanges(registry, parseRegistryText(text));
}

TEST(RegistryTextReading, TakesSectionsAndValuesInTheirOrder)
{
    const auto changes = parseRegistryText("REGEDIT4\n"
                                           "\n"
                                           "; made by hand\n"
                                           "[HKEY_LOCAL_MACHINE\\Software\\A]\n"
                                           "@=\"default\"\n"
                                           "\"gone\"=-\n"
                                           "[-hkey_current_user\\Old\\]\n"
                                           "[HKEY_CLASSES_ROOT]\n"
                                           "\"v\"=\"1\"\n");
    ASSERT_EQ(changes.size(), 6U);
    EXPECT_EQ(changes[0].kind, Kind::CreateKey);
    EXPECT_EQ(changes[0].root, kMachine);
    EXPECT_EQ(changes[0].key, "Software\\A");
    EXPECT_EQ(changes[1].kind, Kind::SetValue);
    EXPECT_EQ(changes[1].key, "Software\\A");
    EXPECT_EQ(changes[1].value, (RegistryValue{"", RegistryType::String, "default"}));
    EXPECT_EQ(changes[2].kind, Kind::DeleteValue);
    EXPECT_EQ(changes[2].value.name, "gone");
    EXPECT_EQ(changes[3].kind, Kind::DeleteKey);
    EXPECT_EQ(changes[3].root, RegistryRoot::CurrentUser);
    EXPECT_EQ(changes[3].key, "Old");
    EXPECT_EQ(changes[4].kind, Kind::CreateKey);
    EXPECT_EQ(changes[4].root, RegistryRoot::ClassesRoot);
    EXPECT_EQ(changes[4].key, "");
    EXPECT_EQ(changes[5].value.data, "1");
}

TEST(RegistryTextReading, KnowsTheseValues)
{
    const struct {
        const char* line;
        RegistryValue value;
    } rows[] = {
        {R"("n"="text")", {"n", RegistryType::String, "text"}},
        {R"("n"="")", {"n", RegistryType::String, ""}},
        {R"(  "n" = "text"  )", {"n", RegistryType::String, "text"}},
        {R"(@="text")", {"", RegistryType::String, "text"}},
        {R"(""="text")", {"", RegistryType::String, "text"}},
        {R"("a b"=" blanks ")", {"a b", RegistryType::String, " blanks "}},
        {R"("n"="; no comment")", {"n", RegistryType::String, "; no comment"}},
        {R"("n"="a=b")", {"n", RegistryType::String, "a=b"}},
        {R"("n"=dword:0000000a)", {"n", RegistryType::DWord, std::string("\x0A\0\0\0", 4)}},
        {R"("n"=DWORD:FFFFFFFF)", {"n", RegistryType::DWord, "\xFF\xFF\xFF\xFF"}},
        {R"("n"=dword:1)", {"n", RegistryType::DWord, std::string("\x01\0\0\0", 4)}},
        {R"("n"=hex:)", {"n", RegistryType::Binary, ""}},
        {R"("n"=hex:00,fF, 7f)", {"n", RegistryType::Binary, std::string("\0\xFF\x7F", 3)}},
        {R"("n"=hex(2):25,58,25,00)", {"n", RegistryType::ExpandString, "%X%"}},
        {R"("n"=hex(1):61,00)", {"n", RegistryType::String, "a"}},
        {R"("n"=hex(4):01,00,00,00)", {"n", RegistryType::DWord, std::string("\x01\0\0\0", 4)}},
        {R"("n"=hex(7):61,00,62,00,00)",
         {"n", RegistryType::MultiString, std::string("a\0b\0", 4)}},
        {"\"n\"=hex:01,02,\\\r\n  03,\\\r\n  04", {"n", RegistryType::Binary, "\x01\x02\x03\x04"}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(valueOf(row.line), row.value) << row.line;
}

TEST(RegistryTextReading, TakesEscapesAndTextThatWasWrittenAsItStands)
{
    const struct {
        const char* line;
        const char* name;
        const char* data;
    } rows[] = {
        {R"("n"="C:\\Dir\\App.exe")", "n", R"(C:\Dir\App.exe)"},
        {R"("n"="say \"yes\"")", "n", R"(say "yes")"},
        {R"("a\\b\"c"="1")", R"(a\b"c)", "1"},
        // Some writers double nothing: a backslash before anything else is itself.
        {R"("n"="C:\Dir\App.exe")", "n", R"(C:\Dir\App.exe)"},
        {R"("n"="C:\Dir\")", "n", R"(C:\Dir\)"},
        {R"("n"="say "yes" now")", "n", R"(say "yes" now)"},
        {R"("a"b"="1")", R"(a"b)", "1"},
    };
    for (const auto& row : rows) {
        const RegistryValue value = valueOf(row.line);
        EXPECT_EQ(value.name, row.name) << row.line;
        EXPECT_EQ(value.data, row.data) << row.line;
    }
}

TEST(RegistryTextReading, ReadsBytesOfTheLaterFormAsUtf16)
{
    const auto changes = parseRegistryText("Windows Registry Editor Version 5.00\r\n"
                                           "[HKEY_CURRENT_USER\\K]\r\n"
                                           "\"e\"=hex(2):25,00,e9,00,3d,d8,00,de,00,00\r\n"
                                           "\"b\"=hex:25,00\r\n");
    ASSERT_EQ(changes.size(), 3U);
    EXPECT_EQ(changes[1].value.data, "%\xC3\xA9\xF0\x9F\x98\x80");
    EXPECT_EQ(changes[2].value.data, std::string("%\0", 2));
}

TEST(RegistryTextReading, TakesAHeaderAlone)
{
    EXPECT_TRUE(parseRegistryText("REGEDIT4\r\n\r\n").empty());
    EXPECT_TRUE(parseRegistryText("REGEDIT4").empty());
    EXPECT_TRUE(parseRegistryText("\xEF\xBB\xBFREGEDIT4\n").empty());
    EXPECT_TRUE(parseRegistryText("\n\nWindows Registry Editor Version 5.00\n").empty());
}

TEST(RegistryTextReading, KeepsABlankAtTheEndOfAKeysName)
{
    const auto changes = parseRegistryText("REGEDIT4\n[HKEY_LOCAL_MACHINE\\VdIdle\\15 ]\n");
    ASSERT_EQ(changes.size(), 1U);
    EXPECT_EQ(changes[0].key, "VdIdle\\15 ");
}

TEST(RegistryTextReading, NamesTheFirstLineThatMakesNoSense)
{
    std::string deep = "[HKEY_LOCAL_MACHINE";
    for (int i = 0; i < 513; ++i)
        deep += "\\k";
    const std::string head = "REGEDIT4\r\n\r\n[HKEY_LOCAL_MACHINE\\K]\r\n";
    const struct {
        std::string text;
        std::string line;
        std::string reason;
    } rows[] = {
        {"", "line 1", "the text is empty"},
        {"\r\n\r\n", "line 1", "the text is empty"},
        {"REGEDIT5\n", "line 1",
         "no registry text: it begins with neither \"REGEDIT4\" nor \"Windows Registry Editor "
         "Version 5.00\""},
        {"\nregedit4\n", "line 2",
         "no registry text: it begins with neither \"REGEDIT4\" nor \"Windows Registry Editor "
         "Version 5.00\""},
        {"\xFF\xFER", "line 1", "the text is UTF-16; only bytes are read here"},
        {head + "[HKEY_LOCAL_MACHINE\\a\rb]", "line 4", "the name holds a NUL or a line end"},
        {head + std::string("\"a\0b\"=\"1\"", 9), "line 4", "the name holds a NUL or a line end"},
        {head + "rubbish", "line 4", "neither a section nor a value"},
        {head + "\"a\"", "line 4", "neither a section nor a value"},
        {head + "\"a", "line 4", "neither a section nor a value"},
        {head + "\"a\\\"=\"1\"", "line 4", "neither a section nor a value"},
        {head + "@\"1\"", "line 4", "neither a section nor a value"},
        {head + "\"a\"=1", "line 4",
         "the value is neither a text nor a number nor a list of bytes"},
        {head + "\"a\"=", "line 4", "the value is neither a text nor a number nor a list of bytes"},
        {head + "\"a\"=\"open", "line 4", "the text of the value has no closing quote"},
        {head + "\"a\"=\"", "line 4", "the text of the value has no closing quote"},
        {head + "\"a\"=dword:", "line 4", "a number is one to eight hexadecimal digits"},
        {head + "\"a\"=dword:123456789", "line 4", "a number is one to eight hexadecimal digits"},
        {head + "\"a\"=dword:12g4", "line 4", "a number is one to eight hexadecimal digits"},
        {head + "\"a\"=hex:1,,2", "line 4", "\"\" is no byte in hexadecimal digits"},
        {head + "\"a\"=hex:100", "line 4", "\"100\" is no byte in hexadecimal digits"},
        {head + "\"a\"=hex01", "line 4",
         "a list of bytes begins with \"hex:\" or \"hex(<type>):\""},
        {head + "\"a\"=hex(b):01", "line 4", "values of type \"b\" are not known here"},
        {head + "\"a\"=hex(4):01", "line 4", "a number has four bytes"},
        {head + "\"a\"=hex:01,\\\n", "line 4", "the list of bytes goes on, but the text ends"},
        {head + "\"a\"=hex:01\\\n02", "line 4", "no comma stands before the end of the line"},
        {head + "\"a\"=hex:01,\\\n\"b\"=\"1\"", "line 5",
         "\"\"b\"=\"1\"\" is no byte in hexadecimal digits"},
        {"REGEDIT4\n\"a\"=\"1\"\n", "line 2", "the value stands before the first section"},
        {"REGEDIT4\n[HKEY_LOCAL_MACHINE\\K\n", "line 2", "the section has no closing bracket"},
        {"REGEDIT4\n[HKLM\\K]\n", "line 2", "\"HKLM\" is no registry root"},
        {"REGEDIT4\n[]\n", "line 2", "\"\" is no registry root"},
        {"REGEDIT4\n[-HKEY_LOCAL_MACHINE]\n", "line 2", "a registry root cannot be deleted"},
        {"REGEDIT4\n[-HKEY_LOCAL_MACHINE\\\\]\n", "line 2", "a registry root cannot be deleted"},
        {"REGEDIT4\n[-HKEY_LOCAL_MACHINE\\K]\n\"a\"=\"1\"\n", "line 3",
         "the value stands in a section that is deleted"},
        {"REGEDIT4\n" + deep + "]\n", "line 2", "the key lies more than 512 levels deep"},
    };
    for (const auto& row : rows) {
        try {
            parseRegistryText(row.text);
            ADD_FAILURE() << "no error for: " << row.text;
        } catch (const base::RuntimeError& error) {
            EXPECT_EQ(error.number(), base::error_number::kInvalidCall);
            EXPECT_EQ(error.subject(), row.line) << row.text;
            EXPECT_EQ(error.reason(), row.reason) << row.text;
        }
    }
}

TEST(RegistryTextApplying, MakesAllChangesOrNone)
{
    const std::string text = "REGEDIT4\n"
                             "[HKEY_LOCAL_MACHINE\\New]\n"
                             "\"a\"=\"1\"\n"
                             "[HKEY_LOCAL_MACHINE\\Old]\n"
                             "\"gone\"=-\n"
                             "[-HKEY_LOCAL_MACHINE\\Dead]\n";
    // Every call in turn fails, until none is left to fail.
    for (std::size_t number = 1;; ++number) {
        MemoryRegistry registry;
        import(registry, "REGEDIT4\n[HKEY_LOCAL_MACHINE\\Old]\n\"gone\"=\"x\"\n"
                         "[HKEY_LOCAL_MACHINE\\Dead]\n");
        registry.script().reset();
        registry.script().failCall(number, base::error_number::kPermissionDenied);
        bool raised = false;
        try {
            import(registry, text);
        } catch (const base::RuntimeError&) {
            raised = true;
        }
        registry.script().reset();
        EXPECT_EQ(registry.stringValue(kMachine, "New", "a").has_value(), !raised) << number;
        EXPECT_EQ(registry.value(kMachine, "Old", "gone").has_value(), raised) << number;
        EXPECT_EQ(registry.keyExists(kMachine, "Dead"), raised) << number;
        if (!raised) {
            EXPECT_EQ(number, 7U) << "the transaction and its five changes have failed before";
            break;
        }
        EXPECT_FALSE(registry.keyExists(kMachine, "New")) << number;
    }
}

TEST(RegistryTextWriting, GivesTheseBytes)
{
    MemoryRegistry registry;
    registry.setString(kMachine, "Software\\b", "z", "C:\\Dir\\ \"x\"");
    registry.setString(kMachine, "Software\\b", "", "default");
    registry.setValue(kMachine, "Software\\b",
                      {"n", RegistryType::DWord, std::string("\x0A\0\0\0", 4)});
    registry.setValue(kMachine, "Software\\b", {"e", RegistryType::ExpandString, "%X%"});
    registry.setValue(kMachine, "Software\\b",
                      {"m", RegistryType::MultiString, std::string("a\0", 2)});
    registry.setValue(kMachine, "Software\\b",
                      {"h", RegistryType::Binary, std::string(26, '\x1F')});
    registry.setString(kMachine, "Software\\b", "lines", "a\nb");
    registry.createKey(kMachine, "Software\\A\\Deep");
    EXPECT_EQ(registryText(registry, kMachine, "Software"),
              "REGEDIT4\r\n"
              "\r\n"
              "[HKEY_LOCAL_MACHINE\\Software]\r\n"
              "\r\n"
              "[HKEY_LOCAL_MACHINE\\Software\\A]\r\n"
              "\r\n"
              "[HKEY_LOCAL_MACHINE\\Software\\A\\Deep]\r\n"
              "\r\n"
              "[HKEY_LOCAL_MACHINE\\Software\\b]\r\n"
              "@=\"default\"\r\n"
              "\"e\"=hex(2):25,58,25,00\r\n"
              "\"h\"=hex:1f,1f,1f,1f,1f,1f,1f,1f,1f,1f,1f,1f,1f,1f,1f,1f,1f,1f,1f,1f,1f,1f,1f,1f,"
              "1f,\\\r\n"
              "  1f\r\n"
              "\"lines\"=hex(1):61,0a,62,00\r\n"
              "\"m\"=hex(7):61,00,00\r\n"
              "\"n\"=dword:0000000a\r\n"
              "\"z\"=\"C:\\\\Dir\\\\ \\\"x\\\"\"\r\n");
}

TEST(RegistryTextWriting, KeepsTheOrderOfTheStoreWhereAsked)
{
    MemoryRegistry registry;
    registry.setString(kMachine, "K\\z", "2", "");
    registry.setString(kMachine, "K\\z", "1", "");
    registry.createKey(kMachine, "K\\a");
    EXPECT_EQ(registryText(registry, kMachine, "\\K\\", RegistryOrder::Stored),
              "REGEDIT4\r\n"
              "\r\n[HKEY_LOCAL_MACHINE\\K]\r\n"
              "\r\n[HKEY_LOCAL_MACHINE\\K\\z]\r\n\"2\"=\"\"\r\n\"1\"=\"\"\r\n"
              "\r\n[HKEY_LOCAL_MACHINE\\K\\a]\r\n");
}

TEST(RegistryTextWriting, GivesTheFirstLineAloneForAKeyThatIsNotThere)
{
    MemoryRegistry registry;
    EXPECT_EQ(registryText(registry, kMachine, "Nothing"), "REGEDIT4\r\n");
}

TEST(RegistryTextWriting, RaisesForANameThatALineCannotHold)
{
    MemoryRegistry registry;
    registry.setString(kMachine, "K", "a\nb", "1");
    EXPECT_THROW(registryText(registry, kMachine, "K"), base::RuntimeError);
}

TEST(RegistryTextWriting, WritesWhatTheReaderTakesBackUnchanged)
{
    std::string bytes;
    for (int i = 0; i < 256; ++i)
        bytes += static_cast<char>(i);
    MemoryRegistry registry;
    for (RegistryRoot root : {RegistryRoot::ClassesRoot, RegistryRoot::Users}) {
        for (RegistryType type : {RegistryType::String, RegistryType::ExpandString,
                                  RegistryType::Binary, RegistryType::MultiString}) {
            const std::string name = "\\ \"" + std::to_string(static_cast<int>(type)) + "\\";
            registry.setValue(root, "A\\[x]\\y ", {name, type, bytes});
            registry.setValue(root, "A", {name, type, std::string("x\0", 2)});
            registry.setValue(root, "", {name, type, ""});
        }
    }
    MemoryRegistry copy;
    for (RegistryRoot root : {RegistryRoot::ClassesRoot, RegistryRoot::Users}) {
        const std::string text = registryText(registry, root, "", RegistryOrder::Stored);
        import(copy, text);
        EXPECT_EQ(registryText(copy, root, "", RegistryOrder::Stored), text);
        for (const char* key : {"", "A", "A\\[x]\\y "})
            EXPECT_EQ(copy.values(root, key), registry.values(root, key)) << key;
    }
}

} // namespace
} // namespace vardelin::platform
