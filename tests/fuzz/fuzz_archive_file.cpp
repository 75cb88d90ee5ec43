// Any bytes as an archive file: it is read whole and equal to its own header, or refused. The outer
// header of an encrypted copy gets its checksum put right, so that slots and seals are reached; a
// slot of a password is refused by a ring without one, since deriving keys takes too long here.
#include "base/runtime_error.h"
#include "fuzz/fuzz_input.h"
#include "platform/memory/memory_file_system.h"
#include "runs/engine/copy_reader.h"
#include "runs/engine/copy_writer.h"
#include "runs/engine/encrypted_copy.h"

using namespace vardelin;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    platform::MemoryFileSystem files;
    std::string bytes(test::textOfInput(data, size));
    if (bytes.size() > 20 && bytes.compare(8, 4, "VDE1") == 0) {
        std::size_t length = 0;
        for (std::size_t i = 4; i-- > 0;)
            length = length << 8U | static_cast<unsigned char>(bytes[4 + i]);
        if (length >= 12 && length <= bytes.size() - 8) {
            std::uint64_t checksum =
                engine::packedHashOf(platform::asBytes(bytes).subspan(8, length - 8));
            for (std::size_t i = 0; i < 8; ++i, checksum >>= 8U)
                bytes[length + i] = static_cast<char>(checksum & 0xffU);
        }
    }
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
    } catch (const engine::PasswordError&) {
        return 0;
    } catch (const base::RuntimeError& error) {
        test::require(error.number() == base::error_number::kDeviceIo && !error.reason().empty(),
                      "a damaged file is refused with its cause");
    }
    return 0;
}
