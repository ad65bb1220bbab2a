#include "cli/streams.h"

#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <ostream>

namespace marrowpress {
namespace {

constexpr std::string_view kProgressMark = "> ";

std::string_view withoutLineEnd(std::string_view text) {
    while (text.ends_with('\n') || text.ends_with('\r')) {
        text.remove_suffix(1);
    }
    return text;
}

/// In one piece: standard error has no buffer, and each piece would be a write of its own.
void writeLine(std::ostream& err, std::string_view mark, std::string_view text) {
    std::string line(mark);
    line.append(withoutLineEnd(text)).append("\n");
    err << line << std::flush;
}

}  // namespace

void secureStandardStreams() {
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(descriptor, F_GETFD) != -1) {
            continue;
        }
        // The lowest free number is this one. It is opened the wrong way round, so that reading
        // or writing keeps failing as on a closed stream.
        const int mode = descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY;
        static_cast<void>(open("/dev/null", mode));
    }
}

bool writeOutput(const Streams& streams, std::string_view text) {
    streams.out << text << std::flush;
    return static_cast<bool>(streams.out);
}

bool writeResult(const Streams& streams, std::string_view text) {
    if (writeOutput(streams, text)) {
        return true;
    }
    streams.err << "marrowpress: cannot write to standard output\n";
    return false;
}

void showReport(std::ostream& err, std::string_view text) {
    writeLine(err, "", text);
}

void showProgress(std::ostream& err, std::string_view text) {
    writeLine(err, kProgressMark, text);
}

}  // namespace marrowpress
