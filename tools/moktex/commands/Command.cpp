// The only file that includes CLI11, which is slow to compile.

#include "moktex/commands/Command.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <sstream>

#include "moktex/report/console.h"
#include "moktex/report/spelling.h"

namespace moktextool {

namespace {

constexpr std::size_t helpColumn = 30;

std::vector<std::string> split(const std::string& text, char separator) {
    std::vector<std::string> parts;
    std::istringstream stream(text);
    for (std::string part; std::getline(stream, part, separator);)
        parts.push_back(part);
    return parts;
}

/// A long option in the one spelling that names are stored in.
std::string canonicalName(const std::string& given) {
    if (!given.starts_with("--")) return given;
    std::string name = lowerCase(given);
    std::replace(name.begin(), name.end(), '_', '-');
    for (std::size_t at = name.find("color"); at != std::string::npos; at = name.find("color", at))
        name.replace(at, 5, "colour");
    return name;
}

bool isNumber(const std::string& text) {
    return !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
}

}  // namespace

const std::string& Command::Option::longName() const {
    const auto found = std::find_if(names.begin(), names.end(), [](const std::string& each) { return each.starts_with("--"); });
    return found != names.end() ? *found : names.front();
}

Command::Command(std::string commandName, std::vector<std::string> usage, std::string text, std::vector<std::string> lines)
    : name(std::move(commandName)), usageLines(std::move(usage)), description(std::move(text)), examples(std::move(lines)) {}

void Command::addFlag(const std::string& names, bool& target, const std::string& help) {
    addFlag(
        names, [&target] { target = true; }, help);
}

void Command::addFlag(const std::string& names, std::function<void()> take, const std::string& help) {
    options.push_back(
        {split(names, ','), "", help, ValueRule::none, [take = std::move(take)](const std::string&) { take(); }, ""});
}

void Command::addValue(const std::string& names, const std::string& operand, Take take, const std::string& help) {
    options.push_back({split(names, ','), ' ' + operand, help, ValueRule::required, std::move(take), ""});
}

void Command::addText(const std::string& names, const std::string& operand, std::optional<std::string>& target,
                      const std::string& help) {
    addValue(
        names, operand, [&target](const std::string& value) { target = value; }, help);
}

void Command::addNumber(const std::string& names, std::optional<std::uint32_t>& target, const std::string& help) {
    const std::string option = split(names, ',').front();
    const auto take = [&target, option](const std::string& value) {
        const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), target.emplace());
        if (!isNumber(value) || error != std::errc())
            throw Failure(ExitStatus::commandLine, option + ' ' + value + ": no number; use 0, 1, 2 and so on");
    };
    addValue(names, "N", take, help);
}

void Command::addOptionalNumber(const std::string& names, const std::string& missing, Take take, const std::string& help) {
    options.push_back({split(names, ','), "[=N]", help, ValueRule::joined, std::move(take), missing});
}

void Command::addChoice(const std::string& names, const std::vector<std::pair<std::string, std::function<void()>>>& choices,
                        const std::string& help) {
    std::string all;
    for (const auto& [choice, select] : choices)
        all += (all.empty() ? "" : "|") + choice;
    const auto take = [choices, all, option = split(names, ',').front()](const std::string& value) {
        const auto found = std::find_if(choices.begin(), choices.end(),
                                        [wanted = lowerCase(value)](const auto& choice) { return choice.first == wanted; });
        if (found == choices.end())
            throw Failure(ExitStatus::commandLine, option + ' ' + value + ": no such choice; use one of " + all);
        found->second();
    };
    addValue(names, all, take, help);
}

const Command::Option* Command::find(const std::string& given) const {
    const std::string wanted = canonicalName(given);
    const auto found = std::find_if(options.begin(), options.end(), [&](const Option& option) {
        return std::find(option.names.begin(), option.names.end(), wanted) != option.names.end();
    });
    return found != options.end() ? &*found : nullptr;
}

void Command::refuseUnknown(const std::string& given) const {
    std::vector<std::string> longNames;
    for (const Option& option : options)
        std::copy_if(option.names.begin(), option.names.end(), std::back_inserter(longNames),
                     [](const std::string& each) { return each.starts_with("--"); });
    const std::string dashed = given.starts_with("--") ? given : '-' + given;
    const std::string nearest = nearestName(canonicalName(dashed), longNames);
    throw Failure(ExitStatus::commandLine, given + ": no such option; " +
                                               (nearest.empty() ? "" : "did you mean " + nearest + "? ") + "'moktex help " +
                                               name + "' lists the options");
}

/// Gives the option its value. An option in its place means that the value was forgotten.
void Command::takeValue(const Option& option, const std::string& value) const {
    const bool mayBeDashed = option.operand.find("|-") != std::string::npos;
    if (value.starts_with("--") || (find(value) != nullptr && !mayBeDashed)) refuseMissingValue(option);
    option.take(value);
}

void Command::refuseMissingValue(const Option& option) const {
    throw Failure(ExitStatus::commandLine, option.longName() + ": its value is missing; use " + option.longName() +
                                               option.operand + ", 'moktex help " + name + "' explains it");
}

/// Converts an option to the spelling that the parser accepts: canonical names, and an optional number joined by '='.
/// @param next the argument after it
/// @return whether `next` has become part of it
bool Command::normalise(std::string& argument, const std::string& next) const {
    const bool isLong = argument.starts_with("--");
    if (!isLong && argument.size() > 2 && find('-' + argument) != nullptr) refuseUnknown(argument);
    const std::string given = isLong ? argument.substr(0, argument.find('=')) : argument.substr(0, 2);
    const Option* option = find(given);
    if (option == nullptr) return false;
    std::string value = argument.substr(given.size());
    if (isLong && !value.empty() && option->value == ValueRule::none)
        throw Failure(ExitStatus::commandLine, argument + ": the option has no value; leave out " + value);
    if (value == "=") refuseMissingValue(*option);
    if (value.starts_with('=')) value.erase(0, 1);
    const bool takesNext = option->value == ValueRule::joined && given == argument && isNumber(next);
    if (takesNext) value = next;
    const bool joins = isLong || (option->value == ValueRule::joined && isNumber(value)) || option->value == ValueRule::required;
    if (joins) argument = option->longName() + (value.empty() ? "" : '=' + value);
    return takesNext;
}

std::vector<std::string> Command::parse(const std::vector<std::string>& arguments) const {
    CLI::App parser;
    parser.set_help_flag();
    parser.allow_extras();
    for (const Option& option : options) {
        std::string names;
        for (const std::string& each : option.names)
            names += (names.empty() ? "" : ",") + each + (option.value == ValueRule::joined ? '{' + option.missing + '}' : "");
        CLI::Option& parsed = *(option.value == ValueRule::required ? parser.add_option(names) : parser.add_flag(names));
        parsed.trigger_on_parse()->each([this, &option](const std::string& value) { takeValue(option, value); });
    }

    const auto end = std::find(arguments.begin(), arguments.end(), "--");
    std::vector<std::string> words;
    for (auto at = arguments.begin(); at != end; ++at) {
        words.push_back(*at);
        const std::string next = at + 1 != end ? at[1] : "";
        if (at->starts_with('-') && normalise(words.back(), next)) ++at;
    }
    std::reverse(words.begin(), words.end());  // CLI11 takes them from the back
    const std::string last = words.empty() ? "" : words.front();
    try {
        parser.parse(std::move(words));
    } catch (const CLI::ArgumentMismatch&) {  // the last option has no value
        const Option* option = find(last);
        refuseMissingValue(option != nullptr ? *option : *find({'-', last.back()}));
    }
    std::vector<std::string> others = parser.remaining();
    for (const std::string& each : others)
        if (each.size() > 1 && each.starts_with('-')) refuseUnknown(each.substr(0, each.find('=')));
    if (end != arguments.end()) others.insert(others.end(), end + 1, arguments.end());
    if (std::find(others.begin(), others.end(), "") != others.end())
        throw Failure(ExitStatus::commandLine, name + ": a file's name is empty; check where it comes from");
    return others;
}

std::string Command::help() const {
    std::string text;
    for (const std::string& usage : usageLines)
        text += (text.empty() ? "Usage: moktex " : "       moktex ") + name + ' ' + usage + '\n';
    text += '\n' + description + "\n\nExamples:\n";
    for (const std::string& example : examples)
        text += "  moktex " + name + (example.empty() ? "" : ' ' + example) + '\n';
    text += "\nOptions:\n";
    for (const Option& option : options) {
        if (option.help.empty()) continue;
        std::string line = "  ";
        for (const std::string& each : option.names)
            line += (line.size() > 2 ? ", " : "") + each;
        line += option.operand;
        const bool fits = line.size() + 2 <= helpColumn;
        text += line + (fits ? std::string(helpColumn - line.size(), ' ') : '\n' + std::string(helpColumn, ' ')) +
                wrappedText(option.help, helpColumn) + '\n';
    }
    return text + (footer.empty() ? "" : "\n" + footer);
}

}  // namespace moktextool
