// The checks by what they try. Each takes the block's path and the first seed, and throws a Finding or an Error.
#pragma once

#include <string>

namespace blockhost::check {

// ---- checks_life.cpp
void checkOrder(const std::string& path, unsigned seed);
void checkTermination(const std::string& path, unsigned seed);
void checkTwoInstances(const std::string& path, unsigned seed);

// ---- checks_host.cpp
void checkPropagation(const std::string& path, unsigned seed);
void checkContradictions(const std::string& path, unsigned seed);
void checkRefusals(const std::string& path, unsigned seed);

// ---- checks_params.cpp
void checkParameters(const std::string& path, unsigned seed);
void checkTuning(const std::string& path, unsigned seed);

// ---- checks_steps.cpp
void checkTypes(const std::string& path, unsigned seed);
void checkSizes(const std::string& path, unsigned seed);
void checkRepeatedSteps(const std::string& path, unsigned seed);
void checkRandomSteps(const std::string& path, unsigned seed);
void checkCode(const std::string& path, unsigned seed);

}  // namespace blockhost::check
