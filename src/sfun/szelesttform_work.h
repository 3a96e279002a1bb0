// Work vectors and run-time parameters: their tables, and reading the run-time parameters' current values.
#pragma once

#include <cstdint>
#include <type_traits>

#include "block_work.h"
#include "szelesttform_params.h"

/// Work vectors by index. The last two exist only with robust estimation.
enum WorkVector : int {
    DW_PTSNORM1 = 0,
    DW_PTSNORM2 = 1,
    DW_FACTOR = 2,
    DW_SAMPLEIDX = 3,
    DW_BEST_SAMPLE = 4,
    DW_CONSTRAINT = 5,
    DW_CONSTRT_ALL = 6,
    DW_DISTANCE = 7,
    WORK_VECTOR_NUM = 8,
    WORK_VECTOR_NUM_NOT_ROBUST = 6,
};

/// Copies the run-time parameters' current values, each first updated from its dialog parameter.
/// [in mdlStart and mdlProcessParameters; host thread]
///
/// @tparam Tc              data type of TForm, in which all but the sample number are registered
/// @param maxSampleNum, confidence, disThr, breakPercentage  out; left alone when the parameter does not exist
template <typename Tc>
void readRunTimeParams(sysobj::SysObjAdaptorSFun* S, std::uint32_t& maxSampleNum, Tc& confidence, Tc& disThr,
                       Tc& breakPercentage)
{
    const auto read = [S](RunTimeParam kind, auto& destination) {
        const int idx = rtpIndex(S, kind);
        if (idx == NONE) return;
        sysobj::bhUpdateDlgParamAsRunTimeParam(S, idx);
        using Value = std::remove_reference_t<decltype(destination)>;
        destination = *static_cast<const Value*>(sysobj::GetRTPDataPtr(S, idx));
    };
    read(SAMPLENUM_RTP, maxSampleNum);
    read(CONFIDENCE_RTP, confidence);
    read(DIST_THR_RTP, disThr);
    read(BREAKPERCENTAGE_RTP, breakPercentage);
}

/// Run-time side of the inlier output's size rule: n-by-1 or 1-by-n for the current number of pairs.
/// [before mdlOutputs, once the input sizes of the step are known; host thread]
void inlierDimsFromInput(sysobj::SysObjAdaptorSFun* S, int outputPort);
/// The same rule stated to the code generator; inputPorts lists the rule's input ports.  [code generation; host thread]
void inlierDimsFromInputCG(sysobj::SysObjAdaptorSFun* S, CGIR_Block_IF* blockInterface, int outputPort,
                           const int* inputPorts);
