#include "findings/xml_writer.h"

#include <gtest/gtest.h>

#include <libxml/parser.h>

#include <functional>
#include <sstream>

#include "host/utf8.h"

namespace marrowpress {
namespace {

std::string writtenXml(const std::function<void(XmlWriter&)>& write) {
    std::ostringstream out;
    {
        XmlWriter xml(out);
        write(xml);
        xml.endDocument();
    }
    return out.str();
}

TEST(XmlWriterTest, EndsWhatIsOpen) {
    const std::string document = writtenXml([](XmlWriter& xml) {
        xml.startElement("a");
        xml.attribute("b", "c");
        xml.startElement("d");
        xml.endElement();
        xml.startElement("e");
    });
    EXPECT_EQ(document,
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<a b=\"c\">\n <d/>\n <e/>\n</a>\n");
}

TEST(XmlWriterTest, TextsAreReadBackAsTheyWere) {
    const std::string text = "<a> & \"b\" 'c' ]]> \t\n \xC3\xBC \xF0\x9F\x94\xA7";
    const std::string document = writtenXml([&text](XmlWriter& xml) {
        xml.startElement("a");
        xml.attribute("b", text);
        xml.text(text);
    });
    xmlDoc* const read = xmlReadMemory(document.data(), static_cast<int>(document.size()), nullptr,
                                       nullptr, XML_PARSE_NONET);
    ASSERT_NE(read, nullptr);
    xmlNode* const root = xmlDocGetRootElement(read);
    xmlChar* const content = xmlNodeGetContent(root);
    xmlChar* const attribute = xmlGetProp(root, reinterpret_cast<const xmlChar*>("b"));
    EXPECT_EQ(reinterpret_cast<const char*>(content), text);
    EXPECT_EQ(reinterpret_cast<const char*>(attribute), text);
    xmlFree(content);
    xmlFree(attribute);
    xmlFreeDoc(read);
}

TEST(XmlWriterTest, WhatXmlCannotHoldIsReplaced) {
    const std::string document = writtenXml([](XmlWriter& xml) {
        xml.startElement("a");
        xml.text(std::string("\x1B\xFC\xEF\xBF\xBE\0", 6) + "b");
    });
    const std::string replacement = "\xEF\xBF\xBD";
    EXPECT_EQ(document, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<a>" + replacement +
                            replacement + replacement + replacement + "b</a>\n");
    EXPECT_TRUE(isValidUtf8(document));
}

}  // namespace
}  // namespace marrowpress
