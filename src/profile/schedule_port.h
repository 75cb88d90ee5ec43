#pragma once

#include <string_view>

namespace vardelin::profile {

// The schedule records that the background monitors read, as far as the profile store touches them.
// `name` is a profile's file name with its extension.
class ScheduleRecords {
public:
    ScheduleRecords() = default;
    ScheduleRecords(const ScheduleRecords&) = delete;
    ScheduleRecords& operator=(const ScheduleRecords&) = delete;
    virtual ~ScheduleRecords() = default;

    // Drops the profile's schedule; false where the records could not be reached.
    virtual bool DeleteSchedKey(std::string_view name) = 0;
    // Registers the default profile's schedule: daily, beginning in a minute.
    virtual void WriteDefaultSchedReg(std::string_view name) = 0;
};

} // namespace vardelin::profile
