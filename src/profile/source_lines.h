#pragma once

#include "base/keyed_collection.h"
#include "state/profile_editor_state.h"

#include <string_view>

namespace vardelin::profile {

// Takes one line of a profile's source files into the opened sources and the top of the tree.
//
// Added, as item and key, are every prefix of the path that is new and then the path itself:
// `C:\A\f.txt` gives `C:\`, `C:\A\` and `C:\A\f.txt`. A folder line gives `C:\A\*` in place of its
// last prefix, unless an earlier line brought that folder as a prefix already: the order of the
// lines tells. A new prefix whose last piece holds a colon also becomes a root of the tree, ticked,
// with an empty child for contents that were not read yet; a network path has no such piece.
//
// Raises what adding the path itself raises.
void addOpenedSource(std::string_view line, base::TextCollection& sources, state::TreeView& tree);

} // namespace vardelin::profile
