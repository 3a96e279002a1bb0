// OrbSimCommon: the host's helper functions for blocks. Parameter registration and checks, type checks, reports.
// A function that returns false has reported the reason itself; the block returns from its callback at once.
#pragma once

#include "block_messages.h"
#include "block_types.h"

namespace OrbSimCommon {

using sysobj::SysObjAdaptorSFun;

/// Product that a block belongs to, as the check functions take it.
constexpr int PRODUCT_BLOCKS = 1;

/// Direction of a port in a type check.
enum PortDirection : int { PORT_IN = 0, PORT_OUT = 1 };

// ---- Reports  [any callback; host thread]

/// Records an error of the instance. The first one stays pending until the host takes it; the callback must return.
void dspError(SysObjAdaptorSFun* S, const resource_core::BaseMsgID& message) noexcept;
/// Records a warning for the instance whose callback is running; execution goes on. Allocates nothing.
void dspWarning(const resource_core::BaseMsgID& message) noexcept;

// ---- Parameters

/// Declares the number of dialog parameters.  [in mdlInitializeSizes; host thread]
/// @return false if the instance was given another number of values; the reason is recorded
bool registerSFunctionParams(SysObjAdaptorSFun* S, int num) noexcept;
/// A popup parameter's value must be a whole number from lowest to highest.  [in mdlCheckParameters; host thread]
bool dspIsPopupParamValid(SysObjAdaptorSFun* S, int idx, int lowest, int highest) noexcept;
/// A checkbox parameter's value must be 0 or 1.  [in mdlCheckParameters; host thread]
bool dspIsCheckboxParamValid(SysObjAdaptorSFun* S, int idx) noexcept;

/// Checks a numeric dialog parameter against configured rules and reports a violation.  [in mdlCheckParameters; host thread]
class dspParamCheckerID {
public:
    /// Which numbers are admitted.
    enum NumericClass : int { WHOLE_NUMBERS = 1, REAL_NUMBERS = 2 };
    /// How the value is compared with the bounds. The bounds themselves are admitted.
    enum RangeKind : int { AT_LEAST_LOWER = 5, BETWEEN_LOWER_AND_UPPER = 8 };

    explicit dspParamCheckerID(int product) noexcept;

    /// 1: the value must be real (not complex).
    void setRealOnly(int isOn) noexcept;
    /// 1: the value must be a scalar.
    void setScalarOnly(int isOn) noexcept;
    void setNumericClass(int numericClass) noexcept;
    void setRangeKind(int rangeKind) noexcept;
    /// Bounds are given for integer and for real parameter values.
    void setLowerBound(int bound, double realBound) noexcept;
    void setUpperBound(int bound, double realBound) noexcept;

    /// Checks dialog parameter idx.
    /// @param paramName       catalogue fragment that names the parameter in the message
    /// @param errorMode       0: report through the instance's error status
    /// @param checkCondition  0: check always
    /// @return false after reporting the violation. NaN violates every range; infinity is not a whole number.
    bool check(SysObjAdaptorSFun* S, int idx, const resource_core::BaseMsgID& paramName, int errorMode,
               int checkCondition) const noexcept;

private:
    int mProduct;
    int mIsRealOnly = 0;
    int mIsScalarOnly = 0;
    int mNumericClass = REAL_NUMBERS;
    int mRangeKind = 0;
    double mLowerBound = 0.0;
    double mUpperBound = 0.0;
};

// ---- Port attributes still open  [propagation callbacks; host thread]

/// True while a size of the input port is not known.
bool isInputDynamicallySized(SysObjAdaptorSFun* S, int port) noexcept;
/// True while the port's data type is not set.
bool isInputDynamicallyTyped(SysObjAdaptorSFun* S, int port) noexcept;
bool isOutputDynamicallyTyped(SysObjAdaptorSFun* S, int port) noexcept;

/// Whether a block supports the data type that is offered to a port.
///
/// @param direction  PORT_IN or PORT_OUT
/// @param portName   name of the port in the report
/// @param typeMask   bit i admits data-type id i
/// @param options    0
/// @return false after reporting an unsupported type
bool dspIsDataTypeSupported(SysObjAdaptorSFun* S, int typeId, int product, int direction, const char* portName,
                            std::uint32_t typeMask, int options) noexcept;

// ---- Code generation

class BuildInfo;

/// Registers headers and sources of a module that the generated code is built with. The same module is kept once.
/// [in mdlVektCG; host thread]
///
/// @param info              from CGIR_Block_IF::GetBuildInfo
/// @param group, module     names under which the host's runtime library keeps the files
/// @param headers, sources  file names with extension; each list ends with null
/// @param libraries, options  lists that end with null; empty for a module of sources
void modifyBuildInfo(BuildInfo* info, const char* group, const char* module, const char* const* headers,
                     const char* const* sources, const char* const* libraries, const char* const* options) noexcept;

}  // namespace OrbSimCommon
