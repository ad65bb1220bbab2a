#include "findings/catalogue.h"

#include <algorithm>
#include <array>

#include "findings/language.h"

namespace marrowpress {
namespace {

/// The texts are translated when they are asked for; examples are the same in each language.
struct Entry {
    const char* id;
    Severity severity;
    const char* title;
    const char* meaning;
    const char* example;
    const char* remedy;
};

constexpr std::array kEntries{
    Entry{"MP105", Severity::kError, toTranslate("Schlüssel nicht definiert"),
          toTranslate("Ein `keyref` oder `conkeyref` nennt einen Schlüssel, den keine der Maps "
                      "definiert, die von der Wurzel-Map aus erreicht werden. Groß- und "
                      "Kleinschreibung zählt. Schließt das Profil die Definition aus, so ist der "
                      "Schlüssel nicht definiert. Das Element behält, was es enthält; sein Link "
                      "oder der Inhalt, den es holen soll, fehlt in der Ausgabe."),
          R"(<keydef keys="prod-name"><topicmeta><keywords>
  <keyword>Bramble 12</keyword>
</keywords></topicmeta></keydef>

<ph keyref="Prod-Name"/>)",
          toTranslate("Schreiben Sie den Schlüssel wie in seiner Definition, oder definieren Sie "
                      "ihn in einer Map der Veröffentlichung. Nimmt das Profil die Definition weg, "
                      "so geben Sie dem Element dieselbe Bedingung wie ihr.")},
    Entry{"MP106", Severity::kError, toTranslate("Datei kann nicht gelesen werden"),
          toTranslate("Eine Map, ein Thema oder ein Profil fehlt, darf nicht gelesen werden oder "
                      "ist kein wohlgeformtes XML. Der Text nennt den Grund, den das System oder "
                      "der Parser angibt. Ein Thema fehlt dann in der Ausgabe; bei der Wurzel-Map "
                      "oder einer Map darin scheitert der Lauf."),
          "<p>Press <b>Start.</p>",
          toTranslate(
              "Berichtigen Sie die Datei an der genannten Stelle. Dort hat der Parser den Fehler "
              "bemerkt; oft liegt er etwas weiter oben, etwa ein Element, das nicht geschlossen "
              "ist. Lautet der Grund anders, so prüfen Sie den Pfad und die Rechte der Datei.")},
    Entry{"MP107", Severity::kError, toTranslate("Datei kann nicht geschrieben werden"),
          toTranslate("Eine Datei der Ausgabe konnte nicht geschrieben werden; der Text nennt den "
                      "Grund, den das System angibt. Was danach an ihrer Stelle steht, ist nicht "
                      "das Ergebnis. Der Befehl endet mit 1."),
          "marrowpress publish guide.ditamap -f composite -o /mnt/full-disk/guide.dita",
          toTranslate("Schaffen Sie Platz auf dem Datenträger, oder lassen Sie sich das Recht "
                      "geben, in den Ordner zu schreiben; oder wählen Sie mit --output eine andere "
                      "Ausgabe. Veröffentlichen Sie dann noch einmal.")},
    Entry{"MP108", Severity::kError, toTranslate("Element im Thema nicht gefunden"),
          toTranslate(
              "Ein Inhaltsverweis (`conref`, `conrefend` oder `conkeyref`) nennt eine Datei und "
              "ein Thema, die es gibt. Das Thema hat aber kein Element mit der genannten ID, oder "
              "es ist ein anderes Element als das, welches verweist: Eine `note` holt den Inhalt "
              "einer `note` und nicht den eines `p`. Das Element behält seinen eigenen Inhalt."),
          R"(<p id="hot">The motor gets hot.</p>

<note conref="shared.dita#shared/hot"/>)",
          toTranslate("Berichtigen Sie die ID hinter dem Schrägstrich. Trägt ein anderes Element "
                      "die ID, so verweisen Sie von einem gleichnamigen Element aus, oder geben "
                      "Sie dem gewünschten Element eine eigene ID.")},
    Entry{"MP109", Severity::kError, toTranslate("Element in der Datei nicht gefunden"),
          toTranslate(
              "Ein Inhaltsverweis (`conref`, `conrefend` oder `conkeyref`) nennt eine Datei, die "
              "es gibt. In ihr hat aber kein Thema die ID, die hinter dem `#` steht, oder der "
              "Verweis endet mit der ID des Themas und das Thema ist ein anderes Element als das, "
              "welches verweist. In einer Datei ohne DTD, oder einer, die ihre DTD verletzt, wird "
              "kein Thema gefunden. Das Element behält seinen eigenen Inhalt."),
          R"(<topic id="shared"> ... <p id="hot">The motor gets hot.</p> ...

<p conref="shared.dita#hot"/>           <!-- MP109 -->
<p conref="shared.dita#shared/hot"/>)",
          toTranslate("Schreiben Sie hinter das `#` zuerst die ID des Themas und dann, hinter "
                      "einem Schrägstrich, die des Elements. Ist die Datei ohne ihre DTD gelesen "
                      "worden (MP201, MP202), so beheben Sie das zuerst.")},
    Entry{
        "MP110", Severity::kWarning, toTranslate("Ende eines Inhaltsverweises ungültig"),
        toTranslate(
            "Mit `conref` und `conrefend` holt ein Element eine Reihe: alle Elemente vom einen bis "
            "zum anderen. Das letzte muss neben dem ersten stehen, unter demselben Elternelement. "
            "Hier tut es das nicht, und nur das erste Element wird geholt."),
        R"(<li conref="steps.dita#steps/first" conrefend="steps.dita#steps/last"/>)",
        toTranslate(
            "Nennen Sie in `conrefend` ein Element, das in derselben Liste oder demselben "
            "Abschnitt hinter dem ersten steht; Datei und Thema sind dieselben wie in `conref`.")},
    Entry{"MP111", Severity::kError, toTranslate("Datei eines Verweises in der Map fehlt"),
          toTranslate("Ein Verweis in einer Map führt zu einer Datei, die es nicht gibt. Groß- und "
                      "Kleinschreibung zählt. Was nicht mit http://, https:// oder mailto: "
                      "beginnt, gilt als Datei. Das Thema, oder die Map, fehlt in der Ausgabe."),
          R"(<topicref href="topics/Installing.dita"/>

$ ls topics
installing.dita)",
          toTranslate("Berichtigen Sie den Pfad: Er gilt von dem Ordner aus, in dem die Map liegt. "
                      "Legen Sie sonst die Datei an, oder nehmen Sie den Verweis heraus.")},
    Entry{"MP201", Severity::kWarning, toTranslate("Ohne DTD gelesen"),
          toTranslate(
              "Die Datei nennt keine DTD in einem Doctype, oder kein Katalog kennt die DTD und sie "
              "liegt auch nicht dort, wo sie liegen soll. Die DTD sagt, welche Elemente Verweise, "
              "Themen und Links sind: Ohne sie wird in einer Map kaum ein Verweis erkannt, und "
              "kein Element eines Themas hat eine ID. Der Lauf geht weiter, doch in der Ausgabe "
              "fehlt fast alles. Bei einer Map ist das ein Fehler, sonst eine Warnung."),
          R"(<!DOCTYPE map PUBLIC "-//OASIS//DTD DITA Map//EN" "map.dtd">)",
          toTranslate("Installieren Sie das Debian-Paket dita-ot, das die DTDs von DITA mitbringt, "
                      "oder nennen Sie mit --catalog oder in XML_CATALOG_FILES den Katalog, der "
                      "die DTD kennt. Fehlt der Doctype, so beginnen Sie die Datei damit.")},
    Entry{"MP202", Severity::kWarning, toTranslate("Verletzt die eigene DTD"),
          toTranslate("Ein Element oder ein Attribut der Datei ist in ihrer DTD nicht vorgesehen, "
                      "oder etwas, das sie verlangt, fehlt. Die Datei wird dann ohne ihre DTD "
                      "gelesen: Die Verweise einer Map gehen verloren, und kein Element eines "
                      "Themas hat mehr eine ID, so dass jeder Verweis hinein scheitert (MP109, "
                      "MP204). Ein einziges unbekanntes Attribut in der Map genügt, um das Buch zu "
                      "leeren. Bei einer Map ist das ein Fehler, sonst eine Warnung."),
          R"(<topicref href="topics/parts.dita" colour="red"/>)",
          toTranslate("Berichtigen Sie die Datei an der genannten Stelle. Ist das Element oder das "
                      "Attribut aus einem neueren DITA, so braucht es dessen DTDs: Nennen Sie "
                      "deren Katalog mit --catalog.")},
    Entry{
        "MP203", Severity::kError, toTranslate("Ziel eines Links oder Bildes fehlt"),
        toTranslate(
            "Ein Link oder ein Bild in einem Thema führt zu einer Datei, die es nicht gibt. Groß- "
            "und Kleinschreibung zählt. Der Verweis steht trotzdem in der Ausgabe und führt ins "
            "Leere. Verweise mit dem `scope` \"peer\" oder \"external\" werden nicht geprüft."),
        R"(<image href="../images/Charger.svg"/>

$ ls images
charger.svg)",
        toTranslate("Berichtigen Sie den Pfad: Er gilt von dem Ordner aus, in dem das Thema liegt. "
                    "Legen Sie sonst die Datei an. Führt der Link aus der Veröffentlichung hinaus, "
                    "so geben Sie ihm scope=\"external\" oder scope=\"peer\".")},
    Entry{"MP204", Severity::kError, toTranslate("Ziel in der Datei nicht gefunden"),
          toTranslate(
              "Ein Link, ein Verweis der Map oder ein Schlüssel führt zu einer Datei, die es gibt, "
              "doch kein Element in ihr hat die ID, die hinter dem `#` steht. In einem Thema steht "
              "zuerst die ID des Themas und hinter einem Schrägstrich die des Elements. In einer "
              "Datei, die ohne ihre DTD gelesen wird, hat kein Element eine ID."),
          R"(<xref href="parts.dita#parts/chuk"/>

<topic id="parts"> ... <li id="chuck">Chuck</li> ...)",
          toTranslate(
              "Berichtigen Sie die ID, oder geben Sie dem gewünschten Element diese ID. Ist die "
              "Datei ohne ihre DTD gelesen worden (MP201, MP202), so beheben Sie das zuerst.")},
    Entry{
        "MP205", Severity::kError, toTranslate("Inhaltsverweise im Kreis"),
        toTranslate("Ein Element holt seinen Inhalt von einem anderen, das ihn, vielleicht über "
                    "weitere, wieder vom ersten holt. Am Ende steht kein Inhalt: In der Ausgabe "
                    "bleibt ein `conref` stehen, oder ein Element verliert, was es selbst "
                    "enthielt. Genannt wird jeder Schritt des Kreises mit seiner Stelle."),
        R"(<p id="one" conref="#topic/two"/>
<p id="two" conref="#topic/one"/>)",
        toTranslate(
            "Schreiben Sie den Inhalt in eines der Elemente, und nehmen Sie diesem das `conref`.")},
    Entry{
        "MP206", Severity::kError, toTranslate("Kein Thema in der Ausgabe"),
        toTranslate(
            "Der Lauf ist zu Ende gekommen, aber kein Thema steht in der Ausgabe. Meist ist die "
            "Map ohne ihre DTD gelesen worden (MP201, MP202), so dass ihre Verweise nicht erkannt "
            "werden. Oder das Profil schließt alles aus, oder kein Thema der Map ließ sich lesen."),
        R"(<map><topicref href="introduction.dita"/></map>     <!-- no doctype -->)",
        toTranslate("Beheben Sie zuerst, was sonst zur Map gemeldet wird. Bleibt es dabei, so "
                    "veröffentlichen Sie einmal ohne --filter und --print: Kommen die Themen dann, "
                    "so schließt das Profil zu viel aus.")},
    Entry{"MP207", Severity::kWarning, toTranslate("Regel des Profils unbekannt oder ohne Treffer"),
          toTranslate("Die DITAVAL-Datei enthält ein Element, ein Attribut oder eine Aktion, die "
                      "DITA nicht kennt, oder eine Regel, die auf nichts in der Veröffentlichung "
                      "zutrifft. Oft ist es ein Tippfehler, und dann steht in der Ausgabe, was "
                      "fehlen soll. Groß- und Kleinschreibung zählt."),
          R"(<prop att="audience" val="trad" action="exclude"/>

<p audience="trade">For the trade only.</p>)",
          toTranslate("Vergleichen Sie Attribut und Wert mit dem, was in den Themen steht. Eine "
                      "Regel, die für eine andere Veröffentlichung gedacht ist, darf bleiben: "
                      "--severity MP207=note nimmt der Meldung das Gewicht.")},
    Entry{
        "MP208", Severity::kWarning,
        toTranslate("Link zu einem Thema, das nicht in der Ausgabe ist"),
        toTranslate("Ein Link führt zu einem Thema, das es gibt, das aber nicht in der Ausgabe "
                    "steht: Die Map verweist nicht darauf, das Profil oder `print` lässt es aus, "
                    "oder `processing-role` macht es zur bloßen Quelle. In der Ausgabe steht dann "
                    "der absolute Pfad der Quelldatei, der auf keinem anderen Rechner gilt."),
        R"(<topicref href="brushes.dita" audience="trade"/>

<xref href="brushes.dita"/>            <!-- published without the trade -->)",
        toTranslate("Nehmen Sie das Thema in die Map auf, oder geben Sie dem Link dieselbe "
                    "Bedingung wie dem Thema. Soll der Link aus der Veröffentlichung hinausführen, "
                    "so geben Sie ihm scope=\"peer\" oder scope=\"external\".")},
    Entry{"MP209", Severity::kWarning, toTranslate("Inhalt eines Map-Verweises entfällt"),
          toTranslate("Ein Verweis auf eine Map steht für die Themen dieser Map. Was in dem "
                      "Verweis selbst geschachtelt ist, kommt nicht in die Ausgabe."),
          R"(<mapref href="maintenance.ditamap">
  <topicref href="disposal.dita"/>
</mapref>)",
          toTranslate("Stellen Sie die geschachtelten Verweise hinter den Map-Verweis, oder nehmen "
                      "Sie sie in die andere Map auf.")},
    Entry{"MP210", Severity::kWarning, toTranslate("`keyscope` ohne Wirkung"),
          toTranslate("Alle Schlüssel einer Veröffentlichung stehen in einem einzigen Namensraum, "
                      "und von mehreren Definitionen eines Namens gilt die erste. Einen Namen mit "
                      "einem Bereich davor, `bereich.schluessel`, kennt das Programm nicht."),
          R"(<mapref href="drill.ditamap" keyscope="drill"/>

<ph keyref="drill.product"/>)",
          toTranslate("Geben Sie jedem Schlüssel einen Namen, den keine andere Map verwendet, etwa "
                      "`drill-product`, und nehmen Sie `keyscope` heraus.")},
    Entry{"MP211", Severity::kError, toTranslate("Platz einer Komponente ist vergeben"),
          toTranslate("Jeder Verweis der obersten Ebene eines Flatbooks wird eine Datei, die nach "
                      "ihrer Quelle heißt. Zwei Quellen ergeben dieselbe Datei, so dass nur eine "
                      "übrig bleibt, oder an der Stelle liegt eine Datei, die kein Lauf "
                      "geschrieben hat. Eine solche bleibt erhalten: Der Text sagt, wo."),
          R"(<topicref href="setup/index.dita"/>
<topicref href="use/index.dita"/>

marrowpress publish guide.ditamap -f flatbook -o book --one-location)",
          toTranslate("Benennen Sie eine der Quellen um, oder veröffentlichen Sie ohne "
                      "--one-location: Dann liegt jede Komponente neben ihrer Quelle. Eine fremde "
                      "Datei legen Sie an einen anderen Ort.")},
    Entry{"MP212", Severity::kError, toTranslate("`navtitle` ist kein Dateiname"),
          toTranslate("In einem Flatbook heißt die Komponente eines `topichead` nach dessen "
                      "`navtitle`. Dieser ergibt keinen Dateinamen im Ordner der Ausgabe: Er führt "
                      "aus dem Ordner hinaus oder in einen, den es nicht gibt, oder hat mehr als "
                      "248 Byte. Die Komponente wird nicht geschrieben."),
          R"(<topichead navtitle="Input/Output"> ... </topichead>)",
          toTranslate("Geben Sie dem `topichead` einen kürzeren `navtitle` ohne Schrägstrich und "
                      "Backslash.")},
    Entry{"MP213", Severity::kError, toTranslate("Pfad wird abgeschnitten"),
          toTranslate("Ein Ordner oder eine Datei hat \"#\" oder einen Backslash im Namen. "
                      "Verweise hinein werden nur bis zu diesem Zeichen gelesen und führen deshalb "
                      "woandershin oder ins Leere."),
          R"(<topicref href="c%23/introduction.dita"/>)",
          toTranslate("Benennen Sie den Ordner oder die Datei um.")},
    Entry{"MP214", Severity::kWarning, toTranslate("Eine Datei unter zwei Schreibweisen"),
          toTranslate("Dieselbe Datei wird über zwei Pfade erreicht: über einen symbolischen Link, "
                      "oder in anderer Groß- und Kleinschreibung, wo das Dateisystem sie nicht "
                      "unterscheidet. Für den Lauf sind es zwei Dokumente: Links zum einen führen "
                      "nicht zum anderen, und das Thema kann doppelt erscheinen."),
          R"(<topicref href="topics/parts.dita"/>
<xref href="latest/parts.dita"/>

$ ls -l latest
latest -> topics)",
          toTranslate("Schreiben Sie den Pfad überall gleich.")},
    Entry{
        "MP215", Severity::kNote, toTranslate("Hat hier keine Wirkung"),
        toTranslate("DITA kennt es, dieses Programm wertet es aber nicht aus: Beziehungstabellen, "
                    "`conaction`, `ditavalref`, `copy-to`, `chunk`, `coderef`, Subject-Schemes, "
                    "Kennzeichnungen und Revisionen im Profil. Dazu gehören ein Link, der ohne "
                    "Text bleibt, und ein Web-Link über einen Schlüssel, der weder `scope` noch "
                    "`format` hat. Jede Art wird je Datei einmal genannt, mit ihrer Anzahl."),
        R"(<reltable> ... </reltable>
<topicref href="parts.dita" chunk="to-content"/>)",
        toTranslate("Erreichen Sie das Gewünschte auf anderem Weg, wie es der Hinweis bei der "
                    "Meldung sagt, oder lassen Sie es, wenn die Wirkung nicht gebraucht wird.")},
    Entry{
        "MP216", Severity::kWarning, toTranslate("Inhaltsverweis auf einen Inhaltsverweis"),
        toTranslate("Das Element, dessen Inhalt geholt wird, holt seinen Inhalt selbst mit "
                    "`conref` und hatte noch keinen, als es kopiert wurde. Die Kopie bleibt leer."),
        R"(<p conref="notes.dita#notes/hot"/>

<p id="hot" conref="shared.dita#shared/hot"/>    <!-- notes.dita -->)",
        toTranslate("Verweisen Sie unmittelbar auf das Element, in dem der Inhalt steht.")},
    Entry{"MP217", Severity::kWarning, toTranslate("Link in einer Schlüsseldefinition entfällt"),
          toTranslate("Der Inhalt einer Schlüsseldefinition verweist auf einen weiteren Schlüssel, "
                      "der ein `href` hat. Dessen Text kommt in die Ausgabe, sein Link nicht."),
          R"(<keydef keys="help" href="help.dita"><topicmeta>
  <linktext>See <keyword keyref="shop"/></linktext>
</topicmeta></keydef>
<keydef keys="shop" href="https://bramble.example" scope="external"/>)",
          toTranslate("Verweisen Sie dort, wo der Link gebraucht wird, im Thema selbst auf den "
                      "weiteren Schlüssel.")},
    Entry{"MP218", Severity::kError, toTranslate("Schlüsseldefinition geht verloren"),
          toTranslate(
              "Eine Schlüsseldefinition führt in eine Datei, die auf .xml endet, nennt hinter dem "
              "`#` eine ID und hat kein `type`. Sie wird für den Verweis auf ein Stück einer Map "
              "gehalten: An ihre Stelle tritt das Element mit dieser ID, und der Schlüssel ist "
              "nicht definiert. Jede Verwendung des Schlüssels ist dann MP105."),
          R"(<keydef keys="speeds" href="speeds.xml#speeds"/>)",
          toTranslate("Geben Sie der Definition type=\"topic\" (oder \"concept\", \"task\", "
                      "\"reference\"), oder lassen Sie den Namen der Datei auf .dita enden.")},
    Entry{"MP301", Severity::kError, toTranslate("Auftrag kam zu nichts"),
          toTranslate("Ein Auftrag eines Stapels wurde nicht begonnen oder endete vorzeitig: durch "
                      "ein Signal, nach der Zeit von --timeout, oder weil ein Argument nicht "
                      "stimmt. Ausgaben hat er keine; was an ihrer Stelle stand, steht noch dort."),
          R"(marrowpress batch project.xml --output out --timeout 60)",
          toTranslate("Beheben Sie, was die Meldung nennt, und rufen Sie den Stapel mit "
                      "--retry-failed noch einmal auf. Phase und Signal stehen im Ergebnis des "
                      "Auftrags.")},
    Entry{
        "MP302", Severity::kError, toTranslate("Zwei Aufträge stören einander"),
        toTranslate("Ein Auftrag eines Stapels schreibt eine Datei, die ein anderer liest oder "
                    "auch schreibt. Was dabei herauskommt, hängt davon ab, welcher zuerst läuft; "
                    "beide gelten als gescheitert."),
        R"(<topicref href="../out/guide.dita"/>    <!-- out/guide.dita schreibt ein anderer Auftrag -->)",
        toTranslate("Geben Sie den Aufträgen verschiedene Ausgaben. Soll der eine lesen, was der "
                    "andere schreibt, dann rufen Sie den Stapel mit --serialize auf.")},
};

/// Null for an unknown id.
const Entry* entryOf(std::string_view id) {
    const auto* const found = std::find_if(kEntries.begin(), kEntries.end(),
                                           [id](const Entry& entry) { return entry.id == id; });
    return found == kEntries.end() ? nullptr : found;
}

}  // namespace

const std::vector<std::string>& findingIds() {
    static const std::vector<std::string> ids = [] {
        std::vector<std::string> all;
        all.reserve(kEntries.size());
        for (const Entry& entry : kEntries) {
            all.emplace_back(entry.id);
        }
        return all;
    }();
    return ids;
}

std::optional<Severity> defaultSeverity(std::string_view id) {
    const Entry* const entry = entryOf(id);
    return entry ? std::optional(entry->severity) : std::nullopt;
}

std::string findingTitle(std::string_view id) {
    const Entry* const entry = entryOf(id);
    return entry ? translated(entry->title) : std::string();
}

std::optional<Explanation> explanationOf(std::string_view id) {
    const Entry* const entry = entryOf(id);
    if (!entry) {
        return std::nullopt;
    }
    return Explanation{translated(entry->title), translated(entry->meaning), entry->example,
                       translated(entry->remedy)};
}

}  // namespace marrowpress
