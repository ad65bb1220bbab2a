#include "xml/entity_resolver.h"

#include <gtest/gtest.h>

#include <xercesc/util/XMLNetAccessor.hpp>
#include <xercesc/util/XMLResourceIdentifier.hpp>

#include "host/typed_record.h"
#include "tests/support/file_conditions.h"
#include "tests/support/scripted_interfaces.h"
#include "tests/unit/xml/sample_documents.h"
#include "xml/dom_parser.h"
#include "xml/mapped_input.h"

namespace marrowpress {
namespace {

TEST(EntityResolverCommandsTest, AreWrittenInOneWay) {
    using Commands = EntityResolverCommands;
    EXPECT_EQ(Commands::startCommand("/d/größe a.ditamap"),
              "EntityResolver start -basefile \"/d/größe a.ditamap\"");
    EXPECT_EQ(Commands::startCommand(""), "EntityResolver start -basefile \"\"");
    EXPECT_EQ(Commands::endCommand(), "EntityResolver end");
    EXPECT_EQ(Commands::terminateCommand(), "EntityResolver terminate");
    EXPECT_EQ(Commands::resolveCommand("-//OASIS//DTD DITA Map//EN", ""),
              "EntityResolver resolveentity -publicid \"-//OASIS//DTD DITA Map//EN\"");
}

TEST(EntityResolverCommandsTest, PutNoBlankBehindABaseUri) {
    EXPECT_EQ(EntityResolverCommands::resolveCommand("id", "/base/"),
              "EntityResolver resolveentity -baseuri \"/base/\"-publicid \"id\"");
}

TEST(EntityResolverCommandsTest, CarryQuotesAsTheyAre) {
    EXPECT_EQ(EntityResolverCommands::startCommand("/a\"b\\c"),
              "EntityResolver start -basefile \"/a\"b\\c\"");
    EXPECT_EQ(EntityResolverCommands::resolveCommand("a \"b\"", ""),
              "EntityResolver resolveentity -publicid \"a \"b\"\"");
}

/// A resolver with a file "there.dtd".
class QSXMLEntityResolverTest : public XmlTest {
protected:
    using Source = std::unique_ptr<xercesc::InputSource>;

    QSXMLEntityResolverTest() { folder.write("there.dtd", kTopicDtd); }

    /// What the resolver gives for an entity that is named in the document "a.dita".
    Source resolve(const XMLCh* systemId, const XMLCh* publicId) {
        return resolve(systemId, publicId, folder.file16("a.dita").c_str());
    }
    Source resolve(const XMLCh* systemId, const XMLCh* publicId, const XMLCh* base) {
        xercesc::XMLResourceIdentifier identifier(xercesc::XMLResourceIdentifier::ExternalEntity,
                                                  systemId, nullptr, publicId, base, nullptr);
        return Source(resolver.resolveEntity(&identifier));
    }

    static std::string pathOf(const Source& source) {
        if (!dynamic_cast<const MemMapLocalFileInputSource*>(source.get())) {
            return source ? "no local source" : "null";
        }
        return toUtf8(source->getSystemId()).value_or("");
    }

    QSXMLEntityResolver resolver;
};

TEST_F(QSXMLEntityResolverTest, TellsTheClientOfDocumentsAndParsers) {
    const ScriptedClients clients;
    sendStart(u"/d/größe a.dita");
    sendEnd();
    sendTerminate();
    EXPECT_EQ(clients.calls,
              (Texts{"callClient XmlUtilities: EntityResolver start -basefile \"/d/größe a.dita\"",
                     "callClient XmlUtilities: EntityResolver end",
                     "callClient XmlUtilities: EntityResolver terminate"}));
}

TEST_F(QSXMLEntityResolverTest, TakesTheFileAtTheSystemIdentifierWithoutAsking) {
    host.pathsByPublicId["-//Test//Other//EN"] = folder.file("other.dtd");
    EXPECT_EQ(pathOf(resolve(u"there.dtd", u"-//Test//Other//EN")), folder.file("there.dtd"));
    EXPECT_EQ(pathOf(resolve(u"there.dtd", nullptr)), folder.file("there.dtd"));
    EXPECT_EQ(pathOf(resolve(folder.file16("there.dtd").c_str(), u"x")), folder.file("there.dtd"));
    EXPECT_EQ(host.commands(), Texts{});
}

TEST_F(QSXMLEntityResolverTest, AsksForTheFileOfAPublicIdentifier) {
    host.pathsByPublicId[kTopicId] = folder.file("there.dtd");
    EXPECT_EQ(pathOf(resolve(u"missing.dtd", toUtf16(kTopicId).c_str())), folder.file("there.dtd"));
    EXPECT_EQ(host.commands(), Texts{questionFor(kTopicId)});
}

TEST_F(QSXMLEntityResolverTest, AsksThroughTheTypedCall) {
    const ScriptedClients clients;
    resolve(u"missing.dtd", u"id");
    EXPECT_EQ(clients.calls,
              Texts{"callClientTyped XmlUtilities: EntityResolver resolveentity -publicid \"id\""});
}

TEST_F(QSXMLEntityResolverTest, DoesNotTestWhetherTheAnswerExists) {
    host.pathsByPublicId["id"] = folder.file("größe missing.dtd");
    EXPECT_EQ(pathOf(resolve(u"missing.dtd", u"id")), folder.file("größe missing.dtd"));
}

TEST_F(QSXMLEntityResolverTest, GivesTheMissingFileForAnUnknownPublicIdentifier) {
    EXPECT_EQ(pathOf(resolve(u"missing.dtd", u"id")), folder.file("missing.dtd"));
    EXPECT_EQ(host.commands(), Texts{questionFor("id")});
}

TEST_F(QSXMLEntityResolverTest, NeverAsksWithoutPublicIdentifier) {
    EXPECT_EQ(pathOf(resolve(u"missing.dtd", nullptr)), folder.file("missing.dtd"));
    EXPECT_EQ(pathOf(resolve(u"missing.dtd", u"")), folder.file("missing.dtd"));
    EXPECT_EQ(host.commands(), Texts{});
}

TEST_F(QSXMLEntityResolverTest, AsksOnceForEachPublicIdentifier) {
    host.pathsByPublicId["known"] = "/known.dtd";
    resolve(u"missing.dtd", u"known");
    resolve(u"missing.dtd", u"unknown");
    host.pathsByPublicId["known"] = "/changed.dtd";
    host.pathsByPublicId["unknown"] = "/changed.dtd";
    EXPECT_EQ(pathOf(resolve(u"elsewhere.dtd", u"known", u"/other/b.dita")), "/known.dtd");
    EXPECT_EQ(pathOf(resolve(u"missing.dtd", u"unknown")), folder.file("missing.dtd"));
    EXPECT_EQ(resolver.resolvePublicId("unknown"), "");
    EXPECT_EQ(host.commands(), (Texts{questionFor("known"), questionFor("unknown")}));
}

TEST_F(QSXMLEntityResolverTest, KeepsAnswersForItselfOnly) {
    QSXMLEntityResolver other;
    resolver.resolvePublicId("id");
    other.resolvePublicId("id");
    EXPECT_EQ(host.commands(), (Texts{questionFor("id"), questionFor("id")}));
}

TEST_F(QSXMLEntityResolverTest, TellsPublicIdentifiersApartByEveryCharacter) {
    for (const char* publicId : {"a b", "a  b", "A b", "a \"b\"", "größe"}) {
        host.forget();
        host.pathsByPublicId[publicId] = "/x.dtd";
        resolver.resolvePublicId(publicId);
        EXPECT_EQ(host.commands(), Texts{questionFor(publicId)});
    }
}

TEST_F(QSXMLEntityResolverTest, MakesSourcesForPublicIdentifiers) {
    host.pathsByPublicId["known"] = "/größe.dtd";
    const std::string known = "known";
    const std::string unknown = "unknown";
    EXPECT_EQ(pathOf(resolver.sourceForPublicId(&known)), "/größe.dtd");
    EXPECT_EQ(resolver.sourceForPublicId(&unknown), nullptr);
    EXPECT_EQ(host.commands().size(), 2U);
    EXPECT_EQ(resolver.sourceForPublicId(nullptr), nullptr);
    EXPECT_EQ(host.commands().size(), 2U);
}

struct ReplyCase {
    const char* name;
    std::function<HostTypedValueList()> make;
    const char* path;
};

/// A list of values with the given types and texts; a null text stays null.
HostTypedValueList replyOf(std::vector<std::pair<HostValueType, const char*>> values) {
    auto* const blocks =
        static_cast<HostTypedValue*>(std::calloc(values.size(), sizeof(HostTypedValue)));
    for (std::size_t index = 0; index < values.size(); ++index) {
        const auto& [type, text] = values[index];
        blocks[index].type = type;
        if (type == HostValueType::kString && text) {
            blocks[index].value.string = copyToMalloc(text);
        } else if (type == HostValueType::kInteger) {
            blocks[index].value.integer = 3;
        } else if (type == HostValueType::kStringList) {
            auto** const strings = static_cast<char**>(std::calloc(1, sizeof(char*)));
            strings[0] = copyToMalloc(text);
            blocks[index].value.strings = {1, 0, strings};
        }
    }
    return {static_cast<std::uint32_t>(values.size()), blocks};
}

TEST_F(QSXMLEntityResolverTest, TakesMalformedTextForAPathThatLeadsNowhere) {
    host.pathsByPublicId[kTopicId] = folder.write("\xFF.dtd", kTopicDtd);
    const std::unique_ptr<xercesc::InputSource> source = resolver.sourceForPublicId(&kTopicId);
    ASSERT_TRUE(source);
    EXPECT_TRUE(std::u16string_view(source->getSystemId()).ends_with(u"???"));
    const std::unique_ptr<xercesc::BinInputStream> stream(source->makeStream());
    EXPECT_EQ(stream, nullptr);
    EXPECT_EQ(host.console(), Texts{});
}

TEST_F(QSXMLEntityResolverTest, TakesOneTextForAnAnswerAndNothingElse) {
    using enum HostValueType;
    for (const auto& [name, make, path] :
         {ReplyCase{"OneText",
                    [] {
                        return replyOf({{kString, "/größe.dtd"}});
                    },
                    "/größe.dtd"},
          ReplyCase{"EmptyList",
                    [] {
                        return HostTypedValueList{0, nullptr};
                    },
                    ""},
          ReplyCase{"EmptyText",
                    [] {
                        return replyOf({{kString, ""}});
                    },
                    ""},
          ReplyCase{"NullText",
                    [] {
                        return replyOf({{kString, nullptr}});
                    },
                    ""},
          ReplyCase{"Integer",
                    [] {
                        return replyOf({{kInteger, nullptr}});
                    },
                    ""},
          ReplyCase{"TextList",
                    [] {
                        return replyOf({{kStringList, "/a.dtd"}});
                    },
                    ""},
          ReplyCase{"IntegerList",
                    [] {
                        return replyOf({{kIntegerList, nullptr}});
                    },
                    ""},
          ReplyCase{"TwoTexts",
                    [] {
                        return replyOf({{kString, "/a.dtd"}, {kString, "/b.dtd"}});
                    },
                    ""},
          ReplyCase{"TextAndInteger",
                    [] {
                        return replyOf({{kString, "/a.dtd"}, {kInteger, nullptr}});
                    },
                    ""}}) {
        ScriptedClients clients;
        clients.makeReply = make;
        EXPECT_EQ(resolver.resolvePublicId(name), path) << name;
        EXPECT_EQ(resolver.resolvePublicId(name), path) << name;
        EXPECT_EQ(clients.calls.size(), 1U) << name;
    }
}

TEST_F(QSXMLEntityResolverTest, TakesAFailedCallForNoAnswerAndKeepsThat) {
    {
        ScriptedClients clients;
        clients.comStatus = kComFailed;
        EXPECT_EQ(resolver.resolvePublicId("not through"), "");
        clients.comStatus = kComOk;
        clients.hostStatus = 5;
        EXPECT_EQ(resolver.resolvePublicId("refused"), "");
    }
    host.pathsByPublicId["not through"] = "/a.dtd";
    host.pathsByPublicId["refused"] = "/a.dtd";
    EXPECT_EQ(resolver.resolvePublicId("not through"), "");
    EXPECT_EQ(resolver.resolvePublicId("refused"), "");
    EXPECT_EQ(host.commands(), Texts{});
}

TEST_F(QSXMLEntityResolverTest, GoesOnWithoutTheClient) {
    const InterfaceReplacement<IHostClients> missing(QsApiInterfacesC::connected()->clients,
                                                     nullptr);
    EXPECT_EQ(resolver.resolvePublicId("id"), "");
    sendStart(u"/a.dita");
    sendEnd();
    sendTerminate();
    EXPECT_EQ(pathOf(resolve(u"there.dtd", u"id")), folder.file("there.dtd"));
}

TEST_F(QSXMLEntityResolverTest, TellsThePathInPlaceOfASource) {
    host.pathsByPublicId["id"] = "/answer.dtd";
    const std::u16string base = folder.file16("a.dita");
    const auto path = [&](const XMLCh* systemId, const XMLCh* publicId) {
        xercesc::XMLResourceIdentifier identifier(xercesc::XMLResourceIdentifier::SchemaGrammar,
                                                  systemId, nullptr, publicId, base.c_str(),
                                                  nullptr);
        return toUtf8(resolver.resolvePath(identifier));
    };
    EXPECT_EQ(path(u"there.dtd", nullptr), folder.file("there.dtd"));
    EXPECT_EQ(path(u"missing.dtd", u"id"), "/answer.dtd");
    EXPECT_EQ(path(u"missing.dtd", nullptr), "");
    EXPECT_EQ(path(u"missing.dtd", u"unknown"), "");
    EXPECT_EQ(path(u"http://127.0.0.1/x.dtd", nullptr), "");
}

TEST_F(QSXMLEntityResolverTest, KnowsFilesOfFileUrlsByTheUrlAsTheEngineDoes) {
    folder.write("größe a/b.dtd", "x");
    const std::u16string root = u"file://" + folder.file16("");
    for (const std::u16string& url : {root + u"there.dtd", root + u"gr%C3%B6%C3%9Fe%20a/b.dtd",
                                      u"file://localhost" + folder.file16("there.dtd")}) {
        const Source source = resolve(url.c_str(), nullptr);
        ASSERT_TRUE(source) << toUtf8(url);
        EXPECT_EQ(std::u16string(source->getSystemId()), url);
        const std::unique_ptr<xercesc::BinInputStream> stream(source->makeStream());
        EXPECT_EQ(stream != nullptr, url.find(u'%') == std::u16string::npos) << toUtf8(url);
    }
    const Source missing = resolve((root + u"missing.dtd").c_str(), nullptr);
    ASSERT_TRUE(missing);
    EXPECT_EQ(missing->makeStream(), nullptr);
}

TEST_F(QSXMLEntityResolverTest, OpensOfAFileUrlWhatIsNoFileAsLittleAsByItsPath) {
    for (const char16_t* systemId : {u"file:///dev/zero", u"file:///dev",
                                     u"file://localhost/dev/zero", u"file:///dev/z%65ro"}) {
        const Source source = resolve(systemId, nullptr);
        ASSERT_TRUE(source) << toUtf8(std::u16string_view(systemId));
        EXPECT_EQ(source->makeStream(), nullptr);
    }
}

TEST_F(QSXMLEntityResolverTest, RefusesWhatIsNoLocalFile) {
    for (const char16_t* systemId : {u"http://127.0.0.1/x.dtd", u"HTTPS://127.0.0.1/x.dtd",
                                     u"ftp://127.0.0.1/x.dtd", u"file://otherhost/x.dtd"}) {
        const Source source = resolve(systemId, nullptr);
        ASSERT_TRUE(source) << toUtf8(std::u16string_view(systemId));
        EXPECT_EQ(std::u16string(source->getSystemId()), systemId);
        try {
            EXPECT_EQ(Source(resolve(systemId, nullptr))->makeStream(), nullptr);
            ADD_FAILURE() << toUtf8(std::u16string_view(systemId));
        } catch (const xercesc::NetAccessorException& failure) {
            EXPECT_EQ(failure.getCode(), xercesc::XMLExcepts::NetAcc_ConnSocket);
        }
    }
}

TEST_F(QSXMLEntityResolverTest, AsksForThePublicIdentifierOfWhatItWouldRefuse) {
    host.pathsByPublicId["id"] = folder.file("there.dtd");
    EXPECT_EQ(pathOf(resolve(u"http://127.0.0.1/x.dtd", u"id")), folder.file("there.dtd"));
}

/// What a parse sends, step by step.
class EntityQuestionsTest : public XmlTest {
protected:
    /// Parses `text` as the file `name`; "null", or the class of the first paragraph.
    std::string parse(const char* name, const std::string& text) {
        folder.write(name, text);
        try {
            return parsedClass(*bundle.parseFile(folder.file16(name), ParserBundle::kAllRetries));
        } catch (const xercesc::XMLException&) {
            return "null";
        }
    }

    ParserBundle bundle;
};

TEST_F(EntityQuestionsTest, GoOutBetweenStartAndEnd) {
    folder.write("dtd/topic.dtd", kTopicDtd);
    host.pathsByPublicId[kTopicId] = folder.file("dtd/topic.dtd");
    EXPECT_EQ(parse("größe a.dita", topicText("topic.dtd")), "- topic/p ");
    EXPECT_EQ(host.commands(),
              (Texts{startOf(folder.file("größe a.dita")), questionFor(kTopicId), kEnd}));
}

TEST_F(EntityQuestionsTest, AreNotRepeatedForTheNextDocument) {
    folder.write("dtd/topic.dtd", kTopicDtd);
    host.pathsByPublicId[kTopicId] = folder.file("dtd/topic.dtd");
    parse("a.dita", topicText("topic.dtd"));
    host.forget();
    EXPECT_EQ(parse("b.dita", topicText("topic.dtd")), "- topic/p ");
    EXPECT_EQ(host.commands(), tries(1, folder.file("b.dita")));
}

TEST_F(EntityQuestionsTest, AreNotRepeatedByRetries) {
    folder.write("dtd/topic.dtd", kTopicDtd);
    host.pathsByPublicId[kTopicId] = folder.file("dtd/topic.dtd");
    EXPECT_EQ(parse("a.dita", invalidTopicText("topic.dtd")), "none");
    Texts expected = tries(3, folder.file("a.dita"));
    expected.insert(expected.begin() + 1, questionFor(kTopicId));
    EXPECT_EQ(host.commands(), expected);
}

TEST_F(EntityQuestionsTest, GoOutForEveryModuleOfADtd) {
    folder.write("dtd/topic.dtd",
                 "<!ENTITY % there SYSTEM 'there.mod'>%there;"
                 "<!ENTITY % para PUBLIC 'PARA' 'para.mod'>%para;"
                 "<!ELEMENT topic (title,p*)><!ATTLIST topic id ID #REQUIRED>");
    folder.write("dtd/there.mod", "<!ELEMENT title (#PCDATA)>");
    folder.write("para.mod",
                 "<!ELEMENT p (#PCDATA)>"
                 "<!ATTLIST p id ID #IMPLIED class CDATA 'module'>");
    host.pathsByPublicId[kTopicId] = folder.file("dtd/topic.dtd");
    host.pathsByPublicId["PARA"] = folder.file("para.mod");
    EXPECT_EQ(parse("a.dita", topicText("topic.dtd")), "module");
    EXPECT_EQ(host.commands(), (Texts{startOf(folder.file("a.dita")), questionFor(kTopicId),
                                      questionFor("PARA"), kEnd}));
}

TEST_F(EntityQuestionsTest, WithAnAnswerThatDoesNotExistFailLikeAMissingDtd) {
    host.pathsByPublicId[kTopicId] = folder.file("missing.dtd");
    EXPECT_EQ(parse("a.dita", topicText("topic.dtd")), "none");
    EXPECT_EQ(host.commands(), (Texts{startOf(folder.file("a.dita")), questionFor(kTopicId), kEnd,
                                      startOf(folder.file("a.dita")), kEnd}));
}

TEST_F(EntityQuestionsTest, DoNotGoOutForAnEmptyPublicIdentifier) {
    const std::string document = "<topic id='t'><title>T</title><p>x</p></topic>";
    EXPECT_EQ(parse("a.dita", "<!DOCTYPE topic PUBLIC \"\" \"missing.dtd\">" + document), "none");
    EXPECT_EQ(parse("b.dita", "<!DOCTYPE topic SYSTEM \"missing.dtd\">" + document), "none");
    Texts expected = tries(2, folder.file("a.dita"));
    for (const std::string& command : tries(2, folder.file("b.dita"))) {
        expected.push_back(command);
    }
    EXPECT_EQ(host.commands(), expected);
}

TEST_F(EntityQuestionsTest, CarryBlanksAndQuotes) {
    const std::string path = folder.file("a \"b\".dita");
    EXPECT_EQ(parse("a \"b\".dita",
                    "<!DOCTYPE topic PUBLIC \"a  b'c\" 'missing.dtd'>"
                    "<topic><p/></topic>"),
              "none");
    EXPECT_EQ(host.commands(),
              (Texts{startOf(path), questionFor("a  b'c"), kEnd, startOf(path), kEnd}));
}

TEST_F(EntityQuestionsTest, LeaveAFileUrlToTheEngine) {
    folder.write("a b/topic.dtd", kTopicDtd);
    EXPECT_EQ(parse("a.dita", topicText("file://" + folder.file("a%20b/topic.dtd"))), "- topic/p ");
    EXPECT_EQ(host.commands(),
              (Texts{startOf(folder.file("a.dita")), questionFor(kTopicId), kEnd}));
}

TEST_F(EntityQuestionsTest, TakeEscapesOutsideAsciiForMissingFiles) {
    // The engine reads each escape of a URL as a character by itself.
    folder.write("größe.dtd", kTopicDtd);
    const std::string url = "file://" + folder.file("gr%C3%B6%C3%9Fe.dtd");
    EXPECT_EQ(parse("a.dita", "<!DOCTYPE topic SYSTEM \"" + url + "\"><topic><p/></topic>"),
              "none");
    EXPECT_EQ(host.commands(), tries(2, folder.file("a.dita")));
}

}  // namespace
}  // namespace marrowpress
