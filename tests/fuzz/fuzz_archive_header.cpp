// Any bytes as what stands in a header or an index frame, with magic, length and checksum put right
// so that the fields behind them are reached: read and written again the same, or refused.
#include "base/runtime_error.h"
#include "fuzz/fuzz_input.h"
#include "runs/engine/archive_header.h"

#include <string>

using namespace vardelin;

namespace {

void put(std::string& out, std::uint64_t value, int bytes)
{
    for (int i = 0; i < bytes; ++i)
        out += static_cast<char>(value >> (8 * i) & 0xff);
}

// The payload holds the frame's own name at its beginning; the checksum covers it.
std::string frameOf(std::uint32_t magic, std::string_view payload)
{
    std::string frame;
    put(frame, magic, 4);
    put(frame, payload.size() + 8, 4);
    frame.append(payload);
    put(frame, engine::packedHashOf(platform::asBytes(payload)), 8);
    return frame;
}

template <typename Step>
void readOrRefuse(Step&& step)
{
    try {
        step();
    } catch (const base::RuntimeError& error) {
        test::require(error.number() == base::error_number::kDeviceIo && !error.reason().empty(),
                      "what is refused is refused with its cause");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view payload = test::textOfInput(data, size);
    readOrRefuse([&] {
        const std::string frame = frameOf(engine::kHeaderMagic, payload);
        test::require(engine::headerFrameBytes(platform::asBytes(frame)) == frame.size(),
                      "the length is that of the frame");
        const auto header = engine::decodeHeader(platform::asBytes(frame));
        const std::string again = engine::encodeHeader(header);
        test::require(engine::encodeHeader(engine::decodeHeader(platform::asBytes(again))) == again,
                      "a header survives another writing");
    });
    readOrRefuse([&] {
        const std::string frame = frameOf(engine::kIndexMagic, payload);
        const auto frames = engine::decodeIndex(platform::asBytes(frame));
        const std::string again = engine::encodeIndex(frames);
        test::require(frame.starts_with(again.substr(0, 4)) && again.size() <= frame.size(),
                      "an index holds what it says");
        test::require(engine::encodeIndex(engine::decodeIndex(platform::asBytes(again))) == again,
                      "an index survives another writing");
    });
    // As they are: the checks in front of the fields.
    readOrRefuse([&] { engine::headerFrameBytes(platform::asBytes(payload)); });
    readOrRefuse([&] { engine::decodeHeader(platform::asBytes(payload)); });
    readOrRefuse([&] { engine::decodeIndex(platform::asBytes(payload)); });
    return 0;
}
