#pragma once

#include <cstdint>

#include "marrowpress/host_interfaces.h"

/// What a run met, for a host that wants to know more than the lines for people
/// say: where, why, and what came into the output.
///
/// Nothing here changes a run. A host without an observer has the same output,
/// the same lines and the same answer, and no question is asked of the file
/// system for its sake.
namespace marrowpress {

/// The reason of a run that failed for want of memory.
inline constexpr const char* kNotEnoughMemory = "there is not enough memory";

/// A start tag in a source file, at its "<"; or a file as a whole.
struct ObservedPlace {
    const char* file;      ///< absolute path; null when it is not known
    std::uint32_t line;    ///< from 1; 0 for the file as a whole
    std::uint32_t column;  ///< from 1, in UTF-16 code units; 0 for the file as a whole
};

/// A reference by which content came to where it stands.
struct ObservedStep {
    ObservedPlace place;    ///< of the element that refers
    const char* attribute;  ///< by which it refers: "href", "conref", "keyref", ...
    const char* target;     ///< the attribute's value, as it stood when it was followed
};

enum class ObservationKind : std::uint32_t {
    /// A part of the run begins. `target`: "keys", "map", "assembly", "output".
    kPhase = 1,
    /// The file `target` was read. `element`: its root. `code`: a `DocumentGrammar`. The place is
    /// that of the first reference to it.
    kDocumentRead = 2,
    /// The file `target` was asked for, and could not be read. `reason`: why.
    kDocumentUnread = 3,
    /// The element defines the key `target`. `code`: a `KeyState`. `detail`: its href, absolute;
    /// `reason`: the key reference by which it leads on.
    kKeyDefinition = 4,
    /// A topic of the file `target` comes into the output, on account of the element.
    kTopic = 5,
    /// A component is about to be created at `target`, on account of the element. `detail`: the
    /// path of its source, empty for a heading.
    kComponent = 6,
    /// An element that could be published has the token `detail` in its attribute `target`, about
    /// which the profile has a rule. Told once for each pair.
    kConditionValue = 7,
    /// The file `target` of the result was written.
    kOutputWritten = 8,
    /// Something is wrong, or is not as an author may think. `code`: a `FaultCode`.
    kFault = 9,
    /// `code`: how many faults were met when no more were kept.
    kFaultsDropped = 10,
    /// The profile leaves the element out. `target`: the file that it refers to, absolute, that of
    /// a
    /// topic itself, empty when it refers to none; `detail`: the attribute by which it falls.
    kExcluded = 12,
    /// The run ends with a negative status. `reason`: why, as far as it is known.
    kRunFailed = 11,
    /// The element, which defines the key `target`, says what that stands for. `detail`: its href,
    /// absolute; `reason`: its text. Of definitions that count it is told when what they refer to
    /// has come to them. For an `IHostReferenceObserver`.
    kKeyMeaning = 13,
    /// The element refers to the key `target`, whether anybody defines it or not. Told of each copy
    /// of the element; an artefact where the profile leaves it out. For an
    /// `IHostReferenceObserver`.
    kKeyReference = 14,
    /// The element refers to the file `target`, which the run looks for. `code`: a `ReferenceKind`.
    /// Told of each copy of the element. For an `IHostReferenceObserver`.
    kFileReference = 15,
    /// A DTD, or another external entity, is opened at the path `target`, if it is there. `detail`:
    /// the file that names it, empty for one that the run makes. Told once for each pair. For an
    /// `IHostReferenceObserver`.
    kEntity = 16,
};

/// How an element refers to a file.
enum class ReferenceKind : std::uint32_t {
    kMap = 0,            ///< as a map to a map
    kTopic = 1,          ///< as a map to anything else
    kKeyDefinition = 2,  ///< for whoever uses its key
    kConref = 3,         ///< for content
    kLink = 4,
    kImage = 5,  ///< an image or another medium
};

/// How a document was read.
enum class DocumentGrammar : std::uint32_t {
    kOwn = 0,        ///< with its DTD
    kNoDoctype = 1,  ///< it names none
    kNotFound = 2,   ///< no file stands for its DTD
    kInvalid = 3,    ///< it breaks its DTD, and was read without
};

enum class KeyState : std::uint32_t {
    kEffective = 0,  ///< the first of its name, which counts
    kShadowed = 1,   ///< another one of its name counts
    kExcluded = 2,   ///< the profile leaves it out
    kLost = 3,       ///< what it refers to stands in its place
};

/// What a fault is about. Those from 105 to 111 come with the report line of that number; all
/// others have no line. A target is a path, absolute, with a fragment where there is one, unless
/// something else is said.
enum class FaultCode : std::uint32_t {
    /// `target`: the key.
    kKeyNotFound = 105,
    /// `reason`: the parser's or the system's. The place is where the parser stopped, or the
    /// reference to the file.
    kCannotRead = 106,
    /// `reason`: the system's.
    kCannotWrite = 107,
    /// `detail`: the tag name that was looked for; `reason`: that of the element that bears the
    /// id, empty when none does.
    kElementInTopicNotFound = 108,
    /// As 108.
    kElementNotFound = 109,
    /// `target`: the end of the range, `detail`: its start; in a map both are as they are written.
    kInvalidConrefEnd = 110,
    kReferencedFileNotFound = 111,
    /// The document was read without its DTD. `detail`: the public identifier; `reason`: the
    /// system identifier.
    kReadWithoutDtd = 201,
    /// The document breaks its DTD. `reason`: the parser's.
    kBreaksDtd = 202,
    /// A link or an image leads to a file that is not there.
    kLinkTargetMissing = 203,
    /// No element has the fragment that a link, a map reference or a key names. `detail`: where a
    /// topic is wanted and an element within one bears the id, the id of that topic.
    kFragmentNotFound = 204,
    /// Content references lead to each other. The ring is in `related`.
    kConrefLoop = 205,
    /// The output has no topic.
    kNoTopic = 206,
    /// A link leads to a topic that is not in the output.
    kTopicNotInOutput = 208,
    /// A map reference's children come to nothing. `detail`: how many. The place is that of the
    /// first.
    kMapReferenceChildren = 209,
    /// `target`: the name of the key scope.
    kKeyScope = 210,
    /// `target`: the navtitle. `detail`: the path that it would have given.
    kNavtitleNoFileName = 212,
    /// `detail`: "#" or a backslash. The path as it is read is cut there.
    kPathIsCut = 213,
    /// `target`: what has no effect: "reltable", "conaction", "ditavalref", "copy-to", "chunk",
    /// "coderef", "subjectScheme", "link-text", "key-scope-format". Told for each element.
    kNoEffect = 215,
    /// A content reference leads to one that had not been followed, and stays empty. `detail`: what
    /// that one leads to.
    kConrefOfConref = 216,
    /// `target`: the key whose link is dropped.
    kKeyLinkDropped = 217,
    /// `target`: the key. `detail`: the href that leads into a file.
    kKeyDefinitionLost = 218,
};

/// Says nothing true of the publication: the element is not part of it, or the system itself has
/// asked in vain.
inline constexpr std::uint32_t kArtefact = 1;

/// One thing that a run met. All texts are UTF-8 and live for the length of the call; those that
/// the kind doesn't have are empty, none is null.
struct Observation {
    ObservationKind kind;
    std::uint32_t code;
    std::uint32_t flags;
    const char* element;  ///< tag name
    const char* target;
    const char* detail;
    const char* reason;
    const char* line;  ///< the report line that was shown, line end included
    /// `steps[0].place` is the place. What follows is the way from there to the root map, innermost
    /// first; `steps[0]` itself says nothing but the place. There is at least one step.
    const ObservedStep* steps;
    std::uint32_t stepCount;
    const ObservedPlace* related;
    std::uint32_t relatedCount;
};

/// Takes what a run met, in the order in which it was met; faults come at the end of the run, when
/// it is known what became of their elements, in their order.
class IHostObserver : public IHostObject {
public:
    static constexpr InterfaceId kId{
        0x7d1c0a40, 0x53b6, 0x4f0e, {0x9a, 0x11, 0x6c, 0x02, 0x5d, 0x71, 0xe8, 0x0c}};

    /// The status is not looked at.
    virtual ComStatus observe(const Observation* observation) = 0;

protected:
    ~IHostObserver() = default;
};

/// Takes what may well be in order: what keys stand for, references to keys and to files, and the
/// entities that are opened. These are many, and so they are told only where somebody wants them,
/// with the place alone; in their order among what an `IHostObserver` gets, which the host must
/// have, too.
class IHostReferenceObserver : public IHostObject {
public:
    static constexpr InterfaceId kId{
        0x7d1c0a40, 0x53b6, 0x4f0e, {0x9a, 0x11, 0x6c, 0x02, 0x5d, 0x71, 0xe8, 0x0d}};

    /// The status is not looked at.
    virtual ComStatus observeReference(const Observation* observation) = 0;

protected:
    ~IHostReferenceObserver() = default;
};

}  // namespace marrowpress
