// The block's ports: which output port is which, the rule that sizes must follow, and setting sizes for a point count.
#pragma once

#include "block_types.h"

/// Output ports by kind. Which exist, and at which port, says outputPortIndex.
enum OutputPort : int {
    TFORM_PORT = 0,
    INLIER_PORT = 1,
    OUTPUT_PORT_NUM = 2,  ///< the number of output ports, and of kinds
};

constexpr int POINT_PORT_NUM = 2;  ///< Pts1 and Pts2, the input ports

/// Port of an output kind, NONE when the settings do not bring it about; for OUTPUT_PORT_NUM the number of output ports.
int outputPortIndex(sysobj::SysObjAdaptorSFun* S, OutputPort kind);

/// The size rule of both point inputs: two coordinates a point, at least one minimal sample, equal counts.
///
/// @param r1, c1, r2, c2  rows and columns of Pts1 and of Pts2
///
/// Reports at most one error: pts1Pts2NotMx2 or pts1Pts2Not2xN, pts1OrPts2TooSmall, pts1AndPts2SizesDiffer.
/// [propagation and mdlOutputs; host thread]
void checkPtsSizes(sysobj::SysObjAdaptorSFun* S, int r1, int c1, int r2, int c2);

/// Gives both point inputs and the inlier output their sizes for a point count; stops at the first refusal.
/// [propagation; host thread]
///
/// @param ptsNum  number of point pairs
/// @param record  size of the inlier output; null: ptsNum-by-1 for points in rows, else 1-by-ptsNum
void setPortSizes(sysobj::SysObjAdaptorSFun* S, int ptsNum, const sysobj::DimsInfo_tag* record);
