#pragma once

#include <gtest/gtest.h>

#include <boost/json/object.hpp>
#include <functional>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "host/stand_in_host.h"
#include "host/trace.h"
#include "tests/support/temporary_folder.h"

/// Requests as the application sends them, about files that a test writes.
namespace marrowpress {

/// An element of a map: its tag with the class value that its DTD would give it.
std::string map(std::string_view content, std::string_view attributes = {});
std::string topicref(std::string_view attributes, std::string_view content = {});
std::string topichead(std::string_view attributes, std::string_view content = {});
std::string mapref(std::string_view attributes, std::string_view content = {});

/// A topic document with that id, whose title is the id.
std::string topic(std::string_view id, std::string_view body = {});

/// A client attached to a host of its own, and a folder for the files of the requests.
class WholeRequestTest : public testing::Test {
protected:
    WholeRequestTest() : WholeRequestTest(StandInHostOptions()) {}
    /// To a host that has what `options` say besides. It finds no DTDs unless they say how.
    explicit WholeRequestTest(StandInHostOptions options);

    /// The parameters of a request about "root.ditamap" into the folder, to be changed at will.
    boost::json::object flatBook() const;
    boost::json::object composite() const;

    TypedValues publishFlatBook(const boost::json::object& params);
    TypedValues publishComposite(const boost::json::object& params);

    /// The answer to a request that is `text` as it stands.
    TypedValues sendText(const std::string& text);

    /// `text` with the folder as "$F" and generated ids as "id-1", "id-2", in their order.
    std::string neutral(std::string_view text) const;
    /// The text of a file, neutral and without XML declaration and doctype.
    std::string written(std::string_view name) const;
    /// The paths of all files and folders, relative, in their order, each with a blank behind it.
    std::string tree() const;
    /// The paths of the components in an answer, neutral, each with a blank behind it.
    std::string components(const TypedValues& answer) const;
    static std::int32_t status(const TypedValues& answer);

    TemporaryFolder folder;
    std::string console;   ///< the report lines, neutral
    std::string progress;  ///< the progress lines
    std::ostringstream operations;
    /// Gets each line, of either kind and as it came, while the request runs.
    std::function<void(const std::string&)> watch;

private:
    TypedValues send(std::string_view type, const boost::json::object& params);
    StandInHostOptions completed(StandInHostOptions options);

    Trace trace_{operations};
    StandInHost host_;
};

}  // namespace marrowpress
