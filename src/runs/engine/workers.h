#pragma once

#include "runs/engine/event_queue.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <thread>
#include <vector>

namespace vardelin::engine {

// How many workers serve `pieces` pieces of work: one a processor, and none without work.
inline std::size_t workerCount(std::size_t pieces)
{
    return std::clamp<std::size_t>(std::thread::hardware_concurrency(), 1,
                                   std::max<std::size_t>(pieces, 1));
}

// The threads of one run. Joins what it started, also when the caller's thread leaves by an
// exception: then the stop flag is set and nobody listens to events any more.
class Workers {
public:
    explicit Workers(std::atomic<bool>& stop) : m_stop(stop) {}
    ~Workers()
    {
        m_stop = true;
        if (m_events != nullptr)
            m_events->drain(m_threads.size());
        for (std::thread& thread : m_threads)
            thread.join();
    }
    Workers(const Workers&) = delete;
    Workers& operator=(const Workers&) = delete;

    // `body` runs once on each thread and lets no exception out. `events` must outlive this.
    template <typename Body>
    void start(std::size_t count, EventQueue& events, Body body)
    {
        m_events = &events;
        for (std::size_t i = 0; i < count; ++i)
            m_threads.emplace_back([body, &events] {
                body();
                events.workerEnds();
            });
    }

private:
    std::atomic<bool>& m_stop;
    EventQueue* m_events = nullptr;
    std::vector<std::thread> m_threads;
};

} // namespace vardelin::engine
