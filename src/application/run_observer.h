#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>
#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMElement.hpp>

#include "dom/source_places.h"
#include "marrowpress/interface_ref.h"
#include "marrowpress/observer.h"

namespace marrowpress {

/// What a pass knows of a fault.
struct ObservedFault {
    FaultCode code;
    const xercesc::DOMElement* element = nullptr;  ///< at fault; null where there is none
    /// The tag name of what is at fault, where that is none of the elements to be shown.
    std::u16string_view elementName = {};
    std::u16string_view target = {};
    std::u16string_view detail = {};
    std::u16string_view reason = {};
    std::string_view line = {};  ///< the report line, UTF-8
    /// Where the fault is, when that is not the element's start tag. The element is the reference
    /// that led there then.
    SourcePlace place = {};
    std::vector<SourcePlace> related = {};
    bool isArtefact = false;
    /// Whether it counts whatever becomes of the element, which the run itself takes out.
    bool outlivesElement = false;
};

/// Tells the host's observer what a run meets. There is one only while a host
/// has an observer: passes ask for it and do nothing more without it.
///
///     if (RunObserver* const observer = RunObserver::existing()) {
///         observer->phase("keys");
///     }
///
/// Faults wait for the end of the run: only then is it known whether their
/// elements are part of the publication. At most 100,000 of them do.
class RunObserver {
public:
    using Element = xercesc::DOMElement;

    explicit RunObserver(IHostObserver* observer, IHostReferenceObserver* references = nullptr)
        : observer_(InterfaceRef<IHostObserver>::share(observer)),
          references_(InterfaceRef<IHostReferenceObserver>::share(references)) {}

    /// The observer of the request; null without one.
    static RunObserver* existing() noexcept;
    /// The same, if the host wants to know references; else null.
    static RunObserver* existingForReferences() noexcept;
    /// Makes the observer of the request, and the table of places, if the host has one.
    static void begin();
    static void end() noexcept;

    void phase(const char* name);
    void documentRead(std::u16string_view path, std::u16string_view rootName,
                      DocumentGrammar grammar, const Element* reference);
    void documentUnread(std::u16string_view path, std::u16string_view reason,
                        const Element* reference);
    void keyDefinition(std::u16string_view key, std::u16string_view href, KeyState state,
                       const Element& definition);
    void topic(std::u16string_view path, const Element& reference);
    void component(std::u16string_view path, std::u16string_view source, const Element& reference);
    /// Tells each pair once.
    void conditionValue(std::u16string_view attribute, std::u16string_view value,
                        const Element& element);
    void excluded(const Element& element, std::u16string_view target,
                  std::u16string_view attribute);
    void outputWritten(std::u16string_view path);

    // For the host that wants to know references.

    void keyMeaning(std::u16string_view key, std::u16string_view href, std::u16string_view text,
                    const Element& definition);
    /// @param isLeftOut  The profile takes the element away.
    void keyReference(std::u16string_view key, const Element& element, bool isLeftOut);
    void fileReference(ReferenceKind kind, std::u16string_view path, const Element& element);
    /// Tells each pair once.
    void entity(std::u16string_view path, std::u16string_view namedBy);

    /// The topic `source`, a path with the id behind "#", has got the id `newId` in the output.
    void noteTopicId(std::u16string_view newId, std::u16string_view source) {
        sourceTopics_.emplace(newId, source);
    }

    /// Whether the file at `path` was asked for in vain.
    bool isUnread(const std::u16string& path) const { return unreadFiles_.contains(path); }

    /// `element` has got a content reference from the one that `conref` led to.
    void noteTakenConref(const Element& element, std::u16string_view conref) {
        takenConrefs_.insert_or_assign(&element, std::u16string(conref));
    }
    /// What led `element` to the content reference that it has now; empty when it is its own.
    std::u16string takenConrefOf(const Element& element) const {
        const auto known = takenConrefs_.find(&element);
        return known == takenConrefs_.end() ? std::u16string() : known->second;
    }

    /// The content reference of `element` led to `target`. The first time that the reference of a
    /// source is followed counts: later its element may have that of another one.
    void noteConrefTarget(const Element& element, const Element& target) {
        conrefTargets_.try_emplace(SourcePlaces::existing()->placeOf(element), &target);
    }
    /// What the content reference at `place` led to; null when it was not followed.
    const Element* conrefTargetAt(const SourcePlace& place) const {
        const auto known = conrefTargets_.find(place);
        return known == conrefTargets_.end() ? nullptr : known->second;
    }

    /// `element` has got its link from `definition`, which names the whole target.
    void noteKeyLink(const Element& element, const Element& definition) {
        keyLinks_.try_emplace(SourcePlaces::existing()->placeOf(element), &definition);
    }
    /// The definition that the link of `element`, or of what it is a copy of, came from; null when
    /// it is its own.
    const Element* keyLinkOf(const Element& element) const {
        const auto known = keyLinks_.find(SourcePlaces::existing()->placeOf(element));
        return known == keyLinks_.end() ? nullptr : known->second;
    }

    /// `element` has got `attribute`, a literal, from `source`.
    void noteTakenAttribute(const Element& element, const XMLCh* attribute, const Element& source) {
        takenAttributes_.insert_or_assign({&element, std::u16string_view(attribute)}, &source);
    }
    /// The element at which `attribute` of `element` is written.
    const Element& writerOf(const Element& element, std::u16string_view attribute) const;

    /// Whether it was told of `element`, or of another copy of its start tag that counts, that the
    /// file that it leads to is missing or unreadable.
    bool hasToldMissingFile(const Element& element,
                            const std::function<bool(const Element&)>& counts) const;

    /// Whether a topic of the sources has got the id `newId` in the output.
    bool isTopicId(std::u16string_view newId) const { return sourceTopics_.contains(newId); }
    /// The path of the file that the topic with the id `newId` came from; empty for no topic's id.
    std::u16string_view sourceFileOf(std::u16string_view newId) const;

    /// The run is for print, which leaves out the references of a map that `isLeftOut` says.
    void noteForPrint(std::function<bool(const Element&)> isLeftOut) {
        isLeftOutOfPrint_ = std::move(isLeftOut);
    }

    /// The run has made the file at `path` itself; it is no source.
    void noteOwnFile(std::u16string_view path) { ownFiles_.emplace(path); }
    bool isOwnFile(const std::u16string& path) const { return ownFiles_.contains(path); }

    void runFailed(std::string_view reason);

    void fault(const ObservedFault& fault);

    /// Sends the faults, those first that were met first. `isPublished` says whether an element is
    /// part of the publication.
    void finish(const std::function<bool(const Element&)>& isPublished);

    /// The tag name of the first element of `document` with that id, within the element with the
    /// id `containerId` if that is not empty, as it was when the document was first looked at;
    /// empty when none has it. "." stands for any container. In a document that was read without
    /// its DTD no container is found by its id.
    std::u16string_view bearerOf(const xercesc::DOMDocument& document, std::u16string_view id,
                                 std::u16string_view containerId = {});

private:
    /// The texts of an observation.
    struct Texts {
        std::string element = {};
        std::string target = {};
        std::string detail = {};
        std::string reason = {};
        std::string line = {};
    };
    struct PendingFault {
        FaultCode code;
        const Element* element;
        bool isArtefact;
        bool outlivesElement;
        Texts texts;
        std::vector<SourceStep> steps;
        std::vector<SourcePlace> related;
    };

    void send(ObservationKind kind, std::uint32_t code, const Texts& texts,
              const std::vector<SourceStep>& steps, std::uint32_t flags = 0,
              const std::vector<SourcePlace>& related = {});
    void sendAt(const Element* element, ObservationKind kind, std::uint32_t code,
                const Texts& texts);
    void sendReference(const Element* element, ObservationKind kind, std::uint32_t code,
                       const Texts& texts, std::uint32_t flags = 0);
    static Observation observationOf(ObservationKind kind, std::uint32_t code, std::uint32_t flags,
                                     const Texts& texts);
    std::u16string inSourceTerms(std::u16string_view target) const;
    std::u16string targetOf(const ObservedFault& fault);
    const char* pathOf(const SourcePlace& place);
    ObservedPlace observed(const SourcePlace& place);

    bool isLeftOutOfPrint(const PendingFault& fault) const;

    InterfaceRef<IHostObserver> observer_;
    InterfaceRef<IHostReferenceObserver> references_;  ///< Null when the host doesn't want them.
    std::function<bool(const Element&)> isLeftOutOfPrint_;  ///< empty when the run is not for print
    std::vector<PendingFault> faults_;
    std::size_t droppedFaults_ = 0;
    std::unordered_set<std::u16string> ownFiles_;
    std::unordered_set<std::u16string> unreadFiles_;
    std::unordered_set<std::u16string> filesWithoutDtd_;
    std::map<SourcePlace, std::vector<const Element*>> withoutFile_;
    std::map<SourcePlace, const Element*> conrefTargets_;
    std::map<std::pair<const Element*, std::u16string_view>, const Element*> takenAttributes_;
    std::map<SourcePlace, const Element*> keyLinks_;
    /// By the places of a ring in their order: by what it is named.
    std::map<std::vector<SourcePlace>, std::u16string> ringTargets_;
    std::unordered_map<const Element*, std::u16string> takenConrefs_;
    /// By the id in the output.
    std::unordered_map<std::u16string, std::u16string, U16Hash, std::equal_to<>> sourceTopics_;
    std::unordered_set<std::u16string> conditionValues_;
    std::unordered_set<std::u16string> entities_;
    using TagNames = std::unordered_map<std::u16string, std::u16string, U16Hash, std::equal_to<>>;
    std::unordered_map<const xercesc::DOMDocument*, TagNames> bearers_;  ///< by id
    std::vector<std::string> paths_;  ///< by file number; empty until one is asked for
};

}  // namespace marrowpress
