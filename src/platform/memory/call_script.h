#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vardelin::platform {

// Thrown where the script ends the process's life. On purpose no std::exception: what handles
// errors must not handle a death.
struct Killed {};

// What a test says will happen at the calls that its ports' doubles get: each double reports each
// of its primitives here before doing it. Calls are numbered from 1 since the start or the last
// reset(). Names are `fs.openFolder`, `folder.rename`, `file.write` and so on, after the port's
// functions.
//
// May be used by several threads; a hook runs on the thread of its call, without a lock held, so it
// may use the ports itself.
class CallScript {
public:
    struct Call {
        std::string name;
        std::string subject; // the path, as a rule
    };
    using Hook = std::function<void(const Call&)>;

    // Call `number` raises a RuntimeError and does nothing.
    void failCall(std::size_t number, int error, std::string reason = "failed by the script");
    // Every call of this name whose subject holds `part` raises, until reset().
    void failCallsNamed(std::string name, int error, std::string part = {});
    // Call `number` first runs the hook, such as a wait or a change made behind the caller's back.
    void delayCall(std::size_t number, Hook hook);
    // Runs at each call of this name, before it is done.
    void onCallsNamed(std::string name, Hook hook);
    // Call `number` throws Killed instead of being done, and so does every call after it.
    void killAtCall(std::size_t number);

    std::size_t callCount() const;
    std::vector<Call> calls() const;
    std::size_t countOf(std::string_view name) const;
    bool wasKilled() const;
    // Forgets the calls and all that was to happen.
    void reset();

    // For the doubles: counts the call and lets happen what is due.
    void enter(std::string_view name, std::string_view subject);

private:
    struct Failure {
        int error = 0;
        std::string reason;
    };
    struct NamedFailure {
        std::string name;
        std::string part;
        int error = 0;
    };

    mutable std::mutex m_mutex; // for all that follows
    std::vector<Call> m_calls;
    std::map<std::size_t, Failure> m_failures;
    std::vector<NamedFailure> m_namedFailures;
    std::multimap<std::size_t, Hook> m_hooks;
    std::multimap<std::string, Hook, std::less<>> m_namedHooks;
    std::optional<std::size_t> m_killAt;
    bool m_killed = false;
};

} // namespace vardelin::platform
