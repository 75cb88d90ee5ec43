// Any bytes as a file name in an archive: what is taken for a copy of ours makes the same name
// again.
#include "archive/catalog.h"
#include "archive/entry_names.h"
#include "fuzz/fuzz_input.h"

using namespace vardelin;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string name(test::textOfInput(data, size));
    if (const auto copy = archive::parseCopyName(name)) {
        test::require(!copy->sourceName.empty(), "a copy has a source");
        if (copy->meta) {
            const auto again =
                archive::copyName(copy->sourceName, copy->version, *copy->meta, copy->form);
            const auto back = again ? archive::parseCopyName(*again) : std::nullopt;
            test::require(
                !back || (back->sourceName == copy->sourceName && back->version == copy->version),
                "a name that is made again means the same copy");
        }
        test::require(!archive::isTemporaryName(name), "a copy is no temporary file");
    }
    if (const auto record = archive::parseFolderRecordName(name))
        test::require(archive::parseFolderRecordName(archive::folderRecordName(*record)) == record,
                      "a folder record's name reads back");
    archive::entryOfFile("D:\\s\\W\\", "D:\\s\\W\\C\\" + name);
    archive::parseCatalogLine(name);
    return 0;
}
