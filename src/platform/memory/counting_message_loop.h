#pragma once

#include "platform/machine.h"
#include "platform/memory/scripted_double.h"

#include <cstddef>
#include <functional>

namespace vardelin::platform {

// Counts how often it was yielded to, and lets the test act as the person would meanwhile.
class CountingMessageLoop final : public MessageLoop, public ScriptedDouble {
public:
    std::size_t yields = 0;
    std::function<void()> onYield; // after the count; may be empty

    void yield() override;
};

} // namespace vardelin::platform
