// Any bytes as the list of recent and primary profiles.
#include "fuzz/fuzz_input.h"
#include "profile/list_file.h"
#include "support/profile_rig.h"

using namespace vardelin;

namespace {

constexpr std::string_view kList = "C:\\App\\Data\\Other_Dsk.txt";

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    test::ProfileRig rig;
    rig.putFile("C:\\App\\Profiles\\A.vdp", "");
    rig.putFile(kList, test::textOfInput(data, size));

    bool found = false;
    profile::IsRecentProfile(rig.profiles, found);
    test::require(found != rig.frame.ST_Recent_Profile.empty(), "a name exactly when found");
    profile::IsPrProFileExists(rig.profiles, found);
    test::require(found != rig.frame.ST_Primary_Profile.empty(), "a name exactly when found");
    profile::RemoveRecVdpName(rig.profiles);
    profile::RemoveVdpName(rig.profiles);
    test::require(rig.dialog.shown.empty(), "no content of the list is an error");

    profile::SetPrimaryProfile(rig.profiles, "A.vdp");
    profile::SetRecentProfile(rig.profiles, "A");
    profile::IsPrProFileExists(rig.profiles, found);
    test::require(found, "the primary that was set is found");
    profile::IsRecentProfile(rig.profiles, found);
    test::require(found, "the recent one that was set is found");
    return 0;
}
