// Failure: how a part of the program ends a run with a message and an exit code.
// The exit codes are a contract with scripts; main.cpp prints the message and returns the code.
#pragma once

#include <stdexcept>
#include <string>

namespace esttform::app {

enum class ExitCode : int {
    Done = 0,
    NothingFound = 1,  ///< every step ended without a transformation
    CheckFailed = 1,   ///< a check of a block failed
    Differs = 1,       ///< results that were compared lie apart by more than the tolerance
    BadInput = 2,      ///< wrong usage, unreadable or wrong input, output that cannot be written
    NoBlock = 3,       ///< the block could not be loaded
    OurFault = 4,      ///< a fault of this system
    Interrupted = 130, ///< ended by Ctrl-C or a signal like it
};

/// Ends the run. what() is one line without the program's name: where, what was found, what was expected.
class Failure : public std::runtime_error {
public:
    explicit Failure(const std::string& text, ExitCode code = ExitCode::BadInput)
        : std::runtime_error(text), mCode(code) {}
    ExitCode code() const noexcept { return mCode; }

private:
    ExitCode mCode;
};

/// The reader of standard output is gone: nobody is left to tell, so the run ends without a message.
class ClosedPipe : public Failure {
public:
    ClosedPipe() : Failure("standard output: closed by its reader") {}
};

}  // namespace esttform::app
