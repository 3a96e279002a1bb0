/* What generated code takes from a device without rand, srand and clock. Included before tform.c is compiled. */
#ifndef DEVICE_PORT_H
#define DEVICE_PORT_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Random numbers from 0 to 32767: xorshift (Marsaglia, Journal of Statistical Software 2003). */
int32_t deviceRand(void);
void deviceSeed(uint32_t seed);
/* Ticks since the device was switched on. */
uint32_t deviceTicks(void);

#ifdef __cplusplus
}
#endif

#define ESTTFORM_RAND() deviceRand()
#define ESTTFORM_SRAND(seed) deviceSeed(seed)
#define ESTTFORM_CLOCK() deviceTicks()

#endif
