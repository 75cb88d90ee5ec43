#include "base/keyed_collection.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace vardelin::base {
namespace {

using testing::ElementsAre;

int raisedBy(const std::function<void()>& action)
{
    try {
        action();
    } catch (const RuntimeError& error) {
        return error.number();
    }
    return 0;
}

TEST(KeyedCollection, KeepsTheOrderAndCountsFromOne)
{
    TextCollection texts;
    texts.add("b", "b");
    texts.add("a");
    texts.add("c", "c");
    EXPECT_EQ(texts.count(), 3U);
    EXPECT_EQ(texts.item(1), "b");
    EXPECT_EQ(texts.item(2), "a");
    EXPECT_EQ(texts.item("c"), "c");
    EXPECT_THAT(texts.items(), ElementsAre("b", "a", "c"));
}

TEST(KeyedCollection, RaisesTheClassicNumbersAndStaysAsItWas)
{
    TextCollection texts;
    texts.add("one", "Key");
    EXPECT_EQ(raisedBy([&] { texts.add("two", "KEY"); }), 457);
    EXPECT_EQ(raisedBy([&] { texts.item("other"); }), 5);
    EXPECT_EQ(raisedBy([&] { texts.remove("other"); }), 5);
    EXPECT_EQ(raisedBy([&] { texts.item(0); }), 9);
    EXPECT_EQ(raisedBy([&] { texts.item(2); }), 9);
    EXPECT_EQ(raisedBy([&] { texts.remove(2); }), 9);
    EXPECT_THAT(texts.items(), ElementsAre("one"));
    EXPECT_FALSE(texts.tryAdd("two", "key"));
    EXPECT_TRUE(texts.tryAdd("two", "two"));
}

TEST(KeyedCollection, PathsTakeTheRuleOfTheFileSystem)
{
    // Docs and docs are two folders where the file system says so.
    TextCollection exact(KeyRule::Exact);
    exact.add("Docs", "Docs");
    exact.add("docs", "docs");
    EXPECT_EQ(exact.count(), 2U);
    EXPECT_EQ(exact.find("DOCS"), nullptr);
    TextCollection ignoring(KeyRule::IgnoreCase);
    ignoring.add("Docs", "Docs");
    EXPECT_TRUE(ignoring.contains("docs"));
}

TEST(KeyedCollection, RemovalMovesTheItemsBehind)
{
    TextCollection texts;
    for (const char* text : {"a", "b", "c", "d"})
        texts.add(text, text);
    texts.remove("b");
    EXPECT_THAT(texts.items(), ElementsAre("a", "c", "d"));
    EXPECT_EQ(texts.item("d"), "d");
    EXPECT_EQ(texts.item(2), "c");
    texts.remove(1);
    texts.add("b", "b");
    EXPECT_THAT(texts.items(), ElementsAre("c", "d", "b"));
    texts.clear();
    EXPECT_TRUE(texts.empty());
    texts.add("c", "c");
    EXPECT_EQ(texts.count(), 1U);
}

TEST(RuntimeError, NamesTheThingAndTheCause)
{
    const RuntimeError error(53, "C:\\a.txt", "No such file or directory");
    EXPECT_EQ(error.number(), 53);
    EXPECT_EQ(error.description(), "File not found");
    EXPECT_STREQ(error.what(), "File not found: C:\\a.txt (No such file or directory)");
    EXPECT_STREQ(RuntimeError(6).what(), "Overflow");
    EXPECT_EQ(descriptionOf(12345), "Application-defined or object-defined error");
}

TEST(PendingError, KeepsTheNewestErrorAndLetsOthersPass)
{
    PendingError pending;
    EXPECT_TRUE(pending.attempt([] {}));
    EXPECT_FALSE(pending);
    EXPECT_FALSE(pending.attempt([] { throw RuntimeError(53, "a"); }));
    EXPECT_FALSE(pending.attempt([] { throw RuntimeError(70, "b"); }));
    EXPECT_TRUE(pending.attempt([] {})) << "a later success leaves the error standing";
    EXPECT_EQ(pending.number, 70);
    EXPECT_EQ(pending.subject, "b");
    EXPECT_EQ(pending.description, "Permission denied");
    EXPECT_THROW(pending.attempt([] { throw std::string("other"); }), std::string);
    pending.clear();
    EXPECT_FALSE(pending);
}

} // namespace
} // namespace vardelin::base
