#include "findings/profile_merge.h"

#include <libxml/tree.h>

#include <new>
#include <set>
#include <utility>

#include "findings/xml_elements.h"
#include "host/libxml_handles.h"

namespace marrowpress {
namespace {

/// An attribute and a value, each empty where a rule has none.
using Pair = std::pair<std::string, std::string>;

template <class Made>
Made* made(Made* what) {
    if (!what) {
        throw std::bad_alloc();
    }
    return what;
}

bool isBelow(const xmlNode* node, const xmlNode* ancestor) {
    while (node && node != ancestor) {
        node = node->parent;
    }
    return node;
}

class Merge {
public:
    Merge() : document_(made(xmlNewDoc(asXml("1.0")))) {
        xmlDocSetRootElement(document_.get(),
                             made(xmlNewDocNode(document_.get(), nullptr, asXml("val"), nullptr)));
    }

    void add(const Profile& profile) {
        const LibxmlDocument copy(made(xmlCopyDoc(profile.document.get(), 1)));
        for (xmlNode* const element : takeRules(profile, *copy)) {
            xmlUnlinkNode(element);
            xmlFreeNode(element);
        }
        takeElements(*copy);
        for (const ProfileRule& rule : profile.rules) {
            known_.emplace(rule.attribute, rule.value);
        }
    }

    MergedProfile finish() {
        xmlChar* buffer = nullptr;
        int size = 0;
        xmlDocDumpFormatMemoryEnc(document_.get(), &buffer, &size, "UTF-8", 1);
        const LibxmlText text(made(buffer));
        return {std::string(reinterpret_cast<const char*>(buffer), static_cast<std::size_t>(size)),
                std::move(rules_)};
    }

private:
    /// Notes the profile's rules that are new; gives the elements of `copy` with the others, none
    /// of them below another.
    std::vector<xmlNode*> takeRules(const Profile& profile, xmlDoc& copy) {
        std::vector<xmlNode*> dropped;
        auto rule = profile.rules.begin();
        for (xmlNode* element = xmlDocGetRootElement(&copy); element;
             element = nextElement(*element)) {
            if (tagNameOf(*element) != kRuleElement) {
                continue;
            }
            const bool falls = !dropped.empty() && isBelow(element, dropped.back());
            if (!falls && known_.count({rule->attribute, rule->value}) > 0) {
                dropped.push_back(element);
            } else if (!falls) {
                rules_.push_back(*rule);
            }
            ++rule;
        }
        return dropped;
    }

    void takeElements(const xmlDoc& copy) {
        xmlNode* const root = xmlDocGetRootElement(&copy);
        // Whatever the root is, the module takes rules from it; it may be one, and dropped.
        if (root && tagNameOf(*root) == kRuleElement) {
            takeElement(*root);
            return;
        }
        for (xmlNode* child = root ? root->children : nullptr; child; child = child->next) {
            if (child->type == XML_ELEMENT_NODE) {
                takeElement(*child);
            }
        }
    }

    void takeElement(xmlNode& element) {
        xmlAddChild(xmlDocGetRootElement(document_.get()),
                    made(xmlDocCopyNode(&element, document_.get(), 1)));
    }

    LibxmlDocument document_;
    std::vector<ProfileRule> rules_;
    std::set<Pair> known_;
};

}  // namespace

MergedProfile mergeProfiles(const std::vector<Profile>& profiles) {
    Merge merge;
    for (const Profile& profile : profiles) {
        merge.add(profile);
    }
    return merge.finish();
}

}  // namespace marrowpress
