// Any bytes as a scrambled file and as a plain one.
#include "fuzz/fuzz_input.h"
#include "profile/scramble_text.h"
#include "runs/engine/profile_reader.h"

using namespace vardelin;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text = test::textOfInput(data, size);

    const std::string plain = profile::unscrambleText(text);
    test::require(plain.size() <= text.size() + 2, "unscrambling makes nothing longer");
    engine::parseProfile(plain);
    engine::parseProfile(text);

    const std::string scrambled = profile::scrambleText(text);
    const auto lossy = profile::lossyLines(text);
    std::string whole(text);
    if (!whole.empty() && !whole.ends_with("\r\n"))
        whole += "\r\n";
    test::require((profile::unscrambleText(scrambled) == whole) == lossy.empty(),
                  "the lines that do not come back are named, and no others");
    return 0;
}
