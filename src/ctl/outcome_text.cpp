#include "ctl/outcome_text.h"

#include <nlohmann/json.hpp>

namespace vardelin::ctl {

int exitCodeOf(engine::Outcome outcome)
{
    switch (outcome) {
    case engine::Outcome::Complete:
        return kExitDone;
    case engine::Outcome::CompleteWithGaps:
        return kExitGaps;
    case engine::Outcome::NothingToDo:
        return kExitNothing;
    case engine::Outcome::Cancelled:
        return kExitCancelled;
    case engine::Outcome::Failed:
        return kExitFailed;
    }
    return kExitFailed;
}

void putOutcome(Json& object, engine::Outcome outcome,
                const std::optional<engine::RunFailure>& failure)
{
    object["outcome"] = engine::outcomeName(outcome);
    object["code"] = exitCodeOf(outcome);
    if (!failure)
        return;
    Json told;
    told["number"] = failure->number;
    putText(told, "subject", failure->subject);
    putText(told, "reason", failure->reason);
    object["failure"] = std::move(told);
}

Json gapsOf(const std::vector<engine::Gap>& gaps)
{
    Json list = Json::array();
    for (const engine::Gap& gap : gaps) {
        Json item;
        putText(item, "path", gap.path);
        putText(item, "reason", gap.reason);
        list.push_back(std::move(item));
    }
    return list;
}

} // namespace vardelin::ctl
