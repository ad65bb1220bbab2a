#include <algorithm>
#include <cctype>

#include "results/result_json.h"
#include "tests/fuzz/fuzzing.h"

namespace {

/// Whether a fraction may be in it. Boost writes all of these with an exponent and does not read
/// each exactly as it was written; what this program writes into requests and options has none.
bool mayHaveFraction(const std::string& text) {
    const auto found = std::adjacent_find(text.begin(), text.end(), [](char digit, char sign) {
        return std::isdigit(static_cast<unsigned char>(digit)) != 0 && sign == 'E';
    });
    return found != text.end();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = marrowpress::inputText(data, size);
    try {
        const std::string once = marrowpress::resultText(marrowpress::parseResult(text));
        const std::string twice = marrowpress::resultText(marrowpress::parseResult(once));
        marrowpress::require(once == twice || mayHaveFraction(once),
                             "a result is read as it was written", once);
    } catch (const marrowpress::ResultError&) {
        // It counts as absent.
    }
    return 0;
}
