// Warnings: printed to standard error unless they are not wanted, and kept for a report.
#pragma once

#include "output/standard_error.h"

#include <fmt/format.h>

#include <string>
#include <utility>
#include <vector>

namespace esttform::app {

class Warnings {
public:
    /// Where, and what.
    using Entry = std::pair<std::string, std::string>;

    explicit Warnings(bool isQuiet) : mIsQuiet(isQuiet) {}

    void print(const std::string& where, const std::string& text)
    {
        if (!mIsQuiet)
            writeToStandardError(fmt::format("esttform: warning: {}: {}\n", where, text));
        if (mKept.size() < KEPT_MAX_NUM)
            mKept.emplace_back(where, text);
    }
    /// The first warnings; a long stream may have millions.
    const std::vector<Entry>& kept() const noexcept { return mKept; }

private:
    static constexpr std::size_t KEPT_MAX_NUM = 50;

    bool mIsQuiet;
    std::vector<Entry> mKept;
};

}  // namespace esttform::app
