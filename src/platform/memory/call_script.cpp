#include "platform/memory/call_script.h"

#include "base/runtime_error.h"

#include <algorithm>
#include <utility>

namespace vardelin::platform {

void CallScript::failCall(std::size_t number, int error, std::string reason)
{
    const std::lock_guard lock(m_mutex);
    m_failures[number] = {error, std::move(reason)};
}

void CallScript::failCallsNamed(std::string name, int error, std::string part)
{
    const std::lock_guard lock(m_mutex);
    m_namedFailures.push_back({std::move(name), std::move(part), error});
}

void CallScript::delayCall(std::size_t number, Hook hook)
{
    const std::lock_guard lock(m_mutex);
    m_hooks.emplace(number, std::move(hook));
}

void CallScript::onCallsNamed(std::string name, Hook hook)
{
    const std::lock_guard lock(m_mutex);
    m_namedHooks.emplace(std::move(name), std::move(hook));
}

void CallScript::killAtCall(std::size_t number)
{
    const std::lock_guard lock(m_mutex);
    m_killAt = number;
}

std::size_t CallScript::callCount() const
{
    const std::lock_guard lock(m_mutex);
    return m_calls.size();
}

std::vector<CallScript::Call> CallScript::calls() const
{
    const std::lock_guard lock(m_mutex);
    return m_calls;
}

std::size_t CallScript::countOf(std::string_view name) const
{
    const std::lock_guard lock(m_mutex);
    return static_cast<std::size_t>(std::count_if(
        m_calls.begin(), m_calls.end(), [&](const Call& call) { return call.name == name; }));
}

bool CallScript::wasKilled() const
{
    const std::lock_guard lock(m_mutex);
    return m_killed;
}

void CallScript::reset()
{
    const std::lock_guard lock(m_mutex);
    m_calls.clear();
    m_failures.clear();
    m_namedFailures.clear();
    m_hooks.clear();
    m_namedHooks.clear();
    m_killAt.reset();
    m_killed = false;
}

void CallScript::enter(std::string_view name, std::string_view subject)
{
    const Call call{std::string(name), std::string(subject)};
    std::vector<Hook> due;
    std::optional<Failure> failure;
    {
        const std::lock_guard lock(m_mutex);
        // The dead make no calls: what runs on while the stack unwinds is not counted.
        if (m_killed)
            throw Killed{};
        m_calls.push_back(call);
        const std::size_t number = m_calls.size();
        if (m_killAt && number >= *m_killAt) {
            m_killed = true;
            throw Killed{};
        }
        for (auto [hook, end] = m_hooks.equal_range(number); hook != end; ++hook)
            due.push_back(hook->second);
        for (auto [hook, end] = m_namedHooks.equal_range(name); hook != end; ++hook)
            due.push_back(hook->second);
        if (const auto hit = m_failures.find(number); hit != m_failures.end())
            failure = hit->second;
        for (const NamedFailure& rule : m_namedFailures) {
            if (!failure && rule.name == name && subject.find(rule.part) != std::string_view::npos)
                failure = Failure{rule.error, "failed by the script"};
        }
    }
    for (const Hook& hook : due)
        hook(call);
    if (failure)
        throw base::RuntimeError(failure->error, call.subject, failure->reason);
}

} // namespace vardelin::platform
