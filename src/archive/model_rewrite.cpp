#include "archive/deletion.h"
#include "archive/line_files.h"
#include "archive/review_texts.h"
#include "base/runtime_error.h"
#include "base/text.h"
#include "trace/messages.h"

#include <algorithm>
#include <string>
#include <unordered_set>
#include <vector>

namespace vardelin::archive {
namespace {

namespace texts = review_texts;

// Whether a line holds one of the items, both in upper case.
//
// An item is `Files And Folders\C:\work\` as a rule, and a name has no colon, so such an item can
// stand at the start of a line alone, and ends at one of the line's backslashes: a look-up at each
// of these answers for all items at once, where a search for each of a thousand items in a million
// lines would take minutes.
class DropItems {
public:
    explicit DropItems(const base::TextCollection& clxnDrop)
    {
        for (std::size_t i = 1; i <= clxnDrop.count(); ++i) {
            std::string item = base::upperAscii(clxnDrop.item(i));
            if (isFolderStart(item))
                m_starts.insert(std::move(item));
            else
                m_others.push_back(std::move(item));
        }
    }

    bool areIn(std::string_view line)
    {
        m_line = base::upperAscii(line);
        const auto isIn = [&](const std::string& item) {
            return m_line.find(item) != std::string::npos;
        };
        if (std::any_of(m_others.begin(), m_others.end(), isIn))
            return true;
        if (m_starts.empty())
            return false;
        // Only a list that somebody wrote has other lines.
        if (!isFolderStart(std::string_view(m_line).substr(0, m_line.rfind('\\') + 1)))
            return std::any_of(m_starts.begin(), m_starts.end(), isIn);
        for (std::size_t at = m_line.find('\\'); at != std::string::npos;
             at = m_line.find('\\', at + 1)) {
            if (m_starts.contains(m_line.substr(0, at + 1)))
                return true;
        }
        return false;
    }

private:
    // `FILES AND FOLDERS\X:\...\` with one colon.
    static bool isFolderStart(std::string_view text)
    {
        const std::size_t colon = kFilesGroup.size() + 2;
        return text.size() > colon && text.ends_with('\\') &&
               base::startsWithIgnoringCase(text, kFilesGroup) && text.find(':') == colon &&
               text.rfind(':') == colon;
    }

    std::unordered_set<std::string> m_starts;
    std::vector<std::string> m_others;
    std::string m_line;
};

void rewrite(ReviewContext& context, const std::string& model, const std::string& changed,
             const base::TextCollection& clxnDrop)
{
    platform::FileSystem& files = context.machine.fileSystem;
    LineReader lines(files, model);
    LineWriter kept(files, changed);
    context.review.bFilesExist = false;
    DropItems items(clxnDrop);
    while (const auto line = lines.next()) {
        if (line->empty() || items.areIn(*line))
            continue;
        kept.write(*line);
        context.review.bFilesExist = true;
    }
    kept.flushAndClose();
    // A copy over the old list could be cut off by a crash; a rename cannot.
    files.rename(changed, model);
}

} // namespace

void ReconstructModelFile(ReviewContext& context, const base::TextCollection& clxnDrop)
{
    constexpr std::string_view kName = "ReconstructModelFile";
    trace::runTraced(context.trace, kName, texts::kModule, trace::customMessage(kName), [&] {
        const std::string model = modelPath(context.frame.ST_App_Path);
        const std::string changed = platform::joinPath(context.frame.ST_App_Path, "ChngModel.txt");
        try {
            rewrite(context, model, changed, clxnDrop);
        } catch (const base::RuntimeError&) {
            base::PendingError second; // the first error is the one to report
            second.attempt([&] { context.machine.fileSystem.removeFile(changed); });
            throw;
        }
    });
}

} // namespace vardelin::archive
