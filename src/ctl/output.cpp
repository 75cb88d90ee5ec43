#include "ctl/output.h"

#include "base/dates.h"
#include "ctl/text_forms.h"

#include <ostream>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace vardelin::ctl {

void putText(Json& object, const std::string& key, std::string_view bytes)
{
    if (isUtf8(bytes)) {
        object[key] = std::string(bytes);
        return;
    }
    std::string digits;
    for (const char byte : bytes)
        digits += fmt::format("{:02x}", static_cast<unsigned char>(byte));
    object[key] = replacedText(bytes);
    object[key + "Bytes"] = std::move(digits);
}

void putInstant(Json& object, const std::string& key, std::int64_t ns)
{
    constexpr std::int64_t kSecond = 1'000'000'000;
    constexpr std::int64_t kDay = 86'400;
    std::int64_t seconds = ns / kSecond;
    std::int64_t fraction = ns % kSecond;
    if (fraction < 0) {
        fraction += kSecond;
        --seconds;
    }
    std::int64_t days = seconds / kDay;
    std::int64_t rest = seconds % kDay;
    if (rest < 0) {
        rest += kDay;
        --days;
    }
    object[key] =
        fmt::format("{}T{:02}:{:02}:{:02}.{:09}Z", base::isoDate(base::dateFromDays(days)),
                    rest / 3600, rest / 60 % 60, rest % 60, fraction);
}

Output::Output(Terminal& terminal, const GlobalOptions& options)
    : m_terminal(terminal), m_options(options)
{
}

void Output::result(std::string_view text)
{
    if (!m_options.json)
        m_terminal.out << text;
}

void Output::note(std::string_view line)
{
    if (!m_options.json && !m_options.quiet)
        m_terminal.out << line << '\n';
}

void Output::warning(std::string_view line)
{
    message(fmt::format("warning: {}", line));
}

void Output::error(std::string_view line)
{
    message(line);
}

void Output::object(const Json& object)
{
    if (m_options.json)
        m_terminal.out << object.dump() << '\n';
}

void Output::message(std::string_view line)
{
    m_terminal.out.flush(); // in the order of the events where both streams go to one place
    m_terminal.err << "vardelinctl: " << visibleText(line) << '\n';
    m_terminal.err.flush();
}

} // namespace vardelin::ctl
