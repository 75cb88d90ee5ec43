#pragma once

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

namespace vardelin::engine {

// Brings what the workers tell to the caller's thread. Workers wait while kMostWaiting events wait,
// so a person's Cancel reaches them after a bounded number of files however slow the handlers are.
//
// The caller's thread looks every few milliseconds instead of being woken for each event: on two
// cores a wake-up a file cost more than packing a small one.
class EventQueue {
public:
    // From a worker's thread.
    void fileBegins(std::string path);
    // An increment without a name of its own.
    void advance(double units);
    // From a worker's thread, as its last call; `workers` of them end the queue.
    void workerEnds();

    // On the caller's thread: hands on what comes until every worker has ended. Where nothing comes
    // for a fifth of a second, the file that was told last is told again.
    void pump(std::size_t workers, const std::function<void(const std::string&)>& onFile,
              const std::function<void(double)>& onProgress);

    // The same without listening, where the handlers are gone.
    void drain(std::size_t workers);

private:
    static constexpr std::size_t kMostWaiting = 256;

    std::atomic<double> m_units = 0; // told, and not yet handed on
    std::mutex m_mutex;              // guards all below
    std::condition_variable m_changed;
    std::vector<std::string> m_files;
    std::size_t m_ended = 0;
};

} // namespace vardelin::engine
