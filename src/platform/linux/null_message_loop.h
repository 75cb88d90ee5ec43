#pragma once

#include "platform/machine.h"

namespace vardelin::platform {

// For programs without a window: nothing waits to be painted or pressed.
class NullMessageLoop final : public MessageLoop {
public:
    void yield() override {}
};

} // namespace vardelin::platform
