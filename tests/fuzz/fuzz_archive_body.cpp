// Any bytes as the body behind a valid header, whose sizes and checksums are those of these very
// bytes where a plain decoder can read them: our reader takes it and gives the same, or refuses it.
#include "base/runtime_error.h"
#include "fuzz/fuzz_input.h"
#include "platform/memory/memory_file_system.h"
#include "runs/engine/content_hash.h"
#include "runs/engine/copy_reader.h"

#include <optional>
#include <string>
#include <vector>

#include <zstd.h>

using namespace vardelin;

namespace {

constexpr std::size_t kMostContent = std::size_t{4} << 20; // decoders of bombs take too long

std::span<const std::byte> view(std::string_view text)
{
    return platform::asBytes(text);
}

struct Frame {
    std::string_view packed;
    std::string content;
};

// What another decoder makes of one frame; none where it refuses it or gets more than kMostContent.
std::optional<std::string> decode(std::string_view packed)
{
    ZSTD_DStream* const decoder = ZSTD_createDStream();
    std::string content;
    std::string block(ZSTD_DStreamOutSize(), '\0');
    ZSTD_inBuffer in{packed.data(), packed.size(), 0};
    std::size_t code = 1;
    for (;;) {
        ZSTD_outBuffer out{block.data(), block.size(), 0};
        const std::size_t before = in.pos;
        code = ZSTD_decompressStream(decoder, &out, &in);
        content.append(block, 0, out.pos);
        if (ZSTD_isError(code) != 0 || code == 0 || content.size() > kMostContent ||
            (out.pos == 0 && in.pos == before))
            break;
    }
    ZSTD_freeDStream(decoder);
    if (code != 0 || in.pos != in.size || content.size() > kMostContent)
        return std::nullopt;
    return content;
}

std::vector<Frame> framesOf(std::string_view body, bool& whole)
{
    std::vector<Frame> frames;
    whole = true;
    while (!body.empty()) {
        const std::size_t length = ZSTD_findFrameCompressedSize(body.data(), body.size());
        std::optional<std::string> content;
        if (ZSTD_isError(length) == 0)
            content = decode(body.substr(0, length));
        if (!content) {
            whole = false;
            frames.push_back({body, {}});
            return frames;
        }
        frames.push_back({body.substr(0, length), std::move(*content)});
        body.remove_prefix(length);
    }
    return frames;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view body = test::textOfInput(data, size);
    bool whole = false;
    const std::vector<Frame> frames = framesOf(body, whole);
    std::string expected;
    std::vector<engine::BodyFrame> index;
    for (const Frame& frame : frames) {
        expected += frame.content;
        index.push_back({static_cast<std::uint32_t>(frame.content.size()),
                         static_cast<std::uint32_t>(frame.packed.size()),
                         engine::hashOf(view(frame.content)),
                         engine::packedHashOf(view(frame.packed))});
    }
    engine::CopyHeader header;
    header.path = "C:\\a";
    // A damaged frame may give all that it likes: the reader has to stop by itself.
    header.sizeBytes = whole ? expected.size() : kMostContent;
    header.contentHash = engine::hashOf(view(expected));
    header.bodyBytes = body.size();
    header.frameCount = static_cast<std::uint32_t>(frames.size());
    header.bodyHash = frames.size() == 1 ? index.front().packedHash : 0;

    platform::MemoryFileSystem files;
    const auto folder = files.openFolder("C:\\");
    const auto target = folder->open("copy", platform::OpenMode::CreateNew);
    target->write(view(engine::encodeHeader(header)));
    target->write(view(body));
    if (frames.size() > 1)
        target->write(view(engine::encodeIndex(index)));
    const auto file = folder->open("copy", platform::OpenMode::Read);
    engine::CopyReader reader;
    std::string content;
    bool accepted = true;
    try {
        reader.read(*file, [&](std::span<const std::byte> piece) {
            content.append(reinterpret_cast<const char*>(piece.data()), piece.size());
        });
    } catch (const base::RuntimeError& error) {
        accepted = false;
        test::require(error.number() == base::error_number::kDeviceIo && !error.reason().empty(),
                      "a damaged body is refused with its cause");
    }
    test::require(content.size() <= header.sizeBytes, "no more comes than the header says");
    test::require(!accepted || content == expected, "what is taken is what is there");
    test::require(accepted == whole, "what another decoder reads whole is taken, and no more");
    return 0;
}
