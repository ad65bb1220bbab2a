#include "findings/human_writer.h"

#include <algorithm>
#include <ostream>

#include "findings/characters.h"
#include "findings/shown_path.h"
#include "findings/source_excerpt.h"
#include "findings/source_lines.h"

namespace marrowpress {
namespace {

constexpr std::string_view kIndent = "  ";
constexpr std::string_view kSourceIndent = "    ";
constexpr std::size_t kMostPlaces = 3;

class HumanWriter {
public:
    HumanWriter(std::ostream& out, const HumanOptions& options) : out_(out), options_(options) {}

    void write(const Finding& finding) {
        out_ << findingLine(finding, options_) << '\n';
        writeSource(finding);
        if (!finding.hint.empty()) {
            out_ << kIndent << options_.words.hint << ": " << shownText(finding.hint) << '\n';
        }
        if (options_.showsProfiles) {
            writeProfiles(finding.profiles);
        }
        for (const FindingStep& step : finding.via) {
            writeStep(step);
        }
        writePlaces(finding.places);
    }

private:
    void writeSource(const Finding& finding) {
        const FindingPlace& place = finding.place;
        if (place.line == 0) {
            return;
        }
        const auto line = lines_.line(place.file, place.line);
        if (!line) {
            return;
        }
        const std::size_t width = options_.width - std::min(options_.width, kSourceIndent.size());
        const SourceExcerpt excerpt = excerptOf(*line, place.column, width);
        out_ << kSourceIndent << excerpt.line << '\n';
        if (!excerpt.caret.empty()) {
            writeCaret(excerpt.caret, finding.severity);
        }
    }

    void writeCaret(const std::string& caret, Severity severity) {
        out_ << kSourceIndent;
        if (options_.isColoured) {
            out_ << colourOf(severity) << caret << kColourEnd << '\n';
        } else {
            out_ << caret << '\n';
        }
    }

    void writeProfiles(const std::vector<std::string>& profiles) {
        for (const std::string& profile : profiles) {
            out_ << kIndent << options_.words.profile << ' '
                 << shownText(shownPath(profile, options_.currentFolder)) << '\n';
        }
    }

    void writeStep(const FindingStep& step) {
        out_ << kIndent << options_.words.via << ' ';
        if (!step.place.file.empty()) {
            out_ << placeText(step.place, options_.currentFolder) << ": ";
        }
        out_ << shownText(step.what) << '\n';
    }

    void writePlaces(const std::vector<FindingPlace>& places) {
        const std::size_t shown = std::min(places.size(), kMostPlaces);
        for (std::size_t index = 0; index < shown; ++index) {
            out_ << kIndent << options_.words.also << ' '
                 << placeText(places[index], options_.currentFolder) << '\n';
        }
        if (shown < places.size()) {
            out_ << kIndent << moreText(places.size() - shown, options_.words) << '\n';
        }
    }

    std::ostream& out_;
    const HumanOptions& options_;
    SourceLines lines_;
};

}  // namespace

void writeHuman(std::ostream& out, const std::vector<Finding>& findings,
                const FindingSummary& summary, const HumanOptions& options) {
    HumanWriter writer(out, options);
    for (const Finding& finding : findings) {
        writer.write(finding);
    }
    out << lastLines(summary, options.words);
}

}  // namespace marrowpress
