#pragma once

#include "ctl/output.h"
#include "runs/engine/outcome.h"

#include <optional>
#include <vector>

// How a run's outcome reaches the terminal: one table for all commands.
namespace vardelin::ctl {

int exitCodeOf(engine::Outcome outcome);

// `outcome` and `code`, and of a failed run `failure` with number, subject and reason.
void putOutcome(Json& object, engine::Outcome outcome,
                const std::optional<engine::RunFailure>& failure);

// A list of objects with path and reason.
Json gapsOf(const std::vector<engine::Gap>& gaps);

} // namespace vardelin::ctl
