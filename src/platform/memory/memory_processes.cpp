#include "platform/memory/memory_processes.h"

#include "base/runtime_error.h"
#include "base/text.h"

namespace vardelin::platform {

std::vector<ProcessInfo> MemoryProcesses::list()
{
    script().enter("processes.list", {});
    return running;
}

std::int64_t MemoryProcesses::start(std::string_view path,
                                    const std::vector<std::string>& arguments, WindowStyle style)
{
    script().enter("processes.start", path);
    if (missing.contains(std::string(path)))
        throw base::RuntimeError(base::error_number::kFileNotFound, std::string(path));
    started.push_back({std::string(path), arguments, style});
    running.push_back({m_nextId, std::string(base::afterLast(path, "\\"))});
    return m_nextId++;
}

bool MemoryProcesses::terminate(std::int64_t id)
{
    script().enter("processes.terminate", std::to_string(id));
    return std::erase_if(running, [id](const ProcessInfo& each) { return each.id == id; }) > 0;
}

std::string MemoryProcesses::run(const std::vector<std::string>& command)
{
    const std::string words = base::join(command, " ");
    script().enter("processes.run", words);
    const auto hit = outputs.find(words);
    if (hit == outputs.end())
        throw base::RuntimeError(base::error_number::kFileNotFound, words);
    return hit->second;
}

} // namespace vardelin::platform
