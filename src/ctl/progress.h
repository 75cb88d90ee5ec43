#pragma once

#include "ctl/output.h"
#include "ctl/terminal.h"
#include "platform/machine.h"
#include "runs/engine/engine.h"

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

namespace vardelin::ctl {

// One line at the bottom of a terminal, drawn again at most ten times a second. Without a terminal,
// with --json or --quiet nothing is drawn.
class ProgressLine {
public:
    ProgressLine(Terminal& terminal, platform::Clock& clock, bool wanted);
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;
    ~ProgressLine() { clear(); }

    // Whether it is time to draw again; asking costs little.
    bool isDue();
    // `head` is valid UTF-8 and stands first; `name` fills the rest of the line, elided.
    void draw(std::string_view head, std::string_view name);
    void clear();

private:
    Terminal& m_terminal;
    platform::Clock& m_clock;
    bool m_wanted;
    bool m_drawn = false;
    std::chrono::nanoseconds m_last{-1};
};

// A run's events on the terminal: draws the line, prints progress objects with --json (at most one
// a second), and hands Ctrl+C on to the engine. Used on the thread of the run.
class RunProgress final : public engine::EngineEvents {
public:
    RunProgress(Terminal& terminal, Output& output, platform::Clock& clock);

    // The engine whose run this follows; must be set before the run.
    void follow(engine::Engine& engine) { m_engine = &engine; }

    void ProStatus(double increment) override;
    void FileProStatus(std::string_view item) override;

    std::chrono::nanoseconds elapsed() const { return m_clock.steady() - m_start; }
    void clear() { m_line.clear(); }

private:
    void passOnInterrupt();
    void show();

    Terminal& m_terminal;
    Output& m_output;
    platform::Clock& m_clock;
    ProgressLine m_line;
    engine::Engine* m_engine = nullptr;
    std::chrono::nanoseconds m_start;
    std::chrono::nanoseconds m_lastObject;
    double m_position = 0;
    std::uint64_t m_files = 0;
    std::string m_item;
};

// `0.4 s`, `75 s`, `12 min 5 s`, `2 h 3 min`.
std::string durationText(std::chrono::nanoseconds duration);

} // namespace vardelin::ctl
