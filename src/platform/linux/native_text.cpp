#include "platform/linux/native_text.h"

#include "base/runtime_error.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace vardelin::platform {

std::string readNativeFile(const std::string& path)
{
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

std::string environmentText(const char* name)
{
    const char* text = std::getenv(name); // NOLINT(concurrency-mt-unsafe): nobody sets any
    return text != nullptr ? text : "";
}

void raiseFileError(const std::error_code& error, const std::string& path)
{
    const bool denied = error == std::errc::permission_denied ||
                        error == std::errc::operation_not_permitted ||
                        error == std::errc::read_only_file_system;
    throw base::RuntimeError(denied ? base::error_number::kPermissionDenied
                                    : base::error_number::kDeviceIo,
                             path, error.message());
}

void replaceNativeFile(const std::string& path, const std::string& text)
{
    if (readNativeFile(path) == text)
        return;
    const std::string temporary = path + ".new";
    errno = 0;
    std::ofstream stream(temporary, std::ios::binary | std::ios::trunc);
    stream << text;
    stream.close();
    std::error_code error;
    if (!stream)
        error = std::error_code(errno != 0 ? errno : EIO, std::generic_category());
    else if (const auto old = std::filesystem::status(path); std::filesystem::exists(old))
        std::filesystem::permissions(temporary, old.permissions(), error); // as they were
    if (!error)
        std::filesystem::rename(temporary, path, error);
    if (error) {
        std::error_code ignored;
        std::filesystem::remove(temporary, ignored);
        raiseFileError(error, path);
    }
}

} // namespace vardelin::platform
