#pragma once

#include <string>
#include <vector>

namespace marrowpress {

/// Rows of texts for people, as lines with the cells of each column below each other. What is from
/// outside is escaped, and the last column is as wide as it is.
class TextTable {
public:
    explicit TextTable(const std::vector<std::string>& headings) { add(headings); }

    /// `cells` are as many as the headings.
    void add(const std::vector<std::string>& cells);

    std::string text() const;

private:
    std::vector<std::vector<std::string>> rows_;  ///< As they are shown.
};

/// A record of comma-separated values, line end included. What needs quotes gets them.
std::string csvLine(const std::vector<std::string>& cells);

}  // namespace marrowpress
