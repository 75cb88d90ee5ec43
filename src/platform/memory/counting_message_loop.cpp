#include "platform/memory/counting_message_loop.h"

namespace vardelin::platform {

void CountingMessageLoop::yield()
{
    script().enter("loop.yield", {});
    ++yields;
    if (onYield)
        onYield();
}

} // namespace vardelin::platform
