#include "base/runtime_error.h"
#include "platform/linux/sqlite_registry.h"
#include "platform/memory/memory_registry.h"
#include "support/temp_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>

// What every registry does, whichever it is.
namespace vardelin::platform {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr auto kMachine = RegistryRoot::LocalMachine;
constexpr auto kUser = RegistryRoot::CurrentUser;

struct Implementation {
    const char* name;
    std::unique_ptr<Registry> (*make)(const test::TempFolder& folder);
};

void PrintTo(const Implementation& implementation, std::ostream* stream)
{
    *stream << implementation.name;
}

class EveryRegistry : public testing::TestWithParam<Implementation> {
protected:
    test::TempFolder folder;
    std::unique_ptr<Registry> owner = GetParam().make(folder);
    Registry& registry = *owner;
};

INSTANTIATE_TEST_SUITE_P(
    Platform, EveryRegistry,
    testing::Values(Implementation{"Memory",
                                   [](const test::TempFolder&) -> std::unique_ptr<Registry> {
                                       return std::make_unique<MemoryRegistry>();
                                   }},
                    Implementation{"Sqlite",
                                   [](const test::TempFolder& folder) -> std::unique_ptr<Registry> {
                                       return std::make_unique<SqliteRegistry>(folder /
                                                                               "registry.db");
                                   }}),
    [](const auto& row) { return std::string(row.param.name); });

template <typename Call>
int errorOf(Call&& call)
{
    try {
        call();
    } catch (const base::RuntimeError& error) {
        return error.number();
    }
    return 0;
}

TEST_P(EveryRegistry, IsEmptyAtFirstAndReadsWithoutErrors)
{
    EXPECT_FALSE(registry.keyExists(kMachine, "SOFTWARE"));
    EXPECT_TRUE(registry.keyExists(kMachine, ""));
    EXPECT_EQ(registry.value(kMachine, "SOFTWARE", "x"), std::nullopt);
    EXPECT_EQ(registry.stringValue(kMachine, "SOFTWARE", "x"), std::nullopt);
    EXPECT_THAT(registry.subKeys(kMachine, ""), IsEmpty());
    EXPECT_THAT(registry.values(kMachine, "SOFTWARE"), IsEmpty());
    EXPECT_FALSE(registry.deleteKey(kMachine, "SOFTWARE"));
    EXPECT_FALSE(registry.deleteValue(kMachine, "SOFTWARE", "x"));
}

TEST_P(EveryRegistry, MakesAKeyWithItsParents)
{
    registry.createKey(kMachine, "SOFTWARE\\Vardelin\\Run");
    EXPECT_TRUE(registry.keyExists(kMachine, "SOFTWARE"));
    EXPECT_TRUE(registry.keyExists(kMachine, "SOFTWARE\\Vardelin"));
    EXPECT_TRUE(registry.keyExists(kMachine, "SOFTWARE\\Vardelin\\Run"));
    EXPECT_FALSE(registry.keyExists(kUser, "SOFTWARE"));
}

TEST_P(EveryRegistry, LeavesAKeyThatExistsAsItIs)
{
    registry.setString(kMachine, "A\\B", "v", "text");
    registry.createKey(kMachine, "a\\b");
    EXPECT_EQ(registry.stringValue(kMachine, "A\\B", "v"), "text");
    EXPECT_THAT(registry.subKeys(kMachine, "A"), ElementsAre("B"));
}

TEST_P(EveryRegistry, ComparesKeysAndNamesWithoutCaseAndKeepsTheCaseOfTheFirstWriting)
{
    registry.setString(kMachine, "Software\\VdIdle", "Default", "one");
    registry.setString(kMachine, "SOFTWARE\\VDIDLE", "DEFAULT", "two");
    EXPECT_THAT(registry.subKeys(kMachine, ""), ElementsAre("Software"));
    EXPECT_THAT(registry.subKeys(kMachine, "software"), ElementsAre("VdIdle"));
    EXPECT_THAT(registry.values(kMachine, "software\\vdidle"),
                ElementsAre(RegistryValue{"Default", RegistryType::String, "two"}));
}

TEST_P(EveryRegistry, TakesAPathWithOrWithoutABackslashAtItsEnds)
{
    registry.setString(kMachine, "\\A\\B\\", "v", "text");
    EXPECT_EQ(registry.stringValue(kMachine, "A\\B", "v"), "text");
    EXPECT_TRUE(registry.keyExists(kMachine, "A\\\\B\\"));
    EXPECT_THAT(registry.subKeys(kMachine, "A\\"), ElementsAre("B"));
}

TEST_P(EveryRegistry, TellsABlankAtTheEndOfANameFromNone)
{
    registry.createKey(kMachine, "VdIdle\\15");
    registry.createKey(kMachine, "VdIdle\\15 ");
    EXPECT_THAT(registry.subKeys(kMachine, "VdIdle"), ElementsAre("15", "15 "));
}

TEST_P(EveryRegistry, ListsInTheOrderOfTheFirstWriting)
{
    for (const char* name : {"zeta", "alpha", "Mid"}) {
        registry.createKey(kMachine, std::string("K\\") + name);
        registry.setString(kMachine, "K", name, "1");
    }
    registry.setString(kMachine, "K", "zeta", "2");
    EXPECT_THAT(registry.subKeys(kMachine, "K"), ElementsAre("zeta", "alpha", "Mid"));
    EXPECT_THAT(registry.values(kMachine, "K"),
                ElementsAre(RegistryValue{"zeta", RegistryType::String, "2"},
                            RegistryValue{"alpha", RegistryType::String, "1"},
                            RegistryValue{"Mid", RegistryType::String, "1"}));
}

TEST_P(EveryRegistry, PutsWhatWasDeletedAndWrittenAgainAtTheEnd)
{
    for (const char* name : {"a", "b"}) {
        registry.createKey(kMachine, std::string("K\\") + name);
        registry.setString(kMachine, "K", name, "1");
    }
    registry.deleteKey(kMachine, "K\\a");
    registry.createKey(kMachine, "K\\A");
    registry.deleteValue(kMachine, "K", "a");
    registry.setString(kMachine, "K", "A", "2");
    EXPECT_THAT(registry.subKeys(kMachine, "K"), ElementsAre("b", "A"));
    EXPECT_THAT(registry.values(kMachine, "K"),
                ElementsAre(RegistryValue{"b", RegistryType::String, "1"},
                            RegistryValue{"A", RegistryType::String, "2"}));
}

TEST_P(EveryRegistry, KeepsEveryTypeAndEveryByte)
{
    std::string bytes;
    for (int i = 0; i < 256; ++i)
        bytes += static_cast<char>(i);
    const RegistryValue values[] = {
        {"", RegistryType::String, "the default value"},
        {"empty", RegistryType::String, ""},
        {"text", RegistryType::String, "C:\\Dir\\ \"quoted\" \xC3\xA9 \xFF"},
        {"expand", RegistryType::ExpandString, "%SystemRoot%\\x"},
        {"bytes", RegistryType::Binary, bytes},
        {"number", RegistryType::DWord, std::string("\x0A\0\0\x80", 4)},
        {"list", RegistryType::MultiString, std::string("a\0b\0", 4)},
    };
    for (const RegistryValue& value : values)
        registry.setValue(kUser, "Types", value);
    EXPECT_THAT(registry.values(kUser, "Types"), testing::ElementsAreArray(values));
    for (const RegistryValue& value : values)
        EXPECT_EQ(registry.value(kUser, "Types", value.name), value) << value.name;
}

TEST_P(EveryRegistry, GivesAStringOnlyForStrings)
{
    registry.setValue(kMachine, "K", {"s", RegistryType::String, "text"});
    registry.setValue(kMachine, "K", {"e", RegistryType::ExpandString, "%X%"});
    registry.setValue(kMachine, "K", {"d", RegistryType::DWord, std::string(4, '\0')});
    EXPECT_EQ(registry.stringValue(kMachine, "K", "S"), "text");
    EXPECT_EQ(registry.stringValue(kMachine, "K", "e"), "%X%");
    EXPECT_EQ(registry.stringValue(kMachine, "K", "d"), std::nullopt);
}

TEST_P(EveryRegistry, ReplacesTypeAndDataOfAValue)
{
    registry.setString(kMachine, "K", "v", "text");
    registry.setValue(kMachine, "K", {"V", RegistryType::Binary, "\x01"});
    EXPECT_THAT(registry.values(kMachine, "K"),
                ElementsAre(RegistryValue{"v", RegistryType::Binary, "\x01"}));
}

TEST_P(EveryRegistry, RefusesANumberThatHasNotFourBytes)
{
    EXPECT_EQ(errorOf([&] {
                  registry.setValue(kMachine, "K", {"n", RegistryType::DWord, "123"});
              }),
              base::error_number::kInvalidCall);
    EXPECT_FALSE(registry.keyExists(kMachine, "K"));
}

TEST_P(EveryRegistry, DeletesAKeyWithAllThatIsBelowAndNothingBeside)
{
    registry.setString(kMachine, "A\\B\\C", "v", "1");
    registry.setString(kMachine, "A\\B", "v", "1");
    registry.createKey(kMachine, "A\\B2");
    registry.createKey(kMachine, "A\\B C");
    registry.createKey(kUser, "A\\B");
    EXPECT_TRUE(registry.deleteKey(kMachine, "a\\b\\"));
    EXPECT_FALSE(registry.deleteKey(kMachine, "A\\B"));
    EXPECT_THAT(registry.subKeys(kMachine, "A"), ElementsAre("B2", "B C"));
    EXPECT_TRUE(registry.keyExists(kUser, "A\\B"));
    // Nothing that was below comes back with the key.
    registry.createKey(kMachine, "A\\B");
    EXPECT_THAT(registry.subKeys(kMachine, "A\\B"), IsEmpty());
    EXPECT_THAT(registry.values(kMachine, "A\\B"), IsEmpty());
}

TEST_P(EveryRegistry, DeletesOneValue)
{
    registry.setString(kMachine, "K", "one", "1");
    registry.setString(kMachine, "K", "two", "2");
    EXPECT_TRUE(registry.deleteValue(kMachine, "k\\", "ONE"));
    EXPECT_FALSE(registry.deleteValue(kMachine, "K", "one"));
    EXPECT_THAT(registry.values(kMachine, "K"),
                ElementsAre(RegistryValue{"two", RegistryType::String, "2"}));
    EXPECT_TRUE(registry.deleteValue(kMachine, "K", "two"));
    EXPECT_TRUE(registry.keyExists(kMachine, "K"));
}

TEST_P(EveryRegistry, HoldsValuesInARootAndNeverDeletesIt)
{
    registry.setString(kMachine, "", "v", "1");
    registry.createKey(kMachine, "K");
    EXPECT_EQ(registry.stringValue(kMachine, "\\", "v"), "1");
    EXPECT_THAT(registry.subKeys(kMachine, ""), ElementsAre("K"));
    EXPECT_EQ(errorOf([&] { registry.deleteKey(kMachine, "\\"); }),
              base::error_number::kInvalidCall);
    EXPECT_TRUE(registry.keyExists(kMachine, "K"));
}

TEST_P(EveryRegistry, RefusesAKeyDeeperThanAnyRealOne)
{
    std::string path;
    for (int i = 0; i < 512; ++i)
        path += "\\k";
    registry.createKey(kMachine, path);
    EXPECT_TRUE(registry.keyExists(kMachine, path));
    EXPECT_EQ(errorOf([&] { registry.createKey(kMachine, path + "\\k"); }),
              base::error_number::kInvalidCall);
    EXPECT_EQ(errorOf([&] { registry.setString(kMachine, path + "\\k", "v", "1"); }),
              base::error_number::kInvalidCall);
}

TEST_P(EveryRegistry, KeepsAllChangesOfATransaction)
{
    registry.setString(kMachine, "Old", "v", "1");
    registry.transaction([&] {
        registry.setString(kMachine, "K", "a", "1");
        registry.deleteKey(kMachine, "Old");
        EXPECT_EQ(registry.stringValue(kMachine, "K", "a"), "1") << "reads see the changes";
    });
    EXPECT_EQ(registry.stringValue(kMachine, "K", "a"), "1");
    EXPECT_FALSE(registry.keyExists(kMachine, "Old"));
}

TEST_P(EveryRegistry, KeepsNoChangeOfATransactionThatRaises)
{
    registry.setString(kMachine, "Old", "v", "1");
    EXPECT_EQ(errorOf([&] {
                  registry.transaction([&] {
                      registry.setString(kMachine, "K\\L", "a", "1");
                      registry.setString(kMachine, "Old", "v", "2");
                      registry.deleteKey(kMachine, "Old");
                      throw base::RuntimeError(53);
                  });
              }),
              53);
    EXPECT_FALSE(registry.keyExists(kMachine, "K"));
    EXPECT_EQ(registry.stringValue(kMachine, "Old", "v"), "1");
    registry.setString(kMachine, "K", "a", "later");
    EXPECT_EQ(registry.stringValue(kMachine, "K", "a"), "later");
}

TEST_P(EveryRegistry, RefusesATransactionWithinOneAndUndoesBoth)
{
    EXPECT_EQ(errorOf([&] {
                  registry.transaction([&] {
                      registry.createKey(kMachine, "K");
                      registry.transaction([&] { registry.createKey(kMachine, "L"); });
                  });
              }),
              base::error_number::kInvalidCall);
    EXPECT_FALSE(registry.keyExists(kMachine, "K"));
    EXPECT_FALSE(registry.keyExists(kMachine, "L"));
}

TEST_P(EveryRegistry, TakesAnEmptyTransaction)
{
    registry.transaction([] {});
    EXPECT_FALSE(registry.keyExists(kMachine, "K"));
}

} // namespace
} // namespace vardelin::platform
