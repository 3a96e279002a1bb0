// Warnings: printed to standard error unless they are not wanted, and kept for a report.
#pragma once

#include <fmt/format.h>

#include <cstdio>
#include <string>
#include <utility>
#include <vector>

namespace esttform::app {

class Warnings {
public:
    explicit Warnings(bool isQuiet) : mIsQuiet(isQuiet) {}

    void print(const std::string& where, const std::string& text)
    {
        if (!mIsQuiet)
            fmt::print(stderr, "esttform: warning: {}: {}\n", where, text);
        if (mKept.size() < KEPT_MAX_NUM)
            mKept.emplace_back(where, text);
    }
    /// The first warnings, where and what; a long stream may have millions.
    const std::vector<std::pair<std::string, std::string>>& kept() const noexcept { return mKept; }

private:
    static constexpr std::size_t KEPT_MAX_NUM = 50;

    bool mIsQuiet;
    std::vector<std::pair<std::string, std::string>> mKept;
};

}  // namespace esttform::app
