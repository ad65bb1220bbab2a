#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <thread>

#include "tests/cli/command_fixture.h"
#include "tests/support/file_conditions.h"

namespace marrowpress {
namespace {

const std::string kProgress =
    shownProgress({processingKeySpaces(), updatingReferences(), appending("a.dita"),
                   appending("b.dita"), processingReferences()});

constexpr const char* kRefusal =
    R"({"values":[{"type":1,"value":-43},{"type":6,"value":[]},{"type":15,"value":[]},)"
    R"({"type":15,"value":[]}]})"
    "\n";

TEST_F(CommandTest, PublishWritesTheComposite) {
    const CommandResult result = publish();
    EXPECT_EQ(withoutTime(result.err), "0 errors, 0 warnings; 2 topics\n");
    EXPECT_EQ(result.out, "out/m.dita\n");
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(bodiesOf("out/m.dita"), "Text of a;Text of b;");
    EXPECT_NE(
        folder_.read("out/m.dita")
            .find(R"(<!DOCTYPE dita PUBLIC "-//OASIS//DTD DITA Composite//EN" "ditabase.dtd">)"),
        std::string::npos);
    EXPECT_FALSE(folder_.exists("out/KeyspaceDoc.ditamap"));
}

TEST_F(CommandTest, PublishReplacesAnOldOutput) {
    EXPECT_EQ(publish().code, 0);
    writeTopic("a", "New text");
    EXPECT_EQ(publish({"--print"}).code, 0);
    EXPECT_EQ(bodiesOf("out/m.dita"), "New text;");
}

TEST_F(CommandTest, PublishReplacesWhatAFullDiskLeft) {
    folder_.write("out/m.dita", "");
    EXPECT_EQ(publish().code, 0);
    EXPECT_NE(folder_.read("out/m.dita"), "");
}

TEST_F(CommandTest, PublishDeletesNoFileButItsOwn) {
    const std::string topic = folder_.read("docs/a.dita");
    const CommandResult result = run({"publish", "docs/m.ditamap", "-f", "composite", "-o",
                                      "docs/a.dita", "--catalog", "catalog.xml"});
    EXPECT_EQ(result.err,
              "marrowpress publish: --output: docs/a.dita is there already, and no composite of an "
              "earlier run: the run would delete it; choose another output\n"
              "Run `marrowpress publish --help` for help.\n");
    EXPECT_EQ(result.code, 2);
    EXPECT_EQ(folder_.read("docs/a.dita"), topic);
}

TEST_F(CommandTest, PublishWritesTheLongestNameThatMayBe) {
    const std::string name = "out/" + std::string(251, 'n');
    const Texts arguments{"publish", "docs/m.ditamap", "-f",         "composite", "-o",
                          name,      "--catalog",      "catalog.xml"};
    EXPECT_EQ(run(arguments).code, 0);
    EXPECT_EQ(bodiesOf(name), "Text of a;Text of b;");
}

TEST_F(CommandTest, PublishLeavesOutWhatIsNotForPrint) {
    EXPECT_EQ(publish({"--print", "--composite-dtd", "own.dtd"}).code, 0);
    EXPECT_EQ(bodiesOf("out/m.dita"), "Text of a;");
    EXPECT_NE(folder_.read("out/m.dita").find("\"own.dtd\""), std::string::npos);
}

TEST_F(CommandTest, PublishFindsCatalogsInTheEnvironment) {
    CommandSetting setting;
    setting.catalogs = folder_.file("catalog.xml");
    const CommandResult result =
        run({"publish", "docs/m.ditamap", "-f", "composite", "-o", "out/m.dita"}, setting);
    EXPECT_EQ(result.code, 0) << result.err;
    EXPECT_EQ(bodiesOf("out/m.dita"), "Text of a;Text of b;");
}

TEST_F(CommandTest, PublishShowsEachStepWhenItIsAskedTo) {
    EXPECT_EQ(withoutTime(publish({"-v"}).err), kProgress + "0 errors, 0 warnings; 2 topics\n");
    EXPECT_EQ(publish({"-v", "--diagnostics", "none"}).err, kProgress);
}

TEST_F(CommandTest, PublishShowsReportLinesAsTheyAreWhereNobodyLooksForFindings) {
    writeMap(R"(<topicref href="100%s%n.dita"/><topicref href="a.dita"/>)");
    const CommandResult result = publish({"--diagnostics", "none", "-v"});
    EXPECT_EQ(result.code, 0);
    EXPECT_NE(result.err.find(
                  "\n" + shownReport(referencedFileNotFound(folder_.file("docs/100%s%n.dita")))),
              std::string::npos)
        << result.err;
    EXPECT_EQ(result.err.find('\r'), std::string::npos);
    EXPECT_EQ(bodiesOf("out/m.dita"), "Text of a;");
}

TEST_F(CommandTest, PublishSaysThatTheRunFailed) {
    folder_.write("docs/m.ditamap", "<map>");
    const CommandResult result = publish();
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_TRUE(result.err.starts_with("marrowpress publish: the run failed (status -42).\n"))
        << result.err;
    EXPECT_FALSE(folder_.exists("out/KeyspaceDoc.ditamap"));
}

TEST_F(CommandTest, PublishRefusesAFolderThatIsInTheWay) {
    folder_.write("out/KeyspaceDoc.ditamap/x", "");
    const CommandResult result = publish();
    EXPECT_EQ(result.code, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err,
              "marrowpress publish: --output: out/m.dita: a folder, or a symbolic link to nothing, "
              "is in the way of what the run writes for a while; choose another output folder\n"
              "Run `marrowpress publish --help` for help.\n");
    EXPECT_TRUE(folder_.exists("out/KeyspaceDoc.ditamap/x"));
}

TEST_F(CommandTest, PublishSaysThatTheOutputCouldNotBeWritten) {
    writeTopic("a", std::string(40000, 'x'));
    CommandSetting setting;
    setting.largestFile = 16384;
    const CommandResult result = publish({}, setting);
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_NE(result.err.find(
                  "\nout/m.dita: error: `out/m.dita` cannot be written: File too large [MP107]\n"),
              std::string::npos)
        << result.err;
    EXPECT_TRUE(result.err.starts_with("marrowpress publish: a document could not be written.\n"))
        << result.err;
    // What stays is the document that the composite was to be built in, and nothing else.
    EXPECT_TRUE(folder_.read("out/m.dita").ends_with("\"ditabase.dtd\"><dita/>"));
    EXPECT_FALSE(folder_.exists("out/m.dita_tmp"));
    EXPECT_FALSE(folder_.exists("out/KeyspaceDoc.ditamap"));
    EXPECT_FALSE(folder_.exists("out/KeyspaceDoc.ditamap_tmp"));

    EXPECT_EQ(publish().code, 0);
    EXPECT_EQ(bodiesOf("out/m.dita"), std::string(40000, 'x') + ";Text of b;");
}

TEST_F(CommandTest, PublishFailsWhenTheKeySpaceDocumentCouldNotBeWritten) {
    writeMap("<topicref keys=\"" + std::string(8000, 'k') + "\" href=\"a.dita\"/>");
    CommandSetting setting;
    setting.largestFile = 4096;
    const CommandResult result = publish({}, setting);
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_NE(result.err.find("\nout: error: `out` cannot be written: File too large"),
              std::string::npos)
        << result.err;
    EXPECT_TRUE(result.err.starts_with("marrowpress publish: a document could not be written.\n"))
        << result.err;
    EXPECT_EQ(bodiesOf("out/m.dita"), "Text of a;");
}

TEST_F(CommandTest, PublishRefusesWrongUsageBeforeAnythingRuns) {
    const std::string help = "\nRun `marrowpress publish --help` for help.\n";
    const auto refusal = [&](const Texts& arguments) {
        Texts all{"publish", "-f", "composite"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        const CommandResult result = run(all);
        EXPECT_EQ(result.code, 2);
        EXPECT_EQ(result.out, "");
        EXPECT_TRUE(result.err.ends_with(help)) << result.err;
        return result.err.substr(0, result.err.find('\n'));
    };
    EXPECT_EQ(refusal({"none.ditamap", "-o", "out/m.dita"}),
              "marrowpress publish: MAP: cannot read none.ditamap: No such file or directory");
    EXPECT_EQ(refusal({"docs/m.ditamap", "-o", "out/m.dita", "--catalog", "none.xml"}),
              "marrowpress publish: --catalog: none.xml: No such file or directory");
    EXPECT_EQ(refusal({"docs/m.ditamap", "-o", "out/m.dita", "--filter", "docs"}),
              "marrowpress publish: --filter: cannot read docs: not a regular file");
    EXPECT_EQ(refusal({"docs/m.ditamap"}), "marrowpress publish: --output is required");

    const std::string map = folder_.read("docs/m.ditamap");
    EXPECT_EQ(refusal({"docs/m.ditamap", "-o", "docs/m.ditamap"}),
              "marrowpress publish: MAP: the run would overwrite or remove " +
                  folder_.file("docs/m.ditamap") +
                  ", which is also the output; choose another output");
    EXPECT_EQ(folder_.read("docs/m.ditamap"), map);
}

TEST_F(CommandTest, AResultThatCannotBeWrittenIsAFailure) {
    for (const std::string& output : {std::string("/dev/full"), std::string()}) {
        SCOPED_TRACE(output);
        CommandSetting setting;
        setting.output = output;
        const CommandResult published = publish({}, setting);
        EXPECT_EQ(published.code, 1);
        EXPECT_EQ(withoutTime(published.err),
                  "marrowpress: cannot write to standard output\n"
                  "marrowpress: error: standard output cannot be written [MP107]\n"
                  "1 error, 0 warnings; 2 topics\n");
        EXPECT_EQ(run({"--help"}, setting).code, 1);
        EXPECT_EQ(run({"host", "-", "--trace", "t"}, setting).code, 1);
        // A closed stream's number goes to no file that is opened later.
        EXPECT_EQ(folder_.read("t").find("{\"values\""), std::string::npos);
    }
}

TEST_F(CommandTest, HelpAndVersionGoToStandardOutput) {
    const CommandResult help = run({"publish", "--help"});
    EXPECT_EQ(help.code, 0);
    EXPECT_EQ(help.err, "");
    EXPECT_NE(help.out.find("--keyspace-dtd"), std::string::npos);
    const CommandResult version = run({"--version"});
    EXPECT_EQ(version.code, 0);
    EXPECT_TRUE(version.out.starts_with("marrowpress ")) << version.out;
}

TEST_F(CommandTest, HostWritesOneLineForEachRequest) {
    folder_.write("1.json", request("out/1.dita"));
    folder_.write("bad.json", "{}");
    const std::string open = folder_.write(
        "open.json", R"([{"id": 7, "path": ")" + folder_.file("docs/a.dita") +
                         R"(", "flag": 1}, {"id": 9, "path": "/other.dita", "flag": 1},)" +
                         R"({"id": 8, "path": ")" + folder_.file("docs/m.ditamap") +
                         R"(", "flag": 0}])");
    CommandSetting setting;
    setting.input = request("out/2.dita");
    const CommandResult result = run(
        {"host", "1.json", "bad.json", "-", "--open-documents", open, "--catalog", "catalog.xml"},
        setting);
    const std::string good = R"({"values":[{"type":1,"value":0},{"type":6,"value":[")" +
                             folder_.file("docs/a.dita") +
                             R"("]},{"type":15,"value":[7]},{"type":15,"value":[8]}]})"
                             "\n";
    EXPECT_EQ(result.out, good + kRefusal + good);
    EXPECT_EQ(result.err, std::string(kProgress) + kProgress);
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(folder_.read("out/1.dita"), folder_.read("out/2.dita"));
}

TEST_F(CommandTest, HostEndsWellWhenEveryStatusIsGood) {
    CommandSetting setting;
    setting.input = request("out/m.dita");
    const CommandResult result = run({"host", "-", "--catalog", "catalog.xml"}, setting);
    EXPECT_EQ(result.out,
              R"({"values":[{"type":1,"value":0},{"type":6,"value":[]},{"type":15,"value":[]},)"
              R"({"type":15,"value":[]}]})"
              "\n");
    EXPECT_EQ(result.code, 0);
}

TEST_F(CommandTest, HostTracesARefusedRequest) {
    const CommandResult result = run({"host", "-", "--trace", "trace.jsonl"});
    EXPECT_EQ(result.out, kRefusal);
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(traceLines("trace.jsonl"),
              (Texts{R"({"op":"HostEnableUnicode","on":1})",
                     R"({"op":"HostRegisterNotification","notification":13,"state":1,"result":0})",
                     R"({"op":"HostReturnTypedValue","values":[{"type":1,"value":-43},)"
                     R"({"type":6,"value":[]},{"type":15,"value":[]},{"type":15,"value":[]}]})"}));
}

TEST_F(CommandTest, HostTracesHowDtdsAreFound) {
    CommandSetting setting;
    setting.input = request("out/m.dita");
    const auto hasLine = [this](const std::string& trace, const std::string& line) {
        const Texts lines = traceLines(trace);
        return std::find(lines.begin(), lines.end(), line) != lines.end();
    };
    const std::string question =
        R"({"op":"HostCallClientTyped","client":"XmlUtilities","command":)"
        R"("EntityResolver resolveentity -publicid \"-//OASIS//DTD DITA Map//EN\"","reply":)";
    const std::string start = R"({"op":"HostCallClient","client":"XmlUtilities","command":)"
                              R"("EntityResolver start -basefile \")" +
                              folder_.file("docs/m.ditamap") + R"(\"","result":)";

    run({"host", "-", "--trace", "1", "--catalog", "catalog.xml"}, setting);
    EXPECT_TRUE(hasLine("1", start + "1}"));
    EXPECT_TRUE(hasLine(
        "1", question + R"([{"type":3,"value":")" + folder_.file("dtd/map.dtd") + R"("}]})"));
    EXPECT_EQ(traceLines("1").back(), R"({"op":"HostCallClient","client":"XmlUtilities",)"
                                      R"("command":"EntityResolver terminate","result":1})");

    run({"host", "-", "--trace", "2", "--no-xml-utilities"}, setting);
    EXPECT_TRUE(hasLine("2", start + "0}"));
    EXPECT_TRUE(hasLine("2", question + "[]}"));
}

TEST_F(CommandTest, HostRefusesWrongUsageBeforeAnythingRuns) {
    folder_.write("good.json", request("out/m.dita"));
    folder_.write("open.json", "{}");
    const auto refusal = [&](const Texts& arguments) {
        Texts all{"host", "good.json"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        const CommandResult result = run(all);
        EXPECT_EQ(result.code, 2);
        EXPECT_EQ(result.out, "");
        return result.err;
    };
    const std::string help = "\nRun `marrowpress host --help` for help.\n";
    EXPECT_EQ(refusal({"none.json"}),
              "marrowpress host: REQUEST: none.json: No such file or directory" + help);
    EXPECT_EQ(refusal({"docs"}), "marrowpress host: REQUEST: docs: Is a directory" + help);
    EXPECT_EQ(refusal({"--catalog", "none.xml"}),
              "marrowpress host: --catalog: none.xml: No such file or directory" + help);
    EXPECT_EQ(refusal({"--open-documents", "open.json"}),
              "marrowpress host: --open-documents: open.json: is not a JSON array" + help);
    EXPECT_EQ(refusal({"--trace", "none/t"}),
              "marrowpress host: --trace: cannot write none/t" + help);
    EXPECT_FALSE(folder_.exists("out/m.dita"));
}

TEST_F(CommandTest, HostNeverEmptiesWhatItReads) {
    folder_.write("1.json", request("out/1.dita"));
    folder_.write("open.json", "[]");
    std::filesystem::create_symlink("1.json", folder_.path() / "link");
    CommandSetting setting;
    setting.inputFile = "1.json";
    setting.catalogs = "file://" + folder_.file("catalog.xml");
    const auto refusal = [&](const Texts& arguments, const std::string& kept) {
        Texts all{"host"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        const std::string before = folder_.read(kept);
        const CommandResult result = run(all, setting);
        EXPECT_EQ(result.code, 2);
        EXPECT_EQ(folder_.read(kept), before);
        return result.err.substr(0, result.err.find('\n'));
    };
    const std::string start = "marrowpress host: --trace: ";
    const std::string end = ", and would be emptied; choose another file";
    EXPECT_EQ(refusal({"1.json", "--trace", "1.json"}, "1.json"),
              start + "1.json is also REQUEST 1.json" + end);
    EXPECT_EQ(refusal({"1.json", "--trace", "link"}, "1.json"),
              start + "link is also REQUEST 1.json" + end);
    EXPECT_EQ(refusal({"-", "--trace", "1.json"}, "1.json"),
              start + "1.json is also what standard input reads" + end);
    EXPECT_EQ(
        refusal({"1.json", "--open-documents", "open.json", "--trace", "./open.json"}, "open.json"),
        start + "./open.json is also --open-documents" + end);
    EXPECT_EQ(refusal({"1.json", "--trace", "catalog.xml"}, "catalog.xml"),
              start + "catalog.xml is also a default catalog" + end);
    const std::string named = start + "dtd/../catalog.xml is also a --catalog" + end;
    for (const std::string& catalog :
         {std::string("catalog.xml"), "file:" + folder_.file("catalog.xml")}) {
        EXPECT_EQ(refusal({"1.json", "--catalog", catalog, "--no-xml-utilities", "--trace",
                           "dtd/../catalog.xml"},
                          "catalog.xml"),
                  named);
    }
    EXPECT_FALSE(folder_.exists("out/1.dita"));

    // Nothing asks the default catalogs then, and the trace's file may be any other.
    EXPECT_EQ(run({"host", "1.json", "--no-xml-utilities", "--trace", "catalog.xml"}, setting).code,
              0);
    EXPECT_TRUE(folder_.read("catalog.xml").starts_with("{\"op\""));
}

TEST_F(CommandTest, HostNeverTracesOverAFileThatARequestNames) {
    std::string text = request("out/m.dita");
    const std::string profile = R"("ditaVal":")";
    text.insert(text.find(profile) + profile.size(), "p.ditaval");
    folder_.write("1.json", text);
    folder_.write("p.ditaval", "<val/>");
    ASSERT_EQ(publish().code, 0);
    std::filesystem::create_symlink("docs/m.ditamap", folder_.path() / "link");
    std::filesystem::create_hard_link(folder_.path() / "docs/m.ditamap", folder_.path() / "hard");
    std::filesystem::create_symlink("docs", folder_.path() / "other");
    const std::string output = folder_.read("out/m.dita");
    const std::string map = folder_.read("docs/m.ditamap");
    const struct {
        const char* trace;
        const char* name;
    } cases[] = {{"docs/m.ditamap", "\"ditamap\""},
                 {"out/../docs//m.ditamap", "\"ditamap\""},
                 {"link", "\"ditamap\""},
                 {"hard", "\"ditamap\""},
                 {"other/m.ditamap", "\"ditamap\""},
                 {"p.ditaval", "\"ditaVal\""},
                 {"out/m.dita", "\"output\""},
                 {"out/m.dita_tmp", "a temporary file"},
                 {"out/KeyspaceDoc.ditamap", "a temporary file"}};
    for (const auto& expected : cases) {
        const std::string trace = expected.trace;
        const CommandResult result =
            run({"host", "1.json", "--catalog", "catalog.xml", "--trace", trace});
        EXPECT_EQ(result.code, 2);
        EXPECT_EQ(result.err, "marrowpress host: --trace: " + trace + " is also " + expected.name +
                                  " of REQUEST 1.json; choose another file\n"
                                  "Run `marrowpress host --help` for help.\n");
    }
    EXPECT_EQ(folder_.read("docs/m.ditamap"), map);
    EXPECT_EQ(folder_.read("p.ditaval"), "<val/>");
    EXPECT_EQ(folder_.read("out/m.dita"), output);
    EXPECT_FALSE(folder_.exists("out/m.dita_tmp"));

    EXPECT_EQ(run({"host", "1.json", "--catalog", "catalog.xml", "--trace", "out/trace"}).code, 0);
    EXPECT_TRUE(folder_.read("out/trace").starts_with("{\"op\""));
}

TEST_F(CommandTest, HostReadsNoInputWithoutAnEnd) {
    const std::string help = ": File too large\nRun `marrowpress host --help` for help.\n";
    CommandSetting setting;
    setting.inputFile = "/dev/zero";
    const CommandResult endless = run({"host", "-"}, setting);
    EXPECT_EQ(endless.code, 2);
    EXPECT_EQ(endless.err, "marrowpress host: REQUEST: cannot read standard input" + help);

    // Somebody who goes on writing until nobody reads any more.
    makePipe(folder_.file("pipe"));
    std::thread writer([this] {
        sigset_t signals;
        sigemptyset(&signals);
        sigaddset(&signals, SIGPIPE);
        pthread_sigmask(SIG_BLOCK, &signals, nullptr);
        std::ofstream pipe(folder_.path() / "pipe", std::ios::binary);
        const std::string block(1 << 20, ' ');
        while (pipe.write(block.data(), static_cast<std::streamsize>(block.size()))) {
        }
    });
    const CommandResult pipe = run({"host", "pipe"});
    writer.join();
    EXPECT_EQ(pipe.code, 2);
    EXPECT_EQ(pipe.err, "marrowpress host: REQUEST: pipe" + help);

    setting.inputFile.reset();
    setting.input = "{}";
    const CommandResult documents = run({"host", "-", "--open-documents", "/dev/zero"}, setting);
    EXPECT_EQ(documents.code, 2);
    EXPECT_EQ(documents.err, "marrowpress host: --open-documents: /dev/zero" + help);
}

TEST_F(CommandTest, CatalogsThatCannotBeReadForWantOfHandlesAreAFailure) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizers need handles of their own";
#endif
    // What a catalog delegates is read when somebody asks for it, with lock and map still open.
    folder_.write("delegating.xml",
                  R"(<catalog xmlns="urn:oasis:names:tc:entity:xmlns:xml:catalog">)"
                  R"(<delegatePublic publicIdStartString="-//OASIS" catalog="catalog.xml"/>)"
                  "</catalog>");
    folder_.write("1.json", request("out/m.dita"));
    CommandSetting setting;
    setting.mostHandles = 5;
    const Texts commands[] = {{"host", "1.json"},
                              {"publish", "docs/m.ditamap", "-f", "composite", "-o", "out/m.dita"},
                              {"check", "docs/m.ditamap"}};
    for (Texts arguments : commands) {
        arguments.insert(arguments.end(), {"--catalog", "delegating.xml"});
        const CommandResult result = run(arguments, setting);
        EXPECT_EQ(result.code, 1) << arguments.front();
        EXPECT_EQ(result.out, "");
        const std::string fault = "marrowpress: cannot read the catalogs: Too many open files\n";
        EXPECT_EQ(result.err, arguments.front() == "host"
                                  ? shownProgress({processingKeySpaces()}) + fault
                                  : fault);
        EXPECT_FALSE(folder_.exists("out/m.dita"));
        EXPECT_FALSE(folder_.exists("out/KeyspaceDoc.ditamap"));
        EXPECT_EQ(run(arguments).code, 0) << arguments.front();
        std::filesystem::remove(folder_.path() / "out/m.dita");
    }
}

TEST_F(CommandTest, HostRefusesAStandardInputThatCannotBeRead) {
    const std::string start = "marrowpress host: REQUEST: cannot read standard input: ";
    const std::string help = "\nRun `marrowpress host --help` for help.\n";
    CommandSetting setting;
    setting.inputFile = "docs";
    const CommandResult folder = run({"host", "-"}, setting);
    EXPECT_EQ(folder.err, start + "Is a directory" + help);
    EXPECT_EQ(folder.code, 2);
    EXPECT_EQ(folder.out, "");

    setting.inputFile = "";
    const CommandResult closed = run({"host", "-", "--trace", "t"}, setting);
    EXPECT_EQ(closed.err, start + "Bad file descriptor" + help);
    EXPECT_EQ(closed.code, 2);
    EXPECT_EQ(closed.out, "");
    EXPECT_FALSE(folder_.exists("t"));
}

TEST_F(CommandTest, ACatalogMayBeNamedByUri) {
    std::filesystem::create_directory(folder_.path() / "a b");
    std::filesystem::create_symlink("../dtd", folder_.path() / "a b/dtd");
    folder_.write("a b/c.xml", folder_.read("catalog.xml"));
    const std::string uri = "file://" + folder_.path().string() + "/a%20b/c.xml";
    const CommandResult published =
        run({"publish", "docs/m.ditamap", "-f", "composite", "-o", "out/m.dita", "--catalog", uri});
    EXPECT_EQ(published.code, 0) << published.err;
    EXPECT_EQ(bodiesOf("out/m.dita"), "Text of a;Text of b;");

    CommandSetting setting;
    setting.input = request("out/host.dita");
    EXPECT_EQ(run({"host", "-", "--catalog", uri}, setting).code, 0);
    EXPECT_EQ(bodiesOf("out/host.dita"), "Text of a;Text of b;");
}

TEST_F(CommandTest, HostFailsWhenTheTraceCannotBeWritten) {
    const CommandResult result = run({"host", "-", "--trace", "/dev/full"});
    EXPECT_EQ(result.code, 1);
    EXPECT_TRUE(result.err.ends_with("marrowpress host: cannot write /dev/full\n")) << result.err;
}

}  // namespace
}  // namespace marrowpress
