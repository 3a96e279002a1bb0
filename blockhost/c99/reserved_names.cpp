// The names that generated C must leave alone.
#include "names.h"

#include <algorithm>

namespace blockhost::c99 {

namespace {

const std::set<std::string> KEYWORDS = {
    // C99
    "auto", "break", "case", "char", "const", "continue", "default", "do", "double", "else", "enum", "extern", "float", "for",
    "goto", "if", "inline", "int", "long", "register", "restrict", "return", "short", "signed", "sizeof", "static", "struct",
    "switch", "typedef", "union", "unsigned", "void", "volatile", "while",
    // C++17
    "alignas", "alignof", "and", "and_eq", "asm", "bitand", "bitor", "bool", "catch", "char16_t", "char32_t", "class", "compl",
    "const_cast", "constexpr", "decltype", "delete", "dynamic_cast", "explicit", "export", "false", "friend", "mutable",
    "namespace", "new", "noexcept", "not", "not_eq", "nullptr", "operator", "or", "or_eq", "private", "protected", "public",
    "reinterpret_cast", "static_assert", "static_cast", "template", "this", "thread_local", "throw", "true", "try", "typeid",
    "typename", "using", "virtual", "wchar_t", "xor", "xor_eq",
};

/// Functions of <math.h> for double; those for float and long double end with f and l.
const std::set<std::string> MATH_FUNCTIONS = {
    "acos", "acosh", "asin", "asinh", "atan", "atan2", "atanh", "cbrt", "ceil", "copysign", "cos", "cosh", "erf", "erfc", "exp",
    "exp2", "expm1", "fabs", "fdim", "floor", "fma", "fmax", "fmin", "fmod", "frexp", "hypot", "ilogb", "ldexp", "lgamma",
    "llrint", "llround", "log", "log10", "log1p", "log2", "logb", "lrint", "lround", "modf", "nan", "nearbyint", "nextafter",
    "nexttoward", "pow", "remainder", "remquo", "rint", "round", "scalbln", "scalbn", "sin", "sinh", "sqrt", "tan", "tanh",
    "tgamma", "trunc",
};

/// The rest of <stdlib.h>, <time.h>, <math.h> and <stddef.h>, what programs around generated code meet of <stdio.h> and
/// <string.h>, and names without a header.
const std::set<std::string> LIBRARY_NAMES = {
    "CLOCKS_PER_SEC", "EOF", "EXIT_FAILURE", "EXIT_SUCCESS", "FILE", "HUGE_VAL", "HUGE_VALF", "INFINITY", "M_E", "M_PI",
    "NAN", "NULL", "RAND_MAX", "abort", "abs", "asctime", "atexit", "atof", "atoi", "atol", "atoll", "bsearch", "calloc",
    "clock", "clock_t", "ctime", "difftime", "div", "div_t", "double_t", "errno", "exit", "float_t", "fpclassify", "free",
    "getenv", "gmtime", "isfinite", "isgreater", "isinf", "isless", "isnan", "isnormal", "labs", "ldiv", "llabs", "lldiv",
    "localtime", "main", "malloc", "math_errhandling", "mblen", "memchr", "memcmp", "memcpy", "memmove", "memset", "mktime",
    "offsetof", "printf", "ptrdiff_t", "puts", "qsort", "rand", "realloc", "signbit", "size_t", "snprintf", "srand", "stderr",
    "stdin", "stdout", "strcmp", "strcpy", "strftime", "strlen", "strtod", "strtof", "strtol", "strtoul", "system", "time",
    "time_t", "tm",
};

const std::set<std::string> RUNTIME_NAMES = {
    "NQZEL_SVD_D", "NQZEL_SVD_R", "NQZEL_IS_FINITE_D", "NQZEL_IS_FINITE_R", "NQZEL_IS_LITTLE_ENDIAN", "ZELSVD_RT_VERSION", "ESTTFORM_RAND", "ESTTFORM_SRAND", "ESTTFORM_CLOCK", "complexD",
    "complexR",
};

bool isMathFunction(const std::string& name)
{
    if (MATH_FUNCTIONS.count(name) != 0)
        return true;
    const bool hasSuffix = name.size() > 1 && (name.back() == 'f' || name.back() == 'l');
    return hasSuffix && MATH_FUNCTIONS.count(name.substr(0, name.size() - 1)) != 0;
}

/// int8_t, uint_fast32_t, INT32_MAX, UINT8_C and the like.
bool isFixedWidthName(const std::string& name)
{
    const auto startsWith = [&name](const char* prefix) { return name.rfind(prefix, 0) == 0; };
    const auto endsWith = [&name](const std::string& suffix) {
        return name.size() >= suffix.size() && name.compare(name.size() - suffix.size(), suffix.size(), suffix) == 0;
    };
    if (startsWith("int") || startsWith("uint"))
        return endsWith("_t");
    return (startsWith("INT") || startsWith("UINT")) && (endsWith("_MAX") || endsWith("_MIN") || endsWith("_C"));
}

}  // namespace

bool isReservedName(const std::string& name)
{
    const bool belongsToCompiler = name.size() > 1 && name[0] == '_' && (name[1] == '_' || (name[1] >= 'A' && name[1] <= 'Z'));
    return belongsToCompiler || KEYWORDS.count(name) != 0 || LIBRARY_NAMES.count(name) != 0 || RUNTIME_NAMES.count(name) != 0
           || isMathFunction(name) || isFixedWidthName(name);
}

}  // namespace blockhost::c99
