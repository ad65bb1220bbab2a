#include "tests/support/sample_findings.h"

#include "findings/fold.h"

namespace marrowpress {
namespace {

Finding finding(const char* id, Severity severity, const char* text, FindingPlace place) {
    Finding finding;
    finding.id = id;
    finding.severity = severity;
    finding.text = text;
    finding.place = std::move(place);
    return finding;
}

Finding undefinedKey() {
    Finding result = finding("MP105", Severity::kError, "The key `prodname` is not defined",
                             {"/guide/topics/b.dita", 9, 3});
    result.element = "keyword";
    result.target = "prodname";
    result.hint = "did you mean `prod-name`?";
    result.via = {{{"/guide/a.dita", 14, 32}, "conref topics/b.dita#t/p"},
                  {{"/guide/root.ditamap", 7, 20}, "href a.dita"}};
    result.places = {{"/guide/c.dita", 2, 1},
                     {"/guide/c.dita", 12, 7},
                     {"/shared/d.dita", 4, 5},
                     {"/guide/e.dita", 1, 0},
                     {"/guide/f.dita", 0, 0}};
    result.profiles = {"/guide/home.ditaval", "/guide/50% & more.ditaval"};
    result.hostText = "Der Schl\xC3\xBCssel wurde nicht gefunden: prodname\r\n";
    return result;
}

Finding artefact() {
    Finding result = finding("MP105", Severity::kError, "The key `` is not defined",
                             {"/guide/topics/b.dita", 11, 3});
    result.isArtefact = true;
    return result;
}

/// A finding in each file whose name some format or other has to escape.
std::vector<Finding> oddNames() {
    std::vector<Finding> results;
    for (const char* const name :
         {"a b.dita", "it's \"quoted\".dita", "line\nbreak.dita", "tab\tand\x1B[31mcolour.dita",
          "100%25.dita", "<R&D>.dita", "why?#not.dita", "c:d,e::f.dita", "back\\slash.dita",
          "Über 漢🔧.dita", "latin-\xFC.dita", "\xEF\xBF\xBF\xE2\x80\xAE.dita"}) {
        const std::string file = std::string("/guide/") + name;
        Finding result = finding("MP203", Severity::kWarning, "", {file, 3, 5});
        result.text = std::string("The file `") + name + "` does not exist";
        result.element = "xref";
        result.target = file + "#t/p";
        results.push_back(std::move(result));
    }
    return results;
}

}  // namespace

std::vector<Finding> sampleFindings() {
    std::vector<Finding> all = oddNames();
    all.insert(all.begin(), {undefinedKey(), artefact()});
    all.push_back(finding("MP206", Severity::kError, "No topic came into the output",
                          {"/guide/root.ditamap", 0, 0}));
    all.push_back(finding("MP107", Severity::kError, "Nothing can be written", {}));
    all.push_back(finding("MP215", Severity::kNote, "`reltable` has no effect: 50% of it\r\nor all",
                          {"/elsewhere/a b.ditamap", 4, 0}));
    return all;
}

FindingSummary sampleSummary() {
    FindingSummary summary = summarize(sampleFindings());
    summary.topics = 412;
    summary.seconds = 1.84;
    summary.exit = 3;
    return summary;
}

}  // namespace marrowpress
