#pragma once

#include <string>

#include "tests/support/whole_request.h"

/// Requests for a composite about topics "a", "b" and "c".
namespace marrowpress {

inline const std::string kEndOfDita = "</dita>";

/// A topic of the output: its number and its title, and what is nested in it.
inline std::string taken(int id, const std::string& title, const std::string& nested = {}) {
    return "<topic id=\"id-" + std::to_string(id) + "\"><title>" + title + "</title>" + nested +
           "</topic>";
}

class CompositeRequestTest : public WholeRequestTest {
protected:
    CompositeRequestTest() {
        std::filesystem::create_directories(folder.path() / "out");
        for (const char* name : {"a", "b", "c"}) {
            folder.write(std::string(name) + ".dita", topic(name));
        }
    }

    /// Publishes `rootMap`; what stands in the composite behind its first topic.
    std::string publish(const std::string& rootMap) {
        folder.write("root.ditamap", rootMap);
        EXPECT_EQ(status(publishComposite(composite())), 0);
        const std::string text = written("out/book.dita");
        const std::size_t behind = text.find("</topic>") + 8;
        title = text.substr(0, behind);
        return text.substr(behind);
    }

    std::string title;  ///< the start of the composite, up to the end of its first topic
};

}  // namespace marrowpress
