#include <gtest/gtest.h>

#include "tests/cli/command_fixture.h"
#include "tests/support/texts.h"

namespace marrowpress {
namespace {

class DepsOfAMapTest : public CommandTest {
protected:
    DepsOfAMapTest() {
        writeTopic("a", R"(<ph conref="lib.dita#lib/p"/><xref href="c.dita">C</xref>)"
                        R"(<image keyref="logo"/><image href="none.png"/>)");
        writeTopic("b", R"(<xref href="a.dita">A</xref>)");
        writeTopic("c", "");
        writeTopic("lib", R"(<ph id="p">x</ph>)");
        folder_.write("docs/logo.png", "");
        writeMap(
            "\n<topicref keys=\"logo\" href=\"logo.png\" processing-role=\"resource-only\"/>\n"
            "<topicref keys=\"unused\" href=\"u.png\" processing-role=\"resource-only\"/>\n"
            "<topicref href=\"a.dita\"/>\n<topicref href=\"b.dita\"/>\n"
            "<topicref href=\"d.dita\"/>");
        folder_.write("p.ditaval", "<val/>");
    }

    CommandResult deps(const Texts& more = {}) const {
        Texts arguments{"deps",        "docs/m.ditamap", "--catalog",
                        "catalog.xml", "--diagnostics",  "short"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return run(arguments);
    }

    std::string refusal(const Texts& more) const {
        const CommandResult result = deps(more);
        EXPECT_EQ(result.code, 2) << result.err;
        EXPECT_EQ(result.out, "");
        const std::size_t at = result.err.find("marrowpress deps: ");
        return result.err.substr(at, result.err.find('\n', at) - at);
    }
};

TEST_F(DepsOfAMapTest, AListShowsEachFileThatTheRunReadOrLookedFor) {
    const CommandResult result = deps({"--filter", "p.ditaval"});
    EXPECT_EQ(result.code, 0) << result.err;
    EXPECT_EQ(result.out,
              "FILE            KIND           STATE   FROM\n"
              "docs/m.ditamap  map reference  read    -\n"
              "catalog.xml     catalog        read    -\n"
              "p.ditaval       DITAVAL        read    -\n"
              "dtd/map.dtd     DTD            read    -\n"
              "docs/logo.png   keydef         read    docs/m.ditamap:2:1\n"
              "dtd/topic.dtd   DTD            read    -\n"
              "docs/a.dita     topic          read    docs/m.ditamap:4:1\n"
              "docs/b.dita     topic          read    docs/m.ditamap:5:1\n"
              "docs/d.dita     topic          absent  docs/m.ditamap:6:1\n"
              "docs/lib.dita   conref         read    docs/a.dita:1:103\n"
              "docs/c.dita     xref           read    docs/a.dita:1:132\n"
              "docs/none.png   image          absent  docs/a.dita:1:182\n");
}

TEST_F(DepsOfAMapTest, EdgesShowWhoRefersToWhom) {
    const CommandResult result = deps({"--edges"});
    EXPECT_EQ(result.code, 0) << result.err;
    for (const char* const line : {"docs/m.ditamap:4:1  topic   docs/a.dita\n",
                                   "docs/a.dita:1:160   image   docs/logo.png\n",
                                   "docs/m.ditamap:2:1  keydef  docs/logo.png\n",
                                   "docs/a.dita         DTD     dtd/topic.dtd\n",
                                   "docs/b.dita         DTD     dtd/topic.dtd\n",
                                   "docs/b.dita:1:103   xref    docs/a.dita\n"}) {
        EXPECT_NE(result.out.find(line), std::string::npos) << result.out;
    }
}

TEST_F(DepsOfAMapTest, ReverseShowsWhatAChangedFileTouches) {
    const std::string heading = "FILE            KIND           STATE  FROM\n";
    EXPECT_EQ(deps({"--reverse", "docs/logo.png"}).out,
              heading +
                  "docs/m.ditamap  map reference  read   -\n"
                  "docs/a.dita     topic          read   docs/m.ditamap:4:1\n");
    EXPECT_EQ(deps({"--reverse", "docs/../docs/lib.dita", "--format", "json"}).out,
              R"({"file":")" + folder_.file("docs/a.dita") +
                  R"(","kind":"topic","state":"read","from":{"file":")" +
                  folder_.file("docs/m.ditamap") + R"(","line":4,"column":1}})" + "\n" +
                  R"({"file":")" + folder_.file("docs/m.ditamap") +
                  R"(","kind":"map reference","state":"read","from":null})" + "\n");
    EXPECT_EQ(deps({"--reverse", "docs/logo.png", "--edges"}).out,
              "FROM                KIND    TO\n"
              "docs/m.ditamap:2:1  keydef  docs/logo.png\n"
              "docs/m.ditamap:4:1  topic   docs/a.dita\n"
              "docs/a.dita:1:160   image   docs/logo.png\n");
}

TEST_F(DepsOfAMapTest, AFileThatTouchesNothingHasNoAnswer) {
    const CommandResult result = deps({"--reverse", "out/keep.txt", "--format", "json"});
    EXPECT_EQ(result.code, 0) << result.err;
    EXPECT_EQ(result.out, "");
}

TEST_F(DepsOfAMapTest, MakeGetsARuleWithoutAbsentFiles) {
    const CommandResult result = deps({"--format", "make", "-o", "out/m.dita"});
    EXPECT_EQ(result.code, 0) << result.err;
    EXPECT_TRUE(result.out.starts_with("out/m.dita: \\\n  docs/m.ditamap \\\n  catalog.xml \\\n"))
        << result.out;
    EXPECT_NE(result.out.find("\ndocs/logo.png:\n"), std::string::npos);
    EXPECT_EQ(result.out.find("none.png"), std::string::npos);
    EXPECT_EQ(result.out.find("docs/d.dita"), std::string::npos);
    EXPECT_TRUE(deps({"-f", "make"}).out.starts_with("m.dita: \\\n"));
}

TEST_F(DepsOfAMapTest, WhatContradictsItselfIsRefused) {
    EXPECT_EQ(refusal({"-f", "make", "--edges"}),
              "marrowpress deps: --edges: a rule for make names all files");
    EXPECT_EQ(refusal({"-f", "make", "--reverse", "docs/a.dita"}),
              "marrowpress deps: --reverse: a rule for make names all files");
    EXPECT_EQ(refusal({"-o", "out/m.dita"}),
              "marrowpress deps: --output: this is for --format make only");
    EXPECT_EQ(refusal({"-f", "mak"}),
              "marrowpress deps: --format: unknown format `mak`; did you mean `make`?");
    EXPECT_EQ(
        refusal({"--reverse", "docs/logos.png"}),
        "marrowpress deps: --reverse: there is no file `docs/logos.png`, and nobody looks for "
        "it; did you mean `docs/logo.png`?");
}

TEST_F(DepsOfAMapTest, AMapThatCannotBeUsedIsRefusedOrFails) {
    const CommandResult topic = run({"deps", "docs/a.dita"});
    EXPECT_EQ(topic.code, 2);
    EXPECT_TRUE(
        topic.err.starts_with("marrowpress deps: MAP: docs/a.dita is a `topic`; a map is wanted\n"))
        << topic.err;
    const CommandResult absent = run({"deps", "none.ditamap"});
    EXPECT_EQ(absent.code, 2);
    EXPECT_TRUE(absent.err.starts_with(
        "marrowpress deps: MAP: cannot read none.ditamap: No such file or directory\n"))
        << absent.err;
    folder_.write("docs/m.ditamap", "<map><topicref></map>");
    const CommandResult broken = deps();
    EXPECT_EQ(broken.code, 1);
    EXPECT_EQ(broken.out, "");
    EXPECT_NE(broken.err.find("[MP106]"), std::string::npos) << broken.err;
}

TEST_F(DepsOfAMapTest, AFileThatCannotBeReadIsUnreadable) {
    folder_.write("docs/b.dita", "<topic");
    const CommandResult result = deps({"--format", "json"});
    EXPECT_EQ(result.code, 0) << result.err;
    EXPECT_NE(result.out.find(R"({"file":")" + folder_.file("docs/b.dita") +
                              R"(","kind":"topic","state":"unreadable")"),
              std::string::npos)
        << result.out;
    EXPECT_NE(deps({"--format", "make"}).out.find("\ndocs/b.dita:\n"), std::string::npos);
}

}  // namespace
}  // namespace marrowpress
