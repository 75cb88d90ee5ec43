#include "platform/linux/native_text.h"

#include <cstdlib>
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

} // namespace vardelin::platform
