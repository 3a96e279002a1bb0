#include "project.h"

#include "../estimator.h"
#include "../message_catalog.h"
#include "embedded.h"
#include "text_template.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <limits>

namespace blockhost::c99 {

using esttform::Error;
using esttform::ErrorKind;

namespace {

/// A type of points in C, and what main.c admits as such a point.
struct PointType {
    const char* name;
    const char* cName;
    double lowest, highest;  ///< of integers; 0 and 0 for real types
};

template <typename T>
constexpr PointType integerType(const char* name, const char* cName)
{
    return {name, cName, double(std::numeric_limits<T>::min()), double(std::numeric_limits<T>::max())};
}

/// By data-type id.
constexpr std::array<PointType, 8> POINT_TYPES{
    PointType{"double", "double", 0.0, 0.0},
    PointType{"single", "float", 0.0, 0.0},
    integerType<std::int8_t>("int8", "int8_t"),
    integerType<std::uint8_t>("uint8", "uint8_t"),
    integerType<std::int16_t>("int16", "int16_t"),
    integerType<std::uint16_t>("uint16", "uint16_t"),
    integerType<std::int32_t>("int32", "int32_t"),
    integerType<std::uint32_t>("uint32", "uint32_t"),
};

/// Targets that every CMake project has.
constexpr std::array<const char*, 14> CMAKE_TARGETS{
    "ALL_BUILD", "INSTALL", "PACKAGE", "RUN_TESTS", "ZERO_CHECK", "all", "clean", "depend", "edit_cache", "help",
    "install", "package", "rebuild_cache", "test"};

const char* flag(bool isSet) noexcept
{
    return isSet ? "yes" : "";
}

SourceFile embedded(const std::string& name)
{
    const char* const text = embeddedFile(name);
    if (text == nullptr)
        throw Error(ErrorKind::Internal, fmt::format("the runtime has no file {}, which the block registered", name));
    return {name, text};
}

std::string cmakeText(const ProjectInfo& info)
{
    const auto isTaken = [&info](const char* target) { return info.name == target; };
    if (std::any_of(CMAKE_TARGETS.begin(), CMAKE_TARGETS.end(), isTaken))
        throw Error(ErrorKind::Usage, fmt::format("name: got {}, which CMake keeps for itself; choose another", info.name));
    return fillTemplate(embedded("CMakeLists.txt.in").text, {{"NAME", info.name},
                                                             {"SOURCES", fmt::format("{}", fmt::join(info.sources, "\n  "))},
                                                             {"WITH_MAIN", flag(info.withMain)}});
}

std::string mainText(const ProjectInfo& info)
{
    const auto typeIdx = static_cast<std::size_t>(info.pointsTypeId);
    if (typeIdx >= POINT_TYPES.size())
        throw Error(ErrorKind::Internal, fmt::format("points of data type {}, expected an id from 0 to 7", info.pointsTypeId));
    const PointType& type = POINT_TYPES[typeIdx];
    const bool isInteger = type.highest != 0.0;
    const resource_core::BaseMsgID tooSmall = catalog::pts1OrPts2TooSmall(info.sampleSize);
    return fillTemplate(
        embedded("main.c.in").text,
        {{"NAME", info.name},
         {"VARIABLE", flag(info.isVariableSize)},
         {"PAIR_NUM", std::to_string(info.maxPtsNum)},
         {"SAMPLE_SIZE", std::to_string(info.sampleSize)},
         {"ROW_NUM", std::to_string(info.tformRows)},
         {"COL_NUM", std::to_string(info.tformCols)},
         {"SIZE_ERROR", fmt::format("{}: {}", tooSmall.id(), messageText(tooSmall))},
         {"POINT", type.cName},
         {"IS_DOUBLE", flag(!isInteger && info.pointsTypeId == sysobj::DT_DOUBLE)},
         {"IS_SINGLE", flag(!isInteger && info.pointsTypeId != sysobj::DT_DOUBLE)},
         {"IS_INTEGER", flag(isInteger)},
         {"POINT_MIN", fmt::format("{:.1f}", type.lowest)},
         {"POINT_MAX", fmt::format("{:.1f}", type.highest)},
         {"EXPECTED", isInteger ? fmt::format("a whole number from {:.0f} to {:.0f} ({})", type.lowest, type.highest, type.name)
                                : fmt::format("a number ({})", type.name)},
         {"ROWS", flag(info.inRows)},
         {"INLIERS", flag(info.hasInliers)}});
}

}  // namespace

std::vector<SourceFile> projectFiles(const ProjectInfo& info)
{
    std::vector<SourceFile> files;
    for (const auto* const names : {&info.headers, &info.sources})
        for (const std::string& name : *names)
            files.push_back(embedded(name));
    files.push_back({"CMakeLists.txt", cmakeText(info)});
    if (info.withMain)
        files.push_back({"main.c", mainText(info)});
    return files;
}

}  // namespace blockhost::c99
