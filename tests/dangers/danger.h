#pragma once

#include <sys/types.h>

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/current_folder.h"
#include "tests/support/texts.h"
#include "tests/support/whole_request.h"

/// Requests about what strangers may have written, and a topic that must not suffer from it.
namespace marrowpress {

/// The mode of what a test makes without a stream.
inline constexpr mode_t kOwnerOnly = 0600;

/// `href` as a reference of a map, of any tag.
std::string reference(std::string_view tag, std::string_view href);

/// `text` with the class values that its DTD would give to the elements of a map.
std::string withClasses(std::string text);

/// `text` with the characters that an attribute in quotes can't hold escaped.
std::string escaped(std::string_view text);

/// A client attached to a host of its own, a folder with the topic "beside.dita" in it, and the
/// folder "out", which is the current one.
class DangerTest : public WholeRequestTest {
protected:
    DangerTest();

    /// Writes "root.ditamap", which refers to what stands in `content` and to "beside.dita" behind
    /// it.
    void writeMap(std::string_view content = {}) const;

    /// Publishes the composite of `params`, and gives its status. Fails where that takes long.
    std::int32_t publish(const boost::json::object& params);
    std::int32_t publish() { return publish(composite()); }

    /// Whether the output has the topic "beside.dita", whole, in its last place.
    bool isBesideWhole() const;

    /// Whether a run has left nothing of what it used for itself.
    bool isTidy() const;

    /// The path of the file that the host knows for a public identifier.
    std::map<std::string, std::string, std::less<>> pathsByPublicId;
    /// Seconds that a request may take.
    int mostSeconds = 20;

private:
    StandInHostOptions resolving();

    CurrentFolder currentFolder_;
};

}  // namespace marrowpress
