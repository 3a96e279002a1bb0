#include "unit.h"

#include "c_type.h"
#include "literal.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <vector>

namespace blockhost::c99 {

namespace {

/// A function of the C library that is called through a macro.
struct PlatformFcn {
    const char* name;
    const char* header;
    const char* macro;
    const char* definition;
    const char* meaning;
};

constexpr std::array<PlatformFcn, 3> PLATFORM_FCNS = {{
    {"clock", "<time.h>", "ESTTFORM_CLOCK", "#define ESTTFORM_CLOCK() clock()",
     "A number that differs from start to start. A device without clock() defines its own."},
    {"rand", "<stdlib.h>", "ESTTFORM_RAND", "#define ESTTFORM_RAND() rand()",
     "The next random number, at least 0. A device without rand() defines its own."},
    {"srand", "<stdlib.h>", "ESTTFORM_SRAND", "#define ESTTFORM_SRAND(seed) srand((unsigned int)(seed))",
     "Seeds the random numbers. A device without srand() defines its own."},
}};

const PlatformFcn* findPlatformFcn(const std::string& name)
{
    const auto* const found = std::find_if(PLATFORM_FCNS.begin(), PLATFORM_FCNS.end(),
                                           [&name](const PlatformFcn& fcn) { return fcn.name == name; });
    return found != PLATFORM_FCNS.end() ? found : nullptr;
}

/// A header of the runtime says its version, and a generated file refuses another one.
struct RuntimeHeader {
    const char* name;
    const char* versionMacro;
    int version;
};

constexpr RuntimeHeader RUNTIME_HEADERS[] = {{"zelsvd_rt.h", "ZELSVD_RT_VERSION", 1}};

struct IntegerRange {
    const char* cType;
    const char* name;
    double min;
    double max;
};

/// By data-type id from int8 (2) to uint32 (7).
constexpr IntegerRange RANGES[] = {{"int8_t", "Int8", -128.0, 127.0},
                                   {"uint8_t", "Uint8", 0.0, 255.0},
                                   {"int16_t", "Int16", -32768.0, 32767.0},
                                   {"uint16_t", "Uint16", 0.0, 65535.0},
                                   {"int32_t", "Int32", -2147483648.0, 2147483647.0},
                                   {"uint32_t", "Uint32", 0.0, 4294967295.0}};

const IntegerRange& rangeOf(int typeId)
{
    return RANGES[typeId - sysobj::DT_INT8];
}

std::string conversionName(const IntegerRange& range, bool isFromSingle)
{
    return std::string(isFromSingle ? "singleTo" : "realTo") + range.name;
}

/// A device may have single precision only, so a single value is compared as it is. There the bound below the smallest
/// int32_t rounds to that number itself, which is also what the helper gives for it.
void writeConversion(Lines& lines, int typeId, bool isFromSingle)
{
    const IntegerRange& range = rangeOf(typeId);
    const CG::Type* const from = isFromSingle ? CG::singleT() : CG::doubleT();
    lines.comment(fmt::format("The value truncated to {}; out of range or not a number: the most negative {}.", range.cType,
                              range.cType));
    lines.openFunction(fmt::format("static {} {}({} value)", range.cType, conversionName(range, isFromSingle),
                                   isFromSingle ? "float" : "double"));
    lines.open(fmt::format("if (value > {} && value < {})", literalText(from, range.min - 1.0),
                           literalText(from, range.max + 1.0)));
    lines.line(fmt::format("return ({})value;", range.cType));
    lines.close();
    lines.line(fmt::format("return {};", literalText(CG::GetCGType(typeId), range.min)));
    lines.close();
    lines.blank();
}

void writeInclude(Lines& lines, const std::string& header)
{
    lines.raw("#include " + (header.front() == '<' ? header : "\"" + header + "\""));
    for (const RuntimeHeader& runtime : RUNTIME_HEADERS) {
        if (header != runtime.name)
            continue;
        lines.raw(fmt::format("#if {} != {}", runtime.versionMacro, runtime.version));
        lines.raw(fmt::format("#error \"{} has another version: generate this file again\"", header));
        lines.raw("#endif");
    }
}

void writePlatformMacro(Lines& lines, const PlatformFcn& fcn)
{
    if (!lines.isEmpty())
        lines.blank();
    lines.comment(fcn.meaning);
    lines.raw(fmt::format("#ifndef {}", fcn.macro));
    lines.raw(fmt::format("#include {}", fcn.header));
    lines.raw(fcn.definition);
    lines.raw("#endif");
}

void writeComplexType(Lines& lines, const char* part, const char* name)
{
    lines.open("typedef struct");
    lines.line(std::string(part) + " re;");
    lines.line(std::string(part) + " im;");
    lines.close(std::string(" ") + name + ";");
    lines.blank();
}

}  // namespace

Unit::Unit()
{
    for (const IntegerRange& range : RANGES)
        for (const bool isFromSingle : {false, true})
            names.take(conversionName(range, isFromSingle));
}

std::string Unit::typeName(const CG::Type* type)
{
    const std::string name = cTypeName(type);
    needsComplexD = needsComplexD || name == "complexD";
    needsComplexR = needsComplexR || name == "complexR";
    return name;
}

std::string Unit::conversion(const CG::Type* from, const CG::Type* to)
{
    const int typeId = CG::base_type(to)->typeId;
    const bool isFromSingle = CG::SingleType::isa(from);
    conversions.insert({typeId, isFromSingle});
    return conversionName(rangeOf(typeId), isFromSingle);
}

std::string Unit::platformMacro(const std::string& name)
{
    platformFcns.insert(name);
    return findPlatformFcn(name)->macro;
}

bool isPlatformFcn(const std::string& name)
{
    return findPlatformFcn(name) != nullptr;
}

Lines complexTypes(const Unit& unit)
{
    Lines lines;
    if (unit.needsComplexD)
        writeComplexType(lines, "double", "complexD");
    if (unit.needsComplexR)
        writeComplexType(lines, "float", "complexR");
    return lines;
}

Lines unitHead(const Unit& unit, const std::vector<std::string>& headers, bool hasOwnTypes)
{
    Lines lines;
    if (unit.needsMath)
        lines.raw("#include <math.h>");
    for (const std::string& header : headers) {
        const bool isWithMacro = std::any_of(PLATFORM_FCNS.begin(), PLATFORM_FCNS.end(),
                                             [&header](const PlatformFcn& fcn) { return header == fcn.header; });
        if (!isWithMacro && header != "<math.h>")
            writeInclude(lines, header);
    }
    for (const PlatformFcn& fcn : PLATFORM_FCNS)
        if (unit.platformFcns.count(fcn.name) != 0)
            writePlatformMacro(lines, fcn);
    if (!lines.isEmpty())
        lines.blank();
    if (hasOwnTypes)
        lines.append(complexTypes(unit));
    for (const auto& [typeId, isFromSingle] : unit.conversions)
        writeConversion(lines, typeId, isFromSingle);
    return lines;
}

}  // namespace blockhost::c99
