/* Runtime of generated code: the order of bytes in memory. */
#include "zelendian_rt.h"

int32_t NQZEL_IS_LITTLE_ENDIAN(void)
{
    const uint16_t one = 1U;
    return *(const unsigned char*)&one;
}
