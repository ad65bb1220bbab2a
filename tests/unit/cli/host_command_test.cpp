#include "cli/host_command.h"

#include <gtest/gtest.h>

#include <sstream>

#include "tests/support/temporary_folder.h"

namespace marrowpress {
namespace {

class HostCommandTest : public testing::Test {
protected:
    /// Runs the command; `out` and `err` hold what it wrote.
    ExitCode run() {
        std::ostringstream outStream;
        std::ostringstream errStream;
        const ExitCode code = runHost(options, {outStream, errStream});
        out = outStream.str();
        err = errStream.str();
        return code;
    }

    /// Runs the command with a wrong argument; what it says about that.
    std::string faultOf() {
        EXPECT_EQ(run(), ExitCode::kWrongUsage);
        EXPECT_EQ(out, "");
        return err.substr(0, err.find('\n'));
    }

    TemporaryFolder folder;
    HostOptions options;
    std::string out;
    std::string err;
};

const std::string kRefused =
    R"({"values":[{"type":1,"value":-43},{"type":6,"value":[]},{"type":15,"value":[]},)"
    R"({"type":15,"value":[]}]})"
    "\n";

TEST_F(HostCommandTest, AnswersEachRequestInALine) {
    const std::string request = folder.write("request.json", "{}");
    options.requests = {request, request};
    EXPECT_EQ(run(), ExitCode::kRunFailed);
    EXPECT_EQ(out, kRefused + kRefused);
    EXPECT_EQ(err, "");
}

TEST_F(HostCommandTest, TracesTheOperations) {
    options.requests = {folder.write("request.json", "{}")};
    options.trace = folder.file("trace");
    EXPECT_EQ(run(), ExitCode::kRunFailed);
    EXPECT_NE(folder.read("trace").find(R"({"op":"HostReturnTypedValue","values":[)"),
              std::string::npos);
}

TEST_F(HostCommandTest, ARequestThatCannotBeReadStartsNothing) {
    options.requests = {folder.write("good.json", "{}"), folder.file("none.json")};
    options.trace = folder.file("trace");
    EXPECT_EQ(faultOf(), "marrowpress host: REQUEST: " + folder.file("none.json") +
                             ": No such file or directory");
    EXPECT_FALSE(folder.exists("trace"));
}

TEST_F(HostCommandTest, OpenDocumentsMustBeReadable) {
    options.requests = {folder.write("request.json", "{}")};
    options.openDocuments = folder.write("open.json", "7");
    EXPECT_EQ(faultOf(), "marrowpress host: --open-documents: " + folder.file("open.json") +
                             ": is not a JSON array");
}

TEST_F(HostCommandTest, TheTraceMayBeWrittenOverNoSource) {
    const std::string source = folder.write("source", "[]");
    const std::string end = ", and would be emptied; choose another file";
    options.trace = source;
    options.requests = {source};
    EXPECT_EQ(faultOf(),
              "marrowpress host: --trace: " + source + " is also REQUEST " + source + end);
    options.requests = {folder.write("request.json", "{}")};
    options.openDocuments = source;
    EXPECT_EQ(faultOf(),
              "marrowpress host: --trace: " + source + " is also --open-documents" + end);
    EXPECT_EQ(folder.read("source"), "[]");
}

TEST_F(HostCommandTest, TheTraceMayBeWrittenOverNothingThatARequestNames) {
    const std::string map = folder.write("m.ditamap", "<map/>");
    const std::string request =
        folder.write("request.json", R"({"type":"PublishComp","params":{"ditamap":")" + map +
                                         R"(","output":")" + folder.file("out.dita") + R"("}})");
    options.requests = {request};
    options.trace = map;
    const std::string end = " of REQUEST " + request + "; choose another file";
    EXPECT_EQ(faultOf(), "marrowpress host: --trace: " + map + " is also \"ditamap\"" + end);
    EXPECT_EQ(folder.read("m.ditamap"), "<map/>");
    options.trace = folder.file("out.dita");
    EXPECT_EQ(faultOf(),
              "marrowpress host: --trace: " + *options.trace + " is also \"output\"" + end);
    EXPECT_FALSE(folder.exists("out.dita"));
    options.trace = folder.file("KeyspaceDoc.ditamap");
    EXPECT_EQ(faultOf(),
              "marrowpress host: --trace: " + *options.trace + " is also a temporary file" + end);
}

TEST_F(HostCommandTest, ARequestWithoutAnEndStartsNothing) {
    options.requests = {"/dev/zero"};
    options.trace = folder.file("trace");
    EXPECT_EQ(faultOf(), "marrowpress host: REQUEST: /dev/zero: File too large");
    EXPECT_FALSE(folder.exists("trace"));
}

TEST_F(HostCommandTest, TheTraceMustBeWritable) {
    options.requests = {folder.write("request.json", "{}")};
    options.trace = folder.file("none/trace");
    EXPECT_EQ(faultOf(), "marrowpress host: --trace: cannot write " + folder.file("none/trace"));
}

}  // namespace
}  // namespace marrowpress
