#pragma once

#include "archive/review.h"

#include <string>
#include <string_view>

// model.txt, the lines of the review that is open, as deletion and the load share it.
namespace vardelin::archive {

// Deletes model.txt, in whatever capitals its name is written; none is no error.
void removeModel(platform::FileSystem& fileSystem, std::string_view appPath);

// The groups of its lines, comma-separated: every change of the text in front of the first
// backslash, compared without regard to case. Raises what reading raises. With `anyLine` it also
// tells whether there is a line that is not empty.
std::string groupsOfModel(ReviewContext& context, PacedLoop& loop, bool* anyLine = nullptr);

} // namespace vardelin::archive
