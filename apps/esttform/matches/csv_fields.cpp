#include "matches/csv_fields.h"

#include <new>

namespace esttform::app {

namespace {

/// Where the parser's callbacks put what they get.
struct FieldSink {
    std::vector<std::string>& fields;
    std::size_t fieldNum = 0;
    std::size_t rowNum = 0;
};

void takeField(void* text, std::size_t size, void* data)
{
    FieldSink& sink = *static_cast<FieldSink*>(data);
    if (sink.fieldNum == sink.fields.size())
        sink.fields.emplace_back();
    sink.fields[sink.fieldNum++].assign(static_cast<const char*>(text), size);
}

void takeRowEnd(int, void* data)
{
    ++static_cast<FieldSink*>(data)->rowNum;
}

}  // namespace

char findSeparator(std::string_view line) noexcept
{
    std::size_t commaNum = 0, tabNum = 0, semicolonNum = 0;
    bool isQuoted = false;
    for (const char c : line) {
        if (c == '"')
            isQuoted = !isQuoted;
        if (isQuoted)
            continue;
        commaNum += c == ',' ? 1 : 0;
        tabNum += c == '\t' ? 1 : 0;
        semicolonNum += c == ';' ? 1 : 0;
    }
    if (tabNum > commaNum && tabNum >= semicolonNum)
        return '\t';
    return semicolonNum > commaNum ? ';' : ',';
}

CsvSplitter::CsvSplitter(char separator)
{
    if (csv_init(&mParser, CSV_STRICT | CSV_STRICT_FINI) != 0)
        throw std::bad_alloc();
    csv_set_delim(&mParser, static_cast<unsigned char>(separator));
}

CsvSplitter::~CsvSplitter()
{
    csv_free(&mParser);
}

const char* CsvSplitter::split(std::string_view line, std::vector<std::string>& fields)
{
    FieldSink sink{fields};
    const bool isParsed = csv_parse(&mParser, line.data(), line.size(), takeField, takeRowEnd, &sink) == line.size()
                          && csv_fini(&mParser, takeField, takeRowEnd, &sink) == 0;
    fields.resize(sink.fieldNum);
    if (!isParsed) {
        if (csv_error(&mParser) == CSV_ENOMEM)
            throw std::bad_alloc();
        return "a quote is misplaced or not closed, expected quotes around whole fields, closed on the same line";
    }
    if (sink.rowNum > 1)
        return "carriage return within the line, expected lines that end in LF or CRLF";
    return nullptr;
}

std::string csvField(std::string_view text)
{
    if (text.find_first_of(",\"\r\n") == std::string_view::npos && (text.empty() || (text.front() != ' ' && text.back() != ' ')))
        return std::string(text);
    std::string field(2 * text.size() + 2, '\0');
    field.resize(csv_write(field.data(), field.size(), text.data(), text.size()));
    return field;
}

std::string csvRow(const std::vector<std::string>& fields)
{
    std::string row;
    for (const std::string& field : fields) {
        if (&field != fields.data())
            row += ',';
        row += csvField(field);
    }
    return row;
}

}  // namespace esttform::app
