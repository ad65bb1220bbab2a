#include "references/conref_resolution.h"

#include <filesystem>

#include "tests/unit/references/conref_samples.h"

namespace marrowpress {
namespace {

struct ConrefCase {
    const char* name;
    const char* content;   // of the topic "t" that is walked
    const char* resolved;  // what it becomes
    std::string console;   // the report lines
};

// NOLINTNEXTLINE(readability-identifier-naming): GoogleTest asks for this name.
void PrintTo(const ConrefCase& example, std::ostream* stream) {
    *stream << example.content;
}

/// References within one document. No file is read.
const ConrefCase kCasesInOneDocument[] = {
    {"TakesTheContent", "<p conref='#t/s'>own<b/></p><p id='s'>1<ph>2</ph><!--3--><?four 4?></p>",
     "<p>1<ph>2</ph><!--3--><?four 4?></p><p id='s'>1<ph>2</ph><!--3--><?four 4?></p>", ""},
    {"TakesNothingFromAnEmptyTarget", "<p conref='#t/s'>own</p><p id='s'/>", "<p/><p id='s'/>", ""},
    {"TakesCharacterData", "<p conref='#t/s'/><p id='s'><![CDATA[<x>]]></p>",
     "<p><![CDATA[<x>]]></p><p id='s'><![CDATA[<x>]]></p>", ""},
    {"PlaceAndIdStay", "<p/>1<p id='e' conref='#t/s'/>2<p id='s'>S</p>",
     "<p/>1<p id='e'>S</p>2<p id='s'>S</p>", ""},
    {"IdsInsideTheCopyStay", "<p conref='#t/s'/><p id='s'><ph id='i'/></p>",
     "<p><ph id='i'/></p><p id='s'><ph id='i'/></p>", ""},
    {"IdsOfTopicsInTheCopyStay", "<concept conref='#c'/><concept id='c'><topic id='i'/></concept>",
     "<concept><topic id='i'/></concept><concept id='c'><topic id='i'/></concept>", ""},
    {"KeysAndPathsInTheCopyStay",
     "<p conref='#t/s'/><p id='s'><ph keyref='k' conkeyref='k/e'/><xref href='x.dita'/></p>",
     "<p><ph conkeyref='k/e' keyref='k'/><xref href='x.dita'/></p>"
     "<p id='s'><ph conkeyref='k/e' keyref='k'/><xref href='x.dita'/></p>",
     ""},
    {"TargetInFront", "<p id='s'>S</p><p conref='#t/s'/>", "<p id='s'>S</p><p>S</p>", ""},
    {"FirstTopicWithId", "<p conref='#./s'/><p id='s'>S</p>", "<p>S</p><p id='s'>S</p>", ""},
    {"EmptyConrefIsNone", "<p conref=''>own</p><p conref='' conrefend='#t/s'>own</p>",
     "<p conref=''>own</p><p conref='' conrefend='#t/s'>own</p>", ""},
    {"ConrefendAloneIsNone", "<p conrefend='#t/s'>own</p>", "<p conrefend='#t/s'>own</p>", ""},
    {"EmptyConrefendIsNone", "<p conref='#t/s' conrefend=''>own</p><p id='s'>S</p>",
     "<p>S</p><p id='s'>S</p>", ""},

    {"NoSuchElement", "<p conref='#t/x'>own</p>", "<p>own</p>",
     notFoundInTopic("p", "x", "t", "d.dita")},
    {"NoSuchTopic", "<p conref='#u/x' audience='a'>own</p>", "<p audience='a'>own</p>",
     notFound("p", "u", "d.dita")},
    {"ElementOfOtherName", "<p conref='#t/s'>own</p><ph id='s'>S</ph>",
     "<p>own</p><ph id='s'>S</ph>", notFoundInTopic("p", "s", "t", "d.dita")},
    {"TopicOfOtherName", "<p conref='#t'>own</p>", "<p>own</p>", notFound("p", "t", "d.dita")},
    {"NothingNamedAtAll", "<p conref='#'>own</p>", "<p>own</p>", notFound("p", "", "d.dita")},
    {"MessagesComeInDocumentOrder", "<p conref='#t/1'><ph conref='#2'/></p><b conref='#t/3'/>",
     "<p><ph/></p><b/>",
     notFoundInTopic("p", "1", "t", "d.dita") + notFound("ph", "2", "d.dita") +
         notFoundInTopic("b", "3", "t", "d.dita")},
    {"OwnContentThatStaysIsWalked", "<p conref='#t/x'><ph conref='#t/s'/></p><ph id='s'>S</ph>",
     "<p><ph>S</ph></p><ph id='s'>S</ph>", notFoundInTopic("p", "x", "t", "d.dita")},
    {"OwnContentThatGoesIsNot", "<p conref='#t/s'><ph conref='#t/x'/></p><p id='s'>S</p>",
     "<p>S</p><p id='s'>S</p>", ""},
};

/// Ranges within one document.
const ConrefCase kRangeCases[] = {
    {"ThreeElementsWithWhatIsBetween",
     "<x><p conref='#t/a' conrefend='#t/c'/>behind</x>"
     "0<p id='a'>A</p>1<!--2--><?three 3?><ul id='b'>B</ul><![CDATA[4]]><p id='c'>C</p>5",
     "<x><p>A</p>1<!--2--><?three 3?><ul>B</ul><![CDATA[4]]><p>C</p>behind</x>"
     "0<p id='a'>A</p>1<!--2--><?three 3?><ul id='b'>B</ul><![CDATA[4]]><p id='c'>C</p>5",
     ""},
    {"NothingBehindTheReference",
     "<x><p conref='#t/a' conrefend='#t/b'/></x><p id='a'/><p id='b'/>",
     "<x><p/><p/></x><p id='a'/><p id='b'/>", ""},
    {"EndIsTheStart", "<x><p conref='#t/a' conrefend='#t/a'/></x><p id='a'>A</p>1<p>2</p>",
     "<x><p>A</p></x><p id='a'>A</p>1<p>2</p>", ""},
    {"EndDirectlyInFrontOfTheStart",
     "<x><p audience='e' conref='#t/a' conrefend='#t/z'>own</p></x><p id='z'/><p id='a'>A</p>",
     "<x><p audience='e'>own</p></x><p id='z'/><p id='a'>A</p>", ""},
    {"EndFurtherBackByAText",
     "<x><p conref='#t/a' conrefend='#t/z'>own</p></x><y><p id='z'/>-<p id='a'>A</p>1<q>2</q>3</y>",
     "<x><p>A</p>1<q>2</q>3</x><y><p id='z'/>-<p id='a'>A</p>1<q>2</q>3</y>", ""},
    {"EndFurtherBackAndTheStartIsLast",
     "<x><p conref='#t/a' conrefend='#t/z'>own</p></x><y><p id='z'/><p/><p id='a'>A</p></y>",
     "<x><p>A</p></x><y><p id='z'/><p/><p id='a'>A</p></y>", ""},
    {"EndFurtherBackInTheParentOfTheReference",
     "<p id='z'/><p/><p id='a'>A</p>1<p conref='#t/a' conrefend='#t/z'>own</p>2",
     "<p id='z'/><p/><p id='a'>A</p>1<p>A</p>1<p/>22", ""},
    {"EndWithAnotherParent",
     "<x><p conref='#t/a' conrefend='#t/b'>own</p></x><p id='a'>A</p>1<x><p id='b'/></x>",
     "<x><p>A</p></x><p id='a'>A</p>1<x><p id='b'/></x>", invalidConrefEnd()},
    {"EndInsideTheStart", "<x><p conref='#t/a' conrefend='#t/b'/></x><p id='a'><p id='b'/></p>",
     "<x><p><p id='b'/></p></x><p id='a'><p id='b'/></p>", invalidConrefEnd()},
    {"EndNotInTheTopic", "<x><p conref='#t/a' conrefend='#t/b'>own</p></x><p id='a'>A</p><p>2</p>",
     "<x><p>A</p></x><p id='a'>A</p><p>2</p>",
     notFoundInTopic("p", "b", "t", "d.dita") + invalidConrefEnd()},
    {"EndInNoTopic", "<x><p conref='#t/a' conrefend='#u/b'>own</p></x><p id='a'>A</p><p>2</p>",
     "<x><p>A</p></x><p id='a'>A</p><p>2</p>", notFound("p", "u", "d.dita") + invalidConrefEnd()},
    {"EndOfOtherName", "<x><p conref='#t/a' conrefend='#t/b'/></x><p id='a'>A</p><ul id='b'/>",
     "<x><p>A</p></x><p id='a'>A</p><ul id='b'/>",
     notFoundInTopic("p", "b", "t", "d.dita") + invalidConrefEnd()},
    {"EndWithoutFragment", "<x><p conref='#t/a' conrefend='b'/></x><p id='a'>A</p>",
     "<x><p>A</p></x><p id='a'>A</p>", notFound("p", "", "d.dita") + invalidConrefEnd()},
    {"NeitherStartNorEnd", "<p conref='#t/a' conrefend='#u/b'>own</p>", "<p>own</p>",
     notFoundInTopic("p", "a", "t", "d.dita") + notFound("p", "u", "d.dita")},
    {"NoStartButAnEnd", "<p conref='#t/a' conrefend='#t/b'>own</p><p id='b'/>",
     "<p>own</p><p id='b'/>", notFoundInTopic("p", "a", "t", "d.dita")},
    {"TheEndsOwnPathIsIgnored",
     "<x><p conref='#t/a' conrefend='missing.dita#t/b'/></x><p id='a'>A</p><p id='b'>B</p>",
     "<x><p>A</p><p>B</p></x><p id='a'>A</p><p id='b'>B</p>", ""},
    {"ReferenceInsideTheRange",
     "<p id='a'>A</p><p audience='e' conref='#t/a' conrefend='#t/c'>own</p><p id='c'>C</p>",
     "<p id='a'>A</p><p audience='e'>A</p><p audience='e'/><p audience='e'>C</p><p id='c'>C</p>",
     ""},
    {"ReferenceIsTheStart", "<p id='a' conref='#t/a' conrefend='#t/c'>A</p>1<p id='c'>C</p>",
     "<p id='a'/>1<p>C</p>1<p id='c'>C</p>", ""},
    {"ReferenceIsTheEnd", "<p id='a'>A</p>1<p id='c' conref='#t/a' conrefend='#t/c'>C</p>2",
     "<p id='a'>A</p>1<p id='c'>A</p>1<p/>2", ""},
    {"ReferenceInsideTheEnd",
     "<p id='a'>A</p><p id='b'>B<p conref='#t/a' conrefend='#t/b'>own</p></p>",
     // The copy of "b" stands in "b" when its content is copied.
     "<p id='a'>A</p><p id='b'>B<p>A</p><p>B<p/><p>B<p/></p></p></p>", ""},
    {"ReferenceInsideTheStart",
     "<p id='a'>A<p conref='#t/a' conrefend='#t/b'>own</p></p><p id='b'>B</p>",
     // The copy of "b" stands in "a" when the content of "a" is copied, child by child.
     "<p id='a'>A<p>A<p>A</p><p>B</p></p><p>B</p></p><p id='b'>B</p>", ""},
    {"ReferencesInTheRangeAreFollowed",
     "<x><p conref='#t/a' conrefend='#t/c'/></x>"
     "<p id='a'/><p conref='#t/s'>B</p><p id='c'><ph conref='#t/v'/></p>"
     "<p id='s'>S</p><ph id='v'>V</ph>",
     "<x><p/><p>S</p><p><ph>V</ph></p></x>"
     "<p id='a'/><p>S</p><p id='c'><ph>V</ph></p><p id='s'>S</p><ph id='v'>V</ph>",
     ""},
    {"RangesInTheRangeAreFollowed",
     "<x><p conref='#t/a' conrefend='#t/b'/>0</x><p id='a'>A</p>"
     "<p id='b' conref='#t/c' conrefend='#t/d'>B</p>"
     "<y><p id='c'>C</p>1<p id='d'>D</p></y>",
     "<x><p>A</p><p>C</p>1<p>D</p>0</x><p id='a'>A</p><p id='b'>C</p>1<p>D</p>"
     "<y><p id='c'>C</p>1<p id='d'>D</p></y>",
     ""},
    {"MemberRefersToTheStartAlone",
     "<x><p conref='#t/a' conrefend='#t/c'/></x><p id='a'>A</p><p conref='#t/a'>B</p><p "
     "id='c'>C</p>",
     "<x><p>A</p><p>A</p><p>C</p></x><p id='a'>A</p><p>A</p><p id='c'>C</p>", ""},
    {"MembersReferToTheMembersInFront",
     "<x><p conref='#t/a' conrefend='#t/c'/></x>"
     "<p id='a'>A</p><p id='b'>B<p conref='#t/a'/></p><p id='c'>C<p conref='#t/b'/></p>",
     "<x><p>A</p><p>B<p>A</p></p><p>C<p>B<p>A</p></p></p></x>"
     "<p id='a'>A</p><p id='b'>B<p>A</p></p><p id='c'>C<p>B<p>A</p></p></p>",
     ""},
};

/// References that look back on themselves and come to an end nevertheless.
const ConrefCase kFiniteCases[] = {
    {"ToItself", "<p id='a' audience='e' conref='#t/a'>own</p>", "<p audience='e' id='a'/>", ""},
    {"ToItselfAsARange", "<p id='a' conref='#t/a' conrefend='#t/a'>own</p>", "<p id='a'/>", ""},
    // The children are copied one by one: the second one already holds a copy of the first.
    {"ToItsParent", "<p id='a'>1<p conref='#t/a'>own</p>2</p>", "<p id='a'>1<p>1<p>1</p>2</p>2</p>",
     ""},
    // Attributes come last: the copy of the reference inside it has none yet.
    {"ToItsParentWithAttributes", "<p audience='a' id='a'>1<p conref='#t/a'/></p>",
     "<p audience='a' id='a'>1<p audience='a'>1<p>1</p></p></p>", ""},
    {"ToAnAncestor", "<p id='a'>1<q>2<p conref='#t/a'/></q></p>",
     "<p id='a'>1<q>2<p>1<q>2<p>1</p></q></p></q></p>", ""},
    {"ToItsOwnChild", "<p conref='#t/s'>x<p id='s'>S</p>y</p>", "<p>S</p>", ""},
    // Gone with the own content, the start has no siblings any more...
    {"ToARangeOfItsOwnChildren",
     "<p conref='#t/s' conrefend='#t/e'>x<p id='s'>S</p>-<p id='e'>E</p></p>", "<p>S</p>", ""},
    // ...but one further down has.
    {"ToARangeOfItsGrandchildren",
     "<p conref='#t/s' conrefend='#t/e'><x><p id='s'>S</p>-<p id='e'>E</p>y</x></p>",
     "<p>S</p>-<p>E</p>", ""},
    {"EachToTheOther", "<p id='a' conref='#t/b'>A</p><p id='b' conref='#t/a'>B</p>",
     "<p conref='#t/a' id='a'>B</p><p conref='#t/a' id='b'>B</p>", ""},
    {"EachInsideTheOther",
     "<ph id='a'>A<ph conref='#t/b'>x</ph></ph><ph id='b'>B<ph conref='#t/a'>y</ph></ph>",
     "<ph id='a'>A<ph>B<ph>A<ph>B<ph>A</ph></ph></ph></ph></ph>"
     "<ph id='b'>B<ph>A<ph>B<ph>A<ph>B<ph>A</ph></ph></ph></ph></ph></ph>",
     ""},
    {"OneTargetManyTimes",
     "<p conref='#t/s'/><p conref='#t/s'/><q><p conref='#t/s'/></q><p id='s'><p conref='#t/v'/></p>"
     "<p id='v'>V</p>",
     "<p><p>V</p></p><p><p>V</p></p><q><p><p>V</p></p></q><p id='s'><p>V</p></p><p id='v'>V</p>",
     ""},
    {"OneTargetSideBySideAndNested",
     "<p conref='#t/a'/><p id='a'><p conref='#t/b'/><p conref='#t/c'/><p conref='#t/b'/></p>"
     "<p id='b'><p conref='#t/c'/><p conref='#t/c'/></p><p id='c'>C</p>",
     "<p><p><p>C</p><p>C</p></p><p>C</p><p><p>C</p><p>C</p></p></p>"
     "<p id='a'><p><p>C</p><p>C</p></p><p>C</p><p><p>C</p><p>C</p></p></p>"
     "<p id='b'><p>C</p><p>C</p></p><p id='c'>C</p>",
     ""},
    // What comes along as an attribute stays on the element, which the walk has passed...
    {"TargetWithAReferenceOfItsOwn",
     "<p conref='#t/s'/><p id='s' conref='#t/u' conrefend='#t/u' xtrf='x'>S</p><p id='u'>U</p>",
     "<p conref='#t/u' conrefend='#t/u' xtrf='x'>S</p><p id='s' xtrf='x'>U</p><p id='u'>U</p>", ""},
    // ...and is followed in copies of it.
    {"CopyOfAnElementThatGotAReference",
     "<x id='x'><p conref='#t/s'/></x><p id='s' conref='#t/u'>S</p><p id='u'>U</p>"
     "<x conref='#t/x'/>",
     "<x id='x'><p conref='#t/u'>S</p></x><p id='s'>U</p><p id='u'>U</p><x><p>U</p></x>", ""},
    // The second time, it is the reference that came from "b", and leads elsewhere.
    {"ReferenceThatCameWithTheTargetLeadsOn",
     "<ph id='p'><ph conref='#t/b'/></ph><ph id='b' conref='#t/c'><ph conref='#t/p'/></ph>"
     "<ph id='c'>C</ph>",
     "<ph id='p'><ph conref='#t/c'><ph><ph>C</ph></ph></ph></ph><ph id='b'>C</ph><ph id='c'>C</ph>",
     ""},
    // The second time, the id stands in a copy that was made in between.
};

/// References that would copy themselves without end. Each is cut once: it loses its attributes,
/// keeps its content, and is reported.
const ConrefCase kEndlessCases[] = {
    // The rule goes by elements: that a copy would take over the id of the start doesn't count.
    {"StartThatTheContentCameFromThoughItsIdMoves",
     "<ph conref='#t/q'/><ph id='a'><ph conref='#t/z'/><ph conref='#t/q'/></ph>"
     "<ph id='q'><ph conref='#t/a'/></ph><ph id='z'><ph id='a'>Z</ph></ph>",
     "<ph><ph><ph><ph id='a'>Z</ph></ph><ph/></ph></ph>"
     "<ph id='a'><ph><ph id='a'>Z</ph></ph><ph><ph>Z</ph></ph></ph>"
     "<ph id='q'><ph>Z</ph></ph><ph id='z'><ph id='a'>Z</ph></ph>",
     notFound("ph", "q", "d.dita")},
    {"TargetWithAReferenceToItself",
     "<p conref='#t/a'/><p id='a'>A<p audience='c' conref='#t/a'>own</p></p>",
     "<p>A<p audience='c'>own</p></p><p id='a'>A<p audience='c'>A<p audience='c'>A</p></p></p>",
     notFound("p", "a", "d.dita")},
    {"TwoReferencesToTheParent", "<p id='a'><p conref='#t/a'/><p conref='#t/a'>own</p></p>",
     "<p id='a'><p><p/><p>own</p></p>"
     "<p><p><p/><p>own</p></p><p><p><p/><p>own</p></p></p></p></p>",
     notFound("p", "a", "d.dita")},
    {"TwoReferencesDeepInTheTarget", "<p id='a'><q><p conref='#t/a'/><p conref='#t/a'/></q></p>",
     "<p id='a'><q><p><q><p/><p/></q></p><p><q><p><q><p/><p/></q></p><p/></q></p></q></p>",
     notFound("p", "a", "d.dita")},
    {"TopicIntoItself", "<topic conref='#s'/><topic id='s'>S<topic conref='#s'>own</topic></topic>",
     "<topic>S<topic>own</topic></topic><topic id='s'>S<topic>S<topic>S</topic></topic></topic>",
     notFound("topic", "s", "d.dita")},
    {"TwoThatHoldEachOther",
     "<ph conref='#t/a'/><ph id='a'>A<ph conref='#t/b'>x</ph></ph>"
     "<ph id='b'>B<ph conref='#t/a'>y</ph></ph>",
     "<ph>A<ph>B<ph>y</ph></ph></ph><ph id='a'>A<ph>B<ph>A<ph>B<ph>A</ph></ph></ph></ph></ph>"
     "<ph id='b'>B<ph>A<ph>B<ph>A<ph>B<ph>A</ph></ph></ph></ph></ph></ph>",
     notFound("ph", "a", "d.dita")},
    {"RangeThatHoldsTheSameRange",
     "<x><p conref='#t/a' conrefend='#t/c'/></x><p id='a'>A</p>"
     "<p id='b' conref='#t/a' conrefend='#t/c'>B</p><p id='c'>C</p>",
     "<x><p>A</p><p>A</p><p>B</p><p>C</p><p>C</p></x>"
     "<p id='a'>A</p><p id='b'>A</p><p/><p>C</p><p id='c'>C</p>",
     notFound("p", "a", "d.dita")},
    {"RangeWhoseEndHoldsTheSameRange",
     "<x><p conref='#t/a' conrefend='#t/b'/></x>"
     "<p id='a'>A</p><p id='b'>B<p conref='#t/a' conrefend='#t/b'>own</p></p>",
     "<x><p>A</p><p>B<p>A</p><p>B<p>own</p></p></p></x>"
     "<p id='a'>A</p><p id='b'>B<p>A</p><p>B<p/><p>B<p/></p></p></p>",
     notFound("p", "a", "d.dita")},
    {"RangesThatEndInEachOther",
     "<x><p conref='#t/a1' conrefend='#t/a2'/></x>"
     "<y><p id='a1'>A1</p><p id='a2' conref='#t/b1' conrefend='#t/b2'>A2</p></y>"
     "<z><p id='b1'>B1</p><p id='b2' conref='#t/a1' conrefend='#t/a2'>B2</p></z>",
     "<x><p>A1</p><p>B1</p><p>A1</p><p>A2</p></x>"
     "<y><p id='a1'>A1</p><p id='a2'>B1</p><p>A1</p><p>B1</p></y>"
     "<z><p id='b1'>B1</p><p id='b2'>A1</p><p>B1</p></z>",
     notFound("p", "b1", "d.dita")},
    {"NoMessageAboutTheEndOfACut",
     "<p conref='#t/a'/><p id='a'>A<p conref='#t/a' conrefend='#t/none'>own</p></p>",
     "<p>A<p>own</p></p><p id='a'>A<p>A<p>A</p></p></p>",
     notFound("p", "a", "d.dita") + notFoundInTopic("p", "none", "t", "d.dita") +
         invalidConrefEnd()},
    // The copies of "a" take over its id.
    {"TargetInsideWhatIsCopied",
     "<q conref='#t/q'/><q id='q'><p conref='#t/a'/><p id='a'>"
     "<q conref='#t/q'>own</q></p></q>",
     "<q><p><q>own</q></p><p id='a'><q>own</q></p></q>"
     "<q id='q'><p><q>own</q></p><p id='a'><q><p><q>own</q></p>"
     "<p id='a'><q><p><q>own</q></p></q></p></q></p></q>",
     notFound("q", "q", "d.dita") + notFound("q", "q", "d.dita")},
};

class ConrefWalkTest : public ConrefTest, public testing::WithParamInterface<ConrefCase> {};

TEST_P(ConrefWalkTest, ResolvesAndReports) {
    EXPECT_EQ(resolved(GetParam().content), GetParam().resolved);
    EXPECT_EQ(console(), GetParam().console);
}

const auto kNameOfCase = [](const auto& instance) { return std::string(instance.param.name); };
INSTANTIATE_TEST_SUITE_P(InOneDocument, ConrefWalkTest, testing::ValuesIn(kCasesInOneDocument),
                         kNameOfCase);
INSTANTIATE_TEST_SUITE_P(Range, ConrefWalkTest, testing::ValuesIn(kRangeCases), kNameOfCase);
INSTANTIATE_TEST_SUITE_P(Finite, ConrefWalkTest, testing::ValuesIn(kFiniteCases), kNameOfCase);
INSTANTIATE_TEST_SUITE_P(Endless, ConrefWalkTest, testing::ValuesIn(kEndlessCases), kNameOfCase);

}  // namespace
}  // namespace marrowpress
