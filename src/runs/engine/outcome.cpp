#include "runs/engine/outcome.h"

#include "base/runtime_error.h"

namespace vardelin::engine {

Outcome outcomeOf(const RunFacts& facts)
{
    if (facts.failed)
        return Outcome::Failed;
    if (facts.cancelled)
        return Outcome::Cancelled;
    if (facts.gaps)
        return Outcome::CompleteWithGaps;
    return facts.anything ? Outcome::Complete : Outcome::NothingToDo;
}

std::string_view outcomeName(Outcome outcome)
{
    switch (outcome) {
    case Outcome::Complete:
        return "complete";
    case Outcome::CompleteWithGaps:
        return "gaps";
    case Outcome::NothingToDo:
        return "nothing";
    case Outcome::Cancelled:
        return "cancelled";
    case Outcome::Failed:
        return "failed";
    }
    return {};
}

bool cameToItsEnd(Outcome outcome)
{
    return outcome != Outcome::Cancelled && outcome != Outcome::Failed;
}

bool leavesLogRecord(Outcome outcome, bool didAnything)
{
    switch (outcome) {
    case Outcome::Complete:
    case Outcome::CompleteWithGaps:
    case Outcome::Cancelled:
        return true;
    case Outcome::NothingToDo:
        return false;
    case Outcome::Failed:
        return didAnything;
    }
    return false;
}

RunFailure failureOf(const base::RuntimeError& error)
{
    return {error.number(), error.subject(), error.reason()};
}

} // namespace vardelin::engine
