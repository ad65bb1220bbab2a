#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "findings/finding.h"

/// What findings say, in the language that was chosen: a sentence without a full stop for each
/// text, and one for each hint. Arguments are UTF-8 and are put in as they are; a file is a path as
/// it is to be shown, a place is a path with line and column: "keys.ditamap:4:3".
namespace marrowpress {

/// "error", "warning", "note" for people.
std::string severityWord(Severity severity);

// What stands around findings.

/// In front of a hint.
std::string hintWord();

/// In front of a step of the way to the root map.
std::string viaWord();

/// In front of a further place.
std::string alsoWord();

std::string errorCountText(std::size_t count);
std::string warningCountText(std::size_t count);
std::string noteCountText(std::size_t count);

std::string fileCountText(std::size_t count);
std::string topicCountText(std::size_t count);

// What is said of a key by the command that lists them.

std::string keyDefinitionCountText(std::size_t count);
std::string keyUseCountText(std::size_t count);
/// How definitions are met, and which of them counts.
std::string keyOrderText();
std::string onlyDefinitionText();
std::string firstDefinitionText();
/// For a definition behind the one that counts, which is at `place`, in the same map.
std::string laterInMapText(std::string_view place);
/// For one in another map.
std::string laterMapText(std::string_view place);
std::string excludedDefinitionText();
std::string lostDefinitionText();
std::string keyTargetText(std::string_view target);
std::string keyContentText(std::string_view text);
std::string keyLeadsOnText(std::string_view key);

// Names that are not there: MP105, MP108, MP109, MP204.

/// For a key, an id, a file, or a value in a profile.
std::string didYouMeanHint(std::string_view name);
std::string keyNotFoundText(std::string_view key);

/// For a reference whose key name is empty.
std::string keyNotNamedText();

/// `place` is that of the definition: "keys.ditamap:4:3".
std::string keyTakenAwayHint(std::string_view profile, std::string_view place);
std::string keyDefinitionLostHint(std::string_view place);
std::string keyLeadsToItselfHint(std::string_view place);
std::string noKeyDefinedHint();
std::string defineKeyHint();
std::string elementInTopicNotFoundText(std::string_view file, std::string_view topic,
                                       std::string_view id);
std::string elementNotFoundText(std::string_view file, std::string_view id);

std::string topicNotFoundText(std::string_view file, std::string_view id);
std::string fragmentHint();

/// For the id of an element in the place of a topic's; `topic` is the one that holds the element.
std::string elementIdHint(std::string_view topic, std::string_view id);

/// `target` is the path with its fragment, `found` the element that bears the id, `wanted` the one
/// that refers.
std::string wrongElementText(std::string_view target, std::string_view found,
                             std::string_view wanted);
std::string wrongElementHint(std::string_view found, std::string_view wanted);
std::string idsNeedDtdHint(std::string_view file);

// Files: MP106, MP107, MP111, MP203.

/// `reason` may be empty.
std::string cannotReadText(std::string_view file, std::string_view reason);

std::string notWellFormedHint();

/// For a reference to an element in what a key stands for, which is no file.
std::string keyWithoutFileText(std::string_view key);
std::string runFailsHint();
std::string withoutFilterHint();

/// `reason` may be empty.
std::string cannotWriteText(std::string_view file, std::string_view reason);
std::string cannotWriteStandardOutputText();
std::string notTheResultHint();
std::string fileNotFoundText(std::string_view file);
std::string otherCaseHint(std::string_view file);

/// For an href that looks like a web address: "www.example.org".
std::string webAddressHint(std::string_view href);
std::string missingFileHint();

// MP110.

/// Both are references with a path that is to be shown.
std::string conrefEndNotBesideText(std::string_view end, std::string_view start);
std::string conrefEndHint();

// DTDs: MP201, MP202.

std::string noDoctypeText(std::string_view file);

/// Either identifier may be empty.
std::string dtdNotFoundText(std::string_view file, std::string_view publicId,
                            std::string_view systemId);

/// `fault` says which catalog cannot be used and why: "c.xml: No such file or directory".
std::string unusableCatalogText(std::string_view file, std::string_view fault,
                                std::string_view publicId);

/// For a file without a doctype; `publicId` is DITA's for that root element.
std::string doctypeHint(std::string_view root, std::string_view publicId);

/// `catalogs` are those that were asked, as one text; empty where there were none.
std::string missingCatalogText(std::string_view catalog);
std::string catalogsHint(std::string_view catalogs);
std::string breaksDtdText(std::string_view file, std::string_view reason);
std::string mapWithoutDtdHint();
std::string topicWithoutDtdHint();

// MP205, MP216.

/// `target` is the reference as it is written.
std::string conrefLoopText(std::string_view target, std::size_t steps);
std::string keptConrefHint();
std::string lostContentHint();
std::string cutLoopHint();
std::string conrefOfConrefText(std::string_view target);
std::string referDirectlyHint(std::string_view source);

// MP206.

std::string noTopicText();
std::string noTopicWithoutDtdHint();
std::string allExcludedHint();
std::string noReferenceHint();

// Profiles: MP207.

std::string unknownProfileElementText(std::string_view element);
std::string unknownProfileAttributeText(std::string_view element, std::string_view attribute);
std::string unknownProfileActionText(std::string_view action);
std::string profileElementsHint();
std::string profileAttributesHint();
std::string profileActionsHint();
std::string profileRootText(std::string_view file, std::string_view root);
std::string profileRootHint();
std::string unmatchedRuleText(std::string_view attribute, std::string_view value);
std::string unmatchedAttributeText(std::string_view attribute);
std::string unmatchedRuleHint();

/// For a run that has read `file` without its DTD; `id` is that of the finding that says why.
std::string ruleNeedsDtdHint(std::string_view file, std::string_view id);

// MP208.

std::string topicNotInOutputText(std::string_view file);
std::string notInMapHint();

/// For a map that was read without its DTD; `id` is that of the finding that says why.
std::string mapLostReferencesHint(std::string_view map, std::string_view id);
std::string topicExcludedHint(std::string_view profile);
std::string resourceOnlyHint();

// MP209, MP210.

std::string droppedChildrenText(std::string_view target, std::size_t count);
std::string droppedChildrenHint();
std::string keyScopeText(std::string_view name);
std::string keyScopeHint(std::string_view name);

// Components: MP211, MP212.

std::string sameComponentText(std::string_view component, std::string_view first,
                              std::string_view second);
std::string sameComponentHint();
std::string foreignFileText(std::string_view component);
std::string foreignFileKeptHint(std::string_view path);
std::string navtitleText(std::string_view navtitle);
std::string navtitleHint();

// Paths: MP213, MP214.

std::string pathIsCutText(std::string_view path, std::string_view character);
std::string pathIsCutHint();
std::string twoSpellingsText(std::string_view first, std::string_view second);
std::string twoSpellingsHint(std::string_view path);

// Keys: MP217, MP218.

std::string keyLinkDroppedText(std::string_view key);
std::string keyLinkDroppedHint();
std::string keyDefinitionLostText(std::string_view key, std::string_view href);
std::string keyDefinitionTypeHint();

// MP215.

/// `kind` is what has no effect: "reltable", "chunk", "link-text", ...; `count` how often.
std::string noEffectText(std::string_view kind, std::size_t count);

/// What to do instead; empty for a kind that nothing is known of.
std::string noEffectHint(std::string_view kind);

}  // namespace marrowpress
