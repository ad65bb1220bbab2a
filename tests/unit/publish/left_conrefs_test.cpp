#include "publish/left_conrefs.h"

#include <optional>

#include "references/key_space.h"
#include "tests/support/recording_observer.h"
#include "tests/support/xml_text.h"
#include "xml/document_store.h"

namespace marrowpress {
namespace {

/// Content references that nobody has followed: what is known is what stands in the documents.
class LeftConrefsTest : public XmlTest {
protected:
    /// Reads a topic "t" into the store.
    xercesc::DOMElement& read(const std::string& name, const std::string& content) {
        folder.write(name,
                     "<!DOCTYPE topic [<!ELEMENT topic ANY><!ATTLIST topic id ID #REQUIRED>"
                     "<!ELEMENT p ANY><!ATTLIST p id CDATA #IMPLIED conref CDATA #IMPLIED"
                     " conkeyref CDATA #IMPLIED>]>\n<topic id='t'>\n" +
                         content + "</topic>");
        return *DocumentStore::instance().mustLoad(folder.file16(name)).getDocumentElement();
    }

    /// What is told of the first paragraph of `topic`; paths without the folder's.
    std::string told(const xercesc::DOMElement& topic) {
        observed.host.observations.clear();
        const KeySpace keySpace(keys->document());
        observeLeftConref(*observed, keySpace, *topic.getFirstElementChild());
        std::string text = observed.faults();
        for (std::size_t at = text.find(folder.path().string()); at != std::string::npos;
             at = text.find(folder.path().string())) {
            text.erase(at, folder.path().string().size() + 1);
        }
        return text;
    }

    ObservedScope observed;
    std::optional<ParsedXml> keys{std::in_place, "<map/>", u"file:///keys.ditamap"};
};

TEST_F(LeftConrefsTest, ARingIsFollowedOverFilesThatAreRead) {
    read("b.dita", "<p id='p' conref='a.dita#t/p'/>");
    EXPECT_EQ(told(read("a.dita", "<p id='p' conref='b.dita#t/p'/>")),
              "205 a.dita:3:1 <p> b.dita#t/p ring a.dita:3:1 b.dita:3:1");
}

TEST_F(LeftConrefsTest, AReferenceToItselfIsARingOfOne) {
    EXPECT_EQ(told(read("a.dita", "<p id='p' conref='#t/p'/>")),
              "205 a.dita:3:1 <p> #t/p ring a.dita:3:1");
}

TEST_F(LeftConrefsTest, AWayIntoARingIsToldAtTheRing) {
    const std::string told = this->told(
        read("a.dita", "<p conref='#t/q'/>\n<p id='q' conref='#t/r'/>\n<p id='r' conref='#t/q'/>"));
    EXPECT_EQ(told,
              "205 a.dita:4:1 <p> #t/q ring a.dita:4:1 a.dita:5:1"
              " via a.dita:3:1 conref=#t/q");
}

TEST_F(LeftConrefsTest, AnEndIsNoRing) {
    EXPECT_EQ(told(read("a.dita", "<p conref='#t/q'/>\n<p id='q' conref='#t/r'/>\n<p id='r'/>")),
              "216 a.dita:3:1 <p> #t/q detail=#t/q");
}

TEST_F(LeftConrefsTest, AFileThatIsNotReadIsNotReadForIt) {
    folder.write("b.dita", "<topic id='t'/>");
    host.forget();
    EXPECT_EQ(told(read("a.dita", "<p conref='b.dita#t/p'/>")),
              "216 a.dita:3:1 <p> b.dita#t/p detail=b.dita#t/p");
    EXPECT_FALSE(DocumentStore::instance().holds(folder.file16("b.dita")));
    EXPECT_TRUE(host.console().empty());
}

TEST_F(LeftConrefsTest, AFileThatCouldNotBeReadWasTold) {
    xercesc::DOMElement& topic = read("a.dita", "<p conref='b.dita#t/p'/>");
    EXPECT_FALSE(DocumentStore::instance().getOrLoad(folder.file16("b.dita"), &topic));
    const std::string lines = told(topic);
    EXPECT_TRUE(lines.starts_with("106 ")) << lines;
    EXPECT_EQ(lines.find('\n'), std::string::npos) << lines;
}

TEST_F(LeftConrefsTest, AReferenceByKeyIsFollowedIfItsFileIsRead) {
    keys.emplace("<!DOCTYPE map [<!ATTLIST keydef keys ID #IMPLIED>]><map><keydef keys='k' href='" +
                     folder.file("a.dita") + "'/><keydef keys='l' href='" + folder.file("c.dita") +
                     "'/></map>",
                 u"file:///keys.ditamap");
    folder.write("c.dita", "<topic id='t'/>");
    read("b.dita", "<p id='p' conkeyref='k/p'/>");
    EXPECT_EQ(told(read("a.dita", "<p id='p' conref='b.dita#t/p'/>")),
              "205 a.dita:3:1 <p> b.dita#t/p ring a.dita:3:1 b.dita:3:1");
    read("d.dita", "<p id='p' conkeyref='l/p'/>");
    EXPECT_EQ(told(read("e.dita", "<p conref='d.dita#t/p'/>")),
              "216 e.dita:3:1 <p> d.dita#t/p detail=d.dita#t/p");
    EXPECT_FALSE(DocumentStore::instance().holds(folder.file16("c.dita")));
}

}  // namespace
}  // namespace marrowpress
