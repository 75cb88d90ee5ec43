#include "runs/engine/retention.h"

#include <algorithm>
#include <map>

#include <fmt/format.h>

namespace vardelin::engine {
namespace {

constexpr std::int64_t kDaysPerWeek = 7;
constexpr std::int64_t kMondayOffset = 3; // 1 January 1970 was a Thursday

enum class Period : std::uint8_t { Day, Week, Month, Year };

struct PeriodRule {
    Period period;
    std::int64_t prior; // periods in front of the current one
    const char* name;
    const char* tooOld;
};

constexpr PeriodRule kPeriodRules[] = {
    {Period::Day, 30, "day", "older than 30 days"},
    {Period::Week, 4, "week", "older than 4 weeks"},
    {Period::Month, 3, "month", "older than 3 months"},
    {Period::Year, 3, "year", "older than 3 years"},
};

// A number that grows by one from each period to the next.
std::int64_t indexOf(Period period, const base::Date& date)
{
    switch (period) {
    case Period::Day:
        return base::daysSinceEpoch(date);
    case Period::Week: {
        const std::int64_t days = base::daysSinceEpoch(date) + kMondayOffset;
        return days / kDaysPerWeek - (days % kDaysPerWeek < 0 ? 1 : 0);
    }
    case Period::Month:
        return std::int64_t{date.year} * 12 + date.month;
    case Period::Year:
        return date.year;
    }
    return 0;
}

std::string nameOf(const PeriodRule& rule, const base::Date& date)
{
    switch (rule.period) {
    case Period::Day:
        return "day " + base::isoDate(date);
    case Period::Week:
        return "week from " + base::isoDate(base::dateFromDays(
                                  indexOf(Period::Week, date) * kDaysPerWeek - kMondayOffset));
    case Period::Month:
        return fmt::format("month {:04}-{:02}", date.year, date.month);
    case Period::Year:
        return fmt::format("year {:04}", date.year);
    }
    return {};
}

class Judge {
public:
    Judge(std::span<const RetainedVersion> versions, const RetentionRule& rule, std::int64_t nowNs,
          const LocalDate& localDate)
        : m_versions(versions), m_rule(rule), m_nowNs(nowNs), m_localDate(localDate),
          m_today(localDate(nowNs)), m_verdicts(versions.size())
    {
        for (const RetainedVersion& version : versions)
            m_newest = std::max(m_newest, version.number);
    }

    std::vector<Verdict> run()
    {
        if (m_rule.option >= 2 && m_rule.option <= 5)
            judgeByPeriod(kPeriodRules[m_rule.option - 2]);
        else
            judgeEach();
        for (std::size_t i = 0; i < m_versions.size(); ++i) {
            if (m_versions[i].number == 0)
                m_verdicts[i] = {true, "the full copy is always kept"};
            else if (m_versions[i].number == m_newest)
                m_verdicts[i] = {true, "the newest copy is always kept"};
        }
        limit();
        return std::move(m_verdicts);
    }

private:
    void judgeEach()
    {
        const int threshold = m_rule.option == 6 && m_rule.count > 0 ? lowestOfNewest() : 0;
        for (std::size_t i = 0; i < m_versions.size(); ++i)
            m_verdicts[i] = judge(m_versions[i], threshold);
    }

    Verdict judge(const RetainedVersion& version, int threshold) const
    {
        switch (m_rule.option) {
        case 1:
            return judgeByAge(version, 2, "of today or yesterday", "older than yesterday");
        case 6:
            if (m_rule.count <= 0)
                return {true, "every version is kept"};
            return version.number >= threshold
                       ? Verdict{true, fmt::format("one of the newest {}", m_rule.count)}
                       : Verdict{false, fmt::format("not one of the newest {}", m_rule.count)};
        case 7:
            return {false, "only the full and the newest copy are kept"};
        case 8:
            if (m_rule.count <= 0)
                return {true, "every version is kept"};
            return judgeByAge(version, m_rule.count,
                              fmt::format("of the last {} days", m_rule.count),
                              fmt::format("older than the last {} days", m_rule.count));
        default:
            return {true, "every version is kept"};
        }
    }

    Verdict judgeByAge(const RetainedVersion& version, int days, std::string young,
                       std::string old) const
    {
        if (auto kept = keptByLabel(version))
            return *kept;
        const std::int64_t age =
            base::daysSinceEpoch(m_today) - base::daysSinceEpoch(m_localDate(*version.savedNs));
        return age < days ? Verdict{true, std::move(young)} : Verdict{false, std::move(old)};
    }

    std::optional<Verdict> keptByLabel(const RetainedVersion& version) const
    {
        if (!version.savedNs)
            return Verdict{true, "when it was saved is not known"};
        if (*version.savedNs > m_nowNs)
            return Verdict{true, "labelled later than now"};
        return std::nullopt;
    }

    void judgeByPeriod(const PeriodRule& rule)
    {
        const std::int64_t current = indexOf(rule.period, m_today);
        std::map<std::int64_t, int> last; // of each period, the highest number
        for (const RetainedVersion& version : m_versions) {
            if (keptByLabel(version))
                continue;
            int& number = last[indexOf(rule.period, m_localDate(*version.savedNs))];
            number = std::max(number, version.number);
        }
        for (std::size_t i = 0; i < m_versions.size(); ++i) {
            const RetainedVersion& version = m_versions[i];
            if (auto kept = keptByLabel(version)) {
                m_verdicts[i] = std::move(*kept);
                continue;
            }
            const base::Date date = m_localDate(*version.savedNs);
            const std::int64_t index = indexOf(rule.period, date);
            if (index < current - rule.prior)
                m_verdicts[i] = {false, rule.tooOld};
            else if (version.number == last[index])
                m_verdicts[i] = {true, "last version of the " + nameOf(rule, date)};
            else
                m_verdicts[i] = {false, "not the last version of the " + nameOf(rule, date)};
        }
    }

    int lowestOfNewest() const
    {
        std::vector<int> numbers;
        for (const RetainedVersion& version : m_versions) {
            if (version.number != 0)
                numbers.push_back(version.number);
        }
        std::sort(numbers.rbegin(), numbers.rend());
        const auto count = static_cast<std::size_t>(m_rule.count);
        return count < numbers.size() ? numbers[count - 1] : 0;
    }

    void limit()
    {
        if (m_rule.mostVersions == 0)
            return;
        std::vector<std::size_t> kept;
        for (std::size_t i = 0; i < m_versions.size(); ++i) {
            if (m_verdicts[i].keeps && m_versions[i].number != 0)
                kept.push_back(i);
        }
        std::sort(kept.begin(), kept.end(), [&](std::size_t a, std::size_t b) {
            return m_versions[a].number > m_versions[b].number;
        });
        for (std::size_t i = m_rule.mostVersions; i < kept.size(); ++i)
            m_verdicts[kept[i]] = {
                false, fmt::format("at most {} versions can be kept", m_rule.mostVersions)};
    }

    std::span<const RetainedVersion> m_versions;
    const RetentionRule& m_rule;
    std::int64_t m_nowNs;
    const LocalDate& m_localDate;
    base::Date m_today;
    int m_newest = 0;
    std::vector<Verdict> m_verdicts;
};

} // namespace

std::vector<Verdict> judgeVersions(std::span<const RetainedVersion> versions,
                                   const RetentionRule& rule, std::int64_t nowNs,
                                   const LocalDate& localDate)
{
    return Judge(versions, rule, nowNs, localDate).run();
}

} // namespace vardelin::engine
