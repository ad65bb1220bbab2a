#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <iterator>
#include <map>
#include <regex>

#include "tests/cli/command_fixture.h"
#include "tests/support/file_conditions.h"
#include "tests/support/texts.h"
#include "tests/support/waiting.h"

namespace marrowpress {
namespace {

namespace fs = std::filesystem;

/// `publish` with `--relative` and `--copy-media`.
class MovableResultCommandTest : public CommandTest {
protected:
    MovableResultCommandTest() {
        folder_.write("dtd/topic.dtd",
                      replacedAll(folder_.read("dtd/topic.dtd"), "(#PCDATA|ph|xref|image)",
                                  "(#PCDATA|ph|xref|image|object)") +
                          "<!ELEMENT object (param*)>\n"
                          "<!ATTLIST object data CDATA #IMPLIED class CDATA \"- topic/object \">\n"
                          "<!ELEMENT param EMPTY>\n"
                          "<!ATTLIST param name CDATA #IMPLIED value CDATA #IMPLIED"
                          " class CDATA \"- topic/param \">\n");
        writeMap(R"(<topicref href="a.dita"/><topicref href="b.dita"/>)");
        writeTopic("a", R"(<xref href="b.dita"/><xref href="left out.dita"/>)"
                        R"(<image href="images/x%20y.png"/><image href="more/x%20y.png"/>)");
        writeTopic("b", R"(<xref href="a.dita#a"/><object data="films/f.mp4"><param name="poster" )"
                        R"(value="images/x%20y.png"/></object><image href="none.png"/>)"
                        R"(<xref href="https://x.example/a"/>)");
        folder_.write("docs/left out.dita", "<topic id=\"l\"><title/></topic>");
        folder_.write("docs/images/x y.png", "one");
        folder_.write("docs/more/x y.png", "two");
        folder_.write("docs/films/f.mp4", "film");
    }

    CommandResult publishBook(const Texts& more, const CommandSetting& setting = {}) const {
        Texts arguments{"publish", "docs/m.ditamap", "-f",          "flatbook",  "-o",
                        "out",     "--catalog",      "catalog.xml", "--fail-on", "never"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return run(arguments, setting);
    }

    CommandResult publishComposite(Texts more, const CommandSetting& setting = {}) const {
        more.insert(more.end(), {"--fail-on", "never"});
        return publish(more, setting);
    }

    /// The values of all attributes that refer in a text, in their order, without topic ids.
    static Texts referencesIn(const std::string& text) {
        static const std::regex kReference("(?:href|data|value)=\"([^\"]*)\"");
        static const std::regex kId("id[0-9a-f]{8}-[0-9a-f-]{27}");
        Texts references;
        for (std::sregex_iterator at(text.begin(), text.end(), kReference), end; at != end; ++at) {
            references.push_back(std::regex_replace((*at)[1].str(), kId, "ID"));
        }
        return references;
    }

    Texts referencesOf(const std::string& name) const { return referencesIn(folder_.read(name)); }

    /// Copies the sources, with all that they need, and publishes there in both formats.
    void publishCheckout(const std::string& name) const {
        fs::create_directory(folder_.path() / name);
        for (const char* const part : {"docs", "dtd", "catalog.xml"}) {
            fs::copy(folder_.path() / part, folder_.path() / name / part,
                     fs::copy_options::recursive);
        }
        CommandSetting setting;
        setting.currentFolder = name;
        const Texts more{"--catalog", "catalog.xml", "--copy-media", "media", "--fail-on", "never"};
        for (const Texts& kind : {Texts{"composite", "-o", "out/m.dita"},
                                  Texts{"flatbook", "-o", "book", "--one-location"},
                                  Texts{"flatbook", "-o", "beside"}}) {
            Texts arguments{"publish", "docs/m.ditamap", "-f"};
            arguments.insert(arguments.end(), kind.begin(), kind.end());
            arguments.insert(arguments.end(), more.begin(), more.end());
            const CommandResult result = run(arguments, setting);
            EXPECT_EQ(result.code, 0) << result.err;
        }
    }

    /// The files below a folder, by their path in it, with what they hold.
    std::map<std::string, std::string> filesOf(const std::string& name) const {
        std::map<std::string, std::string> files;
        const fs::path root = folder_.path() / name;
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(root)) {
            const std::string path = entry.path().lexically_relative(root);
            files[path] = entry.is_regular_file() ? folder_.read(name + "/" + path) : "";
        }
        return files;
    }
};

TEST_F(MovableResultCommandTest, ACompositeRefersToItsFilesFromItself) {
    const CommandResult result = publishComposite({"--relative"});
    EXPECT_EQ(result.code, 0) << result.err;
    EXPECT_EQ(result.out, "out/m.dita\n");
    EXPECT_EQ(referencesOf("out/m.dita"),
              (Texts{"#ID", "../docs/left%20out.dita", "../docs/images/x%20y.png",
                     "../docs/more/x%20y.png", "#ID", "../docs/films/f.mp4",
                     "../docs/images/x%20y.png", "../docs/none.png", "https://x.example/a"}));
    EXPECT_FALSE(folder_.exists("out/m.dita_tmp"));
}

TEST_F(MovableResultCommandTest, OnlyPathsDifferFromWhatIsWrittenWithout) {
    EXPECT_EQ(publishComposite({}).code, 0);
    const std::string plain = folder_.read("out/m.dita");
    EXPECT_NE(plain.find(folder_.path().string()), std::string::npos);
    EXPECT_EQ(publishComposite({"--relative"}).code, 0);
    std::string relative = folder_.read("out/m.dita");
    EXPECT_EQ(replacedAll(replacedAll(relative, "../", folder_.path().string() + "/"), "%20", " "),
              plain);
}

TEST_F(MovableResultCommandTest, CopiesTakeTheirPlaceBesideAComposite) {
    for (int time = 0; time < 2; ++time) {
        const CommandResult result = publishComposite({"--copy-media", "media/all"});
        EXPECT_EQ(result.code, 0) << result.err;
        EXPECT_EQ(referencesOf("out/m.dita"),
                  (Texts{"#ID", "../docs/left%20out.dita", "media/all/x%20y.png",
                         "media/all/x%20y-2.png", "#ID", "media/all/f.mp4", "media/all/x%20y.png",
                         "../docs/none.png", "https://x.example/a"}));
    }
    EXPECT_EQ(filesOf("out/media/all"),
              (std::map<std::string, std::string>{
                  {"f.mp4", "film"}, {"x y-2.png", "two"}, {"x y.png", "one"}}));
}

TEST_F(MovableResultCommandTest, ComponentsReferToEachOtherFromWhereTheyStand) {
    writeMap(R"(<topicref href="a.dita"/><topicref href="sub/b.dita"/>)");
    folder_.write("docs/sub/b.dita",
                  replacedAll(folder_.read("docs/b.dita"), "a.dita", "../a.dita"));
    writeTopic("a", R"(<xref href="sub/b.dita"/><image href="images/x%20y.png"/>)");
    const CommandResult result = publishBook({"--copy-media", "media"});
    EXPECT_EQ(result.code, 0) << result.err;
    EXPECT_EQ(result.out, folder_.file("docs/a.qs") + "\n" + folder_.file("docs/sub/b.qs") + "\n");
    EXPECT_EQ(referencesOf("docs/a.qs"), (Texts{"sub/b.qs#ID", "../out/media/x%20y.png"}));
    EXPECT_EQ(referencesOf("docs/sub/b.qs"), (Texts{"../a.qs#ID", "films/f.mp4", "images/x%20y.png",
                                                    "none.png", "https://x.example/a"}));
}

TEST_F(MovableResultCommandTest, ABookAtOneLocationCanBeReadFromThere) {
    const CommandResult result = publishBook({"--one-location", "--copy-media", "media"});
    EXPECT_EQ(result.code, 0) << result.err;
    EXPECT_EQ(referencesOf("out/a.qs"), (Texts{"b.qs#ID", "../docs/left%20out.dita",
                                               "media/x%20y.png", "media/x%20y-2.png"}));
    EXPECT_EQ(referencesOf("out/b.qs"), (Texts{"a.qs#ID", "media/f.mp4", "media/x%20y.png",
                                               "../docs/none.png", "https://x.example/a"}));
}

TEST_F(MovableResultCommandTest, TwoCheckoutsGiveTheSameBytes) {
    publishCheckout("first");
    publishCheckout("second place");
    EXPECT_EQ(filesOf("first"), filesOf("second place"));
    EXPECT_TRUE(folder_.exists("first/out/media/f.mp4"));
    EXPECT_TRUE(folder_.exists("first/book/b.qs"));
    EXPECT_TRUE(folder_.exists("first/docs/b.qs"));
    for (const auto& [name, text] : filesOf("first")) {
        EXPECT_EQ(text.find(folder_.path().string()), std::string::npos) << name;
    }
}

TEST_F(MovableResultCommandTest, StandardOutputIsSeenFromTheCurrentFolder) {
    const CommandResult result =
        run({"publish", "docs/m.ditamap", "-f", "composite", "-o", "-", "--catalog", "catalog.xml",
             "--copy-media", "media", "--fail-on", "never"});
    EXPECT_EQ(result.code, 0) << result.err;
    EXPECT_EQ(referencesIn(result.out),
              (Texts{"#ID", "docs/left%20out.dita", "media/x%20y.png", "media/x%20y-2.png", "#ID",
                     "media/f.mp4", "media/x%20y.png", "docs/none.png", "https://x.example/a"}));
    EXPECT_EQ(folder_.read("media/f.mp4"), "film");
}

TEST_F(MovableResultCommandTest, ARelativeCompositeIsReplacedByTheNextRun) {
    EXPECT_EQ(publishComposite({"--relative"}).code, 0);
    EXPECT_EQ(publishComposite({"--relative"}).code, 0);
    EXPECT_EQ(publishComposite({}).code, 0);
}

TEST_F(MovableResultCommandTest, AFolderThatCannotTakeCopiesIsAUsageError) {
    folder_.write("out/file", "mine");
    for (const auto& [given, fault] :
         {std::pair("file", "file is no folder"),
          std::pair("m.dita",
                    "m.dita is what the run writes for --output; choose another folder")}) {
        const CommandResult result = publishComposite({"--copy-media", given});
        EXPECT_EQ(result.code, 2);
        EXPECT_EQ(result.err, "marrowpress publish: --copy-media: " + std::string(fault) +
                                  "\nRun `marrowpress publish --help` for help.\n");
        EXPECT_FALSE(folder_.exists("out/m.dita"));
    }
    EXPECT_EQ(folder_.read("out/file"), "mine");
}

TEST_F(MovableResultCommandTest, AMediumThatCannotBeReadIsAFailure) {
    fs::permissions(folder_.path() / "docs/films/f.mp4", fs::perms::none);
    fs::permissions(folder_.path(), fs::perms::all);
    fs::permissions(folder_.path() / "out", fs::perms::all);
    CommandSetting setting;
    setting.isWithoutRights = true;
    const CommandResult result = publishComposite({"--copy-media", "media"}, setting);
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_NE(result.err.find("marrowpress publish: cannot read " +
                              folder_.file("docs/films/f.mp4") + ": Permission denied.\n"),
              std::string::npos)
        << result.err;
    EXPECT_NE(result.err.find("[MP106]"), std::string::npos) << result.err;
    EXPECT_TRUE(folder_.read("out/m.dita").ends_with("</dita>"));
    EXPECT_FALSE(folder_.exists("out/m.dita_tmp"));
}

TEST_F(MovableResultCommandTest, AFullDiskLeavesAWholeOutput) {
    folder_.write("docs/films/f.mp4", std::string(100000, 'x'));
    CommandSetting setting;
    setting.largestFile = 50000;
    for (const Texts& diagnostics : {Texts{}, Texts{"--diagnostics", "none"}}) {
        Texts arguments{"publish",    "docs/m.ditamap", "-f",          "composite",    "-o",
                        "out/m.dita", "--catalog",      "catalog.xml", "--copy-media", "media"};
        arguments.insert(arguments.end(), diagnostics.begin(), diagnostics.end());
        const CommandResult result = run(arguments, setting);
        EXPECT_EQ(result.code, 1);
        EXPECT_EQ(result.out, "");
        EXPECT_NE(result.err.find("marrowpress publish: cannot write " +
                                  folder_.file("out/media/f.mp4") + ": File too large.\n"),
                  std::string::npos)
            << result.err;
        EXPECT_EQ(result.err.find("[MP107]") == std::string::npos, !diagnostics.empty());
        EXPECT_TRUE(folder_.read("out/m.dita").ends_with("</dita>"));
        EXPECT_FALSE(folder_.exists("out/m.dita_tmp"));
        EXPECT_FALSE(folder_.exists("out/media/f.mp4"));
        EXPECT_EQ(filesOf("out/media").size(), 2U);
    }
}

TEST_F(MovableResultCommandTest, ASignalLeavesNothingHalfWritten) {
    // Copying it lasts; it takes no place itself.
    constexpr std::uintmax_t kLongToCopy = 4'000'000'000;
    fs::resize_file(folder_.path() / "docs/films/f.mp4", kLongToCopy);
    RunningCommand command(
        folder_, {"publish", "docs/m.ditamap", "-f", "composite", "-o", "out/m.dita", "--catalog",
                  "catalog.xml", "--copy-media", "media"});
    const auto isCopyingTheThird = [this] {
        const fs::path media = folder_.path() / "out/media";
        return fs::exists(media) && std::distance(fs::directory_iterator(media), {}) == 3;
    };
    ASSERT_TRUE(waitUntil(isCopyingTheThird));
    command.send(SIGTERM);
    EXPECT_EQ(command.wait().code, 1000 + SIGTERM);
    EXPECT_FALSE(folder_.exists("out/m.dita"));
    EXPECT_FALSE(folder_.exists("out/m.dita_tmp"));
    EXPECT_EQ(filesOf("out/media"),
              (std::map<std::string, std::string>{{"x y-2.png", "two"}, {"x y.png", "one"}}));
}

}  // namespace
}  // namespace marrowpress
