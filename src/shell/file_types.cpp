#include "shell/file_types.h"

#include "base/runtime_error.h"
#include "base/text.h"
#include "platform/file_system.h"
#include "trace/messages.h"

#include <array>
#include <utility>

namespace vardelin::shell {
namespace {

using platform::RegistryRoot;
using platform::RegistryType;
using platform::RegistryValue;

constexpr std::string_view kModule = "modFileTypes"; // of the error dialog
constexpr std::string_view kName = "ActivateForIcon";
constexpr std::string_view kNoDocument = "%1"; // the placeholder of a command, not filled in

constexpr std::string_view kContentType = "Content Type";
constexpr std::string_view kEditFlags = "EditFlags";

struct Row {
    std::string_view key;
    std::string_view name; // empty: the default value
    RegistryType type;
    std::string_view data;    // of a number, its decimal text
    bool inAppFolder = false; // the data stands behind the application folder
};

// The order of the writes.
constexpr std::array<Row, 15> kRows{{
    {".vdp", "", RegistryType::String, "vdpfile"},
    {".vdb", "", RegistryType::String, "vdbfile"},
    {".vdp", kContentType, RegistryType::String, "text/plain"},
    {".vdb", kContentType, RegistryType::String, "text/plain"},
    {"vdpfile", "", RegistryType::String, "Vardelin Profile"},
    {"vdbfile", "", RegistryType::String, "Vardelin Backup"},
    {"vdpfile", kEditFlags, RegistryType::DWord, "0000"},
    {"vdbfile", kEditFlags, RegistryType::DWord, "0004"},
    {"vdpfile\\DefaultIcon", "", RegistryType::String, "\\Vardelin.exe,0", true},
    {"vdbfile\\DefaultIcon", "", RegistryType::String, "\\VDDirectRestore.exe,0", true},
    {"vdpfile\\Shell", "", RegistryType::String, ""},
    {"vdbfile\\Shell", "", RegistryType::String, ""},
    {"vdpfile\\Shell\\Open", "", RegistryType::String, ""},
    {"vdbfile\\Shell\\Open", "", RegistryType::String, ""},
    {"vdpfile\\Shell\\Open\\Command", "", RegistryType::String, "\\Vardelin.exe %1", true},
}};

std::uint32_t numberOf(std::string_view text)
{
    std::uint64_t number = 0;
    base::parseUnsigned(text, number);
    return static_cast<std::uint32_t>(number);
}

// A program that may not write there is no error, and a value that stands already is not written
// again: each write waits for the disk, and there are fifteen at every start.
void save(profile::ProfileContext& context, std::string_view procedure, RegistryRoot root,
          std::string_view key, const RegistryValue& value)
{
    base::PendingError failure;
    failure.attempt([&] {
        const trace::TraceScope scope(context.trace.trace, procedure);
        base::PendingError untested; // what the store answers counts for nothing but its faults
        untested.attempt([&] {
            platform::Registry& registry = context.machine.registry;
            const auto old = registry.value(root, key, value.name);
            if (!old || old->type != value.type || old->data != value.data)
                registry.setValue(root, key, value);
        });
        if (untested && untested.number != base::error_number::kPermissionDenied)
            throw base::RuntimeError(untested.number, untested.subject);
    });
    if (!failure)
        return;
    context.frame.BL_Reg_Write_Failed = true;
    trace::errorTail(context.trace, {kName, procedure, kModule, trace::customMessage(kName)},
                     failure);
}

} // namespace

RegistryFileTypes::RegistryFileTypes(profile::ProfileContext& context,
                                     platform::DesktopTypes& desktop, std::string commandLine)
    : m_context(context), m_desktop(desktop), m_commandLine(std::move(commandLine))
{
}

void RegistryFileTypes::ActivateForIcon()
{
    trace::runTraced(m_context.trace, kName, kModule, trace::customMessage(kName), [&] {
        if (!m_commandLine.empty() && m_commandLine != kNoDocument)
            noteDocument();
        for (const Row& row : kRows) {
            if (row.type == RegistryType::DWord)
                SaveDWord(m_context, RegistryRoot::ClassesRoot, row.key, row.name,
                          numberOf(row.data));
            else
                SaveString(m_context, RegistryRoot::ClassesRoot, row.key, row.name,
                           (row.inAppFolder ? m_context.frame.ST_App_Path : std::string())
                               .append(row.data));
        }
        tellDesktop();
        m_context.frame.BL_Reg_Write_Failed = false;
    });
}

// The program works without: a person who starts it wants to see profiles, not why a menu lacks it.
void RegistryFileTypes::tellDesktop()
{
    base::PendingError untold;
    untold.attempt([&] { m_desktop.registerProgram(); });
    if (untold)
        m_context.trace.trace.WriteRunTrace("Desktop: " +
                                                std::string(base::afterLast(untold.subject, "/")),
                                            "Error", true, untold.description);
}

void RegistryFileTypes::noteDocument()
{
    // Nobody reads its text: it may be of any length, and the window waits.
    m_context.files.fileNumber1 =
        m_context.machine.fileSystem.open(m_commandLine, platform::OpenMode::Read);
    base::PendingError unnoted; // a list of documents that lags behind is no failure
    unnoted.attempt([&] { m_context.machine.shell.addRecentDocument(m_commandLine); });
}

void SaveString(profile::ProfileContext& context, RegistryRoot root, std::string_view key,
                std::string_view name, std::string_view data)
{
    if (!context.frame.BL_Reg_Write_Failed)
        save(context, "SaveString", root, key,
             {std::string(name), RegistryType::String, std::string(data)});
}

void SaveDWord(profile::ProfileContext& context, RegistryRoot root, std::string_view key,
               std::string_view name, std::uint32_t number)
{
    std::string bytes;
    for (unsigned shift = 0; shift < 32; shift += 8)
        bytes += static_cast<char>((number >> shift) & 0xFFU);
    save(context, "SaveDWord", root, key, {std::string(name), RegistryType::DWord, bytes});
}

} // namespace vardelin::shell
