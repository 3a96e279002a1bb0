#include "check/call_log.h"

namespace esttform::check {

namespace {

bool endsWith(std::string_view text, std::string_view end)
{
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

}  // namespace

void CallLog::attachTo(blockhost::BlockSetup& setup)
{
    setup.trace = [this](std::string_view line) { mLines.emplace_back(line); };
}

std::vector<std::string> CallLog::messages() const
{
    std::vector<std::string> messages;
    for (const std::string& line : mLines) {
        const std::string function = functionOf(line);
        if (function == "dspError")
            messages.push_back(line.substr(line.find('(') + 1, line.rfind(')') - line.find('(') - 1));
        else if (function.rfind("dsp", 0) == 0 && endsWith(line, " -> false"))
            messages.push_back(function);
    }
    return messages;
}

std::string functionOf(std::string_view line)
{
    const std::size_t begin = line.find_first_not_of(' ');
    return begin == std::string_view::npos ? "" : std::string(line.substr(begin, line.find('(', begin) - begin));
}

bool isHostCall(std::string_view line)
{
    return !line.empty() && line[0] == ' ';
}

bool isRefused(std::string_view line)
{
    return isHostCall(line) && (endsWith(line, " -> 0") || endsWith(line, " -> false"));
}

}  // namespace esttform::check
