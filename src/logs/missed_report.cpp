#include "logs/missed_report.h"

#include "logs/log_folder.h"

#include <fmt/format.h>

namespace vardelin::logs {
namespace {

void appendPlain(std::string& text, std::string_view part)
{
    for (const char c : part)
        text += c == '\t' || c == '\r' || c == '\n' ? ' ' : c;
}

std::string freePath(platform::FileSystem& fileSystem, const std::string& folder,
                     std::string_view stem, const base::DateTime& when)
{
    const std::string name =
        fmt::format("{}_{:04}{:02}{:02}{:02}{:02}{:02}", stem, when.date.year, when.date.month,
                    when.date.day, when.time.hour, when.time.minute, when.time.second);
    std::string path = platform::joinPath(folder, name + ".txt");
    for (int n = 2; fileSystem.find(path); ++n)
        path = platform::joinPath(folder, fmt::format("{}_{}.txt", name, n));
    return path;
}

} // namespace

std::string writeMissedReport(platform::FileSystem& fileSystem, std::string_view appPath,
                              std::string_view stem, const base::DateTime& when,
                              std::span<const MissedFile> missed)
{
    const std::string folder = makeLogFolder(fileSystem, appPath, "Log\\Missed");
    std::string path = freePath(fileSystem, folder, stem, when);
    std::string text;
    for (const MissedFile& file : missed) {
        appendPlain(text, file.path);
        text += '\t';
        appendPlain(text, file.reason);
        text += "\r\n";
    }
    fileSystem.replaceFile(path, text);
    return path;
}

} // namespace vardelin::logs
