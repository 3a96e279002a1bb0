/* Estimates the shift and rotation between two frames of a device: the generated code in a program without files, memory
   allocation and a random generator of the C library. */
#include "device_port.h"
#include "tform.h"

#include <stdio.h>

/* In the memory of the device, not on its stack. */
static tform_Model model;
static uint32_t randomState = 1U;

int32_t deviceRand(void)
{
    randomState ^= randomState << 13;
    randomState ^= randomState >> 17;
    randomState ^= randomState << 5;
    return (int32_t)(randomState & 32767U);
}

void deviceSeed(uint32_t seed)
{
    randomState = seed | 1U; /* never 0 */
}

uint32_t deviceTicks(void)
{
    return 42U; /* a real device reads a timer */
}

/* Corners that the device tracked from one frame to the next: x1, y1, x2, y2. The fifth was mistaken for another. */
static const int16_t MATCHES[][4] = {{100, 100, 96, 107}, {500, 100, 496, 107}, {500, 400, 496, 407},
                                     {100, 400, 96, 407}, {300, 250, 410, 90},  {200, 300, 196, 307}};

int main(void)
{
    const int32_t num = (int32_t)(sizeof MATCHES / sizeof MATCHES[0]);
    int32_t i;

    tform_start(&model);
    for (i = 0; i < num; i++) { /* points in columns: x and y of each point */
        model.Pts1[2 * i] = MATCHES[i][0];
        model.Pts1[2 * i + 1] = MATCHES[i][1];
        model.Pts2[2 * i] = MATCHES[i][2];
        model.Pts2[2 * i + 1] = MATCHES[i][3];
    }
    model.Pts1Dims[1] = num; /* 2-by-num */
    model.Pts2Dims[1] = num;
    if (tform_step(&model) != tform_OK) {
        return 2; /* the sizes do not fit together, or too few points */
    }
    for (i = 0; i < num; i++) {
        putchar(model.Inlier[i] ? '1' : '0');
    }
    /* TForm is 2-by-3, column by column: the shift is the last column. */
    printf(" shift (%.2f, %.2f)\n", (double)model.TForm[4], (double)model.TForm[5]);
    return 0;
}
