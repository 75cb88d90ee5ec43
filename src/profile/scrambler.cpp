#include "profile/scrambler.h"

#include "base/runtime_error.h"
#include "base/text.h"
#include "profile/scramble_text.h"
#include "trace/messages.h"

#include <cstdint>
#include <span>

#include <fmt/format.h>

namespace vardelin::profile {
namespace {

using base::PendingError;
using base::RuntimeError;
using platform::FileSystem;
using platform::OpenMode;
namespace error_number = base::error_number;

constexpr std::string_view kModule = "ModProfileEncDec";
constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kReversal = "LineReverse";
constexpr std::string_view kTemporaryMark = "U";
constexpr double kEncryptShare = 25; // of the bar
constexpr double kDecryptShare = 50;
constexpr int kAnyNumber = 0;

// How far a procedure got: what the failing step was.
enum class Status {
    Other = 0,
    OpenProfile = 1,
    Read = 2,
    OpenTemporary = 3,
    DeleteProfile = 4,
    Copy = 5,
    DeleteTemporary = 6,
};

struct Report {
    Status status;
    int number;
    bool namesTemporary; // else the profile
    int message;
};

constexpr Report kEncryptReports[] = {
    {Status::OpenProfile, error_number::kFileNotFound, false, 40072},
    {Status::OpenProfile, error_number::kFileAlreadyOpen, false, 40073},
    {Status::Read, kAnyNumber, false, 40074},
    {Status::OpenTemporary, error_number::kFileNotFound, true, 40075},
    {Status::OpenTemporary, error_number::kFileAlreadyOpen, true, 40076},
    {Status::DeleteProfile, kAnyNumber, false, 40077},
    {Status::Copy, kAnyNumber, false, 40078},
    {Status::DeleteTemporary, kAnyNumber, true, 40079},
};
constexpr int kEncryptOther = 40080;

constexpr Report kDecryptReports[] = {
    {Status::OpenProfile, error_number::kFileNotFound, false, 40081},
    {Status::OpenProfile, error_number::kFileAlreadyOpen, false, 40082},
    {Status::Read, kAnyNumber, false, 40083},
    {Status::OpenTemporary, error_number::kFileNotFound, true, 40084},
    {Status::OpenTemporary, error_number::kFileAlreadyOpen, true, 40085},
};

// A folder that is missing on the way leaves the file as unfound as a missing file does.
bool isNotFound(int number)
{
    return number == error_number::kFileNotFound || number == error_number::kPathNotFound;
}

bool covers(const Report& report, Status status, int number)
{
    if (report.status != status)
        return false;
    if (report.number == error_number::kFileNotFound)
        return isNotFound(number);
    return report.number == kAnyNumber || report.number == number;
}

struct Paths {
    std::string profile;
    std::string temporary;
};

std::string reportText(std::span<const Report> reports, Status status, int number,
                       const Paths& paths, std::string_view other)
{
    for (const Report& report : reports) {
        if (covers(report, status, number))
            return (report.namesTemporary ? paths.temporary : paths.profile) +
                   std::string(trace::message(report.message));
    }
    return std::string(other);
}

// Turns the lines of one file around. The trace gets one entry for all of them when the last one
// is done: an entry is a write to the disk, and a profile may have 100,000 lines.
class LineReversal {
public:
    explicit LineReversal(trace::RunTrace& trace) : m_trace(trace) {}
    LineReversal(const LineReversal&) = delete;
    LineReversal& operator=(const LineReversal&) = delete;
    ~LineReversal() { m_trace.WriteRunTraceTimes(kReversal, "End", m_entries); }

    std::string operator()(std::string_view line)
    {
        constexpr std::int32_t kEntriesOfALine = 2; // Start and End
        m_entries += kEntriesOfALine;
        return base::reversed(line);
    }

private:
    trace::RunTrace& m_trace;
    std::int32_t m_entries = 0;
};

// The first look at the file, for the bar alone: a missing file is made, empty. The step is 0 where
// nothing can be told from it; errors are those of the second look.
double progressStep(FileSystem& fileSystem, const std::string& path, double share)
{
    std::string bytes;
    PendingError unseen;
    unseen.attempt([&] {
        if (!fileSystem.find(path))
            fileSystem.open(path, OpenMode::ReadWrite)->close();
        bytes = fileSystem.readAll(path);
    });
    const auto pieces = base::split(bytes, kLineEnd).size();
    return pieces < 2 ? 0 : base::round(share / static_cast<double>(pieces - 1), 6);
}

std::string readRest(platform::File& file)
{
    std::string text;
    std::vector<std::byte> block(std::size_t{64} * 1024);
    while (const std::size_t n = file.read(block))
        text.append(reinterpret_cast<const char*>(block.data()), n);
    return text;
}

// The plain form holds a password. A disk without rights cannot do more for it.
void keepPrivate(platform::File& file)
{
    constexpr std::uint32_t kOwnerOnly = 0600;
    PendingError noRights;
    noRights.attempt([&] { file.setMode(kOwnerOnly); });
}

std::string_view textUpToLastBackslash(std::string_view path)
{
    return path.substr(0, path.rfind('\\') + 1);
}

std::string keptName(std::string_view name)
{
    return fmt::format("~{}{}.kept", kTemporaryMark, name);
}

// Unlike FileSystem::find, raises where it cannot tell: a wrong "no" would cost a file.
bool isThere(FileSystem& fileSystem, std::string_view path)
{
    const auto folder = fileSystem.openFolder(platform::parentOf(path));
    return folder->find(platform::leafOf(path)).has_value();
}

// A missing folder is told by the steps that follow.
void finishInterrupted(FileSystem& fileSystem, std::string_view folder, std::string_view name)
{
    try {
        finishInterruptedScramble(fileSystem, folder, name);
    } catch (const RuntimeError& error) {
        if (!isNotFound(error.number()))
            throw;
    }
}

class Encryption {
public:
    Encryption(ProfileContext& context, std::string_view folder, std::string_view name)
        : m_context(context), m_fileSystem(context.machine.fileSystem), m_folder(folder),
          m_name(name), m_paths{m_folder + "\\" + m_name, {}}
    {
        const std::string place(textUpToLastBackslash(m_paths.profile));
        m_paths.temporary = fmt::format("{}{}{}", place, kTemporaryMark, m_name);
        m_kept = place + keptName(m_name);
    }

    void run();
    std::string report(int number) const
    {
        return reportText(kEncryptReports, m_status, number, m_paths,
                          trace::message(kEncryptOther));
    }
    std::vector<std::size_t> takeLossyLines() { return std::move(m_lossyLines); }

private:
    void writeTemporary(double step);
    std::string scrambled(std::string_view plain, double step);
    void replaceProfile();
    void putBack();

    ProfileContext& m_context;
    FileSystem& m_fileSystem;
    std::string m_folder;
    std::string m_name;
    Paths m_paths;
    std::string m_kept;
    Status m_status = Status::Other;
    std::vector<std::size_t> m_lossyLines;
};

void Encryption::run()
{
    finishInterrupted(m_fileSystem, m_folder, m_name);
    const double step = progressStep(m_fileSystem, m_paths.profile, kEncryptShare);
    try {
        writeTemporary(step);
        replaceProfile();
        putBack();
    } catch (const RuntimeError&) {
        // Without its profile the temporary file is the only copy, and the other profile waits for
        // finishInterruptedScramble(). Otherwise the name is worth more to the other profile.
        PendingError stillKept;
        if (m_status != Status::Copy)
            stillKept.attempt([&] { putBack(); });
        throw;
    }
}

void Encryption::putBack()
{
    if (isThere(m_fileSystem, m_kept))
        m_fileSystem.rename(m_kept, m_paths.temporary);
}

void Encryption::writeTemporary(double step)
{
    m_status = Status::OpenProfile;
    const auto profile = m_fileSystem.open(m_paths.profile, OpenMode::Read);
    m_status = Status::Other;
    if (isThere(m_fileSystem, m_paths.temporary))
        m_fileSystem.rename(m_paths.temporary, m_kept);
    m_status = Status::OpenTemporary;
    const auto temporary = m_fileSystem.open(m_paths.temporary, OpenMode::CreateOrTruncate);
    m_status = Status::Read;
    const std::string plain = readRest(*profile);
    m_status = Status::Other;
    temporary->write(platform::asBytes(scrambled(plain, step)));
    // The profile is deleted next: until it is copied back, this is the only copy.
    temporary->flush();
    temporary->close();
    m_fileSystem.openFolder(m_folder)->flush();
    m_lossyLines = lossyLines(plain);
    m_context.frame.pb.value = m_context.frame.pb.maximum;
    m_context.frame.pb.value = 0;
}

std::string Encryption::scrambled(std::string_view plain, double step)
{
    state::ProgressBar& bar = m_context.frame.pb;
    std::string result;
    LineReversal reverse(m_context.trace.trace);
    for (const std::string_view line : fileLines(plain)) {
        result.append(shiftedUp(reverse(line))).append(kLineEnd);
        if (bar.maximum > bar.value + step)
            bar.value += step;
    }
    return result;
}

void Encryption::replaceProfile()
{
    m_status = Status::DeleteProfile;
    m_fileSystem.removeFile(m_paths.profile);
    m_status = Status::Copy;
    // By a temporary name of its own: the profile's name never holds half a copy.
    m_fileSystem.replaceFile(m_paths.profile, m_fileSystem.readAll(m_paths.temporary));
    m_status = Status::DeleteTemporary;
    m_fileSystem.removeFile(m_paths.temporary);
    m_status = Status::Other;
}

class Decryption {
public:
    Decryption(ProfileContext& context, std::string_view folder, std::string_view name)
        : m_context(context), m_fileSystem(context.machine.fileSystem), m_folder(folder),
          m_name(name), m_paths{m_folder + m_name, {}}
    {
    }

    void run();
    std::string report(int number) const
    {
        return reportText(kDecryptReports, m_status, number, m_paths,
                          trace::customMessage("PrFileDecrypt"));
    }
    bool profileIsMissing(int number) const
    {
        return m_status == Status::OpenProfile && isNotFound(number);
    }

private:
    void finishInterruptedSaves();
    std::string unscrambled(std::string_view text, double step);

    ProfileContext& m_context;
    FileSystem& m_fileSystem;
    std::string m_folder;
    std::string m_name;
    Paths m_paths;
    Status m_status = Status::Other;
};

void Decryption::run()
{
    constexpr std::size_t kExtensionLength = 4;
    if (m_name.size() < kExtensionLength)
        throw RuntimeError(error_number::kInvalidCall, m_name);
    m_paths.temporary =
        fmt::format("{}{}{}.txt", textUpToLastBackslash(m_paths.profile), kTemporaryMark,
                    m_name.substr(0, m_name.size() - kExtensionLength));
    if (m_context.frame.BL_Command_Line_Profile)
        m_context.files.fileNumber1.reset();
    finishInterruptedSaves();
    const double step = progressStep(m_fileSystem, m_paths.profile, kDecryptShare);
    PendingError undeleted; // opening for output empties what is still there
    if (m_fileSystem.find(m_paths.temporary))
        undeleted.attempt([&] { m_fileSystem.removeFile(m_paths.temporary); });

    m_status = Status::OpenProfile;
    const auto profile = m_fileSystem.open(m_paths.profile, OpenMode::Read);
    m_status = Status::OpenTemporary;
    const auto temporary = m_fileSystem.open(m_paths.temporary, OpenMode::CreateOrTruncate);
    keepPrivate(*temporary);
    m_status = Status::Read;
    const std::string text = readRest(*profile);
    m_status = Status::Other;
    temporary->write(platform::asBytes(unscrambled(text, step)));
    temporary->close();
    m_context.frame.pb.value = kDecryptShare;
}

// The profile may be one that a crash left under its temporary name, or one that was moved aside
// for a temporary name: `UA.vdp` may wait for the end of `A.vdp`.
void Decryption::finishInterruptedSaves()
{
    const std::string_view folder = textUpToLastBackslash(m_paths.profile);
    finishInterrupted(m_fileSystem, folder, m_name);
    if (m_name.starts_with(kTemporaryMark))
        finishInterrupted(m_fileSystem, folder, std::string_view(m_name).substr(1));
}

std::string Decryption::unscrambled(std::string_view text, double step)
{
    state::ProgressBar& bar = m_context.frame.pb;
    std::string result;
    LineReversal reverse(m_context.trace.trace);
    for (const std::string_view line : fileLines(text)) {
        result.append(shiftedDown(reverse(line))).append(kLineEnd);
        if (bar.value + step < kDecryptShare)
            bar.value += step;
    }
    return result;
}

// One entry for all lines: entries of one procedure in a row share a record.
void traceLossyLines(trace::RunTrace& trace, const std::vector<std::size_t>& lines)
{
    trace.WriteRunTrace("PrFileEncrypt", "Error", true,
                        fmt::format("Lossy line {}", fmt::join(lines, ", ")));
}

} // namespace

ScrambleResult PrFileEncrypt(ProfileContext& context, std::string_view folder,
                             std::string_view name)
{
    ScrambleResult result;
    Encryption encryption(context, folder, name);
    PendingError failure;
    result.done = failure.attempt([&] {
        const trace::TraceScope scope(context.trace.trace, "PrFileEncrypt");
        encryption.run();
    });
    result.lossyLines = encryption.takeLossyLines();
    // Behind the End entry, which would overwrite it.
    if (!result.lossyLines.empty())
        traceLossyLines(context.trace.trace, result.lossyLines);
    const std::string text = encryption.report(failure.number);
    trace::errorTail(context.trace, {"PrFileEncrypt", "PrFileEncrypt", kModule, text}, failure);
    return result;
}

bool PrFileDecrypt(ProfileContext& context, std::string_view folder, std::string_view name)
{
    Decryption decryption(context, folder, name);
    PendingError failure;
    const bool done = failure.attempt([&] {
        const trace::TraceScope scope(context.trace.trace, "PrFileDecrypt");
        decryption.run();
    });
    if (decryption.profileIsMissing(failure.number))
        context.frame.bDecryptFileMissing = true;
    const std::string text = decryption.report(failure.number);
    trace::errorTail(context.trace, {"PrFileDecrypt", "PrFileDecrypt", kModule, text}, failure);
    return done;
}

std::string LineReverse(ProfileContext& context, std::string_view line)
{
    std::string result;
    trace::runTraced(context.trace, kReversal, kModule, trace::customMessage(kReversal),
                     [&] { result = base::reversed(line); });
    return result;
}

void finishInterruptedScramble(platform::FileSystem& fileSystem, std::string_view folder,
                               std::string_view name)
{
    const std::string kept = platform::joinPath(folder, keptName(name));
    if (!isThere(fileSystem, kept))
        return;
    const std::string profile = platform::joinPath(folder, name);
    const std::string temporary =
        platform::joinPath(folder, fmt::format("{}{}", kTemporaryMark, name));
    // Only a whole temporary file outlives its profile.
    if (!isThere(fileSystem, profile) && isThere(fileSystem, temporary))
        fileSystem.rename(temporary, profile);
    // The temporary name goes to the other profile: its own must be on the disk before.
    fileSystem.openFolder(folder)->flush();
    fileSystem.rename(kept, temporary);
}

} // namespace vardelin::profile
