/* Runtime of generated code: what the singular value decomposition asks about the values of both precisions. */
#include "zelsvd_rt.h"

#include "zelendian_rt.h"

#include <string.h>

/* Exponent fields of IEEE 754, all ones in infinity and NaN; of a double in its more significant word. */
#define EXPONENT_D 0x7FF00000U
#define EXPONENT_R 0x7F800000U

int32_t NQZEL_IS_FINITE_D(double value)
{
    uint32_t words[2]; /* no 64-bit integer, which a small compiler may lack */
    memcpy(words, &value, sizeof(words));
    return (words[NQZEL_IS_LITTLE_ENDIAN()] & EXPONENT_D) != EXPONENT_D ? 1 : 0;
}

int32_t NQZEL_IS_FINITE_R(float value)
{
    uint32_t word;
    memcpy(&word, &value, sizeof(word));
    return (word & EXPONENT_R) != EXPONENT_R ? 1 : 0;
}
