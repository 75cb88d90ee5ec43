#include "platform/linux/linux_machine_facts.h"

#include "base/text.h"

#include <array>
#include <climits>
#include <cstring>
#include <memory>
#include <netdb.h>
#include <netinet/in.h>
#include <pwd.h>
#include <sys/socket.h>
#include <unistd.h>
#include <vector>

namespace vardelin::platform {
LinuxMachineFacts::LinuxMachineFacts(FileSystem& fileSystem) : m_fileSystem(fileSystem) {}

std::string LinuxMachineFacts::userName()
{
    std::vector<char> buffer(16384);
    passwd entry{};
    passwd* found = nullptr;
    if (getpwuid_r(geteuid(), &entry, buffer.data(), buffer.size(), &found) != 0 ||
        found == nullptr)
        return {};
    return found->pw_name;
}

std::string LinuxMachineFacts::computerName()
{
    std::array<char, HOST_NAME_MAX + 1> buffer{};
    if (gethostname(buffer.data(), buffer.size() - 1) != 0)
        return {};
    return buffer.data();
}

bool LinuxMachineFacts::isNtPlatform()
{
    return true;
}

std::string LinuxMachineFacts::executableName()
{
    std::string name(base::afterLast(executablePath(), "/"));
    if (base::endsWithIgnoringCase(name, ".exe"))
        name.resize(name.size() - 4);
    return name;
}

std::string LinuxMachineFacts::windowsFolder()
{
    return "C:\\Windows";
}

std::string LinuxMachineFacts::longPathName(std::string_view path)
{
    return m_fileSystem.find(path) ? std::string(path) : std::string();
}

std::optional<HostAddress> LinuxMachineFacts::hostAddress(std::string_view name)
{
    addrinfo wanted{};
    wanted.ai_family = AF_INET;
    wanted.ai_socktype = SOCK_STREAM; // one entry an address, not one a protocol
    addrinfo* found = nullptr;
    // A name with a NUL is none; cut there it would be another one.
    if (name.empty() || name.find('\0') != std::string_view::npos ||
        ::getaddrinfo(std::string(name).c_str(), nullptr, &wanted, &found) != 0)
        return std::nullopt;
    const std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)> guard(found, &::freeaddrinfo);
    if (found == nullptr || found->ai_addrlen < sizeof(sockaddr_in))
        return std::nullopt;
    sockaddr_in socketAddress{};
    std::memcpy(&socketAddress, found->ai_addr, sizeof socketAddress);
    HostAddress address{};
    std::memcpy(address.data(), &socketAddress.sin_addr, address.size());
    return address;
}

std::string executablePath()
{
    std::array<char, PATH_MAX> buffer{};
    const ssize_t length = ::readlink("/proc/self/exe", buffer.data(), buffer.size());
    if (length <= 0)
        return {};
    std::string path(buffer.data(), static_cast<std::size_t>(length));
    // What the kernel adds when the program was replaced while it runs, as an update does.
    constexpr std::string_view kDeleted = " (deleted)";
    if (path.ends_with(kDeleted) && ::access(path.c_str(), F_OK) != 0)
        path.resize(path.size() - kDeleted.size());
    return path;
}

std::string executableFolder()
{
    return std::string(base::beforeLast(executablePath(), "/"));
}

} // namespace vardelin::platform
