// Any bytes as an archive file: it is read whole and equal to its own header, or refused.
#include "base/runtime_error.h"
#include "fuzz/fuzz_input.h"
#include "platform/memory/memory_file_system.h"
#include "runs/engine/copy_reader.h"
#include "runs/engine/copy_writer.h"

using namespace vardelin;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    platform::MemoryFileSystem files;
    const std::string_view bytes = test::textOfInput(data, size);
    const auto folder = files.openFolder("C:\\");
    folder->open("copy", platform::OpenMode::CreateNew)->write(platform::asBytes(bytes));
    const auto file = folder->open("copy", platform::OpenMode::Read);
    engine::CopyReader reader;
    std::string content;
    try {
        const engine::CopyHeader header = reader.read(*file, [&](std::span<const std::byte> piece) {
            content.append(reinterpret_cast<const char*>(piece.data()), piece.size());
        });
        test::require(header.frameCount == 0 || content.size() == header.sizeBytes,
                      "the content has the size that its header says");
        test::require(header.frameCount == 0 ||
                          engine::hashOf(platform::asBytes(content)) == header.contentHash,
                      "the content has the checksum that its header says");
        // What was read can be written again, and reads back the same.
        engine::CopyHeader again = header;
        engine::CopyWriter writer(1);
        const auto packed = writer.packWhole(again, platform::asBytes(content));
        folder->open("again", platform::OpenMode::CreateNew)->write(packed);
        std::string second;
        reader.read(*folder->open("again", platform::OpenMode::Read),
                    [&](std::span<const std::byte> piece) {
                        second.append(reinterpret_cast<const char*>(piece.data()), piece.size());
                    });
        test::require(second == content, "the content survives another writing");
    } catch (const base::RuntimeError& error) {
        test::require(error.number() == base::error_number::kDeviceIo && !error.reason().empty(),
                      "a damaged file is refused with its cause");
    }
    return 0;
}
