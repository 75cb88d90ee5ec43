#include "runs/engine/missed_reason.h"

#include <string_view>

#include <fmt/format.h>

namespace vardelin::engine {
namespace {

namespace error_number = base::error_number;

std::string withCause(std::string_view text, const base::RuntimeError& error)
{
    const std::string_view cause =
        error.reason().empty() ? error.description() : std::string_view(error.reason());
    return fmt::format("{} ({})", text, cause);
}

bool isGone(const base::RuntimeError& error)
{
    return error.number() == error_number::kFileNotFound ||
           error.number() == error_number::kPathNotFound;
}

} // namespace

std::string missedFileReason(const base::RuntimeError& error)
{
    if (isGone(error))
        return kVanished;
    if (error.number() == error_number::kPermissionDenied)
        return withCause("it may not be read", error);
    return withCause("it cannot be read", error);
}

std::string missedFolderReason(const base::RuntimeError& error)
{
    if (isGone(error))
        return "the folder vanished during the run";
    if (error.number() == error_number::kPermissionDenied)
        return withCause("the folder may not be read", error);
    return withCause("the folder cannot be read", error);
}

std::string replacedReason(platform::FileKind now)
{
    switch (now) {
    case platform::FileKind::Regular:
        return "it turned into a file during the run";
    case platform::FileKind::Folder:
        return "it turned into a folder during the run";
    case platform::FileKind::SymbolicLink:
        return "it turned into a symbolic link during the run";
    case platform::FileKind::Other:
        return "it turned into a pipe, socket or device during the run";
    }
    return {};
}

} // namespace vardelin::engine
