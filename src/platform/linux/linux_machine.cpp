#include "platform/linux/linux_machine.h"

#include <utility>

namespace vardelin::platform {

LinuxMachine::LinuxMachine(const std::string& applicationFolder, MessageBoxes& messageBoxes,
                           MessageLoop& messageLoop, DesktopFolders desktop)
    : m_registry(applicationFolder + "/Data/registry.db"), m_drives(m_registry),
      m_fileSystem(m_drives.map()), m_shell(m_fileSystem, std::move(desktop)),
      m_facts(m_fileSystem), m_processes(m_fileSystem), m_messageBoxes(messageBoxes),
      m_messageLoop(messageLoop), m_appPath(m_fileSystem.fromNative(applicationFolder))
{
    while (m_appPath.ends_with('\\'))
        m_appPath.pop_back();
}

Machine LinuxMachine::machine()
{
    return {m_fileSystem, m_drives, m_registry,    m_shell,       m_facts,
            m_processes,  m_clock,  m_messageLoop, m_messageBoxes};
}

void LinuxMachine::refreshDrives()
{
    m_fileSystem.useDrives(m_drives.map());
}

} // namespace vardelin::platform
