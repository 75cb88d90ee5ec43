#pragma once

#include "frame/start_up.h"
#include "frame_rig.h"
#include "platform/memory/memory_instance_lock.h"
#include "profile/scrambler.h"

#include <string>
#include <string_view>
#include <vector>

namespace vardelin::test {

// Notes what start-up asks of the windows among the calls of the frame's own window.
class ScriptedStartUpWindow final : public frame::StartUpWindow {
public:
    explicit ScriptedStartUpWindow(std::vector<std::string>& calls) : m_calls(calls) {}

    state::FrameSize size{1180, 680};

    void showSplash() override { m_calls.emplace_back("showSplash"); }
    void unloadSplash() override { m_calls.emplace_back("unloadSplash"); }
    state::FrameSize frameSize() override
    {
        m_calls.emplace_back("frameSize");
        return size;
    }
    void placeProgressBar() override { m_calls.emplace_back("placeProgressBar"); }
    void showMainFrame() override { m_calls.emplace_back("showMainFrame"); }

private:
    std::vector<std::string>& m_calls;
};

class NotedFileTypes final : public shell::FileTypes {
public:
    explicit NotedFileTypes(std::vector<std::string>& calls) : m_calls(calls) {}
    void ActivateForIcon() override { m_calls.emplace_back("ActivateForIcon"); }

private:
    std::vector<std::string>& m_calls;
};

// An application folder as an installation lays it out, before the window's first start. Sources
// lie on D:.
struct StartUpRig : FrameRig {
    static constexpr platform::RegistryRoot kMachine = platform::RegistryRoot::LocalMachine;

    state::frmSplash splash;
    platform::MemoryInstanceLock instance;
    ScriptedStartUpWindow startUpWindow{windows.calls};
    NotedFileTypes fileTypes{windows.calls};
    background::ServicePlace services;
    frame::StartUpContext starting{commands, splash,     instance, startUpWindow,
                                   services, &fileTypes, "C:\\App"};

    StartUpRig()
    {
        frame.ST_App_Path.clear();
        shell.documentLines = {"D:\\Documents\\"};
        put({"D:\\Documents\\letter.txt", "D:\\Work\\plan.txt"});
        drives.drives.clear();
        addDrive('D');
    }

    // The next starts are none after an installation, and the monitors run already.
    void installed()
    {
        registry.setString(kMachine, "SOFTWARE\\Vardelin", "Started", "1");
        putFile("C:\\App\\ServiceActive.reg", "REGEDIT4\r\n");
    }
    // A saved profile with these sources, scrambled as on the disk.
    void putProfile(const std::string& name, const std::string& sources,
                    const std::string& excluded = {})
    {
        frame.ST_App_Path = "C:\\App";
        putFile(pathOf(name),
                "[" + name + "]\r\n{Source files}\r\n" + sources +
                    "{End Of Source files}\r\n{Excluded options}\r\n" + excluded +
                    "{End Of Excluded options}\r\n{Destination path}\r\nE:\\Backup\r\n"
                    "{End Of Destination path}\r\nBackup versions =7\r\nCompress = True\r\n"
                    "Encrypt=False\r\n[End of " +
                    name + "]\r\n");
        profile::PrFileEncrypt(profiles, "C:\\App\\Profiles", name);
        frame.ST_App_Path.clear();
        frame.pb.value = 0;
        disk.removeFile(trace.logFileName());
    }
    void recent(const std::string& name)
    {
        putFile(kList, list() + "[Recent Profile]\r\n" + name + "\r\n");
    }
    void primary(const std::string& name)
    {
        putFile(kList, list() + "[Primary Profile]\r\n" + name + "\r\n");
    }
    // From the process's entry to the end of the splash.
    void start(std::string_view commandLine = {})
    {
        if (!frame::Main(starting, commandLine))
            return;
        frame::Timer1_Timer(starting);
        frame::Timer1_Timer(starting);
    }
    bool marked() { return registry.stringValue(kMachine, "SOFTWARE\\Vardelin", "Started") == "1"; }
    // Procedures in the order of their first entries in the trace.
    std::vector<std::string> procedures()
    {
        std::vector<std::string> names;
        for (const std::string& entry : entries()) {
            const std::string name(base::beforeFirst(entry, " "));
            if (std::find(names.begin(), names.end(), name) == names.end())
                names.push_back(name);
        }
        return names;
    }
};

} // namespace vardelin::test
