#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace moktextool {

/// The options of a subcommand: it reads them from a command line by CLI11 and describes them in a help text.
///
/// Options are `--name VALUE`, `--name=VALUE`, `-n VALUE` or `-nVALUE`; short options without a value may be joined (`-ab`). In
/// long names upper and lower case, `_` and `-`, `color` and `colour` are the same. `--` ends the options; `-` is an argument.
/// The names of an option are given as "-n,--name,--other"; messages call it by the first long one. An option whose help is "" is
/// not listed: the footer explains it.
class Command {
public:
    using Take = std::function<void(const std::string& value)>;

    /// @param usage        the arguments, a line for each way to give them
    /// @param description  what the command does, in lines of text
    /// @param examples     command lines without "moktex" and the name
    Command(std::string commandName, std::vector<std::string> usage, std::string description, std::vector<std::string> examples);

    /// An option without a value; it sets `target`.
    void addFlag(const std::string& names, bool& target, const std::string& help);
    void addFlag(const std::string& names, std::function<void()> take, const std::string& help);
    /// An option with a value, which `take` gets each time that it is given.
    void addValue(const std::string& names, const std::string& operand, Take take, const std::string& help);
    /// An option with a value; the last one given counts.
    void addText(const std::string& names, const std::string& operand, std::optional<std::string>& target,
                 const std::string& help);
    /// An option with a whole number below 2^32.
    void addNumber(const std::string& names, std::optional<std::uint32_t>& target, const std::string& help);
    /// An option whose value counts only if it is joined by '=' or is a number; `take` gets `missing` where there is none.
    void addOptionalNumber(const std::string& names, const std::string& missing, Take take, const std::string& help);
    /// An option whose value is one of a few names, each with what it selects. Upper and lower case are the same.
    void addChoice(const std::string& names, const std::vector<std::pair<std::string, std::function<void()>>>& choices,
                   const std::string& help);
    template <class Target, class Value>
    void addChoice(const std::string& names, Target& target, const std::vector<std::pair<std::string, Value>>& values,
                   const std::string& help);

    /// Text at the end of the help.
    void setFooter(std::string text) { footer = std::move(text); }

    /// Takes all options. Throws a Failure for the first one that is unknown, or lacks its value, or has one that it cannot have.
    /// @return the arguments that are not options, in order
    std::vector<std::string> parse(const std::vector<std::string>& arguments) const;

    /// Usage, description, examples, options and footer.
    std::string help() const;

    const std::string name;

private:
    enum class ValueRule { none, joined, required };
    struct Option {
        std::vector<std::string> names;
        std::string operand, help;
        ValueRule value;
        Take take;
        std::string missing;  ///< what `take` gets without a value

        const std::string& longName() const;
    };

    const Option* find(const std::string& given) const;
    [[noreturn]] void refuseUnknown(const std::string& given) const;
    [[noreturn]] void refuseMissingValue(const Option& option) const;
    void takeValue(const Option& option, const std::string& value) const;
    bool normalise(std::string& argument, const std::string& next) const;

    const std::vector<std::string> usageLines;
    const std::string description;
    const std::vector<std::string> examples;
    std::vector<Option> options;
    std::string footer;
};

template <class Target, class Value>
void Command::addChoice(const std::string& names, Target& target, const std::vector<std::pair<std::string, Value>>& values,
                        const std::string& help) {
    std::vector<std::pair<std::string, std::function<void()>>> choices;
    for (const auto& [choice, value] : values)
        choices.emplace_back(choice, [&target, chosen = value] { target = chosen; });
    addChoice(names, choices, help);
}

}  // namespace moktextool
