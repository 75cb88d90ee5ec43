#pragma once

#include "e2e/program.h"

#include <array>
#include <chrono>
#include <cstdlib>
#include <fcntl.h>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

// A screen that nobody sees, with a keyboard, a mouse and a window manager, and programs on it.
namespace vardelin::test {

// Waits until something is so; raises with its name where that takes too long. Under the sanitizers
// on a busy machine a step may take seconds.
inline void waitUntil(std::string_view what, const std::function<bool()>& isSo)
{
    constexpr auto kLongest = std::chrono::seconds(40);
    constexpr auto kPause = std::chrono::milliseconds(20);
    const auto end = std::chrono::steady_clock::now() + kLongest;
    while (!isSo()) {
        if (std::chrono::steady_clock::now() > end)
            throw std::runtime_error("waited in vain: " + std::string(what));
        std::this_thread::sleep_for(kPause);
    }
}

// A process of the test's own, ended with the object.
class Process {
public:
    // `kept` stays open in the process under its number, where it is no -1. What the process prints
    // goes to `output`.
    Process(const std::vector<std::string>& command, const std::string& output, int kept = -1)
    {
        std::vector<char*> words;
        words.reserve(command.size() + 1);
        for (const std::string& word : command)
            words.push_back(const_cast<char*>(word.c_str())); // NOLINT: execvp changes nothing
        words.push_back(nullptr);
        m_id = ::fork();
        if (m_id < 0)
            throw std::runtime_error("no process for " + command.front());
        if (m_id == 0) {
            const int file = ::open(output.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0644);
            ::dup2(file, STDOUT_FILENO);
            ::dup2(file, STDERR_FILENO);
            if (kept >= 0)
                ::fcntl(kept, F_SETFD, 0);
            ::execvp(words.front(), words.data());
            ::_exit(127);
        }
    }
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;
    ~Process()
    {
        if (running()) {
            ::kill(m_id, SIGTERM);
            ::waitpid(m_id, nullptr, 0);
        }
    }

    bool running()
    {
        if (!m_ended && ::waitpid(m_id, &m_status, WNOHANG) == m_id)
            m_ended = true;
        return !m_ended;
    }
    // Its exit code; 128 and the signal's number where one ended it.
    int wait(std::string_view name)
    {
        waitUntil("the end of " + std::string(name), [this] { return !running(); });
        return WIFEXITED(m_status) ? WEXITSTATUS(m_status) : 128 + WTERMSIG(m_status);
    }

private:
    pid_t m_id = -1;
    int m_status = 0;
    bool m_ended = false;
};

// Whether this machine can show windows to nobody.
inline bool haveScreens()
{
    int code = 1;
    shell("command -v Xvfb xdotool openbox > /dev/null 2>&1", &code);
    return code == 0;
}

class Screen {
public:
    // Prints into files of `folder`.
    explicit Screen(const std::string& folder) : m_display(start(folder))
    {
        ::setenv("DISPLAY", m_display.c_str(), 1);
        m_manager = std::make_unique<Process>(std::vector<std::string>{"openbox", "--sm-disable"},
                                              folder + "/openbox.log");
        waitUntil("a window manager", [] { return !xdotool("getactivewindow 2>&1").empty(); });
    }

    // What the tool prints, without the line's end.
    static std::string xdotool(const std::string& arguments)
    {
        std::string out = shell("xdotool " + arguments);
        while (out.ends_with('\n'))
            out.pop_back();
        return out;
    }

    // The title of the window that has the keyboard; empty where none has it.
    static std::string activeTitle()
    {
        return xdotool("getactivewindow getwindowname 2> /dev/null");
    }
    static void waitForTitle(const std::string& title)
    {
        try {
            waitUntil("a window \"" + title + "\"", [&] { return activeTitle() == title; });
        } catch (const std::runtime_error& error) {
            throw std::runtime_error(std::string(error.what()) + ", in front is \"" +
                                     activeTitle() + "\"");
        }
    }
    // Presses the key in the box of this title, and waits until the box is gone.
    static void answer(const std::string& title, const std::string& keys)
    {
        waitForTitle(title);
        const std::string box = xdotool("getactivewindow");
        key(keys);
        waitUntil("the end of a box \"" + title + "\"", [&] {
            const std::string active = xdotool("getactivewindow 2> /dev/null");
            return !active.empty() && active != box;
        });
    }
    static void key(const std::string& keys) { xdotool("key --clearmodifiers " + keys); }
    static void type(std::string_view text)
    {
        xdotool("type --clearmodifiers -- " + shellWord(text));
    }
    // At a place in the window in front.
    static void click(int x, int y, int times = 1)
    {
        xdotool("getactivewindow mousemove --window %1 " + std::to_string(x) + " " +
                std::to_string(y) + " click --repeat " + std::to_string(times) + " --delay 20 1");
    }

private:
    std::string start(const std::string& folder)
    {
        std::array<int, 2> ends{};
        if (::pipe2(ends.data(), O_CLOEXEC) != 0)
            throw std::runtime_error("no pipe");
        m_server = std::make_unique<Process>(
            std::vector<std::string>{"Xvfb", "-displayfd", std::to_string(ends[1]), "-screen", "0",
                                     "1280x720x24", "-nolisten", "tcp", "-noreset"},
            folder + "/xvfb.log", ends[1]);
        ::close(ends[1]);
        std::string number;
        char one = 0;
        while (::read(ends[0], &one, 1) == 1 && one != '\n')
            number += one;
        ::close(ends[0]);
        if (number.empty())
            throw std::runtime_error("no screen: " + TempFolder::read(folder + "/xvfb.log"));
        return ":" + number;
    }

    // The screen goes last.
    std::unique_ptr<Process> m_server;
    std::string m_display;
    std::unique_ptr<Process> m_manager;
};

} // namespace vardelin::test
