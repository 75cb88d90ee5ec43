#pragma once

namespace vardelin::platform {

// Says whether this process is the only one of its program in its application folder.
class InstanceLock {
public:
    InstanceLock() = default;
    InstanceLock(const InstanceLock&) = delete;
    InstanceLock& operator=(const InstanceLock&) = delete;
    virtual ~InstanceLock() = default;

    // True where this process holds the lock now, also when asked again; it keeps it until this
    // object goes or the process ends, however it ends. False while another process holds it.
    // Never waits. Raises 70, 76 or 57 with the lock as subject where it cannot be had at all, as
    // in a folder that may not be written to.
    virtual bool acquire() = 0;
};

} // namespace vardelin::platform
