#pragma once

#include "platform/memory/call_script.h"

namespace vardelin::platform {

// What the ports' small doubles have in common: each call of the port is reported to the script
// before it is done, under the port's name and the function's, as in `registry.setValue` or
// `clock.nowNs`, so that a test can count it, fail it or act in its midst.
class ScriptedDouble {
public:
    CallScript& script() { return m_script; }

protected:
    ScriptedDouble() = default;
    ~ScriptedDouble() = default;
    ScriptedDouble(const ScriptedDouble&) = delete;
    ScriptedDouble& operator=(const ScriptedDouble&) = delete;

private:
    CallScript m_script;
};

} // namespace vardelin::platform
