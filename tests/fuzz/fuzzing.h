#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "application/connection.h"
#include "host/stand_in_host.h"
#include "tests/support/temporary_folder.h"

/// Tries one input; each fuzzer has its own. Gives 0.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

/// What the fuzzers share.
///
/// A fuzzer gets bytes that nobody has written, and says what must hold whatever they are.
namespace marrowpress {

/// Ends the process, which is a finding, unless the rule holds. `detail` is shown with it.
void require(bool holds, std::string_view rule, std::string_view detail = {});

/// The bytes that a fuzzer gets.
std::string inputText(const std::uint8_t* data, std::size_t size);

/// The texts between the lines of `input` that are "=====", the last with all that is left when
/// there would be more than `most`.
std::vector<std::string> cutIntoFiles(std::string_view input, std::size_t most);

/// Where the small DTDs are, by their public identifiers.
std::optional<std::string> resolveSmallDtd(std::string_view publicId);

/// Called at the beginning of a run: leaves the XML engine started, so that an `XmlSession` starts
/// none, which takes longer than most runs. What the engine takes during a session is the session's
/// all the same; but each doctype that is made stays with the engine, so that it is a new one from
/// time to time.
void keepEngineStarted();

/// A host that finds the small DTDs and shows nothing, connected while it lives.
class QuietHost {
public:
    QuietHost();
    QuietHost(const QuietHost&) = delete;
    QuietHost& operator=(const QuietHost&) = delete;
    ~QuietHost() = default;

private:
    StandInHost host_;
    QsApiInterfacesC interfaces_;
};

/// What the fuzzers of documents need: a host, and a folder for files.
struct Workplace {
    QuietHost host;
    TemporaryFolder folder;
};

}  // namespace marrowpress
