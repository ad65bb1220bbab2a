#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cli/command_line.h"

namespace marrowpress {

using Texts = std::vector<std::string>;

/// The record of the wanted kind; the test fails, with the fault's text, when it is another.
template <class Record>
Record parseAs(const Texts& arguments) {
    const Options options = parseOptions(arguments);
    if (const auto* const record = std::get_if<Record>(&options)) {
        return *record;
    }
    const auto* const error = std::get_if<UsageError>(&options);
    ADD_FAILURE() << (error ? error->text : "another kind of command");
    return {};
}

/// The fault that the arguments have: the first line, without the command's name. The test fails
/// when that is not `command`, or when the second line does not point to its help.
inline std::string faultOf(const std::string& command, const Texts& arguments) {
    const std::string text = parseAs<UsageError>(arguments).text;
    const std::string name = command.empty() ? "marrowpress" : "marrowpress " + command;
    const std::string help = "\nRun `" + name + " --help` for help.\n";
    EXPECT_TRUE(text.starts_with(name + ": ")) << text;
    EXPECT_TRUE(text.ends_with(help)) << text;
    const std::size_t start = name.size() + 2;
    return text.size() < start + help.size()
               ? text
               : text.substr(start, text.size() - start - help.size());
}

}  // namespace marrowpress
