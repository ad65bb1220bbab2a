#include "results/result_json.h"
#include "tests/fuzz/fuzzing.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = marrowpress::inputText(data, size);
    try {
        const std::string once = marrowpress::resultText(marrowpress::parseResult(text));
        const std::string twice = marrowpress::resultText(marrowpress::parseResult(once));
        marrowpress::require(once == twice, "a result is read as it was written", once);
    } catch (const marrowpress::ResultError&) {
        // It counts as absent.
    }
    return 0;
}
