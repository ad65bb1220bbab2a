#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace marrowpress {

/// What an argument may be, and what it stands for; in the order in which it is shown.
template <class Value>
using Choices = std::vector<std::pair<std::string, Value>>;

/// The sentence about `value`, which is not one of `known`: with the nearest of them, or with all
/// when none is near.
std::string unknownValueText(const std::string& kind, const std::string& value,
                             const std::vector<std::string>& known);

/// The arguments of one command. What is wrong with them is said in our words, never in those of
/// the library that reads them.
///
/// All targets must outlive it, and so must `app`; they are filled by `take`. What an option's
/// target holds before is what its help gives as the default.
class CommandArguments {
public:
    explicit CommandArguments(CLI::App& app) : app_(app) {}

    /// Arguments with one value, which may be given once and not be empty. `names` are as the
    /// library takes them: "-o,--output" for an option, "MAP" for an argument without a name.
    CLI::Option& addText(const std::string& names, std::string& target,
                         const std::string& description, const std::string& placeholder);
    CLI::Option& addText(const std::string& names, std::optional<std::string>& target,
                         const std::string& description, const std::string& placeholder);

    /// An option that may be given several times, with one value each.
    CLI::Option& addList(const std::string& names, std::vector<std::string>& target,
                         const std::string& description, const std::string& placeholder);

    /// As above; `take` gets each value, and gives the sentence about what is wrong with it.
    CLI::Option& addList(const std::string& names,
                         std::function<std::optional<std::string>(const std::string&)> take,
                         const std::string& description, const std::string& placeholder);

    CLI::Option& addFlag(const std::string& names, bool& target, const std::string& description);

    /// An option whose value is one of `choices`; `kind` says what it is: "format".
    template <class Value>
    CLI::Option& addChoice(const std::string& names, const std::string& kind, Value& target,
                           const Choices<Value>& choices, const std::string& description,
                           const std::string& placeholder);

    /// The words that `option`, one of these, is given; empty when it is not given words of a list.
    std::vector<std::string> choicesOf(const CLI::Option& option) const;

    /// Says which words `option`, one of these, is given.
    void setChoices(const CLI::Option& option, std::vector<std::string> choices);

    /// Fills the targets. The sentence about the first argument that is wrong; empty when all are
    /// right.
    [[nodiscard]] std::optional<std::string> take() const;

    /// The sentence about what was missing or too much when the library gave up. `arguments` are
    /// those of the whole command line.
    std::string describe(const CLI::ParseError& error,
                         const std::vector<std::string>& arguments) const;

private:
    using Take = std::function<std::optional<std::string>(const std::string&)>;

    struct Argument {
        CLI::Option* option;
        bool isList;
        Take take;
    };

    CLI::Option& add(const std::string& names, bool isList, Take take,
                     const std::string& description, const std::string& placeholder);
    static std::optional<std::string> takeAll(const Argument& argument);

    std::optional<std::string> describeUnknown() const;
    std::string describeMissing() const;
    std::string describeMismatch(const std::vector<std::string>& arguments) const;

    CLI::App& app_;
    std::vector<Argument> arguments_;
    std::map<const CLI::Option*, std::vector<std::string>> choices_;
};

template <class Value>
CLI::Option& CommandArguments::addChoice(const std::string& names, const std::string& kind,
                                         Value& target, const Choices<Value>& choices,
                                         const std::string& description,
                                         const std::string& placeholder) {
    std::string usual;
    std::vector<std::string> known;
    for (const auto& [name, value] : choices) {
        if (value == target) {
            usual = name;
        }
        known.push_back(name);
    }
    const auto choose = [&target, choices, kind, known](const std::string& text) {
        for (const auto& [name, value] : choices) {
            if (name == text) {
                target = value;
                return std::optional<std::string>();
            }
        }
        return std::optional(unknownValueText(kind, text, known));
    };
    CLI::Option& option = add(names, false, choose, description, placeholder);
    option.default_str(usual);
    setChoices(option, std::move(known));
    return option;
}

}  // namespace marrowpress
