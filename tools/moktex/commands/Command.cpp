#include "moktex/commands/Command.h"

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

/// Gives an option the next argument as its value. An option there means that the value was forgotten.
/// @return the index of the last argument used
std::size_t Command::takeNext(const Option& option, const std::vector<std::string>& arguments, std::size_t at) const {
    const std::string next = at + 1 < arguments.size() ? arguments[at + 1] : "--";
    const bool mayBeDashed = option.operand.find("|-") != std::string::npos;
    if (next.starts_with("--") || (find(next) != nullptr && !mayBeDashed))
        throw Failure(ExitStatus::commandLine, option.longName() + ": its value is missing; use " + option.longName() +
                                                   option.operand + ", 'moktex help " + name + "' explains it");
    option.take(next);
    return at + 1;
}

/// Takes the long option at `at`. @return the index of the last argument used
std::size_t Command::takeLong(const std::vector<std::string>& arguments, std::size_t at) const {
    const std::string& argument = arguments[at];
    const std::size_t equals = argument.find('=');
    const bool hasValue = equals != std::string::npos;
    const Option* option = find(argument.substr(0, equals));
    if (option == nullptr) refuseUnknown(argument.substr(0, equals));
    if (hasValue && option->value == ValueRule::none)
        throw Failure(ExitStatus::commandLine, argument + ": the option has no value; leave out " + argument.substr(equals));
    if (!hasValue && option->value == ValueRule::required) return takeNext(*option, arguments, at);
    const bool isNext =
        !hasValue && option->value == ValueRule::joined && at + 1 < arguments.size() && isNumber(arguments[at + 1]);
    option->take(hasValue ? argument.substr(equals + 1) : isNext ? arguments[at + 1] : option->missing);
    return at + (isNext ? 1 : 0);
}

/// Takes the short options that are joined in the argument at `at`. @return the index of the last argument used
std::size_t Command::takeShort(const std::vector<std::string>& arguments, std::size_t at) const {
    const std::string& argument = arguments[at];
    if (argument.size() > 2 && find('-' + argument) != nullptr) refuseUnknown(argument);
    for (std::size_t i = 1; i < argument.size(); ++i) {
        const Option* option = find({'-', argument[i]});
        if (option == nullptr) refuseUnknown(argument);
        const std::size_t start = i + 1 < argument.size() && argument[i + 1] == '=' ? i + 2 : i + 1;
        const std::string rest = argument.substr(start);
        const bool isJoined = start == i + 2 || isNumber(rest);
        if (option->value == ValueRule::required && rest.empty()) return takeNext(*option, arguments, at);
        if (option->value == ValueRule::required || (option->value == ValueRule::joined && isJoined)) {
            option->take(rest);
            return at;
        }
        const bool isNext =
            option->value == ValueRule::joined && rest.empty() && at + 1 < arguments.size() && isNumber(arguments[at + 1]);
        option->take(isNext ? arguments[at + 1] : option->missing);
        if (isNext) return at + 1;
    }
    return at;
}

std::vector<std::string> Command::parse(const std::vector<std::string>& arguments) const {
    std::vector<std::string> others;
    bool areOptions = true;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (areOptions && argument == "--")
            areOptions = false;
        else if (argument.empty())
            throw Failure(ExitStatus::commandLine, name + ": a file's name is empty; check where it comes from");
        else if (!areOptions || argument.size() < 2 || argument[0] != '-')
            others.push_back(argument);
        else
            i = argument[1] == '-' ? takeLong(arguments, i) : takeShort(arguments, i);
    }
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
