#include "publish/composite_assembly.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "publish/topicref_walk.h"
#include "references/exclusion_filter.h"
#include "support/xerces_ptr.h"
#include "tests/support/current_folder.h"
#include "tests/support/message_texts.h"
#include "tests/support/texts.h"
#include "tests/support/whole_request.h"
#include "tests/support/xml_text.h"

namespace marrowpress {
namespace {

constexpr auto kAccept = xercesc::DOMNodeFilter::FILTER_ACCEPT;
constexpr auto kReject = xercesc::DOMNodeFilter::FILTER_REJECT;
constexpr auto kSkip = xercesc::DOMNodeFilter::FILTER_SKIP;

using CompositeDocNodeFilterTest = XmlTest;

TEST_F(CompositeDocNodeFilterTest, TheFirstRuleThatAppliesDecides) {
    ExclusionFilterHolder::instance().reset(
        std::make_unique<AttrBasedElementNodeFilter>(u"excluded", u"yes"));
    const struct {
        std::string xml;
        xercesc::DOMNodeFilter::FilterAction onScreen;
        xercesc::DOMNodeFilter::FilterAction inPrint;
    } cases[] = {
        {topicref(""), kAccept, kAccept},
        {topichead(""), kAccept, kAccept},
        {"<keydef/>", kAccept, kAccept},
        {"<topicref/>", kSkip, kSkip},
        {map(""), kSkip, kSkip},
        {"<other/>", kSkip, kSkip},
        {topicref("processing-role='resource-only'"), kReject, kReject},
        {topicref("processing-role='normal'"), kAccept, kAccept},
        {topicref("processing-role='Resource-only'"), kAccept, kAccept},
        {map("", "processing-role='resource-only'"), kReject, kReject},
        {topicref("print='no'"), kAccept, kReject},
        {topicref("print='No'"), kAccept, kAccept},
        {topicref("print='printonly'"), kAccept, kAccept},
        {topicref("print='no '"), kAccept, kAccept},
        {"<other print='no'/>", kSkip, kReject},
        {"<reltable/>", kReject, kReject},
        {"<x class='- map/reltable '/>", kReject, kReject},
        {"<reltable class='- map/topicref '/>", kAccept, kAccept},
        {topicref("excluded='yes'"), kReject, kReject},
        {"<other excluded='yes'/>", kReject, kReject},
        {topicref("excluded='no'"), kAccept, kAccept},
    };
    CompositeDocNodeFilter screen;
    CompositeDocNodeFilter print;
    print.setUsePrint(true);
    for (const auto& expected : cases) {
        const ParsedXml parsed(expected.xml);
        EXPECT_EQ(screen.acceptNode(parsed.root()), expected.onScreen) << expected.xml;
        EXPECT_EQ(print.acceptNode(parsed.root()), expected.inPrint) << expected.xml;
    }
    const ParsedXml text("<p>text<?pi?><!--c--></p>");
    for (const xercesc::DOMNode* node = text.root()->getFirstChild(); node;
         node = node->getNextSibling()) {
        EXPECT_EQ(screen.acceptNode(node), kReject);
    }
    EXPECT_EQ(screen.acceptNode(&text.document()), kReject);
    EXPECT_EQ(screen.acceptNode(nullptr), kReject);
    print.setUsePrint(false);
    EXPECT_EQ(print.acceptNode(ParsedXml(topicref("print='no'")).root()), kAccept);
}

using TopicShellTest = XmlTest;

TEST_F(TopicShellTest, IsAnEmptyTopicBehindWhatIsThere) {
    const ParsedXml parsed("<dita><first/></dita>");
    const xercesc::DOMElement& shell = createTopicShell(*parsed.root());
    EXPECT_EQ(printed(*parsed.root()),
              replacedAll("<dita><first/><topic id=\"ID\"><title/></topic></dita>", "ID",
                          kGeneratedIds[0]));
    EXPECT_EQ(parsed.root()->getLastElementChild(), &shell);
}

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

class CompositeAssemblyTest : public WholeRequestTest {
protected:
    CompositeAssemblyTest() {
        std::filesystem::create_directories(folder.path() / "out");
        for (const char* name : {"a", "b", "c"}) {
            folder.write(std::string(name) + ".dita", topic(name));
        }
    }

    /// Publishes `rootMap`; what stands in the composite behind its first topic.
    std::string publish(const std::string& rootMap) {
        folder.write("root.ditamap", rootMap);
        EXPECT_EQ(status(publishComposite(composite())), 0);
        const std::string text = written("out/book.dita");
        const std::size_t behind = text.find("</topic>") + 8;
        title = text.substr(0, behind);
        return text.substr(behind);
    }

    std::string title;
};

const std::string kEndOfDita = "</dita>";

/// A topic of the output: its number and its title, and what is nested in it.
std::string taken(int id, const std::string& title, const std::string& nested = {}) {
    return "<topic id=\"id-" + std::to_string(id) + "\"><title>" + title + "</title>" + nested +
           "</topic>";
}

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

TEST_F(CompositeAssemblyTest, ANestedMapThatIsOnlyAResourceIsLeftOut) {
    folder.write("inner.ditamap",
                 map(topicref("href='a.dita'"), "processing-role='resource-only'"));
    EXPECT_EQ(publish(map(mapref("href='inner.ditamap'") + topicref("href='b.dita'"))),
              taken(2, "b") + kEndOfDita);
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

TEST_F(CompositeAssemblyTest, AMapByNameThatIsATopicIsTakenInAsOne) {
    folder.write("m.xml", "<map class='- topic/topic ' id='m'><title>M</title></map>");
    EXPECT_EQ(publish(map(topicref("href='m.xml'", topicref("href='a.dita'")))),
              "<map class=\"- topic/topic \" id=\"id-2\"><title>M</title>" + taken(3, "a") +
                  "</map>" + kEndOfDita);
}

TEST_F(CompositeAssemblyTest, AContainerWithoutElementsNestsNothing) {
    folder.write("empty.dita", "<dita><!-- kept --><?kept?>text</dita>");
    folder.write("nothing.dita", "<dita/>");
    EXPECT_EQ(
        publish(map(
            topicref("href='a.dita'", topicref("href='empty.dita'", topicref("href='b.dita'"))) +
            topicref("href='nothing.dita'", topicref("href='c.dita'")))),
        taken(2, "a", "<!-- kept --><?kept?>text" + taken(3, "b")) + taken(4, "c") + kEndOfDita);
}

TEST_F(CompositeAssemblyTest, WithoutADtdNoElementHasAFragment) {
    EXPECT_EQ(publish(map(topicref("href='a.dita#a'", topicref("href='b.dita'")))),
              taken(2, "b") + kEndOfDita);
    EXPECT_EQ(console, "");
    EXPECT_EQ(progress.find("a.dita"), std::string::npos);
}

TEST_F(CompositeAssemblyTest, AFragmentIsAnIdOfTheDocument) {
    folder.write("a.dita",
                 "<!DOCTYPE topic [<!ATTLIST p id ID #IMPLIED><!ATTLIST topic id ID #IMPLIED>]>"
                 "<topic id='a'><title>a</title><body><p id='p'>P</p></body></topic>");
    EXPECT_EQ(publish(map(topicref("href='a.dita#p'", topicref("href='b.dita'")) +
                          topicref("href='a.dita#p/x'"))),
              "<p id=\"p\">P" + taken(2, "b") + "</p><p id=\"p\">P</p>" + kEndOfDita);
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

TEST_F(CompositeAssemblyTest, TheOutputMayBeATargetToo) {
    EXPECT_EQ(publish(map(topicref("href='a.dita'") +
                          topicref("href='out/book.dita'", topicref("href='b.dita'")))),
              taken(2, "a") + taken(3, "") + taken(4, "a", taken(5, "b")) + kEndOfDita);
}

TEST_F(CompositeAssemblyTest, AMapThatLeadsToItselfIsPassedOver) {
    for (const char* href :
         {"#", "root.ditamap", "./root.ditamap", "out/../root.ditamap", "root.ditamap#none"}) {
        EXPECT_EQ(
            publish(map(topicref("href='a.dita'") + mapref("href='" + std::string(href) + "'") +
                        topicref("href='b.dita'"))),
            taken(2, "a") + taken(3, "b") + kEndOfDita)
            << href;
    }
}

TEST_F(CompositeAssemblyTest, AMapUnderAnotherSpellingIsAnotherDocument) {
    const std::string path = folder.path().string() + "/./root.ditamap";
    for (const std::string& href : {path, "file://" + path}) {
        EXPECT_EQ(publish(map(topicref("href='a.dita'") + mapref("href='" + href + "'") +
                              topicref("href='b.dita'"))),
                  taken(2, "a") + taken(3, "a") + taken(4, "b") + taken(5, "b") + kEndOfDita)
            << href;
        EXPECT_EQ(console, "") << href;
    }
}

TEST_F(CompositeAssemblyTest, AMapThatIsAReferenceToAPartIsEmpty) {
    folder.write("parts.ditamap", map(topicref("id='x' href='a.dita'")));
    folder.write("root.ditamap", map(topicref("href='b.dita'"), "href='parts.ditamap#x'"));
    EXPECT_EQ(status(publishComposite(composite())), 0);
    EXPECT_EQ(written("out/book.dita"), "<dita><topic id=\"id-1\"><title/></topic></dita>");
    EXPECT_EQ(components(publishFlatBook(flatBook())), "");
    EXPECT_EQ(console, "");
}

TEST_F(CompositeAssemblyTest, ANestedMapThatIsAReferenceToAPartIsPassedOver) {
    folder.write("parts.ditamap", map(topicref("id='x' href='a.dita'")));
    folder.write("empty.ditamap", map(topicref("href='b.dita'"), "href='parts.ditamap#x'"));
    EXPECT_EQ(publish(map(mapref("href='empty.ditamap'") + mapref("href='root.ditamap'") +
                          topicref("href='c.dita'"))),
              taken(2, "c") + kEndOfDita);
    EXPECT_EQ(console, "");
}

TEST_F(CompositeAssemblyTest, APartOfTheMapItselfIsTakenInItsPlace) {
    EXPECT_EQ(
        publish(map(topicref("id='x' href='a.dita'", topicref("href='b.dita'")) +
                    mapref("href='root.ditamap#x'") + topicref("href='c.dita'"))),
        taken(2, "a", taken(3, "b")) + taken(4, "a", taken(5, "b")) + taken(6, "c") + kEndOfDita);
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

/// In another current directory for the length of a test.
class CompositeInCurrentFolderTest : public CompositeAssemblyTest {
protected:
    CompositeInCurrentFolderTest() { folder.write("root.ditamap", map(topicref("href='a.dita'"))); }

    const CurrentFolder current{folder.path()};
};

TEST_F(CompositeInCurrentFolderTest, AnOutputWithoutAFolderStandsThere) {
    boost::json::object params = composite();
    params["output"] = "book.dita";
    bool isThere = false;
    watch = [&](const std::string& line) {
        isThere |= line == appending("a.dita") && folder.exists("KeyspaceDoc.ditamap");
    };
    EXPECT_EQ(status(publishComposite(params)), 0);
    EXPECT_TRUE(isThere);
    EXPECT_EQ(tree(), "a.dita b.dita book.dita c.dita out root.ditamap ");
}

TEST_F(CompositeInCurrentFolderTest, AnEmptyOutputIsReported) {
    boost::json::object params = composite();
    params["output"] = "";
    const TypedValues answer = publishComposite(params);
    EXPECT_EQ(status(answer), 0);
    EXPECT_EQ(answer.size(), 4U);
    EXPECT_EQ(console, cannotWrite("") + cannotRead(""));
    EXPECT_EQ(tree(), "a.dita b.dita c.dita out root.ditamap ");
}

}  // namespace
}  // namespace marrowpress
