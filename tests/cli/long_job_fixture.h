#pragma once

#include <sys/types.h>

#include <fstream>
#include <string>

#include "cli/batch/worker_channels.h"
#include "tests/cli/batch_fixture.h"
#include "tests/support/texts.h"
#include "tests/support/waiting.h"

namespace marrowpress {

/// A batch in which a job can be met while it is at work.
class LongJobTest : public BatchTest {
protected:
    /// One job that takes its time, and one that does not.
    void writeLongJob() const {
        constexpr int kParagraphs = 100'000;
        folder_.write("docs/long.ditamap", mapOf("long"));
        writeTopic("long",
                   repeated("<p>Loosen the collar, and pull the chuck off.</p>", kParagraphs));
        folder_.write("jobs.jsonl", job("long", "docs/long.ditamap", "out/long.dita") +
                                        job("two", "docs/two.ditamap", "out/two.dita"));
    }

    Texts command(const Texts& more) const {
        Texts arguments{"batch", "jobs.jsonl", "--catalog", "catalog.xml", "-j", "1"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return arguments;
    }

    /// The private folder in `out`, in which a job is at work; empty when there is none.
    std::string privateName() const {
        for (const std::string& name : namesIn("out")) {
            if (name.starts_with(".marrowpress-")) {
                return name;
            }
        }
        return {};
    }

    static bool isJob(pid_t process) {
        std::ifstream in("/proc/" + std::to_string(process) + "/cmdline", std::ios::binary);
        std::string program;
        std::string command;
        std::getline(in, program, '\0');
        std::getline(in, command, '\0');
        return command == "job";
    }

    /// The process of the job that a batch runs just now, as soon as it has told a phase.
    pid_t workerOf(const RunningCommand& batch) const {
        const std::string process = std::to_string(batch.process());
        pid_t worker = 0;
        EXPECT_TRUE(waitUntil([&] {
            std::ifstream children("/proc/" + process + "/task/" + process + "/children");
            std::ifstream phases;
            // Before it is the program of a job it has its parent's descriptors.
            if (children >> worker && isJob(worker)) {
                phases.open("/proc/" + std::to_string(worker) + "/fd/" +
                            std::to_string(kPhaseDescriptor));
            }
            return phases.is_open() && phases.get() != EOF && !privateName().empty();
        })) << "the job was over too soon";
        return worker;
    }
};

}  // namespace marrowpress
