#include "text.h"

#include <algorithm>
#include <vector>

namespace blockhost::c99 {

namespace {

constexpr std::size_t COLUMN_NUM = 120;

/// Where to break a text that is longer than the room: at the last space that the room holds, else at the next one.
std::size_t spaceToBreakAt(const std::string& text, std::size_t begin, std::size_t room)
{
    const std::size_t last = text.rfind(' ', begin + room);
    return last != std::string::npos && last > begin ? last : text.find(' ', begin + room);
}

/// The same in C: behind a comma or in front of && or || if the second half of the room has one.
std::size_t codeToBreakAt(const std::string& text, std::size_t begin, std::size_t room)
{
    std::size_t best = 0;
    for (std::size_t i = begin + room / 2; i <= begin + room; ++i) {
        const bool isBehindComma = text[i] == ' ' && text[i - 1] == ',';
        const bool isBeforeOperator = text.compare(i, 3, " &&") == 0 || text.compare(i, 3, " ||") == 0;
        best = isBehindComma || isBeforeOperator ? i : best;
    }
    return best != 0 ? best : spaceToBreakAt(text, begin, room);
}

/// Text broken at spaces; the first line has room for `first` columns, the others for `rest`.
template <typename Where>
std::vector<std::string> broken(const std::string& text, std::size_t first, std::size_t rest, Where where)
{
    std::vector<std::string> parts;
    std::size_t begin = 0;
    std::size_t room = first;
    while (text.size() - begin > room) {
        const std::size_t end = where(text, begin, room);
        if (end == std::string::npos)
            break;
        parts.push_back(text.substr(begin, end - begin));
        begin = end + 1;
        room = rest;
    }
    parts.push_back(text.substr(begin));
    return parts;
}

/// The text without what would begin or end a comment.
std::string forComment(std::string text)
{
    for (std::size_t i = 0; i + 1 < text.size(); ++i)
        if ((text[i] == '*' && text[i + 1] == '/') || (text[i] == '/' && text[i + 1] == '*'))
            text.insert(i + 1, " ");
    return text;
}

}  // namespace

void Lines::line(const std::string& text)
{
    const std::string margin = indent();
    const std::vector<std::string> parts = broken(text, COLUMN_NUM - margin.size(), COLUMN_NUM - margin.size() - 4, codeToBreakAt);
    for (std::size_t i = 0; i < parts.size(); ++i)
        mText += margin + (i > 0 ? "    " : "") + parts[i] + "\n";
}

void Lines::comment(const std::string& text)
{
    const std::string margin = indent();
    const std::string content = forComment(text);
    if (content.find('\n') == std::string::npos && margin.size() + content.size() + 6 <= COLUMN_NUM) {
        mText += margin + "/* " + content + " */\n";
        return;
    }
    mText += margin + "/*\n";
    const std::size_t room = COLUMN_NUM - margin.size() - 3;
    for (std::size_t begin = 0; begin <= content.size();) {
        const std::size_t end = std::min(content.find('\n', begin), content.size());
        for (const std::string& part : broken(content.substr(begin, end - begin), room, room, spaceToBreakAt))
            mText += margin + (part.empty() ? " *" : " * ") + part + "\n";
        begin = end + 1;
    }
    mText += margin + " */\n";
}

void Lines::lineWithComment(const std::string& text, const std::string& note)
{
    if (note.empty()) {
        line(text);
        return;
    }
    const std::string whole = indent() + text + " /* " + forComment(note) + " */";
    if (whole.size() <= COLUMN_NUM) {
        mText += whole + "\n";
        return;
    }
    comment(note);
    line(text);
}

}  // namespace blockhost::c99
