#include "check/child_output.h"

#include <unistd.h>

namespace esttform::check {

namespace {

constexpr int READ_MAX_NUM = 64;                         // at a time, from one who may print without end
constexpr std::size_t KEPT_MAX_NUM = 1 << 16;

/// The line that holds a word, from the word on.
std::string lineFrom(const std::string& text, const std::string& word)
{
    const std::size_t begin = text.find(word);
    return begin == std::string::npos ? "" : text.substr(begin, text.find('\n', begin) - begin);
}

}  // namespace

bool ChildOutput::takeFrom(int file)
{
    char bytes[4096];
    ssize_t num = 1;
    for (int i = 0; i < READ_MAX_NUM && num > 0; ++i) {
        num = read(file, bytes, sizeof bytes);
        if (num <= 0)
            break;
        mText.append(bytes, static_cast<std::size_t>(num));
        if (mText.size() > 2 * KEPT_MAX_NUM)
            mText.erase(0, mText.size() - KEPT_MAX_NUM);
    }
    return num != 0;
}

std::string ChildOutput::summary() const
{
    for (const char* const word : {"SUMMARY: ", "runtime error: ", "terminate called "})
        if (const std::string line = lineFrom(mText, word); !line.empty())
            return line;
    return "";
}

}  // namespace esttform::check
