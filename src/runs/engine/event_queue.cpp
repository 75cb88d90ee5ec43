#include "runs/engine/event_queue.h"

#include <chrono>
#include <utility>

namespace vardelin::engine {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kLook{2};
// Without news for so long the file in work is told again: a window waits for a turn, and a person
// for Cancel, while a disk does not answer.
constexpr std::chrono::milliseconds kLongestSilence{200};

} // namespace

void EventQueue::fileBegins(std::string path)
{
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [&] { return m_files.size() < kMostWaiting; });
    m_files.push_back(std::move(path));
}

void EventQueue::advance(double units)
{
    m_units += units;
}

void EventQueue::workerEnds()
{
    {
        const std::lock_guard lock(m_mutex);
        ++m_ended;
    }
    m_changed.notify_all();
}

void EventQueue::pump(std::size_t workers, const std::function<void(const std::string&)>& onFile,
                      const std::function<void(double)>& onProgress)
{
    std::vector<std::string> files;
    std::string last;
    Clock::time_point told = Clock::now();
    for (;;) {
        bool ended = false;
        {
            std::unique_lock lock(m_mutex);
            m_changed.wait_for(lock, kLook, [&] { return m_ended == workers; });
            files.swap(m_files);
            ended = m_ended == workers;
        }
        if (files.size() >= kMostWaiting)
            m_changed.notify_all();
        const double units = m_units.exchange(0);
        if (!files.empty())
            last = files.back();
        else if (!last.empty() && !ended && Clock::now() - told >= kLongestSilence)
            files.push_back(last);
        for (const std::string& file : files)
            onFile(file);
        if (!files.empty())
            told = Clock::now();
        files.clear();
        if (units > 0)
            onProgress(units);
        if (ended)
            return;
    }
}

void EventQueue::drain(std::size_t workers)
{
    pump(
        workers, [](const std::string&) {}, [](double) {});
}

} // namespace vardelin::engine
