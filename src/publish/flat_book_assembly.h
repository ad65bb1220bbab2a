#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>
#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMElement.hpp>

#include "publish/composite_assembly.h"
#include "references/direct_references.h"

namespace marrowpress {

struct DitaReference;

/// What a flat book is made of, and how.
struct FlatBookRequest {
    std::u16string outputDir;  ///< absolute
    std::u16string doctypeSystemId;
    bool atOneLocation = false;  ///< all components in `outputDir`, not beside their sources
    bool usePrint = false;
};

/// Turns a map into a flat list of components: each first-level reference
/// becomes a composite document of its own, which holds what the map nests
/// under it. References from one component to a topic in another name the
/// file that holds the topic now; the first component that holds it counts.
class FlatBookAssembler {
public:
    /// Gives the components in the order of their creation; they belong to the `DocumentStore`. A
    /// component of two references stands in it twice. `topicIds` gets the new locations of the
    /// topics of the whole book, in the place of what it held. `mapRoot` may be null.
    ///
    /// What can't be read or created is reported and left out.
    std::vector<xercesc::DOMDocument*> assembleBook(xercesc::DOMElement* mapRoot,
                                                    KeySpace& keySpace,
                                                    const FlatBookRequest& request,
                                                    TopicIdMap& topicIds);

private:
    struct State;

    void collectBookComponents(xercesc::DOMElement& root, State& state);
    bool addComponent(xercesc::DOMElement& node, State& state);
    void addTopicComponent(xercesc::DOMElement& node, const DitaReference& reference, State& state);
    void addHeadComponent(xercesc::DOMElement& node, State& state);
    void assembleComponent(xercesc::DOMElement& node, const std::u16string& sourcePath,
                           const std::u16string& outputPath, State& state);

    CompositeDocNodeFilter filter_;
    TopicheadNodeFilter topicheadFilter_;
    ReferenceUpdater updater_;
    CompositeDocAssembler compositeAssembler_;
};

}  // namespace marrowpress
