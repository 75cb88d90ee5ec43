#include "engine/engine_world.h"
#include "proofs/seed.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

// Clocks that are wrong: versions are ordered by their numbers, and times are labels alone.
namespace vardelin::proofs {
namespace {

constexpr std::int64_t kDayNs = std::int64_t{24} * 3600 * 1'000'000'000;
constexpr std::int64_t kTenYears = 3653; // days
const std::string kEntry = "C:\\data\\a.txt_00";

class WrongClock : public testing::Test, protected engine::World {
protected:
    WrongClock() : m_firstNs(ports.clock.nowNs()) { write("still.txt", "never changes"); }

    std::int64_t at(std::int64_t day) const { return m_firstNs + day * kDayNs; }
    void setDay(std::int64_t day) { ports.clock.setNowNs(at(day)); }
    void keep(int option, int count)
    {
        engine::ProfileText text;
        text.retention = option;
        text.retentionCount = count;
        setProfile(text);
    }
    // A run on that day, by the machine's clock, that saves one new version.
    engine::BackupReport save(std::int64_t day)
    {
        setDay(day);
        write("a.txt", "content " + std::to_string(++m_edits));
        engine::BackupReport report = backup().report;
        EXPECT_EQ(report.outcome, engine::Outcome::Complete);
        EXPECT_EQ(report.copiesWritten, m_edits == 1 ? 2U : 1U);
        return report;
    }
    std::string restored(const std::string& entry, const std::string& date)
    {
        const std::string location = "C:\\out" + std::to_string(++m_restores);
        const engine::RestoreResult result = restore({entry}, location, date);
        if (result.dateNotMatched != engine::kFalse)
            return "none";
        return read(location + "\\C\\data\\a.txt");
    }
    // Labels of the copies of one file by their number, in days.
    std::map<int, std::int64_t> labels()
    {
        std::map<int, std::int64_t> result;
        for (const auto& [entry, copy] : copies()) {
            if (copy.sourcePath == "C:\\data\\a.txt")
                result[copy.version] = (copy.savedNs - m_firstNs) / kDayNs;
        }
        return result;
    }

private:
    std::int64_t m_firstNs;
    int m_edits = 0;
    int m_restores = 0;
};

TEST_F(WrongClock, NumbersRiseWhateverTheLabelsSay)
{
    const std::vector<std::int64_t> days{0, -1, kTenYears, 1, -kTenYears, 2};
    for (const std::int64_t day : days)
        save(day);
    std::map<int, std::int64_t> expected;
    for (std::size_t i = 0; i < days.size(); ++i)
        expected[static_cast<int>(i)] = days[i];
    EXPECT_EQ(labels(), expected);
    for (int version = 0; version < 6; ++version)
        EXPECT_EQ(restored(kEntry + std::to_string(version), "NULL"),
                  "content " + std::to_string(version + 1));
    EXPECT_EQ(restored("C:\\data\\", "NULL"), "content 6");
}

TEST_F(WrongClock, UnchangedFilesStayUnchanged)
{
    save(0);
    for (const std::int64_t day : {std::int64_t{-1}, kTenYears, std::int64_t{0}, -kTenYears}) {
        setDay(day);
        EXPECT_EQ(backup().noFiles, engine::kTrue) << day;
    }
    EXPECT_EQ(entries(), (std::vector<std::string>{kEntry + "0", "C:\\data\\still.txt_000"}));
}

// Of the copies whose label is that day's or an earlier one, the highest number.
TEST_F(WrongClock, ARestoreAsOfADateTakesLabels)
{
    for (const std::int64_t day : {std::int64_t{0}, std::int64_t{-1}, kTenYears, std::int64_t{1}})
        save(day);
    struct Row {
        const char* date;
        const char* content;
    };
    for (const auto& [date, content] : {Row{"1/7/2003", "none"},      // before every label
                                        Row{"2/7/2003", "content 2"}, // version 1 alone
                                        Row{"3/7/2003", "content 2"}, // the full copy's day, too
                                        Row{"4/7/2003", "content 4"}, // all but version 2
                                        Row{"3/7/2013", "content 4"}, // all of them
                                        Row{"NULL", "content 4"}}) {
        EXPECT_EQ(restored("C:\\data\\", date), content) << date;
    }
}

TEST_F(WrongClock, RetentionByDaysKeepsWhatIsLabelledLaterThanNow)
{
    keep(2, 0);
    for (const std::int64_t day : {std::int64_t{0}, kTenYears, std::int64_t{100}})
        save(day);
    // Version 1 is of a day to come and stays; version 2 is the newest.
    EXPECT_EQ(labels(), (std::map<int, std::int64_t>{{0, 0}, {1, kTenYears}, {2, 100}}));
    save(200);
    EXPECT_EQ(labels(), (std::map<int, std::int64_t>{{0, 0}, {1, kTenYears}, {3, 200}}));
    // When that day has come and gone, it ages as all do.
    save(kTenYears + 200);
    EXPECT_EQ(labels(), (std::map<int, std::int64_t>{{0, 0}, {4, kTenYears + 200}}));
}

TEST_F(WrongClock, TheNewestStaysThoughItsLabelIsOldest)
{
    keep(8, 5);
    save(0);
    save(1);
    save(-kTenYears);
    EXPECT_EQ(labels(), (std::map<int, std::int64_t>{{0, 0}, {1, 1}, {2, -kTenYears}}));
    setDay(kTenYears);
    EXPECT_EQ(backup().report.pruned, 1U);
    EXPECT_EQ(labels(), (std::map<int, std::int64_t>{{0, 0}, {2, -kTenYears}}));
    EXPECT_EQ(restored("C:\\data\\", "NULL"), "content 3");
}

TEST_F(WrongClock, NoJumpsCostTheFullTheNewestOrALaterCopy)
{
    Random random(seedOf("NoJumpsCostTheFullTheNewestOrALaterCopy"));
    constexpr std::array<std::int64_t, 8> kJumps{-kTenYears, -400, -1, 0, 1, 9, 40, kTenYears};
    std::int64_t day = 0;
    std::map<int, std::int64_t> before;
    for (int version = 0; version < 60; ++version) {
        const bool byDay = random.chance(50);
        keep(byDay ? 2 : 8, byDay ? 0 : 7);
        day = std::clamp(day + random.oneOf(kJumps), -9 * kTenYears, 9 * kTenYears);
        save(day);
        const auto after = labels();
        const std::string trace = std::to_string(version) + " on day " + std::to_string(day);
        ASSERT_TRUE(after.contains(0)) << trace;
        ASSERT_EQ(after.rbegin()->first, version) << trace;
        ASSERT_EQ(after.at(version), day) << trace;
        for (const auto& [number, label] : before) {
            ASSERT_TRUE(label <= day || after.contains(number)) << trace << " lost " << number;
        }
        before = after;
    }
    EXPECT_EQ(restored("C:\\data\\", "NULL"), "content 60");
}

} // namespace
} // namespace vardelin::proofs
