// What the tests and the fake block agree on: its parameters and the faults that parameter 0 asks for.
#pragma once

namespace fake {

constexpr int FAULT_PARAM = 0;    ///< one of Fault, not tunable
constexpr int GAIN_PARAM = 1;     ///< 0 to 100 percent, tunable, run-time parameter GAIN_RTP
constexpr int CHECKBOX_PARAM = 2; ///< 0 or 1, not tunable
constexpr int COUNT_PARAM = 3;    ///< whole number of 0 or more, tunable, run-time parameter COUNT_RTP (uint32)
constexpr int PARAM_NUM = 4;

constexpr int SCRATCH_WIDTH = 3;

enum Fault : int {
    NONE,
    ERROR_IN_SIZES,
    ERROR_IN_CHECK,
    ERROR_IN_SAMPLE_TIMES,
    ERROR_IN_PROPAGATION,
    ERROR_IN_WORK_WIDTHS,
    ERROR_IN_START,
    ERROR_IN_OUTPUTS,
    ERROR_IN_PROCESS,
    WRITE_BEFORE_SCRATCH,
    WRITE_PAST_SCRATCH,
    WRITE_PAST_OUTPUT,
    LEAVE_SIZE_OPEN,
    LEAVE_TYPE_OPEN,
    SIZE_AFTER_TYPE,
    NO_MODE_CALLBACK,
    DECLARE_17_PARAMS,
    NO_INPUT_PORTS,
    NO_WORK_WIDTH,
    NO_WORK_NUM,
    NO_RTP_REGISTRATION,
    READ_MISSING_PARAM,
    READ_MISSING_PORT,
    READ_MISSING_RTP,
    BUFFER_TOO_EARLY,
    PORTS_TOO_LATE,
    THROW_IN_START,
    SIZE_BEYOND_BOUND,
    RULE_WITHOUT_LIST,
    RULE_OF_MINUS_ONE,
    WARN_THREE_TIMES,
    WARN_TWENTY_KINDS,
};

}  // namespace fake
