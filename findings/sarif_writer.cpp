#include "findings/sarif_writer.h"

#include <boost/json/array.hpp>
#include <boost/json/object.hpp>
#include <boost/json/serialize.hpp>
#include <map>
#include <optional>
#include <ostream>

#include "findings/file_uri.h"
#include "findings/finding_lines.h"
#include "findings/identity.h"
#include "findings/severity.h"
#include "findings/shown_path.h"
#include "host/utf8.h"

namespace marrowpress {
namespace {

namespace json = boost::json;

constexpr std::string_view kSchema =
    "https://docs.oasis-open.org/sarif/sarif/v2.1.0/errata01/os/schemas/sarif-schema-2.1.0.json";
constexpr const char* kRoot = "SRCROOT";

json::string sarifText(std::string_view raw) {
    return json::string(toValidUtf8(raw));
}

json::object message(std::string_view raw) {
    return {{"text", sarifText(raw)}};
}

/// The index of each id in the list of rules, which has those that are used.
using Rules = std::map<std::string, std::size_t, std::less<>>;

Rules rulesOf(const std::vector<Finding>& findings) {
    Rules rules;
    for (const Finding& finding : findings) {
        if (!finding.isArtefact) {
            rules.emplace(finding.id, 0);
        }
    }
    std::size_t next = 0;
    for (auto& [id, index] : rules) {
        index = next++;
    }
    return rules;
}

/// Writes the log piece by piece: the tree of ten thousand results would be large.
class SarifWriter {
public:
    SarifWriter(std::ostream& out, const SarifOptions& options) : out_(out), options_(options) {}

    void write(const std::vector<Finding>& findings, const FindingSummary& summary) {
        const Rules rules = rulesOf(findings);
        out_ << R"({"$schema":)" << json::serialize(kSchema) << R"(,"version":"2.1.0","runs":[{)"
             << '\n';
        writeMember("tool", {{"driver", driver(rules)}});
        writeMember("invocations", json::array{invocation(summary)});
        writeMember("originalUriBaseIds", baseIds());
        writeMember("columnKind", "utf16CodeUnits");
        if (summary.dropped > 0) {
            writeMember("properties", {{"dropped", summary.dropped}});
        }
        out_ << R"("results":[)";
        writeResults(findings, rules);
        out_ << "\n]}]}\n";
    }

private:
    void writeMember(std::string_view name, const json::value& value) {
        out_ << '"' << name << "\":" << json::serialize(value) << ",\n";
    }

    void writeResults(const std::vector<Finding>& findings, const Rules& rules) {
        const char* separator = "\n";
        for (const Finding& finding : findings) {
            if (!finding.isArtefact) {
                out_ << separator << json::serialize(result(finding, rules));
                separator = ",\n";
            }
        }
    }

    json::object driver(const Rules& rules) const {
        json::array descriptions;
        for (const auto& [id, index] : rules) {
            descriptions.push_back(
                {{"id", sarifText(id)}, {"shortDescription", message(options_.titleOf(id))}});
        }
        return {{"name", "Marrowpress"},
                {"version", sarifText(options_.version)},
                {"rules", std::move(descriptions)}};
    }

    static json::object invocation(const FindingSummary& summary) {
        return {{"executionSuccessful", summary.exit != kExitOfFailedRun},
                {"exitCode", summary.exit}};
    }

    json::object baseIds() const {
        std::string folder = options_.currentFolder;
        if (!folder.ends_with('/')) {
            folder += '/';
        }
        return {{kRoot, {{"uri", fileUri(folder)}}}};
    }

    json::object result(const Finding& finding, const Rules& rules) const {
        json::object result{{"ruleId", sarifText(finding.id)},
                            {"ruleIndex", rules.at(finding.id)},
                            {"level", severityName(finding.severity)},
                            {"message", message(textWithHint(finding))}};
        if (const auto place = location(finding.place)) {
            result["locations"] = json::array{*place};
        }
        if (json::array related = relatedLocations(finding); !related.empty()) {
            result["relatedLocations"] = std::move(related);
        }
        result["partialFingerprints"] = {
            {"marrowpress/v1", fingerprintOf(finding, options_.currentFolder)}};
        return result;
    }

    /// Empty when not even the file is known.
    std::optional<json::object> location(const FindingPlace& place) const {
        if (place.file.empty()) {
            return std::nullopt;
        }
        json::object physical{{"artifactLocation", artifactLocation(place.file)}};
        if (place.line > 0) {
            json::object region{{"startLine", place.line}};
            if (place.column > 0) {
                region["startColumn"] = place.column;
            }
            physical["region"] = std::move(region);
        }
        return json::object{{"physicalLocation", std::move(physical)}};
    }

    json::object artifactLocation(const std::string& file) const {
        if (const auto inside = pathInside(file, options_.currentFolder)) {
            return {{"uri", uriPath(*inside)}, {"uriBaseId", kRoot}};
        }
        return {{"uri", fileUri(file)}};
    }

    json::array relatedLocations(const Finding& finding) const {
        json::array related;
        for (const FindingStep& step : finding.via) {
            if (auto place = location(step.place)) {
                (*place)["message"] = message(step.what);
                related.push_back(std::move(*place));
            }
        }
        for (const FindingPlace& further : finding.places) {
            if (auto place = location(further)) {
                related.push_back(std::move(*place));
            }
        }
        return related;
    }

    std::ostream& out_;
    const SarifOptions& options_;
};

}  // namespace

void writeSarif(std::ostream& out, const std::vector<Finding>& findings,
                const FindingSummary& summary, const SarifOptions& options) {
    SarifWriter(out, options).write(findings, summary);
}

}  // namespace marrowpress
