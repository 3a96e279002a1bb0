/* Runtime of generated code: the order of bytes in memory. C99 and C++. */
#ifndef ZELENDIAN_RT_H
#define ZELENDIAN_RT_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/** 1 on a machine that stores the least significant byte of a number first, else 0. */
int32_t NQZEL_IS_LITTLE_ENDIAN(void);

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
