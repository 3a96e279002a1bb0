// Lines: the text of a C file under construction, with indentation and with long lines broken.
#pragma once

#include <string>

namespace blockhost::c99 {

class Lines {
public:
    /// A statement or declaration at the present depth. Beyond 120 columns it goes on in the next line at a space.
    void line(const std::string& text);
    /// A line as it is, at the left margin.
    void raw(const std::string& text) { mText += text + "\n"; }
    void blank() { mText += "\n"; }
    /// Sentences as one comment, in as many lines as they need. A line feed in the text starts a new line.
    void comment(const std::string& text);
    /// A line with a comment behind it, or before it when both are too long for one line.
    void lineWithComment(const std::string& text, const std::string& note);
    /// "head {", and what follows is one step deeper.
    void open(const std::string& head) { line(head.empty() ? "{" : head + " {"); ++mDepth; }
    /// The first line of a function, and its brace.
    void openFunction(const std::string& head) { line(head); line("{"); ++mDepth; }
    /// "}" with what follows it in the line.
    void close(const std::string& tail = "") { --mDepth; line("}" + tail); }
    /// "} else {"
    void otherwise(const std::string& head) { --mDepth; line("} " + head + " {"); ++mDepth; }
    void append(const Lines& other) { mText += other.mText; }

    const std::string& text() const noexcept { return mText; }
    bool isEmpty() const noexcept { return mText.empty(); }

private:
    std::string indent() const { return std::string(static_cast<std::size_t>(4 * mDepth), ' '); }

    std::string mText;
    int mDepth = 0;
};

}  // namespace blockhost::c99
