// Types that a block and its host exchange: the block handle, data-type ids, dimension records and modes.
// Everything here is plain data; the host owns what a pointer refers to unless stated.
#pragma once

#include "interface_version.h"

#include <cstdint>

namespace sysobj {

/// One block instance, as the host knows it. Opaque: a block only passes it back.
class SysObjAdaptorSFun;

/// One dialog parameter value of a block instance. Opaque: read it with bhGetArrayReal.
class yrArray;

/// Data-type ids of ports, work vectors, run-time parameters and IR variables.
enum DataTypeId : int {
    DT_UNSET = -1,  ///< settled by propagation
    DT_DOUBLE = 0,
    DT_SINGLE = 1,
    DT_INT8 = 2,
    DT_UINT8 = 3,
    DT_INT16 = 4,
    DT_UINT16 = 5,
    DT_INT32 = 6,
    DT_UINT32 = 7,
    DT_BOOLEAN = 8,
};

/// Whether a port keeps one size or has a current size, within its dimensions, at every step.
enum DimensionsMode : int {
    DIMS_MODE_UNSET = -1,  ///< settled by propagation
    DIMS_MODE_FIXED = 0,
    DIMS_MODE_VARIABLE = 1,
};

/// A size, or a dimension count, that is not known yet.
constexpr int DIMS_UNKNOWN = -1;

/// Size of a port. Whoever passes a record keeps it and its sizes alive for the duration of the call.
struct DimsInfo_tag {
    int width;        ///< element count, DIMS_UNKNOWN while a size is
    int numDims;      ///< number of entries of dims, DIMS_UNKNOWN for a fully dynamic port
    const int* dims;  ///< sizes, outermost stride last (rows, columns); null for a fully dynamic port
};

}  // namespace sysobj
