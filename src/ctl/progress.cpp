#include "ctl/progress.h"

#include "ctl/text_forms.h"

#include <algorithm>
#include <ostream>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace vardelin::ctl {
namespace {

using std::chrono::duration;
using std::chrono::duration_cast;
using std::chrono::nanoseconds;

constexpr std::chrono::milliseconds kDrawEvery{100};
constexpr std::chrono::seconds kObjectEvery{1};
constexpr std::size_t kShortestName = 12; // columns; below it a name says nothing

double secondsOf(nanoseconds time)
{
    return duration_cast<duration<double>>(time).count();
}

} // namespace

ProgressLine::ProgressLine(Terminal& terminal, platform::Clock& clock, bool wanted)
    : m_terminal(terminal), m_clock(clock), m_wanted(wanted && terminal.errIsTerminal)
{
}

bool ProgressLine::isDue()
{
    if (!m_wanted)
        return false;
    const nanoseconds now = m_clock.steady();
    if (m_last >= nanoseconds{0} && now - m_last < kDrawEvery)
        return false;
    m_last = now;
    return true;
}

void ProgressLine::draw(std::string_view head, std::string_view name)
{
    if (!m_wanted)
        return;
    // The last column stays free: some terminals begin a new line there.
    const int width = m_terminal.width();
    const std::size_t columns = width > 1 ? static_cast<std::size_t>(width) - 1 : 79;
    std::string line = elided(head, columns);
    const std::size_t used = columnsOf(line);
    if (!name.empty() && used + kShortestName < columns)
        line += elided(visibleText(name), columns - used);
    m_terminal.err << "\r\x1B[K" << line;
    m_terminal.err.flush();
    m_drawn = true;
}

void ProgressLine::clear()
{
    if (m_drawn) {
        m_terminal.err << "\r\x1B[K";
        m_terminal.err.flush();
    }
    m_drawn = false;
}

RunProgress::RunProgress(Terminal& terminal, Output& output, platform::Clock& clock)
    : m_terminal(terminal), m_output(output), m_clock(clock),
      m_line(terminal, clock, !output.json() && !output.quiet()), m_start(clock.steady()),
      m_lastObject(m_start)
{
}

void RunProgress::ProStatus(double increment)
{
    m_position += increment;
    passOnInterrupt(); // a restore tells nothing else
    show();
}

void RunProgress::FileProStatus(std::string_view item)
{
    if (item != m_item) {
        ++m_files;
        m_item = item;
    }
    passOnInterrupt();
    show();
}

void RunProgress::passOnInterrupt()
{
    if (m_terminal.interrupted() && m_engine != nullptr)
        m_engine->CancelRequested(engine::kTrue);
}

void RunProgress::show()
{
    const bool draws = m_line.isDue();
    const bool prints = m_output.json() && m_clock.steady() - m_lastObject >= kObjectEvery;
    if (!draws && !prints)
        return;
    // A restore has no files to tell of, and its increments make up 100.
    const double total = m_files == 0          ? 100
                         : m_engine == nullptr ? 0
                                               : static_cast<double>(m_engine->TotalUnits());
    const double percent = total > 0 ? std::min(100.0, m_position / total * 100) : 0;
    const double seconds = std::max(secondsOf(elapsed()), 0.001);
    if (draws) {
        std::string head = total > 0 ? fmt::format("{:3.0f} %  ", percent) : "scanning  ";
        if (m_files > 0 && total > 0)
            head += fmt::format("{}, {:.0f}/s  ", countText(m_files, "file", "files"),
                                static_cast<double>(m_files) / seconds);
        m_line.draw(head, m_item);
    }
    if (prints) {
        m_lastObject = m_clock.steady();
        Json object{{"type", "progress"}, {"percent", percent}, {"files", m_files}};
        putText(object, "item", m_item);
        m_output.object(object);
        m_terminal.out.flush(); // whoever reads it wants to see it move
    }
}

std::string durationText(nanoseconds duration)
{
    const double seconds = secondsOf(duration);
    const auto whole = static_cast<std::int64_t>(seconds);
    if (seconds < 10)
        return fmt::format("{:.1f} s", seconds);
    if (whole < 120)
        return fmt::format("{} s", whole);
    if (whole < 7200)
        return fmt::format("{} min {} s", whole / 60, whole % 60);
    return fmt::format("{} h {} min", whole / 3600, whole / 60 % 60);
}

} // namespace vardelin::ctl
