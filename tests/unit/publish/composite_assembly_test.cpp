#include "publish/composite_assembly.h"

#include <gtest/gtest.h>

#include "support/xerces_ptr.h"
#include "tests/support/message_texts.h"
#include "tests/support/texts.h"
#include "tests/support/xml_text.h"
#include "tests/unit/publish/composite_request.h"

namespace marrowpress {
namespace {

class CompositeDocAssemblerTest : public XmlTest {
protected:
    CompositeDocAssemblerTest() {
        request.outputPath = folder.file16("book.dita");
        request.doctypeSystemId = u"ditabase.dtd";
        request.conditions.mergeEnabled = true;
    }

    xercesc::DOMDocument* assemble(xercesc::DOMElement* start) {
        KeySpace keySpace(keys_.document());
        return CompositeDocAssembler().assembleComposite(start, keySpace, request);
    }

    CompositeDocRequest request;

private:
    ParsedXml keys_{"<map/>"};
};

TEST_F(CompositeDocAssemblerTest, WithoutAStartThereIsTheShellAlone) {
    const xercesc::DOMDocument* const document = assemble(nullptr);
    ASSERT_TRUE(document);
    EXPECT_EQ(
        printed(*document->getDocumentElement()),
        replacedAll("<dita><topic id=\"ID\"><title/></topic></dita>", "ID", kGeneratedIds[0]));
    EXPECT_TRUE(request.topicIds.byReference().empty());
}

TEST_F(CompositeDocAssemblerTest, WhatCannotBeCreatedIsNull) {
    request.outputPath = folder.file16("none/book.dita");
    const ParsedXml start(map(topicref("href='a.dita'")),
                          u"file://" + folder.file16("root.ditamap"));
    EXPECT_EQ(assemble(start.root()), nullptr);
    const std::string path = folder.file("none/book.dita");
    EXPECT_EQ(host.console(), (std::vector{cannotWrite(path), cannotRead(path), cannotRead(path)}));
    EXPECT_TRUE(host.progress().empty());
}

TEST_F(CompositeDocAssemblerTest, AnAssemblerServesManyRequests) {
    folder.write("a.dita", "<?Qs Condition X x y show z?>" + topic("a"));
    const ParsedXml start(map(topicref("href='a.dita'", topicref("href='a.dita'"))),
                          u"file://" + folder.file16("root.ditamap"));
    ASSERT_TRUE(assemble(start.root()));
    // What was written is gone from the request, so that nothing is written twice.
    EXPECT_TRUE(request.conditions.conditions.records().empty());
    EXPECT_FALSE(request.conditions.expression);
    EXPECT_EQ(request.conditions.renames.size(), 1U);
    // References lead to the first.
    EXPECT_EQ(request.topicIds.byReference().size(), 1U);

    const xercesc::DOMDocument* const again = assemble(nullptr);
    ASSERT_TRUE(again);
    EXPECT_EQ(domText(again->getFirstChild()->getNextSibling()->getNodeName()), u"Qs");
    std::size_t instructions = 0;
    for (const xercesc::DOMNode* node = again->getFirstChild(); node;
         node = node->getNextSibling()) {
        instructions += node->getNodeType() == xercesc::DOMNode::PROCESSING_INSTRUCTION_NODE;
    }
    EXPECT_EQ(instructions, 3U);
}

using CompositeAssemblyTest = CompositeRequestTest;

TEST_F(CompositeAssemblyTest, TheFirstIdOfARequestIsAlwaysTheSame) {
    publish(map(topicref("href='a.dita'")));
    const std::string text = folder.read("out/book.dita");
    const std::string start =
        replacedAll("<dita><topic id=\"ID\"><title></title></topic>", "ID", kGeneratedIds[0]);
    EXPECT_EQ(text.substr(text.find("<dita>"), start.size()), start);
    EXPECT_EQ(text.substr(0, text.find("<dita>")),
              "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\" ?><!DOCTYPE dita PUBLIC "
              "\"-//OASIS//DTD DITA Composite//EN\" \"ditabase.dtd\">");
}

TEST_F(CompositeAssemblyTest, AMapThatIsOnlyAResourceGivesItsTitleAlone) {
    EXPECT_EQ(publish(map("<title>Title</title>" + topicref("href='a.dita'"),
                          "processing-role='resource-only'")),
              kEndOfDita);
    EXPECT_EQ(title, "<dita><topic id=\"id-1\"><title>Title</title></topic>");
}

TEST_F(CompositeAssemblyTest, WithoutClassValuesNamesCount) {
    folder.write("inner.ditamap", "<map><keydef href='c.dita'/></map>");
    EXPECT_EQ(
        publish("<map><title>By name</title>"
                "<topicmeta><keydef href='a.dita'/></topicmeta>"
                "<keydef keys='k' href='b.dita'><keydef href='c.dita'/></keydef>"
                "<keydef keys='r' href='a.dita' processing-role='resource-only'/>"
                "<reltable><keydef href='a.dita'/></reltable>"
                "<topicref href='a.dita'><keydef href='c.dita'/></topicref>"
                "<topichead navtitle='No level'><mapref href='inner.ditamap'/></topichead>"
                "</map>"),
        taken(2, "a") + taken(3, "b", taken(4, "c")) + taken(5, "c") + taken(6, "c") + kEndOfDita);
    EXPECT_EQ(title, "<dita><topic id=\"id-1\"><title>By name</title></topic>");
}

TEST_F(CompositeAssemblyTest, AMapByNameThatIsATopicGivesNoTitle) {
    EXPECT_EQ(publish("<map class='- topic/topic ' id='m' title='Never'><title>Never</title>" +
                      topicref("href='a.dita'") + "</map>"),
              taken(2, "a") + kEndOfDita);
    EXPECT_EQ(title, "<dita><topic id=\"id-1\"><title/></topic>");
}

TEST_F(CompositeAssemblyTest, TitlesOfAllKinds) {
    const std::string reference = topicref("href='a.dita'");
    const std::pair<std::string, std::string> cases[] = {
        {map("<title>A <ph>B</ph><?pi x?><!--c--><![CDATA[<]]></title>" + reference, "title='no'"),
         "A <ph>B</ph><?pi x?><!--c--><![CDATA[<]]>"},
        {map(reference, "title='Attribute'"), "Attribute"},
        {map("<topicmeta/><title>Late</title>" + reference, "title='Attribute'"), "Attribute"},
        {map("text<?pi?><!--c--><title>First element</title>" + reference), "First element"},
        {map("<x class='- topic/title '>By class</x>" + reference), "By class"},
        {map("<title class='- topic/data '>Other</title>" + reference), ""},
        {map("<booktitle>by name<mainbooktitle>never</mainbooktitle></booktitle>" + reference,
             "title='Attribute'"),
         "Attribute"},
        {map("<booktitle class='- topic/title bookmap/booktitle '>dropped<?pi x?><![CDATA[<]]>"
             "<!--c--><x>in <ph>x</ph><?pi y?></x> dropped <y/></booktitle>" +
             reference),
         "<?pi x?><![CDATA[<]]><!--c--><ph>in <ph>x</ph><?pi y?></ph><ph/>"},
    };
    for (const auto& [text, expected] : cases) {
        publish(text);
        const std::string start = "<dita><topic id=\"id-1\"><title>";
        EXPECT_EQ(title, expected.empty() && text.find("booktitle") != std::string::npos
                             ? "<dita><topic id=\"id-1\"><title/></topic>"
                             : start + expected + "</title></topic>");
    }
}

TEST_F(CompositeAssemblyTest, AMalformedNestedMapEndsTheRun) {
    folder.write("inner.ditamap", "<map>");
    folder.write("root.ditamap", map(topicref("href='a.dita'") + mapref("href='inner.ditamap'")));
    const TypedValues answer = publishComposite(composite());
    EXPECT_EQ(status(answer), -42);
    EXPECT_EQ(answer.size(), 4U);
    EXPECT_EQ(console, cannotRead("$F/inner.ditamap"));
    EXPECT_EQ(tree(), "a.dita b.dita c.dita inner.ditamap out root.ditamap ");
}

TEST_F(CompositeAssemblyTest, AMapThatIsAReferenceToAPartEndsTheRun) {
    folder.write("parts.ditamap", map(topicref("id='x' href='a.dita'")));
    folder.write("root.ditamap", map(topicref("href='b.dita'"), "href='parts.ditamap#x'"));
    EXPECT_EQ(status(publishComposite(composite())), -42);
    EXPECT_EQ(status(publishFlatBook(flatBook())), -42);
    EXPECT_EQ(console, "");
}

TEST_F(CompositeAssemblyTest, AMapWhoseRootIsReplacedByARangeEndsTheRun) {
    folder.write("parts.ditamap", map("<map id='x'/><map id='y'/>", "id='m'"));
    folder.write("root.ditamap", map(topicref("href='b.dita'"),
                                     "conref='parts.ditamap#x' conrefend='parts.ditamap#y'"));
    EXPECT_EQ(status(publishComposite(composite())), -42);
    EXPECT_EQ(console, "");
}

TEST_F(CompositeAssemblyTest, PathsOfAllKindsLeadToTheSameTopic) {
    folder.write("with blank/\xC3\xBC%s%n.dita",
                 topic("odd", "<body><p><xref href='../a.dita'/></p></body>"));
    const std::string target = "with%20blank/%C3%BC%25s%25n.dita";
    const std::string plain = "with blank/\xC3\xBC%25s%25n.dita";
    const std::string absolute = folder.path().string();
    std::string references;
    for (const std::string& href : {target, plain, absolute + "/with blank/\xC3\xBC%s%n.dita",
                                    "file://" + absolute + "/" + target,
                                    "file:" + absolute + "/" + target, "./out/../" + target}) {
        references += topicref("href='" + href + "'");
    }
    std::string expected;
    for (const int id : {2, 4, 5, 6, 7, 8}) {
        expected += "<topic id=\"id-" + std::to_string(id) +
                    "\"><title>odd</title><body><p><xref href=\"#id-3\"/></p></body></topic>";
    }
    EXPECT_EQ(publish(map(references + topicref("href='file://" + absolute + "/a.dita'"))),
              expected + taken(3, "a") + kEndOfDita);
    EXPECT_EQ(console, "");
    EXPECT_NE(progress.find(appending("\xC3\xBC%s%n.dita") + "\n"), std::string::npos);
}

}  // namespace
}  // namespace marrowpress
