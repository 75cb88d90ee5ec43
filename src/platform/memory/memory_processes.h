#pragma once

#include "platform/machine.h"
#include "platform/memory/scripted_double.h"

#include <map>
#include <set>

namespace vardelin::platform {

// Programs that run on paper: a started one is listed until it is terminated. For one thread.
class MemoryProcesses final : public Processes, public ScriptedDouble {
public:
    struct Started {
        std::string path; // as it was given
        std::vector<std::string> arguments;
        WindowStyle style = WindowStyle::Normal;
        friend bool operator==(const Started&, const Started&) = default;
    };
    std::vector<ProcessInfo> running;
    std::vector<Started> started;  // all of them, in their order
    std::set<std::string> missing; // paths that start() does not find
    std::map<std::string, std::string>
        outputs; // what run() prints, by the words with a blank between

    std::vector<ProcessInfo> list() override;
    std::int64_t start(std::string_view path, const std::vector<std::string>& arguments,
                       WindowStyle style) override;
    bool terminate(std::int64_t id) override;
    std::string run(const std::vector<std::string>& command) override;

private:
    std::int64_t m_nextId = 1000;
};

} // namespace vardelin::platform
