#include "options/config_file.h"

#include "failure.h"
#include "matches/line_reader.h"
#include "number_text.h"
#include "options/option_pages.h"

#include <fmt/format.h>

#include <algorithm>
#include <memory>
#include <set>
#include <string_view>
#include <utility>

namespace esttform::app {

namespace {

const char* const SPACE = " \t\r";
const char* const VALUE_EXPECTED = "expected a text in quotes, a number, true, false, or a list of these in [] on one line";

/// Takes tokens off the front of one line. Every failure is a text without the place, which the caller knows.
class LineScanner {
public:
    explicit LineScanner(std::string_view line) : mRest(line) { skipSpace(); }

    bool isAtEnd() const noexcept { return mRest.empty() || mRest.front() == '#'; }
    bool take(char c)
    {
        if (mRest.empty() || mRest.front() != c)
            return false;
        mRest.remove_prefix(1);
        skipSpace();
        return true;
    }
    /// A bare key or section: letters, digits, '-' and '_'; empty if there is none.
    std::string takeKey()
    {
        const auto isPart = [](char c) {
            return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == '_';
        };
        const auto end = std::find_if_not(mRest.begin(), mRest.end(), isPart);
        return takeNum(static_cast<std::size_t>(end - mRest.begin()));
    }
    std::string takeScalar()
    {
        if (!mRest.empty() && (mRest.front() == '"' || mRest.front() == '\''))
            return takeQuoted(mRest.front());
        const std::string word = takeNum(std::min(mRest.size(), mRest.find_first_of(" \t\r,]#")));
        if (word != "true" && word != "false" && !parseReal(word))
            throw Failure(fmt::format("got {}, {}", inQuotes(word), VALUE_EXPECTED));
        return word;
    }
    std::vector<std::string> takeValue()
    {
        if (!take('['))
            return {takeScalar()};
        std::vector<std::string> values;
        while (!take(']')) {
            values.push_back(takeScalar());
            if (!take(',') && (mRest.empty() || mRest.front() != ']'))
                throw Failure("list without its end, expected , or ] on the same line");
        }
        return values;
    }

private:
    void skipSpace() { mRest.remove_prefix(std::min(mRest.size(), mRest.find_first_not_of(SPACE))); }
    std::string takeNum(std::size_t num)
    {
        const std::string taken(mRest.substr(0, num));
        mRest.remove_prefix(num);
        skipSpace();
        return taken;
    }
    /// A text in double quotes, with escapes, or in single ones, without.
    std::string takeQuoted(char quote)
    {
        std::string text;
        for (std::size_t i = 1; i < mRest.size(); ++i) {
            if (mRest[i] == quote) {
                takeNum(i + 1);
                return text;
            }
            if (quote == '"' && mRest[i] == '\\') {
                const std::string_view escapes = "\"\\nt", meanings = "\"\\\n\t";
                const std::size_t escapeIdx = ++i < mRest.size() ? escapes.find(mRest[i]) : std::string_view::npos;
                if (escapeIdx == std::string_view::npos)
                    throw Failure("text with an unknown \\, expected \\\\, \\\", \\n or \\t; single quotes take \\ as it is");
                text += meanings[escapeIdx];
            } else {
                text += mRest[i];
            }
        }
        throw Failure(fmt::format("text without its second {}", quote));
    }

    std::string_view mRest;
};

CLI::App& commandOf(CLI::App& app, const std::string& name)
{
    std::string names;
    for (CLI::App* const command : commandsOf(app)) {
        if (command->get_name() == name)
            return *command;
        names += (names.empty() ? "" : ", ") + command->get_name();
    }
    throw Failure(fmt::format("section {}: no such command, expected one of {}", inQuotes(name), names));
}

CLI::Option& optionOf(CLI::App& command, const std::string& key)
{
    CLI::Option* option = command.get_option_no_throw("--" + key);
    if (option == nullptr) {
        option = command.get_option_no_throw(key);
        if (option != nullptr && !option->get_positional())
            option = nullptr;
    }
    if (option == nullptr || !option->get_configurable())
        throw Failure(fmt::format("'esttform {}' has no option of this name; its --help lists them", command.get_name()));
    return *option;
}

/// Refuses what the option would refuse on the command line.
void checkValues(CLI::Option& option, const std::vector<std::string>& values)
{
    if (option.get_expected_max() == 0 && (values.size() != 1 || (values[0] != "true" && values[0] != "false")))
        throw Failure(fmt::format("got {}, expected true or false", values.empty() ? "[]" : inQuotes(values[0])));
    if (values.empty() || (values.size() > 1 && option.get_expected_max() == 1 && option.get_items_expected_max() == 1 &&
                           option.get_delimiter() == '\0'))
        throw Failure(fmt::format("got {} values, expected one", values.size()));
    for (int i = 0;; ++i) {
        const CLI::Validator* validator = nullptr;
        try {
            validator = option.get_validator(i);
        } catch (const CLI::OptionNotFound&) {           // how the library says that there is no further one
            return;
        }
        for (std::string value : values) {
            const std::string refusal = (*validator)(value);
            if (!refusal.empty())
                throw Failure(refusal);
        }
    }
}

/// True if the command line says the same thing by another option, which wins as the same option would.
bool isOverruled(const CLI::App& command, const std::string& key)
{
    constexpr std::pair<const char*, const char*> ALTERNATIVES[] = {
        {"threshold", "threshold-px"}, {"refine", "no-refine"}, {"diagnose", "no-diagnose"}};
    for (const auto& [one, other] : ALTERNATIVES)
        for (const auto& [inFile, given] : {std::pair{one, other}, std::pair{other, one}}) {
            const CLI::Option* const option = command.get_option_no_throw(std::string("--") + given);
            if (key == inFile && option != nullptr && option->count() > 0)
                return true;
        }
    return false;
}

}  // namespace

std::vector<CLI::ConfigItem> ConfigFile::from_config(std::istream&) const
{
    LineReader reader(mApp.get_config_ptr()->as<std::string>());   // with its limits, which the stream has not
    std::vector<CLI::ConfigItem> values;
    std::set<std::pair<std::string, std::string>> seen;
    CLI::App* command = nullptr;
    std::string_view line;
    std::string key;
    while (reader.next(line)) {
        key.clear();
        try {
            LineScanner scanner(line);
            if (scanner.isAtEnd())
                continue;
            if (scanner.take('[')) {
                command = &commandOf(mApp, scanner.takeKey());
                if (!scanner.take(']') || !scanner.isAtEnd())
                    throw Failure("more than a section's name, expected [COMMAND]");
                continue;
            }
            key = scanner.takeKey();
            if (key.empty() || !scanner.take('='))
                throw Failure(key.empty() ? "expected [COMMAND] or OPTION = VALUE" : "no =, expected OPTION = VALUE");
            if (command == nullptr)
                throw Failure("outside a section, expected a line like [estimate] above it");
            CLI::Option& option = optionOf(*command, key);
            CLI::ConfigItem item;
            item.parents = {command->get_name()};
            item.name = key;
            item.inputs = scanner.takeValue();
            if (!scanner.isAtEnd())
                throw Failure("more than one value behind the =; a list is in []");
            checkValues(option, item.inputs);
            if (!seen.emplace(command->get_name(), key).second)
                throw Failure("given twice");
            if (!isOverruled(*command, key))
                values.push_back(item);
        } catch (const Failure& e) {
            throw Failure(fmt::format("{}: {}{}{}", reader.place(), key, key.empty() ? "" : ": ", e.what()));
        }
    }
    return values;
}

void addConfigOption(CLI::App& app)
{
    app.set_config("--config", "", "TOML file with values of options that the command line does not give: a section "
                                   "[COMMAND], below it lines like threshold-px = 2 or no-refine = true")
        ->type_name("FILE");
    app.config_formatter(std::make_shared<ConfigFile>(app));
    app.fallthrough();
}

}  // namespace esttform::app
