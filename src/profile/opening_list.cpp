#include "base/text.h"
#include "profile/interrupted_saves.h"
#include "profile/opening.h"
#include "profile/opening_texts.h"
#include "trace/messages.h"

#include <algorithm>
#include <numeric>
#include <utility>
#include <vector>

namespace vardelin::profile {
namespace {

namespace texts = opening_texts;
using state::frmOpenProfile;
using state::ListRow;

constexpr std::string_view kName = "GettingVdpFiles";
constexpr std::string_view kModule = "modPrSaveOpen";
constexpr std::string_view kRecycleBin = "RECYCLE";
constexpr double kBarShare = 25;
constexpr double kBarBound = 99;
constexpr std::size_t kLocationColumn = 1;
constexpr std::size_t kDateColumn = 2;

bool isOffered(const state::FrameState& frame, const clsFiles& file)
{
    if (base::containsIgnoringCase(file.sPath(), kRecycleBin))
        return false;
    return !frame.BL_Remote_Profile ||
           !base::equalsIgnoringCase(file.sNameAndExtension(), frame.ST_Remote_Name);
}

// Raises 53 for a file that is gone again.
base::DateTime createdOn(platform::Machine& machine, const std::string& path)
{
    const auto info = machine.fileSystem.find(path);
    if (!info)
        throw base::RuntimeError(base::error_number::kFileNotFound, path);
    return machine.clock.toLocal(info->createdNs);
}

void addRow(OpeningContext& context, const clsFiles& file)
{
    ListRow& row = context.form.lstOpen.addItem(file.sNameAndExtension());
    row.sub = file.sPath();
    base::DateTime created;
    // Without a date the profile is offered all the same.
    base::PendingError unknown;
    if (unknown.attempt([&] { created = createdOn(context.profiles.machine, file.sFilename()); }))
        row.third = base::generalDate(created);
    context.form.created.push_back(created);
}

void addRows(OpeningContext& context)
{
    state::FrameState& frame = context.profiles.frame;
    const clsFiles& files = context.clsProfileFiles;
    const std::size_t count = files.count();
    const double step = count == 0 ? 0 : base::round(kBarShare / static_cast<double>(count), 6);
    for (std::size_t i = 1; i <= count; ++i) {
        frame.panel1.text = texts::kListing;
        const clsFiles& file = files.Item(i);
        if (!isOffered(frame, file))
            continue;
        addRow(context, file);
        if (frame.pb.value + step < kBarBound)
            frame.pb.value += step;
    }
}

const std::string& textOf(const ListRow& row, std::size_t column)
{
    return column == kLocationColumn ? row.sub : row.text;
}

// The places of the rows in their new order; equal ones keep the one that they have.
std::vector<std::size_t> sortedPlaces(const frmOpenProfile& form, std::size_t column)
{
    std::vector<std::size_t> places(form.lstOpen.rows.size());
    std::iota(places.begin(), places.end(), std::size_t{0});
    const auto less = [&](std::size_t a, std::size_t b) {
        if (column == kDateColumn)
            return form.created[a] < form.created[b];
        return base::naturalLess(textOf(form.lstOpen.rows[a], column),
                                 textOf(form.lstOpen.rows[b], column));
    };
    std::stable_sort(places.begin(), places.end(), [&](std::size_t a, std::size_t b) {
        return form.descending ? less(b, a) : less(a, b);
    });
    return places;
}

void tellLossyLines(ProfileContext& context, const FinishedSave& save)
{
    if (!save.lossyLines.empty())
        context.machine.messageBoxes.show(lossyLinesText(save), texts::kTitle,
                                          platform::Buttons::Ok, platform::Icon::Exclamation);
}

} // namespace

void GettingVdpFiles(OpeningContext& context)
{
    frmOpenProfile& form = context.form;
    trace::TraceContext& trace = context.profiles.trace;
    const trace::TailNames names{kName, kName, kModule, trace::message(texts::kListingFailed)};
    trace::runTraced(trace, kName, names, [&] {
        for (const FinishedSave& save :
             finishInterruptedSaves(context.profiles.machine.fileSystem,
                                    context.profiles.frame.ST_App_Path + "\\Profiles"))
            tellLossyLines(context.profiles, save);
        context.clsProfileFiles.Clear();
        form.lstOpen.clear();
        form.created.clear();
        form.sorted = false;
        form.descending = false;
        base::PendingError error;
        std::size_t count = 0;
        error.attempt([&] {
            context.clsProfileFiles.LoadFiles(
                context.profiles.frame.ST_App_Path + "\\Profiles\\*.vdp", true, count);
        });
        trace::errorTail(trace, names, error);
        addRows(context);
        state::ProgressBar& bar = context.profiles.frame.pb;
        bar.value = bar.maximum;
        bar.value = 0;
        form.Label1.caption = texts::kSelectTheProfile;
        form.cmdOpen.enabled = true;
    });
}

void lstOpen_ItemCheck(OpeningContext& context, std::size_t row)
{
    state::FrameState& frame = context.profiles.frame;
    frmOpenProfile& form = context.form;
    if (row >= form.lstOpen.rows.size())
        return;
    ListRow& item = form.lstOpen.rows[row];
    if (item.checked && frame.bProfileTicked) {
        item.checked = false;
        context.profiles.machine.messageBoxes.show(
            texts::kOnlyOne, texts::kTitle, platform::Buttons::Ok, platform::Icon::Exclamation);
        return;
    }
    frame.bProfileTicked = item.checked;
    if (item.checked)
        frame.panel1.text = texts::kSelecting;
    form.cmdClose.enabled = !item.checked;
    form.cmdSelProfile.enabled = !item.checked;
}

void lstOpen_ColumnClick(OpeningContext& context, std::size_t column)
{
    frmOpenProfile& form = context.form;
    const int key = static_cast<int>(column);
    form.descending = form.sorted && form.SortKey == key && !form.descending;
    form.SortKey = key;
    form.sorted = true;

    form.created.resize(form.lstOpen.rows.size());
    std::vector<ListRow> rows;
    std::vector<base::DateTime> created;
    for (const std::size_t place : sortedPlaces(form, column)) {
        rows.push_back(std::move(form.lstOpen.rows[place]));
        created.push_back(form.created[place]);
    }
    form.lstOpen.rows = std::move(rows);
    form.created = std::move(created);
}

} // namespace vardelin::profile
