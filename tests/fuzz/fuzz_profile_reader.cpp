// Any bytes as the plain copy of a profile, read into the editor's record and written again.
#include "fuzz/fuzz_input.h"
#include "profile/profile_reader.h"
#include "profile/profile_writer.h"
#include "support/profile_rig.h"

using namespace vardelin;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr std::string_view kCopy = "C:\\App\\Profiles\\UDefault.txt";
    test::ProfileRig rig;
    rig.putFile(kCopy, test::textOfInput(data, size));
    profile::ActivateOpenProfile(rig.profiles, "UDefault.txt", "C:\\App\\Profiles\\");
    test::require(rig.disk.fileExists(kCopy) == !rig.dialog.shown.empty(),
                  "the plain copy stays exactly when a failure was shown");
    test::require(profile::CreatingVdpFile(rig.profiles, "Default.vdp", "C:\\App\\Profiles"),
                  "what was read can be written");
    return 0;
}
