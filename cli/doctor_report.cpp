#include "cli/doctor_report.h"

#include <algorithm>
#include <boost/algorithm/string/join.hpp>

#include "cli/text_table.h"
#include "findings/language.h"
#include "findings/letter_case.h"
#include "findings/shown_path.h"

namespace marrowpress {
namespace {

constexpr const char* kUtf8 = "UTF-8";

std::string stateOf(const CheckedPlace& place, const std::string& sound) {
    return place.fault.empty() ? sound : place.fault;
}

std::string installText() {
    return translated(
        "Installieren Sie das Debian-Paket dita-ot, das die DTDs von DITA 1.2 mitbringt, oder "
        "nennen Sie mit --catalog oder in XML_CATALOG_FILES den Katalog Ihrer DTDs");
}

std::string dtdText(const GrammarUse& use) {
    switch (use.grammar) {
        case DocumentGrammar::kNoDoctype:
            return translated("kein Doctype");
        case DocumentGrammar::kNotFound:
            return translated("nicht gefunden");
        case DocumentGrammar::kOwn:
        case DocumentGrammar::kInvalid:
            break;
    }
    return use.dtd;
}

}  // namespace

void DoctorReport::addCatalogs(const std::vector<CheckedPlace>& catalogs) {
    TextTable table({translated("KATALOG, NACH DER REIHE"), translated("ZUSTAND")});
    for (const CheckedPlace& catalog : catalogs) {
        table.add({catalog.path, stateOf(catalog, translated("gelesen"))});
    }
    addSection(table.text());
}

void DoctorReport::addTypes(const std::vector<TriedType>& types) {
    TextTable table({translated("DOKUMENTTYP"), translated("PUBLIC IDENTIFIER"), "DTD"});
    std::vector<std::string> newer;
    bool isCommonMissing = false;
    for (const TriedType& type : types) {
        const bool isMissing = type.dtd.empty();
        table.add({type.root, type.publicId, isMissing ? translated("nicht gefunden") : type.dtd});
        isCommonMissing |= isMissing && type.isCommon;
        if (isMissing && !type.isCommon) {
            newer.push_back(type.root);
        }
    }
    addSection(table.text());
    if (isCommonMissing) {
        addFault(installText());
    } else if (!newer.empty()) {
        remarks_.push_back(
            translated("Für {0} brauchen Sie DTDs von DITA 1.3; nennen Sie ihren Katalog mit "
                       "--catalog",
                       {boost::algorithm::join(newer, ", ")}));
    }
}

void DoctorReport::addUses(const std::vector<GrammarUse>& uses, const std::string& currentFolder) {
    TextTable table(
        {translated("DOKUMENTTYP"), translated("DOKUMENTE"), translated("DAS ERSTE"), "DTD"});
    bool isMissing = false;
    for (const GrammarUse& use : uses) {
        table.add({use.root, std::to_string(use.documentCount),
                   shownPath(use.firstDocument, currentFolder), dtdText(use)});
        isMissing |= use.grammar == DocumentGrammar::kNotFound;
    }
    addSection(table.text());
    if (isMissing) {
        addFault(installText());
    }
}

void DoctorReport::addEncodings(const std::vector<TriedEncoding>& encodings) {
    std::vector<std::string> readable;
    std::vector<std::string> others;
    for (const TriedEncoding& encoding : encodings) {
        (encoding.canBeRead ? readable : others).push_back(encoding.name);
    }
    std::string text =
        translated("Dokumente dürfen sein in: {0}", {boost::algorithm::join(readable, ", ")}) +
        "\n";
    if (!others.empty()) {
        text += translated("nicht in: {0}", {boost::algorithm::join(others, ", ")}) + "\n";
        addFault(
            translated("Es lassen sich nicht alle üblichen Kodierungen lesen; Xerces-C muss "
                       "mit ICU gebaut sein, wie es in Debian ist"));
    }
    addSection(text);
}

void DoctorReport::addFolders(const CheckedPlace& current, const CheckedPlace& passing) {
    const std::string writable = translated("beschreibbar");
    TextTable table({translated("ORDNER"), translated("PFAD"), translated("ZUSTAND")});
    table.add({translated("der aktuelle"), current.path, stateOf(current, writable)});
    table.add({translated("für private Dateien"), passing.path, stateOf(passing, writable)});
    addSection(table.text());
    if (!current.fault.empty()) {
        remarks_.push_back(
            translated("Wählen Sie mit --output einen anderen Ordner als den "
                       "aktuellen"));
    }
    if (!passing.fault.empty()) {
        addFault(translated("Nennen Sie in TMPDIR einen Ordner, in den Sie schreiben dürfen"));
    }
}

void DoctorReport::addCharset(const std::string& charset) {
    addSection(translated("Zeichensatz der Umgebung: {0}", {charset}) + "\n");
    if (charset != kUtf8) {
        remarks_.push_back(translated(
            "Alle Texte und Pfade sind UTF-8; setzen Sie etwa LC_ALL=C.UTF-8, damit sie im "
            "Terminal lesbar sind"));
    }
}

std::string DoctorReport::text() const {
    std::string text = sections_ + "\n";
    for (const std::string& fault : faults_) {
        text += translated("Fehlt: {0}", {fault}) + "\n";
    }
    for (const std::string& remark : remarks_) {
        text += translated("Hinweis: {0}", {remark}) + "\n";
    }
    return isSound() ? text + translated("Nichts steht einer Publikation im Weg") + "\n" : text;
}

void DoctorReport::addSection(const std::string& text) {
    sections_ += (sections_.empty() ? "" : "\n") + text;
}

/// Several parts may lack the same.
void DoctorReport::addFault(const std::string& text) {
    if (std::find(faults_.begin(), faults_.end(), text) == faults_.end()) {
        faults_.push_back(text);
    }
}

}  // namespace marrowpress
