#include "e2e/program.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

// The manual, and the help that is made of it, against the program that they tell of.
namespace vardelin::test {
namespace {

namespace fs = std::filesystem;

const fs::path kSources = VARDELIN_SOURCES;
const fs::path kManual = kSources / "docs/manual";
const fs::path kHelp = VARDELIN_HELP;

std::vector<fs::path> filesOf(const fs::path& folder, const std::string& ending)
{
    std::vector<fs::path> files;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
        if (entry.path().filename().string().ends_with(ending))
            files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

// The first group of each match.
std::vector<std::string> allMatches(const std::string& text, const std::string& pattern)
{
    std::vector<std::string> found;
    const std::regex expression(pattern);
    for (std::sregex_iterator at(text.begin(), text.end(), expression), end; at != end; ++at)
        found.push_back((*at)[1].str());
    return found;
}

// What the sources say in quotes: pieces put together, signs behind a backslash as they are.
std::string textsOf(const std::vector<fs::path>& files)
{
    std::string texts;
    for (const fs::path& file : files) {
        const std::string joined =
            std::regex_replace(TempFolder::read(file.string()), std::regex("\"\\s*\n\\s*\""), "");
        for (std::size_t i = 0; i < joined.size(); ++i) {
            if (joined[i] == '\\' && i + 1 < joined.size())
                ++i;
            texts += joined[i];
        }
    }
    return texts;
}

std::string manualText()
{
    std::string text;
    for (const fs::path& page : filesOf(kManual, ".md"))
        text += TempFolder::read(page.string());
    return text;
}

class Help : public testing::Test {
protected:
    void SetUp() override
    {
        if (!fs::exists(kHelp))
            GTEST_SKIP() << "the help is not built without cmark-gfm";
        for (const fs::path& page : filesOf(kHelp, ".html"))
            pages[page.filename().string()] = TempFolder::read(page.string());
    }

    std::map<std::string, std::string> pages;
};

TEST_F(Help, BeginsWithThePageThatContentsOpens)
{
    ASSERT_TRUE(pages.contains("VardelinHelp.html"));
    for (const auto& [name, text] : pages)
        EXPECT_NE(pages["VardelinHelp.html"].find("href=\"" + name + "\""), std::string::npos)
            << name << " is not among the contents";
}

TEST_F(Help, HasAPageForEachOfTheManual)
{
    for (const fs::path& page : filesOf(kManual, ".md")) {
        const std::string name = page.stem() == "README" ? "VardelinHelp" : page.stem().string();
        EXPECT_TRUE(pages.contains(name + ".html")) << name;
    }
}

TEST_F(Help, EveryLinkAndPictureLeadsSomewhereInIt)
{
    int links = 0;
    for (const auto& [name, text] : pages) {
        for (const std::string& link : allMatches(text, "(?:href|src)=\"([^\"]*)\"")) {
            ++links;
            const auto hash = link.find('#');
            const std::string file = hash == 0 ? name : link.substr(0, hash);
            EXPECT_TRUE(fs::is_regular_file(kHelp / file)) << name << ": " << link;
            EXPECT_EQ(file.find('/'), std::string::npos) << name << ": " << link;
            if (hash != std::string::npos) {
                const std::string named = "id=\"" + link.substr(hash + 1) + "\"";
                EXPECT_NE(pages[file].find(named), std::string::npos) << name << ": " << link;
            }
        }
    }
    EXPECT_GT(links, 100);
}

TEST_F(Help, NamesEachHeadingOnce)
{
    for (const auto& [name, text] : pages) {
        std::set<std::string> seen;
        for (const std::string& id : allMatches(text, "id=\"([^\"]*)\""))
            EXPECT_TRUE(seen.insert(id).second) << name << ": " << id;
        EXPECT_EQ(allMatches(text, "<(h1)").size(), 1U) << name;
        EXPECT_EQ(text.find('@' + std::string("BODY")), std::string::npos) << name;
    }
}

TEST(Manual, ShowsEveryPictureThatItHas)
{
    const std::string text = manualText();
    const std::vector<fs::path> pictures = filesOf(kManual, ".png");
    EXPECT_GT(pictures.size(), 15U);
    constexpr std::uintmax_t kLargest = 120 * 1024;
    for (const fs::path& picture : pictures) {
        EXPECT_NE(text.find("](" + picture.filename().string() + ")"), std::string::npos)
            << picture;
        EXPECT_LT(fs::file_size(picture), kLargest) << picture;
    }
    for (const std::string& shown : allMatches(text, "!\\[[^\\]]*\\]\\(([^)]*)\\)"))
        EXPECT_TRUE(fs::exists(kManual / shown)) << shown;
}

// The first column of its tables; three dots stand for what goes on.
TEST(Manual, QuotesMessagesAsTheProgramSaysThem)
{
    const std::string texts =
        textsOf(filesOf(kSources / "src", "_texts.h")) +
        textsOf({kSources / "src/runs/space_check.cpp", kSources / "src/editor/include_texts.h"});
    std::istringstream lines(TempFolder::read((kManual / "troubleshooting.md").string()));
    int messages = 0;
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with("| "))
            continue;
        const std::string column = line.substr(0, line.find(" | "));
        for (const std::string& message : allMatches(column, "`([^`]*)`")) {
            ++messages;
            EXPECT_NE(texts.find(message), std::string::npos) << message;
        }
    }
    EXPECT_GT(messages, 35);
}

TEST(Manual, TellsOfEachRetentionOption)
{
    const std::string page = TempFolder::read((kManual / "schedule.md").string());
    for (const char* option :
         {"**Changes yesterday and today**", "**Daily Versions for prior 30 Days**",
          "**Weekly Versions for prior 4 Weeks**", "**Monthly Versions for prior 3 Months**",
          "**Yearly Versions for prior 3 Years**", "**Retain Last** n **Versions**",
          "**Original Version Of Files**", "**Retain Last** n **Days**"})
        EXPECT_NE(page.find("\n| " + std::string(option) + " | "), std::string::npos) << option;
}

// Every command that it tells to type is one of the program's, with options that it has.
TEST(Manual, TypesOnlyCommandsThatThereAre)
{
    const auto helpOf = [](const std::string& command) {
        return shell(shellWord(VARDELINCTL) + " " + command + " --help 2>&1");
    };
    const std::string all = helpOf("");
    int commands = 0;
    for (const std::string& line :
         allMatches(manualText(), "(?:^|\n|`| )(vardelinctl (?!NAME)[^`\n]*)")) {
        std::istringstream words(line.substr(line.find(' ')));
        std::string command;
        std::set<std::string> options;
        for (std::string word; words >> word;) {
            if (word.starts_with("--") && word != "--json")
                options.insert(word);
            else if (command.empty() && !word.starts_with("--"))
                command = word;
        }
        ++commands;
        EXPECT_NE(all.find("\n  " + command + " "), std::string::npos) << line;
        std::string help = helpOf(command);
        if (command == "profile")
            help += helpOf("profile show");
        for (const std::string& option : options)
            EXPECT_NE(help.find(option), std::string::npos) << line;
    }
    EXPECT_GT(commands, 8);
}

} // namespace
} // namespace vardelin::test
