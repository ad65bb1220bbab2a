#include "cli/text_table.h"

#include <algorithm>
#include <string_view>

#include "findings/characters.h"

namespace marrowpress {
namespace {

std::string csvCell(const std::string& cell) {
    if (cell.find_first_of(",\"\r\n") == std::string::npos) {
        return cell;
    }
    std::string quoted = "\"";
    for (const char character : cell) {
        quoted.append(character == '"' ? 2 : 1, character);
    }
    return quoted + '"';
}

}  // namespace

void TextTable::add(const std::vector<std::string>& cells) {
    std::vector<std::string> row;
    row.reserve(cells.size());
    std::transform(cells.begin(), cells.end(), std::back_inserter(row),
                   [](const std::string& cell) { return cell.empty() ? "-" : shownText(cell); });
    rows_.push_back(std::move(row));
}

std::string TextTable::text() const {
    std::vector<std::size_t> widths(rows_.front().size());
    for (const std::vector<std::string>& row : rows_) {
        for (std::size_t column = 0; column < row.size(); ++column) {
            widths[column] = std::max(widths[column], cellsOf(row[column]));
        }
    }
    std::string text;
    for (const std::vector<std::string>& row : rows_) {
        for (std::size_t column = 0; column + 1 < row.size(); ++column) {
            constexpr std::size_t kGap = 2;
            text.append(row[column]).append(widths[column] - cellsOf(row[column]) + kGap, ' ');
        }
        text.append(row.back()).append("\n");
    }
    return text;
}

std::string csvLine(const std::vector<std::string>& cells) {
    std::string line;
    for (const std::string& cell : cells) {
        line.append(&cell == &cells.front() ? "" : ",").append(csvCell(cell));
    }
    return line + "\r\n";
}

}  // namespace marrowpress
