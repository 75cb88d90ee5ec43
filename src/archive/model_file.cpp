#include "archive/model_file.h"

#include "archive/line_files.h"
#include "base/text.h"

namespace vardelin::archive {

void removeModel(platform::FileSystem& fileSystem, std::string_view appPath)
{
    const std::string path = modelPath(appPath);
    const auto folder = fileSystem.openFolder(platform::parentOf(path));
    for (const platform::FolderEntry& entry : folder->list()) {
        if (entry.kind != platform::FileKind::Folder &&
            base::equalsIgnoringCase(entry.name, platform::leafOf(path)))
            folder->removeFile(entry.name);
    }
}

std::string groupsOfModel(ReviewContext& context, PacedLoop& loop, bool* anyLine)
{
    LineReader lines(context.machine.fileSystem, modelPath(context.frame.ST_App_Path));
    std::string names;
    std::string last;
    while (const auto line = lines.next()) {
        loop.step();
        if (line->empty())
            continue;
        if (anyLine != nullptr)
            *anyLine = true;
        const std::string_view group = base::beforeFirst(*line, "\\");
        if (base::equalsIgnoringCase(group, last))
            continue;
        last = group;
        names.append(names.empty() ? "" : ",").append(group);
    }
    return names;
}

} // namespace vardelin::archive
