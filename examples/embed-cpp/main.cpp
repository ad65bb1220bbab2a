// Publishes a map from C++: embed-cpp MAP OUTPUT

#include <iostream>
#include <marrowpress/marrowpress.hpp>

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: embed-cpp MAP OUTPUT\n";
        return 2;
    }
    try {
        const mp::Result result = mp::publish({.map = argv[1], .output = argv[2]});
        for (const mp_finding& finding : result.findings()) {
            std::cerr << finding.file << ':' << finding.line << ": " << finding.text << " ["
                      << finding.id << "]\n";
        }
        for (const std::string_view output : result.outputs()) {
            std::cout << output << '\n';
        }
        if (!result.isPublished()) {
            std::cerr << "embed-cpp: " << result.error() << '\n';
            return 1;
        }
    } catch (const mp::Error& error) {
        std::cerr << "embed-cpp: " << error.what() << '\n';
        return 1;
    }
    return 0;
}
