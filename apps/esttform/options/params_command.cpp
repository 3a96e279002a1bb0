#include "options/params_command.h"

#include "blockhost/estimator.h"
#include "number_text.h"

#include <fmt/format.h>

namespace esttform::app {

std::string paramsText()
{
    std::string text = "Dialog parameters of the block, for --param NAME=VALUE or --param INDEX=VALUE\n";
    for (const ParamInfo& info : paramTable()) {
        const std::string unit = *info.unit != '\0' ? fmt::format(", in {}", info.unit) : "";
        text += fmt::format("\n{:2}  {}: {}{}; default {}; tunable: {}\n    {}\n", info.index, info.name, info.values, unit,
                            exactText(info.defaultValue), info.tunable, info.meaning);
    }
    return text;
}

}  // namespace esttform::app
