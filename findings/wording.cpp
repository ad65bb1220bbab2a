#include "findings/wording.h"

#include <algorithm>
#include <array>

#include "findings/language.h"

namespace marrowpress {
namespace {

/// What is said of something that has no effect here.
struct NoEffect {
    std::string_view kind;
    CountTexts text;  ///< Argument 0 is the count, 1 the kind.
    const char* hint;
};

constexpr CountTexts kNoEffect = toTranslateCount("`{1}` hat hier keine Wirkung: {0} Stelle",
                                                  "`{1}` hat hier keine Wirkung: {0} Stellen");

constexpr std::array kNoEffects{
    NoEffect{"reltable", kNoEffect, toTranslate("Schreiben Sie die Links in die Themen")},
    NoEffect{"conaction", kNoEffect,
             toTranslate("Holen Sie den Inhalt mit `conref`, statt ihn zu schieben")},
    NoEffect{"ditavalref", kNoEffect, toTranslate("Geben Sie das Profil mit --filter an")},
    NoEffect{"copy-to", kNoEffect, toTranslate("Das Thema erscheint unter seinem eigenen Namen")},
    NoEffect{
        "chunk", kNoEffect,
        toTranslate("Jeder Verweis der obersten Ebene gibt in einem Flatbook eine Komponente")},
    NoEffect{"coderef", kNoEffect, toTranslate("Schreiben Sie den Code in das Thema")},
    NoEffect{"subjectScheme", kNoEffect,
             toTranslate("Werte werden nicht geprüft; ein Profil nennt jeden Wert einzeln")},
    NoEffect{"link-text",
             toTranslateCount("{0} Link bleibt ohne Text", "{0} Links bleiben ohne Text"),
             toTranslate("Schreiben Sie den Text in den Link, oder, wenn er über einen Schlüssel "
                         "führt, als `linktext` in dessen Definition")},
    NoEffect{
        "key-scope-format",
        toTranslateCount("{0} Web-Link über einen Schlüssel hat weder `scope` noch `format`",
                         "{0} Web-Links über einen Schlüssel haben weder `scope` noch `format`"),
        toTranslate("Der Link selbst braucht scope=\"external\" und format=\"html\"")},
    NoEffect{"flag", kNoEffect, toTranslate("Nur include und exclude wirken")},
    NoEffect{"passthrough", kNoEffect, toTranslate("Nur include und exclude wirken")},
    NoEffect{"revprop", kNoEffect, toTranslate("Revisionen werden nicht gekennzeichnet")},
    NoEffect{"style-conflict", kNoEffect, toTranslate("Es wird nichts gekennzeichnet")},
    NoEffect{"startflag", kNoEffect, toTranslate("Es wird nichts gekennzeichnet")},
    NoEffect{"endflag", kNoEffect, toTranslate("Es wird nichts gekennzeichnet")},
};

const NoEffect* noEffectOf(std::string_view kind) {
    const auto* const found =
        std::find_if(kNoEffects.begin(), kNoEffects.end(),
                     [kind](const NoEffect& noEffect) { return noEffect.kind == kind; });
    return found == kNoEffects.end() ? nullptr : found;
}

}  // namespace

std::string severityWord(Severity severity) {
    switch (severity) {
        case Severity::kError:
            return translated("Fehler");
        case Severity::kWarning:
            return translated("Warnung");
        case Severity::kNote:
            return translated("Hinweis");
    }
    return {};
}

std::string hintWord() {
    return translated("Tipp");
}

std::string viaWord() {
    return translated("über");
}

std::string alsoWord() {
    return translated("auch bei");
}

std::string errorCountText(std::size_t count) {
    return translatedCount("{0} Fehler", "{0} Fehler", count);
}

std::string warningCountText(std::size_t count) {
    return translatedCount("{0} Warnung", "{0} Warnungen", count);
}

std::string noteCountText(std::size_t count) {
    return translatedCount("{0} Hinweis", "{0} Hinweise", count);
}

std::string fileCountText(std::size_t count) {
    return translatedCount("{0} Datei", "{0} Dateien", count);
}

std::string topicCountText(std::size_t count) {
    return translatedCount("{0} Thema", "{0} Themen", count);
}

std::string keyDefinitionCountText(std::size_t count) {
    return translatedCount("{0} Definition", "{0} Definitionen", count);
}

std::string keyUseCountText(std::size_t count) {
    return translatedCount("{0} Verweis auf den Schlüssel", "{0} Verweise auf den Schlüssel",
                           count);
}

std::string keyOrderText() {
    return translated(
        "Maps werden von der Wurzel-Map an Ebene für Ebene gelesen, jede von oben nach "
        "unten; die erste Definition gilt");
}

std::string onlyDefinitionText() {
    return translated("gilt: sie ist die einzige");
}

std::string firstDefinitionText() {
    return translated("gilt: keine vor ihr gilt");
}

std::string laterInMapText(std::string_view place) {
    return translated("gilt nicht: {0} steht in derselben Map davor", {place});
}

std::string laterMapText(std::string_view place) {
    return translated("gilt nicht: {0} steht in einer Map, die früher gelesen wird", {place});
}

std::string excludedDefinitionText() {
    return translated("gilt nicht: das Profil schließt sie aus");
}

std::string lostDefinitionText() {
    return translated("gilt nicht: an ihre Stelle tritt der Teil der Map, auf den sie verweist");
}

std::string keyTargetText(std::string_view target) {
    return translated("führt zu {0}", {target});
}

std::string keyContentText(std::string_view text) {
    return translated("steht für den Text: {0}", {text});
}

std::string keyLeadsOnText(std::string_view key) {
    return translated("führt weiter zum Schlüssel `{0}`", {key});
}

std::string didYouMeanHint(std::string_view name) {
    return translated("Ist `{0}` gemeint?", {name});
}

std::string keyNotFoundText(std::string_view key) {
    return translated("Der Schlüssel `{0}` ist nicht definiert", {key});
}

std::string keyNotNamedText() {
    return translated("Der Verweis nennt keinen Schlüssel");
}

std::string keyTakenAwayHint(std::string_view profile, std::string_view place) {
    return translated("Das Profil `{0}` nimmt die Definition weg, die in {1} steht",
                      {profile, place});
}

std::string keyDefinitionLostHint(std::string_view place) {
    return translated("Die Definition in {0} geht verloren: MP218", {place});
}

std::string keyLeadsToItselfHint(std::string_view place) {
    return translated("Die Definition in {0} führt durch ihr eigenes `keyref` zu sich zurück",
                      {place});
}

std::string defineKeyHint() {
    return translated(
        "Definieren Sie ihn mit `keys` in einer Map der Veröffentlichung, oder nehmen Sie den "
        "Verweis heraus");
}

std::string noKeyDefinedHint() {
    return translated("Keine Map dieser Veröffentlichung definiert einen Schlüssel");
}

std::string elementInTopicNotFoundText(std::string_view file, std::string_view topic,
                                       std::string_view id) {
    return translated("Im Thema `{1}` von `{0}` hat kein Element die ID `{2}`", {file, topic, id});
}

std::string elementNotFoundText(std::string_view file, std::string_view id) {
    return translated("In `{0}` hat kein Element die ID `{1}`", {file, id});
}

std::string topicNotFoundText(std::string_view file, std::string_view id) {
    return translated("In `{0}` hat kein Thema die ID `{1}`", {file, id});
}

std::string elementIdHint(std::string_view topic, std::string_view id) {
    return translated("Ein Element im Thema `{0}` hat diese ID: Schreiben Sie `#{0}/{1}`",
                      {topic, id});
}

std::string fragmentHint() {
    return translated(
        "Hinter dem `#` steht die ID des Themas, und hinter einem Schrägstrich die des Elements: "
        "Berichtigen Sie sie, oder geben Sie dem Ziel diese ID");
}

std::string wrongElementText(std::string_view target, std::string_view found,
                             std::string_view wanted) {
    return translated("`{0}` ist ein `{1}`, ein `{2}` verweist darauf", {target, found, wanted});
}

std::string wrongElementHint(std::string_view found, std::string_view wanted) {
    return translated(
        "Ein Inhaltsverweis führt zu einem Element gleichen Namens: Verweisen Sie von einem `{0}` "
        "aus oder auf ein `{1}`",
        {found, wanted});
}

std::string idsNeedDtdHint(std::string_view file) {
    return translated(
        "`{0}` ist ohne seine DTD gelesen, und ohne DTD hat kein Element eine ID: MP201, MP202",
        {file});
}

std::string cannotReadText(std::string_view file, std::string_view reason) {
    return reason.empty() ? translated("`{0}` kann nicht gelesen werden", {file})
                          : translated("`{0}` kann nicht gelesen werden: {1}", {file, reason});
}

std::string notWellFormedHint() {
    return translated("Dort hat es der Parser bemerkt; der Fehler selbst steht oft etwas davor");
}

std::string keyWithoutFileText(std::string_view key) {
    return translated(
        "Der Schlüssel `{0}` steht für keine Datei, in der ein Element gesucht werden könnte",
        {key});
}

std::string runFailsHint() {
    return translated("Ohne diese Map gibt es keine Ausgabe");
}

std::string withoutFilterHint() {
    return translated("Der Lauf geht ohne dieses Profil weiter und lässt seinetwegen nichts aus");
}

std::string cannotWriteText(std::string_view file, std::string_view reason) {
    return reason.empty() ? translated("`{0}` kann nicht geschrieben werden", {file})
                          : translated("`{0}` kann nicht geschrieben werden: {1}", {file, reason});
}

std::string cannotWriteStandardOutputText() {
    return translated("Die Standardausgabe kann nicht geschrieben werden");
}

std::string notTheResultHint() {
    return translated("Was dort steht, ist nicht das Ergebnis");
}

std::string fileNotFoundText(std::string_view file) {
    return translated("Die Datei `{0}` gibt es nicht", {file});
}

std::string otherCaseHint(std::string_view file) {
    return translated("Es gibt `{0}`, das sich nur in der Groß- und Kleinschreibung unterscheidet",
                      {file});
}

std::string webAddressHint(std::string_view href) {
    return translated("Eine Web-Adresse beginnt mit http:// oder https://: `https://{0}`", {href});
}

std::string missingFileHint() {
    return translated(
        "Berichtigen Sie den Pfad, oder legen Sie die Datei an; führt der Verweis aus der "
        "Veröffentlichung hinaus, so braucht er scope=\"external\" oder scope=\"peer\"");
}

std::string conrefEndNotBesideText(std::string_view end, std::string_view start) {
    return translated("`{0}` steht nicht neben `{1}`, und nur das erste Element wird geholt",
                      {end, start});
}

std::string conrefEndHint() {
    return translated(
        "`conrefend` nennt ein Element, das unter demselben Elternelement hinter dem ersten steht");
}

std::string noDoctypeText(std::string_view file) {
    return translated("`{0}` hat keinen Doctype und wird ohne DTD gelesen", {file});
}

std::string dtdNotFoundText(std::string_view file, std::string_view publicId,
                            std::string_view systemId) {
    if (publicId.empty()) {
        return translated("`{0}` wird ohne DTD gelesen: Es gibt kein \"{1}\"", {file, systemId});
    }
    if (systemId.empty()) {
        return translated("`{0}` wird ohne DTD gelesen: Kein Katalog kennt \"{1}\"",
                          {file, publicId});
    }
    return translated(
        "`{0}` wird ohne DTD gelesen: Kein Katalog kennt \"{1}\", und es gibt kein \"{2}\"",
        {file, publicId, systemId});
}

std::string unusableCatalogText(std::string_view file, std::string_view fault,
                                std::string_view publicId) {
    return translated(
        "`{0}` wird ohne DTD gelesen: Ein Katalog kann nicht benutzt werden ({1}), und kein "
        "anderer kennt \"{2}\"",
        {file, fault, publicId});
}

std::string doctypeHint(std::string_view root, std::string_view publicId) {
    return translated("Die Datei braucht eine Zeile wie <!DOCTYPE {0} PUBLIC \"{1}\" \"{0}.dtd\">",
                      {root, publicId});
}

std::string missingCatalogText(std::string_view catalog) {
    return translated("{0} (gibt es nicht)", {catalog});
}

std::string catalogsHint(std::string_view catalogs) {
    if (catalogs.empty()) {
        return translated(
            "Es gab keinen Katalog zu fragen; Debians Paket dita-ot bringt die DTDs von DITA, "
            "andere "
            "Kataloge nennt --catalog oder XML_CATALOG_FILES");
    }
    return translated(
        "Gefragte Kataloge: {0}; Debians Paket dita-ot bringt die DTDs von DITA, andere Kataloge "
        "nennt --catalog oder XML_CATALOG_FILES",
        {catalogs});
}

std::string breaksDtdText(std::string_view file, std::string_view reason) {
    return translated("`{0}` verletzt seine DTD und wird ohne sie gelesen: {1}", {file, reason});
}

std::string mapWithoutDtdHint() {
    return translated("Ohne DTD gehen die Verweise der Map verloren");
}

std::string topicWithoutDtdHint() {
    return translated(
        "Ohne DTD hat kein Element eine ID, und jeder Verweis hinein scheitert: MP109, MP204");
}

std::string conrefLoopText(std::string_view target, std::size_t steps) {
    return translatedCount("`{1}` verweist auf sich selbst",
                           "`{1}` führt über {0} Verweise zu sich selbst zurück", steps, {target});
}

std::string keptConrefHint() {
    return translated(
        "In der Ausgabe bleibt ein `conref` stehen; schreiben Sie den Inhalt in eines der "
        "Elemente");
}

std::string lostContentHint() {
    return translated("Das Element verliert seinen eigenen Inhalt; nehmen Sie ihm das `conref`");
}

std::string cutLoopHint() {
    return translated("Das Kopieren endet hier; schreiben Sie den Inhalt in eines der Elemente");
}

std::string conrefOfConrefText(std::string_view target) {
    return translated("`{0}` holt seinen Inhalt selbst mit `conref`; die Kopie bleibt leer",
                      {target});
}

std::string referDirectlyHint(std::string_view source) {
    return translated("Verweisen Sie unmittelbar auf `{0}`", {source});
}

std::string noTopicText() {
    return translated("Kein Thema steht in der Ausgabe");
}

std::string noTopicWithoutDtdHint() {
    return translated(
        "Die Map ist ohne ihre DTD gelesen, und so wird kaum ein Verweis erkannt: MP201, MP202");
}

std::string allExcludedHint() {
    return translated("Ohne --filter und --print zeigt sich, ob das Profil alles ausschließt");
}

std::string noReferenceHint() {
    return translated("Die Map verweist auf kein Thema");
}

std::string unknownProfileElementText(std::string_view element) {
    return translated("DITAVAL kennt kein Element `{0}`", {element});
}

std::string unknownProfileAttributeText(std::string_view element, std::string_view attribute) {
    return translated("DITAVAL kennt kein Attribut `{1}` an `{0}`", {element, attribute});
}

std::string unknownProfileActionText(std::string_view action) {
    return translated("DITAVAL kennt keine Aktion `{0}`", {action});
}

std::string profileElementsHint() {
    return translated(
        "Elemente sind val, prop, revprop, style-conflict, startflag, endflag und alt-text");
}

std::string profileAttributesHint() {
    return translated(
        "Berichtigen Sie das Attribut: In der Regel für einen Wert sind es att, val und action");
}

std::string profileActionsHint() {
    return translated("Aktionen sind include, exclude, flag und passthrough");
}

std::string profileRootText(std::string_view file, std::string_view root) {
    return translated("`{0}` ist ein `{1}` und kein Profil, dessen Wurzel `val` ist", {file, root});
}

std::string profileRootHint() {
    return translated("Nennen Sie mit --filter eine DITAVAL-Datei, oder lassen Sie es weg");
}

std::string unmatchedRuleText(std::string_view attribute, std::string_view value) {
    return translated("Auf die Regel {0}=\"{1}\" trifft nichts zu", {attribute, value});
}

std::string unmatchedAttributeText(std::string_view attribute) {
    return translated("Kein Element hat das Attribut `{0}`, für das die Regel gilt", {attribute});
}

std::string unmatchedRuleHint() {
    return translated(
        "Vergleichen Sie Attribut und Wert mit denen in den Themen, oder nehmen Sie die Regel "
        "heraus");
}

std::string ruleNeedsDtdHint(std::string_view file, std::string_view id) {
    return translated(
        "`{0}` ist ohne seine DTD gelesen, und was nur mit ihr gefunden wird, kann die Regel nicht "
        "treffen: Beheben Sie zuerst {1}",
        {file, id});
}

std::string topicNotInOutputText(std::string_view file) {
    return translated("`{0}` ist nicht in der Ausgabe; der Link führt zur Quelldatei", {file});
}

std::string notInMapHint() {
    return translated(
        "Die Map verweist nicht darauf, oder nur mit processing-role=\"resource-only\" oder "
        "print=\"no\"");
}

std::string mapLostReferencesHint(std::string_view map, std::string_view id) {
    return translated(
        "`{0}` ist ohne seine DTD gelesen und hat so Verweise verloren, wohl auch den auf das "
        "Thema: Beheben Sie zuerst {1}",
        {map, id});
}

std::string topicExcludedHint(std::string_view profile) {
    return translated("Das Profil `{0}` lässt das Thema aus; der Link braucht dieselbe Bedingung",
                      {profile});
}

std::string resourceOnlyHint() {
    return translated("processing-role=\"resource-only\" hält das Thema aus der Ausgabe");
}

std::string droppedChildrenText(std::string_view target, std::size_t count) {
    return translatedCount("{0} Verweis unter dem Verweis auf die Map `{1}` entfällt",
                           "{0} Verweise unter dem Verweis auf die Map `{1}` entfallen", count,
                           {target});
}

std::string droppedChildrenHint() {
    return translated("Stellen Sie sie hinter den Map-Verweis oder in die andere Map");
}

std::string keyScopeText(std::string_view name) {
    return translated(
        "keyscope=\"{0}\" hat keine Wirkung: Alle Schlüssel stehen in einem Namensraum", {name});
}

std::string keyScopeHint(std::string_view name) {
    return translated(
        "Schlüssel wie `{0}.name` sind nicht definiert; geben Sie jedem Schlüssel einen eigenen "
        "Namen",
        {name});
}

std::string sameComponentText(std::string_view component, std::string_view first,
                              std::string_view second) {
    return translated("`{1}` und `{2}` ergeben dieselbe Komponente `{0}`",
                      {component, first, second});
}

std::string sameComponentHint() {
    return translated("Benennen Sie eine der Quellen um, oder lassen Sie --one-location weg");
}

std::string foreignFileText(std::string_view component) {
    return translated(
        "An der Stelle der Komponente `{0}` liegt eine Datei, die kein Lauf geschrieben hat",
        {component});
}

std::string foreignFileKeptHint(std::string_view path) {
    return translated("Sie liegt jetzt unter `{0}`", {path});
}

std::string navtitleText(std::string_view navtitle) {
    return translated("Der `navtitle` \"{0}\" ergibt keinen Dateinamen; die Komponente fehlt",
                      {navtitle});
}

std::string navtitleHint() {
    return translated(
        "Ein `navtitle` ohne Schrägstrich und Backslash, von höchstens 248 Byte, ergibt einen");
}

std::string pathIsCutText(std::string_view path, std::string_view character) {
    return translated("Verweise auf `{0}` werden bei \"{1}\" abgeschnitten", {path, character});
}

std::string pathIsCutHint() {
    return translated("Benennen Sie den Ordner oder die Datei um");
}

std::string twoSpellingsText(std::string_view first, std::string_view second) {
    return translated("`{0}` und `{1}` sind dieselbe Datei, gelten aber als zwei", {first, second});
}

std::string twoSpellingsHint(std::string_view path) {
    return translated("Schreiben Sie überall `{0}`", {path});
}

std::string keyLinkDroppedText(std::string_view key) {
    return translated("Vom Schlüssel `{0}` kommt der Text, sein Link entfällt", {key});
}

std::string keyLinkDroppedHint() {
    return translated(
        "Verweisen Sie im Thema selbst auf den Schlüssel, wo der Link gebraucht wird");
}

std::string keyDefinitionLostText(std::string_view key, std::string_view href) {
    return translated(
        "Die Definition des Schlüssels `{0}` geht verloren: An ihre Stelle tritt der Inhalt von "
        "`{1}`",
        {key, href});
}

std::string keyDefinitionTypeHint() {
    return translated("Geben Sie ihr type=\"topic\", \"concept\", \"task\" oder \"reference\"");
}

std::string noEffectText(std::string_view kind, std::size_t count) {
    const NoEffect* const noEffect = noEffectOf(kind);
    const CountTexts text = noEffect ? noEffect->text : kNoEffect;
    return translatedCount(text.germanOne, text.germanMany, count, {kind});
}

std::string noEffectHint(std::string_view kind) {
    const NoEffect* const noEffect = noEffectOf(kind);
    return noEffect ? translated(noEffect->hint) : std::string();
}

}  // namespace marrowpress
