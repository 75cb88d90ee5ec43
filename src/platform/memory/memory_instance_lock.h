#pragma once

#include "platform/instance_lock.h"
#include "platform/memory/scripted_double.h"

namespace vardelin::platform {

// A lock that another process holds when the test says so. For one thread.
class MemoryInstanceLock final : public InstanceLock, public ScriptedDouble {
public:
    bool heldElsewhere = false;
    bool held = false;

    bool acquire() override
    {
        script().enter("lock.acquire", {});
        held = held || !heldElsewhere;
        return held;
    }
};

} // namespace vardelin::platform
