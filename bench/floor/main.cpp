#include <exception>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>

#include "bench/floor/engine_run.h"
#include "bench/floor/source_list.h"

namespace {

constexpr int kFailure = 1;
constexpr int kUsage = 2;

void run(const char* listPath, const char* outputPath) {
    std::ifstream lines(listPath);
    if (!lines) {
        throw std::runtime_error(std::string("the list can't be read: ") + listPath);
    }
    const marrowpress::bench::SourceList list = marrowpress::bench::readSourceList(lines);
    const marrowpress::bench::EngineCounts counts = marrowpress::bench::runEngine(list, outputPath);
    std::cout << "{\"documents\": " << counts.documents << ", \"topics\": " << counts.topics
              << ", \"unread\": " << counts.unread << "}\n";
}

}  // namespace

/// marrowpress_floor LIST OUTPUT: what the engine alone needs for a publication.
int main(int argumentCount, char** arguments) try {
    if (argumentCount != 3) {
        std::cerr << "marrowpress_floor: usage: marrowpress_floor LIST OUTPUT\n";
        return kUsage;
    }
    run(arguments[1], arguments[2]);
    return 0;
} catch (const std::exception& failure) {
    std::cerr << "marrowpress_floor: " << failure.what() << '\n';
    return kFailure;
}
