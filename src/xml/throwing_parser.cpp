#include "xml/throwing_parser.h"

#include <vector>
#include <xercesc/framework/XMLValidator.hpp>
#include <xercesc/internal/IGXMLScanner.hpp>
#include <xercesc/internal/ReaderMgr.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/validators/DTD/DTDElementDecl.hpp>
#include <xercesc/validators/common/ContentSpecNode.hpp>

#include "support/text.h"
#include "support/work_counts.h"
#include "support/xerces_ptr.h"

namespace marrowpress {
namespace {

constexpr XMLSize_t kMostAttributes = 10000;
/// DITA's largest sets of DTDs come to some 2,000,000.
constexpr double kMostContentModelCosts = 1e10;

/// The members of a content model.
double memberCount(const xercesc::ContentSpecNode* model) {
    double count = 0;
    std::vector<const xercesc::ContentSpecNode*> open{model};
    while (!open.empty()) {
        const xercesc::ContentSpecNode* const node = open.back();
        open.pop_back();
        if (!node) {
            continue;
        }
        if (node->getType() == xercesc::ContentSpecNode::Leaf) {
            ++count;
        } else {
            open.push_back(node->getFirst());
            open.push_back(node->getSecond());
        }
    }
    return count;
}

}  // namespace

QSXercesParseException::QSXercesParseException(unsigned int code, const XMLCh* text,
                                               const char* sourceName, XMLFileLoc line,
                                               XMLFileLoc column)
    : XMLException(sourceName, line, nullptr), column_(column) {
    loadExceptText(static_cast<xercesc::XMLExcepts::Codes>(code), text, nullptr, nullptr, nullptr);
}

QSXercesDOMParser::QSXercesDOMParser()
    : XercesDOMParser(nullptr, xercesc::XMLPlatformUtils::fgMemoryManager, nullptr) {}

void QSXercesDOMParser::setResolver(QSXMLEntityResolver& resolver) {
    setXMLEntityResolver(&resolver);
    resolver_ = &resolver;
}

void QSXercesDOMParser::beginTry() noexcept {
    failure_.reset();
    contentModelCosts_ = 0;
    dtds_.beginTry();
}

void QSXercesDOMParser::fail() noexcept {
    if (resolver_) {
        resolver_->recordQuestions(nullptr);
    }
    if (failure_) {
        dtds_.failAt({failure_->line, failure_->column});
    }
}

void QSXercesDOMParser::beginFile(const std::u16string& /*path*/) {}

void QSXercesDOMParser::endFile() {}

void QSXercesDOMParser::error(unsigned int code, const XMLCh* domain,
                              xercesc::XMLErrorReporter::ErrTypes /*type*/, const XMLCh* text,
                              const XMLCh* systemId, const XMLCh* publicId, XMLFileLoc line,
                              XMLFileLoc column) {
    if (!failure_) {
        failure_ = {std::u16string(domText(text)),
                    std::u16string(domText(systemId)),
                    line,
                    column,
                    domText(domain) == domText(xercesc::XMLUni::fgValidityDomain),
                    domText(domain) == domText(xercesc::XMLUni::fgExceptDomain)};
    }
    // The source is named by its public identifier: the file's name varies from place to place.
    const std::string sourceName = toUtf8(publicId).value_or(std::string());
    throw QSXercesParseException(code, text, sourceName.c_str(), line, column);
}

void QSXercesDOMParser::elementDecl(const xercesc::DTDElementDecl& declaration, bool isIgnored) {
    const double members = memberCount(declaration.getContentSpec());
    contentModelCosts_ += members * members * members;
    if (contentModelCosts_ > kMostContentModelCosts) {
        throw xercesc::OutOfMemoryException();
    }
    XercesDOMParser::elementDecl(declaration, isIgnored);
}

void QSXercesDOMParser::startElement(const xercesc::XMLElementDecl& declaration, unsigned int uriId,
                                     const XMLCh* prefix,
                                     const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                                     XMLSize_t attributeCount, bool isEmpty, bool isRoot) {
    if (attributeCount > kMostAttributes) {
        throw xercesc::OutOfMemoryException();
    }
    XercesDOMParser::startElement(declaration, uriId, prefix, attributes, attributeCount, isEmpty,
                                  isRoot);
}

void QSXercesDOMParser::startExtSubset() {
    XercesDOMParser::startExtSubset();
    std::vector<std::string>* const publicIds =
        isCachingGrammarFromParse() ? dtds_.beginDtd(*currentGrammar()) : nullptr;
    if (resolver_) {
        resolver_->recordQuestions(publicIds);
    }
    if (publicIds || !isUsingCachedGrammarInParse()) {
        ++WorkCounts::total().dtdScans;
    }
}

void QSXercesDOMParser::endExtSubset() {
    XercesDOMParser::endExtSubset();
    if (resolver_) {
        resolver_->recordQuestions(nullptr);
    }
    const xercesc::ReaderMgr& readers = *getScanner()->getReaderMgr();
    dtds_.endDtd({readers.getLineNumber(), readers.getColumnNumber()});
}

bool QSXercesDOMParser::declaresAttribute(const XMLCh* element, const XMLCh* attribute) const {
    xercesc::Grammar* const grammar = borrowedDtd_ ? borrowedDtd_ : currentGrammar();
    if (!grammar) {
        return false;
    }
    auto* const declaration = dynamic_cast<xercesc::DTDElementDecl*>(grammar->getElemDecl(
        getScanner()->getEmptyNamespaceId(), nullptr, element, xercesc::Grammar::TOP_LEVEL_SCOPE));
    return declaration && declaration->getAttDef(attribute);
}

/// The one that documents are, or were last, read with.
xercesc::Grammar* QSXercesDOMParser::currentGrammar() const {
    const auto* const scanner = dynamic_cast<const xercesc::IGXMLScanner*>(getScanner());
    const xercesc::XMLValidator* const validator = scanner ? scanner->getValidator() : nullptr;
    return validator ? validator->getGrammar() : nullptr;
}

}  // namespace marrowpress
