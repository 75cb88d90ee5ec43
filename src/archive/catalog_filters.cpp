#include "archive/deletion.h"
#include "archive/line_files.h"
#include "archive/review_texts.h"
#include "base/runtime_error.h"
#include "base/text.h"
#include "trace/messages.h"

#include <functional>
#include <string>

namespace vardelin::archive {
namespace {

namespace error_number = base::error_number;
namespace texts = review_texts;

enum class Step : std::uint8_t { Opening, Reading, Copying, Killing };

struct FilterTexts {
    std::string_view procedure;
    std::string_view noFile;
    std::string_view fileOpen;
    int rest;
};

constexpr FilterTexts kFolderTexts{"RestDelFolder", texts::kFilterFolderNoFile,
                                   texts::kFilterFolderOpen, texts::kFilterFolderFailed};
constexpr FilterTexts kFilesTexts{"RestDelFiles", texts::kFilterFilesNoFile,
                                  texts::kFilterFilesOpen, texts::kFilterFilesFailed};

std::string sentence(const FilterTexts& filter, Step step, int number, std::string_view fileName)
{
    const auto behindName = [&](int text) {
        return std::string(fileName).append(trace::message(text));
    };
    switch (step) {
    case Step::Opening:
        if (number == error_number::kFileNotFound)
            return std::string(filter.noFile).append(" ").append(fileName);
        if (number == error_number::kFileAlreadyOpen)
            return std::string(filter.fileOpen).append(" ").append(fileName);
        break;
    case Step::Reading:
        return behindName(texts::kFilterPastEnd);
    case Step::Copying:
        return behindName(texts::kFilterCopyFailed);
    case Step::Killing:
        return behindName(texts::kFilterKillFailed);
    }
    return std::string(trace::message(filter.rest));
}

// One pass: the lines that `dropped` does not name, by way of the temporary file.
void filterOnce(platform::FileSystem& files, const std::string& path, const std::string& temporary,
                Step& step, const std::function<bool(std::string_view line)>& dropped)
{
    step = Step::Opening;
    {
        LineReader lines(files, path);
        LineWriter kept(files, temporary);
        step = Step::Reading;
        while (const auto line = lines.next()) {
            if (!dropped(*line))
                kept.write(*line);
        }
        kept.flushAndClose();
    }
    step = Step::Killing;
    files.removeFile(path);
    step = Step::Copying;
    files.copyFile(temporary, path);
    step = Step::Killing;
    files.removeFile(temporary);
}

void filter(ReviewContext& context, const FilterTexts& filterTexts,
            const base::TextCollection& clxn, std::string_view fileName,
            const std::function<bool(std::string_view line, std::string_view item)>& dropped)
{
    const std::string folder = platform::joinPath(context.frame.ST_App_Path, "Data\\");
    const std::string path = folder + std::string(fileName);
    const std::string temporary = folder + "Tmp" + std::string(fileName);
    Step step = Step::Opening;
    base::PendingError failure;
    failure.attempt([&] {
        const trace::TraceScope scope(context.trace.trace, filterTexts.procedure);
        for (std::size_t i = 1; i <= clxn.count(); ++i) {
            const std::string& item = clxn.item(i);
            filterOnce(context.machine.fileSystem, path, temporary, step,
                       [&](std::string_view line) { return dropped(line, item); });
        }
    });
    const std::string said = sentence(filterTexts, step, failure.number, fileName);
    trace::errorTail(context.trace,
                     {filterTexts.procedure, filterTexts.procedure, texts::kModule, said}, failure);
}

} // namespace

void RestDelFolder(ReviewContext& context, const base::TextCollection& clxn,
                   std::string_view fileName)
{
    filter(context, kFolderTexts, clxn, fileName, [](std::string_view line, std::string_view item) {
        return line.find(item) != std::string_view::npos;
    });
}

void RestDelFiles(ReviewContext& context, const base::TextCollection& clxn,
                  std::string_view fileName)
{
    filter(context, kFilesTexts, clxn, fileName, [](std::string_view line, std::string_view item) {
        return base::equalsIgnoringCase(line, item);
    });
}

} // namespace vardelin::archive
