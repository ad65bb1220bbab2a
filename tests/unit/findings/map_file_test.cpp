#include "findings/map_file.h"

#include <gtest/gtest.h>

#include "tests/support/file_conditions.h"
#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

using MapKind = MapFile::Kind;

class MapFileTest : public testing::Test {
protected:
    MapFile inspect(const std::string& text) const {
        return inspectMapFile(folder.write("m.ditamap", text));
    }

    TemporaryFolder folder;
};

std::string withPublicId(const std::string& root, const std::string& publicId) {
    return "<!DOCTYPE " + root + " PUBLIC \"" + publicId + "\" \"x.dtd\"><" + root + "/>";
}

TEST_F(MapFileTest, AMapIsOne) {
    for (const std::string& text :
         {std::string("<map/>"), std::string("<bookmap><title/></bookmap>"),
          std::string("<subjectScheme/>"), std::string("<learningMap/>"),
          std::string("<learningGroupMap/>"), std::string("<ourHandbookMap/>"),
          std::string("\xEF\xBB\xBF<?xml version='1.0'?><!-- c --><?p?>\n<map id='m'/>"),
          std::string("<handbook class='- map/map handbook/handbook '/>"),
          std::string("<topic class='- map/map '/>"),
          withPublicId("map", "-//OASIS//DTD DITA Map//EN"),
          withPublicId("handbook", "-//ACME//DTD Handbook Map//EN"),
          withPublicId("handbook", "-//OASIS//DTD DITA BookMap//EN"),
          std::string("<!DOCTYPE handbook SYSTEM 'ourmap.dtd'><handbook/>")}) {
        const MapFile found = inspect(text);
        EXPECT_EQ(found.kind, MapKind::kMap) << text << found.reason;
    }
}

TEST_F(MapFileTest, WhatADtdMayMakeAMapMayBeOne) {
    EXPECT_EQ(inspect(withPublicId("handbook", "-//ACME//DTD Handbook//EN")).kind, MapKind::kMap);
    EXPECT_EQ(inspect("<!DOCTYPE handbook SYSTEM 'h.dtd'><handbook/>").kind, MapKind::kMap);
}

TEST_F(MapFileTest, TheInternalSubsetMaySayTheClass) {
    EXPECT_EQ(inspect("<!DOCTYPE book [<!ELEMENT book EMPTY>"
                      "<!ATTLIST book class CDATA '- map/map '>]><book/>")
                  .kind,
              MapKind::kMap);
}

TEST_F(MapFileTest, WhatIsSurelyNoneIsNone) {
    for (const std::string& text :
         {std::string("<reference id='r'><title/></reference>"), std::string("<topic/>"),
          std::string("<dita/>"), std::string("<val/>"), std::string("<learningContent/>"),
          std::string("<html class='big'/>"), std::string("<foo/>"),
          std::string("<x:note xmlns:x='u'/>"), std::string("<howto class='- topic/topic '/>"),
          std::string("<map class='- topic/topic '/>"),
          withPublicId("concept", "-//ACME//DTD Map//EN"),
          withPublicId("howto", "-//OASIS//DTD DITA Topic//EN"),
          withPublicId("html", "-//W3C//DTD XHTML 1.0 Strict//EN"),
          std::string("<!DOCTYPE foo><foo/>")}) {
        EXPECT_EQ(inspect(text).kind, MapKind::kNoMap) << text;
    }
}

TEST_F(MapFileTest, TheRootIsNamed) {
    EXPECT_EQ(inspect("<!-- <map> --><reference/>").rootName, "reference");
    EXPECT_EQ(inspect("<x:note xmlns:x='u'/>").rootName, "x:note");
    EXPECT_EQ(inspect("<map/>").rootName, "map");
}

TEST_F(MapFileTest, ALongStartIsReadToTheRoot) {
    EXPECT_EQ(inspect("<!--" + std::string(200000, 'x') + "--><reference/>").kind, MapKind::kNoMap);
}

TEST_F(MapFileTest, WhatStandsFarBehindTheRootIsNotLookedAt) {
    EXPECT_EQ(inspect("<map>" + std::string(200000, ' ') + "</wrong>").kind, MapKind::kMap);
}

TEST_F(MapFileTest, WhatIsNotWellFormedIsToldWhereItBreaks) {
    const MapFile found = inspect("<?xml version='1.0'?>\n <map a=b/>");
    EXPECT_EQ(found.kind, MapKind::kNotWellFormed);
    EXPECT_EQ(found.place, (FindingPlace{folder.file("m.ditamap"), 2, 9}));
    EXPECT_EQ(found.reason, "AttValue: \" or ' expected");
    for (const char* const text : {"", "plain text", "<!-- alone -->", "<map", "\xE4<map/>"}) {
        const MapFile broken = inspect(text);
        EXPECT_EQ(broken.kind, MapKind::kNotWellFormed) << text;
        EXPECT_NE(broken.reason, "") << text;
        EXPECT_EQ(broken.reason.find('\n'), std::string::npos) << text;
    }
}

TEST_F(MapFileTest, WhatCannotBeReadIsToldWithTheReason) {
    const Watchdog watchdog(60);
    const MapFile missing = inspectMapFile(folder.file("none.ditamap"));
    EXPECT_EQ(missing.kind, MapKind::kUnreadable);
    EXPECT_EQ(missing.reason, "No such file or directory");
    EXPECT_EQ(missing.place, (FindingPlace{folder.file("none.ditamap")}));
    makePipe(folder.file("pipe"));
    for (const std::string& path : {folder.file("pipe"), folder.path().string()}) {
        EXPECT_EQ(inspectMapFile(path).kind, MapKind::kUnreadable) << path;
        EXPECT_EQ(inspectMapFile(path).reason, "not a regular file") << path;
    }
}

TEST_F(MapFileTest, NoOtherFileIsReadForIt) {
    folder.write("x.dtd", "<!ATTLIST foo class CDATA '- map/map '>");
    folder.write("x.ent", "<!ATTLIST foo class CDATA '- map/map '>");
    SilentServer server;
    EXPECT_EQ(inspect("<!DOCTYPE foo PUBLIC '-//W3C//DTD X//EN' 'x.dtd' "
                      "[<!ENTITY % e SYSTEM 'x.ent'> %e;"
                      "<!ENTITY % n SYSTEM 'http://" +
                      server.authority() + "/x'> %n;]><foo/>")
                  .kind,
              MapKind::kNoMap);
    EXPECT_FALSE(server.wasAsked());
}

}  // namespace
}  // namespace marrowpress
