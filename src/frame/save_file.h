#pragma once

#include "frame/frame_context.h"

#include <cstddef>
#include <string>
#include <vector>

namespace vardelin::frame {

// Lets paint and input through in the midst of a save. What the person changes in the editor then
// comes too late for the file, so it must count as a change once the save has taken the flags back.
class SavePause {
public:
    explicit SavePause(FrameContext& context) : m_context(context) {}

    // Shows the text in panel 1 and yields.
    void show(std::string_view text);
    bool sawChange() const { return m_sawChange; }

private:
    FrameContext& m_context;
    bool m_sawChange = false;
};

struct WrittenProfile {
    bool done = false;
    bool encryptionChanged = false;      // the old file said otherwise; false where there was none
    std::vector<std::size_t> lossyLines; // as in profile::ScrambleResult
};

// Gathers what the editor holds and writes it to the file of this name in Profiles: the profile,
// the record of its schedule, the scrambling, in this order. Where any of it fails, the file is the
// old one or the new one, and there is none where there was none before; the error was shown. The
// save lists are empty afterwards. Raises where the old file cannot be kept for that.
WrittenProfile writeProfile(FrameContext& context, const std::string& name, SavePause& pause);

} // namespace vardelin::frame
