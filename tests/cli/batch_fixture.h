#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>
#include <boost/json/value.hpp>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/cli/command_fixture.h"

namespace marrowpress {

/// Many deliverables by one call.
class BatchTest : public CommandTest {
protected:
    BatchTest() {
        for (const char* const name : {"one", "two"}) {
            writeTopic(name, name);
            folder_.write(std::string("docs/") + name + ".ditamap", mapOf(name));
        }
    }

    static std::string mapOf(const std::string& topic) {
        return R"(<!DOCTYPE map PUBLIC "-//OASIS//DTD DITA Map//EN" "map.dtd"><map><topicref href=")" +
               topic + R"(.dita"/></map>)";
    }

    /// A line of a file of jobs.
    static std::string job(const std::string& id, const std::string& map, const std::string& output,
                           const std::string& tags = "[]") {
        return R"({"id":")" + id + R"(","request":{"type":"PublishComp","params":{"ditamap":")" +
               map + R"(","output":")" + output +
               R"(","ditaVal":"","keyspaceDocDtd":"map.dtd","compositeDocDtd":"ditabase.dtd",)" +
               R"("usePrint":false}},"tags":)" + tags + "}\n";
    }

    static std::string bookJob(const std::string& id, const std::string& map,
                               const std::string& folder) {
        return R"({"id":")" + id +
               R"(","request":{"type":"PublishFlatBook","params":{"ditamap":")" + map +
               R"(","outputDir":")" + folder +
               R"(","generateQSComponentsAtOneLoc":true,"ditaVal":"","keyspaceDocDtd":"map.dtd",)" +
               R"("compositeDocDtd":"ditabase.dtd","usePrint":false}}})" + "\n";
    }

    void writeTwoJobs() const {
        folder_.write("jobs.jsonl", job("one", "docs/one.ditamap", "out/one.dita", R"(["a"])") +
                                        job("two", "docs/two.ditamap", "out/two.dita"));
    }

    CommandResult batch(const Texts& more = {}, const CommandSetting& setting = {}) const {
        Texts arguments{"batch", "jobs.jsonl", "--catalog", "catalog.xml"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return run(arguments, setting);
    }

    boost::json::object result(const std::string& id,
                               const std::string& folder = "marrowpress-results") const {
        return boost::json::parse(folder_.read(folder + "/" + id + ".json")).as_object();
    }

    /// What does not differ from one run of the job to the next.
    std::string lasting(const std::string& id,
                        const std::string& folder = "marrowpress-results") const {
        boost::json::object object = result(id, folder);
        object.erase("run");
        return boost::json::serialize(object);
    }

    std::vector<std::string> namesIn(const std::string& folder) const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder_.path() / folder)) {
            // It is there from the beginning.
            if (entry.path().filename() != "keep.txt") {
                names.push_back(entry.path().filename().string());
            }
        }
        std::sort(names.begin(), names.end());
        return names;
    }
};

}  // namespace marrowpress
