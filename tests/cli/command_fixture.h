#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "tests/cli/command_runner.h"
#include "tests/support/message_texts.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {

using Texts = std::vector<std::string>;

/// The lines as the command shows them.
std::string shownProgress(const Texts& lines);
std::string shownReport(std::string_view line);

/// What goes to standard error without the seconds of its last line.
std::string withoutTime(const std::string& text);

/// The built command on a map with two topics, and a catalog for the DTDs of all three.
///
/// The sources are in "docs"; the empty folder "out" is for what comes out of them.
class CommandTest : public testing::Test {
protected:
    CommandTest();

    /// The map, of nothing but `references`.
    void writeMap(const std::string& references) const;
    void writeTopic(const std::string& id, const std::string& text) const;

    CommandResult run(const Texts& arguments, const CommandSetting& setting = {}) const {
        return runCommand(folder_, arguments, setting);
    }

    /// `publish` of the map as a composite, with `more` behind the usual arguments.
    CommandResult publish(const Texts& more = {}, const CommandSetting& setting = {}) const;

    /// `check` of the map, with `more` behind the usual arguments.
    CommandResult check(const Texts& more = {}, const CommandSetting& setting = {}) const;

    /// The bodies of the topics in the output, in order.
    std::string bodiesOf(const std::string& name) const;

    /// A request for a composite.
    std::string request(const std::string& output) const;

    /// The lines of a trace that are not about property 89, which nothing depends on.
    Texts traceLines(const std::string& name) const;

    TemporaryFolder folder_;
};

}  // namespace marrowpress
