// ChildOutput: the end of what a process prints, kept for what a sanitizer says before it ends the process.
#pragma once

#include <string>

namespace esttform::check {

class ChildOutput {
public:
    /// Takes what is there to be read. @return false at the end of the file
    bool takeFrom(int file);
    /// A sanitizer's summary or error line; empty when none was printed.
    std::string summary() const;

private:
    std::string mText;
};

}  // namespace esttform::check
