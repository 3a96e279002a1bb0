#include "check/checks.h"

namespace esttform::check {

const std::vector<Check>& allChecks()
{
    static const std::vector<Check> CHECKS = {
        {"load", false, "the library loads and exports every callback", checkLoad},
        {"order", false, "sample times at every place between set-up and start; lives without a step", checkOrder},
        {"early-ends", false, "terminate after every callback and after a start that failed", checkEarlyEnds},
        {"lives", false, "one life after another: equal results, no memory lost", checkManyLives},
        {"instances", false, "many instances at once: none sees the state of another", checkInstances},
        {"propagation", false, "sizes, types, modes and frames offered in every order: one result, or one message",
         checkPropagation},
        {"random-propagation", true, "all offers, those to outputs too, in random orders", checkRandomPropagation},
        {"refusals", false, "a refusal of every host call in turn: the block stops at once and loses nothing", checkRefusals},
        {"refused-steps", false, "steps of sizes that do not fit: the documented error, no output written", checkRefusedSteps},
        {"parameters", false, "odd values of every dialog parameter: admitted or refused as documented", checkParameters},
        {"random-parameters", true, "odd values of several dialog parameters at once", checkRandomParameters},
        {"tunable", false, "values changed between steps act as if given at the start; refused ones change nothing",
         checkTunable},
        {"signals", false, "signals of odd sizes, types and modes: the documented messages", checkSignals},
        {"guard-zones", true, "no write outside inputs, outputs and work vectors; inputs unchanged", checkGuardZones},
        {"input-pages", true, "no access before or after the inputs, no write to them: the memory around them is not there",
         checkInputPages},
        {"truth", true, "the right transformation among wrong matches", checkTruth},
        {"steps", true, "odd points: results finite or zero, equal bits with an equal seed", checkSteps},
        {"description", false, "the code that the block describes follows the rules, and is the same each time",
         checkDescription},
    };
    return CHECKS;
}

}  // namespace esttform::check
