#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace vardelin::platform {

// Notes a document in `<dataFolder>/recently-used.xbel` (freedesktop.org, "Desktop Bookmark
// Specification"), the list that all programs of the desktop share; the folder is the person's own
// one, in the machine's own form, as the document's path is. A document that is listed already gets
// the new time and keeps what other programs say of it. `mimeType` may be empty; seconds count from
// 1 January 1970 UTC. A file that is no such list is left alone. Raises 70 or 57 where the list
// cannot be written.
void noteRecentDocument(const std::string& dataFolder, std::string_view nativePath,
                        std::string_view mimeType, std::int64_t seconds);

} // namespace vardelin::platform
