// Any bytes as registry text; what is understood makes the round trip.
#include "base/runtime_error.h"
#include "fuzz/fuzz_input.h"
#include "platform/memory/memory_registry.h"
#include "platform/registry_text.h"

using namespace vardelin;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto root = platform::RegistryRoot::LocalMachine;
    platform::MemoryRegistry registry;
    try {
        platform::applyRegistryChanges(registry,
                                       platform::parseRegistryText(test::textOfInput(data, size)));
    } catch (const base::RuntimeError& error) {
        // Lines that make no sense, and keys that no store can hold, such as one with a NUL.
        test::require(error.number() == base::error_number::kInvalidCall, "a bad line is error 5");
        platform::MemoryRegistry untouched;
        test::require(platform::registryText(registry, root, "") ==
                          platform::registryText(untouched, root, ""),
                      "an import that fails leaves nothing behind");
        return 0;
    }

    const std::string text = platform::registryText(registry, root, "");
    platform::MemoryRegistry copy;
    platform::applyRegistryChanges(copy, platform::parseRegistryText(text));
    test::require(platform::registryText(copy, root, "") == text, "export and import are inverse");
    return 0;
}
