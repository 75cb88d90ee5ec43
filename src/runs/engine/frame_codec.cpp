#include "runs/engine/frame_codec.h"

#include "base/runtime_error.h"
#include "runs/engine/archive_header.h"

#include <xxhash.h>

namespace vardelin::engine::frame {

void refuse(const char* reason)
{
    throw base::RuntimeError(base::error_number::kDeviceIo, {}, reason);
}

std::span<const std::byte> Cursor::takeBytes(std::size_t n)
{
    if (n > m_bytes.size())
        refuse("the header ends too early");
    const auto result = m_bytes.first(n);
    m_bytes = m_bytes.subspan(n);
    return result;
}

std::string Cursor::takeText(std::size_t n)
{
    const auto bytes = takeBytes(n);
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

std::string open(std::uint32_t magic, std::string_view name)
{
    std::string frame;
    put(frame, magic);
    put(frame, std::uint32_t{0});
    frame.append(name);
    return frame;
}

void close(std::string& frame)
{
    const std::uint64_t checksum =
        XXH3_64bits(frame.data() + kFrameHeadBytes, frame.size() - kFrameHeadBytes);
    put(frame, checksum);
    std::string length;
    put(length, static_cast<std::uint32_t>(frame.size() - kFrameHeadBytes));
    frame.replace(4, 4, length);
}

Cursor payloadOf(std::span<const std::byte> frame, std::uint32_t magic, std::string_view name)
{
    Cursor head(frame);
    if (head.take<std::uint32_t>() != magic)
        refuse("it does not begin as an archive file");
    const auto length = head.take<std::uint32_t>();
    if (length != frame.size() - kFrameHeadBytes || length < name.size() + kChecksumBytes)
        refuse("its header has a wrong length");
    const auto payload = frame.subspan(kFrameHeadBytes, length - kChecksumBytes);
    Cursor tail(frame.last(kChecksumBytes));
    if (tail.take<std::uint64_t>() != XXH3_64bits(payload.data(), payload.size()))
        refuse("its header is damaged (checksum)");
    Cursor cursor(payload);
    if (cursor.takeText(name.size()) != name)
        refuse("it does not begin as an archive file");
    return cursor;
}

} // namespace vardelin::engine::frame
