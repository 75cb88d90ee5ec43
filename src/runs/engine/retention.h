#pragma once

#include "base/dates.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

// Which copies of one file stay in the archive. Nothing here touches the disk.
//
// Whatever the option says, the full copy and the newest copy stay. The newest is the copy with the
// highest number: numbers tell the order, times are labels that a clock set back can make wrong. A
// version whose label is later than now stays, too, under the options that go by the calendar, and
// takes no other version's place. One that has no readable time stays likewise. Whether the source
// still exists makes no difference: the newest copy stays in either case, so no file goes wholly.
//
// The calendar is the person's local one, by the time of the run that saved the version:
//   0  everything stays
//   1  versions of today and yesterday
//   2  the last version of each day, today and the 30 days before it
//   3  the last version of each week, Monday to Sunday, this week and the 4 before it
//   4  the last version of each month, this month and the 3 before it
//   5  the last version of each year, this year and the 3 before it
//   6  the newest `count` versions; the full copy is not counted
//   7  the full copy and the newest copy
//   8  all versions of the last `count` days, today being one of them
// The current period counts like the others: of several versions of one day, the highest number is
// its last one. Months and years are those of the calendar, whatever their lengths. A count of 0,
// and an option that is none of these, keep everything.
namespace vardelin::engine {

struct RetainedVersion {
    int number = 0; // 0 is the full copy; each number once
    // Start of the run that saved it, nanoseconds since 1970 UTC; none where nothing tells it.
    std::optional<std::int64_t> savedNs;
};

struct RetentionRule {
    int option = 0;
    int count = 0; // of options 6 and 8
    // At most so many versions stay, the full copy aside; the oldest of those that would stay go
    // beyond it, whatever their labels. 0: no limit.
    std::size_t mostVersions = 0;
};

struct Verdict {
    bool keeps = true;
    std::string reason; // "last version of the week from 2026-11-16", "older than 30 days"
};

// The local date of an instant.
using LocalDate = std::function<base::Date(std::int64_t ns)>;

// One verdict for each version, in the order of `versions`, which may be any. The same day's
// verdict on what stays drops nothing more.
std::vector<Verdict> judgeVersions(std::span<const RetainedVersion> versions,
                                   const RetentionRule& rule, std::int64_t nowNs,
                                   const LocalDate& localDate);

} // namespace vardelin::engine
