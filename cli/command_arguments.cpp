#include "cli/command_arguments.h"

#include <algorithm>
#include <boost/algorithm/string/join.hpp>

#include "findings/nearest.h"

namespace marrowpress {
namespace {

/// Behind an unknown name: "; did you mean `that`?"
std::string suggestion(const std::string& name, const std::vector<std::string>& names) {
    const std::optional<std::string> nearest = nearestName(name, names);
    return nearest ? "; did you mean `" + *nearest + "`?" : "";
}

/// Each name of each option, with its dashes.
std::vector<std::string> optionNames(const CLI::App& app) {
    std::vector<std::string> names;
    for (const CLI::Option* const option : app.get_options()) {
        for (const std::string& name : option->get_lnames()) {
            names.push_back("--" + name);
        }
        for (const std::string& name : option->get_snames()) {
            names.push_back("-" + name);
        }
    }
    return names;
}

bool isFlag(const CLI::App& app, const std::string& name) {
    const CLI::Option* const option = app.get_option_no_throw(name);
    return option && option->get_items_expected_max() == 0;
}

}  // namespace

std::string unknownValueText(const std::string& kind, const std::string& value,
                             const std::vector<std::string>& known) {
    const std::string near = suggestion(value, known);
    return "unknown " + kind + " `" + value + "`" +
           (near.empty() ? "; known: " + boost::algorithm::join(known, ", ") : near);
}

CLI::Option& CommandArguments::addText(const std::string& names, std::string& target,
                                       const std::string& description,
                                       const std::string& placeholder) {
    const auto assign = [&target](const std::string& value) {
        target = value;
        return std::nullopt;
    };
    CLI::Option& option = add(names, false, assign, description, placeholder);
    option.default_str(target);
    return option;
}

CLI::Option& CommandArguments::addText(const std::string& names, std::optional<std::string>& target,
                                       const std::string& description,
                                       const std::string& placeholder) {
    const auto assign = [&target](const std::string& value) {
        target = value;
        return std::nullopt;
    };
    return add(names, false, assign, description, placeholder);
}

CLI::Option& CommandArguments::addList(const std::string& names, std::vector<std::string>& target,
                                       const std::string& description,
                                       const std::string& placeholder) {
    const auto append = [&target](const std::string& value) {
        target.push_back(value);
        return std::nullopt;
    };
    return add(names, true, append, description, placeholder);
}

CLI::Option& CommandArguments::addList(
    const std::string& names, std::function<std::optional<std::string>(const std::string&)> take,
    const std::string& description, const std::string& placeholder) {
    return add(names, true, std::move(take), description, placeholder);
}

CLI::Option& CommandArguments::addFlag(const std::string& names, bool& target,
                                       const std::string& description) {
    return *app_.add_flag(names, target, description)->disable_flag_override();
}

CLI::Option& CommandArguments::add(const std::string& names, bool isList, Take take,
                                   const std::string& description, const std::string& placeholder) {
    // The library only collects. `take` looks at what it collected.
    CLI::Option* const option = app_.add_option(
        names, CLI::callback_t([](const CLI::results_t&) { return true; }), description);
    option->type_name(placeholder)->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    arguments_.push_back({option, isList, std::move(take)});
    return *option;
}

std::vector<std::string> CommandArguments::choicesOf(const CLI::Option& option) const {
    const auto known = choices_.find(&option);
    return known == choices_.end() ? std::vector<std::string>() : known->second;
}

void CommandArguments::setChoices(const CLI::Option& option, std::vector<std::string> choices) {
    choices_.insert_or_assign(&option, std::move(choices));
}

std::optional<std::string> CommandArguments::takeAll(const Argument& argument) {
    const std::vector<std::string> values = argument.option->results();
    const std::string name = argument.option->get_name();
    if (!argument.isList && values.size() > 1) {
        return name + ": is given more than once";
    }
    for (const std::string& value : values) {
        const std::optional<std::string> fault =
            value.empty() ? std::optional<std::string>("is empty") : argument.take(value);
        if (fault) {
            return name + ": " + *fault;
        }
    }
    return std::nullopt;
}

std::optional<std::string> CommandArguments::take() const {
    for (const Argument& argument : arguments_) {
        if (std::optional<std::string> fault = takeAll(argument)) {
            return fault;
        }
    }
    return std::nullopt;
}

std::string CommandArguments::describe(const CLI::ParseError& error,
                                       const std::vector<std::string>& arguments) const {
    if (dynamic_cast<const CLI::ArgumentMismatch*>(&error)) {
        return describeMismatch(arguments);
    }
    // What is missing was perhaps misspelled.
    return describeUnknown().value_or(describeMissing());
}

std::optional<std::string> CommandArguments::describeUnknown() const {
    std::vector<std::string> rest = app_.remaining();
    std::erase(rest, "--");
    if (rest.empty()) {
        return std::nullopt;
    }
    const auto option = std::find_if(rest.begin(), rest.end(), [](const std::string& argument) {
        return argument.size() > 1 && argument.front() == '-';
    });
    if (option == rest.end()) {
        return "there is no place for the argument `" + rest.front() + "`";
    }
    const std::string name = option->substr(0, option->find('='));
    return "unknown option `" + name + "`" + suggestion(name, optionNames(app_));
}

std::string CommandArguments::describeMissing() const {
    for (const CLI::Option* const option : app_.get_options()) {
        if (option->get_required() && option->count() == 0) {
            return option->get_name() + " is required";
        }
    }
    return "these arguments make no sense together";
}

std::string CommandArguments::describeMismatch(const std::vector<std::string>& arguments) const {
    for (const std::string& argument : arguments) {
        const std::size_t equals = argument.find('=');
        if (equals == std::string::npos || !isFlag(app_, argument.substr(0, equals))) {
            continue;
        }
        return argument.substr(0, equals) + ": takes no value";
    }
    // The library takes what follows an option for its value, and so nothing follows.
    return arguments.back() + ": its value is missing";
}

}  // namespace marrowpress
