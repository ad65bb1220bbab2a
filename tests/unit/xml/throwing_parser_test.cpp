#include "xml/throwing_parser.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <xercesc/util/RuntimeException.hpp>

#include "tests/unit/xml/sample_documents.h"

namespace marrowpress {
namespace {

using Diagnostic = xercesc::XMLErrorReporter;

class QSXercesDOMParserTest : public XmlTest {};

QSXercesParseException diagnosticOf(Diagnostic::ErrTypes type, const XMLCh* publicId) {
    QSXercesDOMParser parser;
    try {
        parser.error(41, u"domain", type, u"größe.dtd", u"system.dtd", publicId, 12, 34);
    } catch (const QSXercesParseException& failure) {
        return failure;
    }
    throw std::logic_error("no diagnostic was thrown");
}

TEST_F(QSXercesDOMParserTest, ThrowsEveryKindOfDiagnostic) {
    for (const Diagnostic::ErrTypes type :
         {Diagnostic::ErrType_Warning, Diagnostic::ErrType_Error, Diagnostic::ErrType_Fatal}) {
        EXPECT_NO_THROW(diagnosticOf(type, u"id"));
    }
}

TEST_F(QSXercesDOMParserTest, TellsCodePlaceAndPublicIdentifier) {
    const QSXercesParseException failure =
        diagnosticOf(Diagnostic::ErrType_Warning, u"-//Größe//EN");
    EXPECT_EQ(failure.getCode(), xercesc::XMLExcepts::Gen_CouldNotOpenDTD);
    EXPECT_EQ(std::u16string(failure.getType()), u"QSXercesParseException");
    EXPECT_STREQ(failure.getSrcFile(), "-//Größe//EN");
    EXPECT_EQ(failure.getSrcLine(), 12U);
    EXPECT_EQ(failure.getColumn(), 34U);
}

TEST_F(QSXercesDOMParserTest, TakesTheMessageOfTheExceptionCatalogue) {
    const xercesc::RuntimeException known("", 1, xercesc::XMLExcepts::Gen_CouldNotOpenDTD,
                                          u"größe.dtd");
    const QSXercesParseException failure = diagnosticOf(Diagnostic::ErrType_Error, u"id");
    EXPECT_EQ(std::u16string(failure.getMessage()), std::u16string(known.getMessage()));
    EXPECT_NE(std::u16string(failure.getMessage()).find(u"größe.dtd"), std::u16string::npos);
}

TEST_F(QSXercesDOMParserTest, NamesNoSourceWithoutPublicIdentifier) {
    EXPECT_STREQ(diagnosticOf(Diagnostic::ErrType_Fatal, nullptr).getSrcFile(), "");
}

TEST_F(QSXercesDOMParserTest, DiagnosticsCopyTheirColumn) {
    const QSXercesParseException failure = diagnosticOf(Diagnostic::ErrType_Error, u"id");
    const QSXercesParseException copy(failure);
    EXPECT_EQ(copy.getColumn(), 34U);
    EXPECT_EQ(copy.getSrcLine(), 12U);
    EXPECT_EQ(copy.getCode(), failure.getCode());
    EXPECT_EQ(std::u16string(copy.getMessage()), std::u16string(failure.getMessage()));
}

struct DeclarationCase {
    const XMLCh* element;
    const XMLCh* attribute;
    bool isDeclared;
};

TEST_F(QSXercesDOMParserTest, KnowsTheAttributesThatALoadedDtdDeclares) {
    folder.write("topic.dtd", std::string(kTopicDtd) + "<!ELEMENT bare EMPTY>");
    QSXercesDOMParser parser;
    parser.loadGrammar(folder.file16("topic.dtd").c_str(), xercesc::Grammar::DTDGrammarType, false);
    for (const auto& [element, attribute, isDeclared] :
         {DeclarationCase{u"topic", u"id", true}, DeclarationCase{u"topic", u"class", true},
          DeclarationCase{u"p", u"id", true}, DeclarationCase{u"title", u"id", false},
          DeclarationCase{u"topic", u"href", false}, DeclarationCase{u"topic", u"ID", false},
          DeclarationCase{u"topic", u"", false}, DeclarationCase{u"Topic", u"id", false},
          DeclarationCase{u"xref", u"id", false}, DeclarationCase{u"bare", u"id", false}}) {
        EXPECT_EQ(parser.declaresAttribute(element, attribute), isDeclared)
            << toUtf8(std::u16string_view(element)) << "/@"
            << toUtf8(std::u16string_view(attribute));
    }
}

TEST_F(QSXercesDOMParserTest, DeclaresNothingWithoutGrammar) {
    EXPECT_FALSE(QSXercesDOMParser().declaresAttribute(u"topic", u"id"));
}

}  // namespace
}  // namespace marrowpress
