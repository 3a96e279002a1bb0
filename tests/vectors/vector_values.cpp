#include "vector_values.h"

#include <algorithm>
#include <cstdlib>
#include <sstream>

namespace {

double hexValue(const Json& text)
{
    const std::string hex = text.get<std::string>();
    char* end = nullptr;
    const double value = std::strtod(hex.c_str(), &end);
    if (hex.empty() || *end != '\0') throw std::runtime_error("not a hexadecimal number: " + hex);
    return value;
}

bool isSame(double a, double b)
{
    return a == b || (std::isnan(a) && std::isnan(b));
}

}  // namespace

void CaseCheck::compareReals(const Json& expect, const char* field, const std::vector<double>& got)
{
    if (!expect.contains(field)) return;
    const Json& hex = expect[field].at("hex");
    std::vector<double> expected;
    if (hex.is_array()) {
        for (const Json& text : hex) expected.push_back(hexValue(text));
    } else {
        expected.push_back(hexValue(hex));
    }
    std::ostringstream text;
    text << mStep << field << std::hexfloat;
    if (expected.size() != got.size()) {
        text << ": " << got.size() << " values, expected " << expected.size();
        return fail(text.str());
    }
    for (std::size_t i = 0; i < got.size(); ++i) {
        if (isSame(got[i], expected[i])) continue;
        text << "[" << i << "]: got " << got[i] << ", expected " << expected[i];
        return fail(text.str());
    }
}

void CaseCheck::exact(const Json& expect, const char* field, const Json& got)
{
    if (!expect.contains(field) || expect[field].is_null() || expect[field] == got) return;
    fail(mStep + field + ": got " + got.dump() + ", expected " + expect[field].dump());
}

void CaseCheck::knowsAll(const Json& expect, std::initializer_list<const char*> fields)
{
    for (const auto& item : expect.items()) {
        if (std::find(fields.begin(), fields.end(), item.key()) == fields.end())
            fail(mStep + item.key() + ": a field that is not compared");
    }
}
