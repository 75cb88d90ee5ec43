#pragma once

#include "base/dates.h"
#include "platform/drives.h"
#include "platform/file_system.h"
#include "platform/registry.h"

#include <array>
#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The smaller ports, and the record that hands all of them on.
namespace vardelin::platform {

class Clock {
public:
    Clock() = default;
    Clock(const Clock&) = delete;
    Clock& operator=(const Clock&) = delete;
    virtual ~Clock() = default;

    // Nanoseconds since 1 January 1970 UTC.
    virtual std::int64_t nowNs() = 0;
    // Runs forward whatever the clock on the wall does; for rates and time-outs.
    virtual std::chrono::nanoseconds steady() = 0;
    // The person's own calendar and clock at an instant, and the instant that shows so (the earlier
    // one where two do).
    virtual base::DateTime toLocal(std::int64_t ns) = 0;
    virtual std::int64_t fromLocal(const base::DateTime& local) = 0;

    base::DateTime now() { return toLocal(nowNs()); }
};

// What the shell knows of files and folders.
class Shell {
public:
    Shell() = default;
    Shell(const Shell&) = delete;
    Shell& operator=(const Shell&) = delete;
    virtual ~Shell() = default;

    // The type text of an extension with its dot, such as "Plain text document" for `.txt`; empty
    // where none is known.
    virtual std::string typeName(std::string_view extension) = 0;
    // The name of the extension's icon in the desktop's theme; empty where none is known.
    virtual std::string iconName(std::string_view extension) = 0;
    // Every extension with a type, lower case with its dot, sorted.
    virtual std::vector<std::string> extensions() = 0;
    // The source lines of the default profile where this machine keeps documents elsewhere than the
    // built-in folders; each ends in a backslash. Empty: the built-in ones hold.
    virtual std::vector<std::string> defaultDocumentLines() = 0;
    // The folders of a person's settings: what exists of them, each without a backslash at the end.
    virtual std::vector<std::string> settingsPaths(std::string_view group) = 0;
    // To be told when values of kRunKey changed, by a desktop that starts programs by a list of its
    // own and keeps it like the key's. Does nothing where the key itself is what counts.
    virtual void runKeyChanged(Registry&) {}
    // Notes a document, by its path, as opened just now among those that the person used last.
    // Raises where the list cannot be written.
    virtual void addRecentDocument(std::string_view path) = 0;
};

// An address of the internet's version 4, first byte first.
using HostAddress = std::array<std::uint8_t, 4>;

class MachineFacts {
public:
    MachineFacts() = default;
    MachineFacts(const MachineFacts&) = delete;
    MachineFacts& operator=(const MachineFacts&) = delete;
    virtual ~MachineFacts() = default;

    virtual std::string userName() = 0; // empty where the system does not say
    virtual std::string computerName() = 0;
    virtual bool isNtPlatform() = 0;          // true on every system of today
    virtual std::string executableName() = 0; // base name, no folder and no extension
    // The folder of the operating system itself, no backslash at its end. A machine that has none
    // gives the customary place, where nothing is.
    virtual std::string windowsFolder() = 0;
    // The long form of a path, empty where it does not exist.
    virtual std::string longPathName(std::string_view path) = 0;
    // The first address of a computer by its name or dotted address; none where it is not known.
    // Asks the network and waits for the answer.
    virtual std::optional<HostAddress> hostAddress(std::string_view name) = 0;
};

struct ProcessInfo {
    std::int64_t id = 0;
    std::string name; // of the program, without a folder
};

// How a program's first window comes up; of no meaning for one that has no window.
enum class WindowStyle : std::uint8_t { Normal, MinimizedWithFocus };

class Processes {
public:
    Processes() = default;
    Processes(const Processes&) = delete;
    Processes& operator=(const Processes&) = delete;
    virtual ~Processes() = default;

    virtual std::vector<ProcessInfo> list() = 0;
    // Starts and does not wait; the program outlives this one. `X.exe` is started as `X` where
    // programs have no ending. 53 where there is no such program.
    virtual std::int64_t start(std::string_view path, const std::vector<std::string>& arguments,
                               WindowStyle style = WindowStyle::Normal) = 0;
    virtual bool terminate(std::int64_t id) = 0;
    // Runs a program to its end and gives what it printed; 53 where there is none, 57 where it ends
    // with another code than 0.
    virtual std::string run(const std::vector<std::string>& command) = 0;
};

// Paint and input are handled while a long piece of work goes on.
class MessageLoop {
public:
    MessageLoop() = default;
    MessageLoop(const MessageLoop&) = delete;
    MessageLoop& operator=(const MessageLoop&) = delete;
    virtual ~MessageLoop() = default;

    virtual void yield() = 0;
};

enum class Buttons : std::uint8_t { Ok, OkCancel, YesNo };
enum class Icon : std::uint8_t { None, Critical, Question, Exclamation };
enum class Answer : std::uint8_t { Ok, Cancel, Yes, No };

// Plain message boxes. A terminal program prints them, a test records them and answers by a script.
class MessageBoxes {
public:
    MessageBoxes() = default;
    MessageBoxes(const MessageBoxes&) = delete;
    MessageBoxes& operator=(const MessageBoxes&) = delete;
    virtual ~MessageBoxes() = default;

    virtual Answer show(std::string_view text, std::string_view title,
                        Buttons buttons = Buttons::Ok, Icon icon = Icon::None) = 0;
};

// All ports of one machine. Holds references only: whoever composes the program owns the ports and
// keeps them longer than everything that is handed this record.
struct Machine {
    FileSystem& fileSystem;
    Drives& drives;
    Registry& registry;
    Shell& shell;
    MachineFacts& facts;
    Processes& processes;
    Clock& clock;
    MessageLoop& messageLoop;
    MessageBoxes& messageBoxes;
};

} // namespace vardelin::platform
