#include "cli/run_statistics.h"

#include <sys/resource.h>

#include <algorithm>
#include <iomanip>
#include <sstream>
#include <vector>

#include "findings/language.h"

namespace marrowpress {
namespace {

using std::chrono::microseconds;

constexpr double kKilobyte = 1024;
constexpr double kMegabyte = kKilobyte * kKilobyte;

microseconds asMicroseconds(const timeval& time) {
    return std::chrono::seconds(time.tv_sec) + microseconds(time.tv_usec);
}

std::string withDigits(double number, int digits) {
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text << std::fixed << std::setprecision(digits) << number;
    return text.str();
}

std::string secondsText(microseconds time) {
    return withDigits(std::chrono::duration<double>(time).count(), 3) + " s";
}

std::string sizeText(std::uintmax_t bytes) {
    const auto size = static_cast<double>(bytes);
    return size < kMegabyte ? withDigits(size / kKilobyte, 1) + " KB"
                            : withDigits(size / kMegabyte, 1) + " MB";
}

struct Share {
    std::string name;
    microseconds time;
};

/// The phases in their order; one that came in several runs has the time of all.
std::vector<Share> phasesOf(const RunClock& clock) {
    std::vector<Share> phases;
    for (const TimedPart& part : clock.parts()) {
        if (part.kind != TimedKind::kPhase) {
            continue;
        }
        const auto known = std::find_if(phases.begin(), phases.end(), [&part](const Share& phase) {
            return phase.name == part.name;
        });
        if (known == phases.end()) {
            phases.push_back({part.name, part.duration});
        } else {
            known->time += part.duration;
        }
    }
    return phases;
}

std::string phasesText(const RunClock& clock) {
    std::string text;
    for (const Share& phase : phasesOf(clock)) {
        text += (text.empty() ? "" : ", ") + phase.name + " " + secondsText(phase.time);
    }
    return text;
}

}  // namespace

UsedResources usedResources() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    constexpr std::uintmax_t kUnit = 1024;
    return {asMicroseconds(usage.ru_utime) + asMicroseconds(usage.ru_stime),
            static_cast<std::uintmax_t>(usage.ru_maxrss) * kUnit};
}

std::string statisticsText(const RunClock& clock, const UsedResources& used) {
    const RunCounts& counts = clock.counts();
    return translated("Dokumente: {0} gelesen, {1}",
                      {std::to_string(counts.documents), sizeText(counts.bytes)}) +
           "\n" +
           translated("Schlüssel: {0} definiert; Ausgaben: {1}",
                      {std::to_string(counts.keys), std::to_string(counts.outputs)}) +
           "\n" +
           translated("Zeit: {0} ({1}); CPU: {2}",
                      {secondsText(clock.total()), phasesText(clock), secondsText(used.cpu)}) +
           "\n" + translated("Speicher: höchstens {0}", {sizeText(used.peakMemory)}) + "\n";
}

}  // namespace marrowpress
