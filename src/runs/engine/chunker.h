#pragma once

#include <cstddef>
#include <span>

namespace vardelin::engine {

// Where the body of a large file is cut into independent frames. A cut depends on the 64 bytes in
// front of it alone, so an edit moves only the cuts around itself, and the frames elsewhere can be
// taken over from the copy before. Sizes measured on edits of 1 MB in 256 MB files: smaller frames
// cost more in the index and in the ratio than they save, larger ones are packed again too often.
inline constexpr std::size_t kSmallestFrame = 1024 * 1024;
inline constexpr std::size_t kLargestFrame = 8 * 1024 * 1024;
inline constexpr unsigned kCutBits = 20; // a cut every MiB behind the smallest size, on average

// The length of the first frame of `bytes`: at most kLargestFrame, and all of it where no cut
// falls.
std::size_t cutLength(std::span<const std::byte> bytes);

} // namespace vardelin::engine
