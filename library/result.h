#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <vector>

#include "host/typed_record.h"
#include "marrowpress/marrowpress.h"

namespace marrowpress {

/// What a call came to, as it goes from a child to its parent, too.
struct ResultData {
    int code = MP_OK;
    std::string error;
    int signal = 0;
    std::optional<std::int32_t> status;
    TypedValues values;
    // An object a line, as the command writes them.
    std::string findings;
    std::string dependencies;
    std::string keys;
    std::vector<std::string> outputs;
    bool isMemoryShort = false;  ///< The run came to nothing for want of it. Not sent.
};

/// One without an answer.
ResultData failedResult(int code, std::string error);

/// A line of JSON, and back.
///
/// @throws std::exception for a text that `toJsonLine` has not made.
std::string toJsonLine(const ResultData& data);
ResultData resultFromJson(const std::string& line);

}  // namespace marrowpress

/// What the functions of marrowpress.h give, in blocks that stay where they are.
struct mp_result {
public:
    explicit mp_result(marrowpress::ResultData given);
    mp_result(const mp_result&) = delete;
    mp_result& operator=(const mp_result&) = delete;
    ~mp_result() = default;

    const marrowpress::ResultData& data() const noexcept { return data_; }
    const std::vector<mp_value>& values() const noexcept { return values_; }
    const std::vector<mp_finding>& findings() const noexcept { return findings_; }
    const std::vector<mp_dependency>& dependencies() const noexcept { return dependencies_; }
    const std::vector<const char*>& keys() const noexcept { return keys_; }

private:
    const char* keep(std::string text);
    void addValue(const marrowpress::TypedValue& value);
    void addFinding(const std::string& line);
    void addDependency(const std::string& line);

    marrowpress::ResultData data_;
    std::deque<std::string> texts_;
    std::deque<std::vector<const char*>> lists_;
    std::vector<mp_value> values_;
    std::vector<mp_finding> findings_;
    std::vector<mp_dependency> dependencies_;
    std::vector<const char*> keys_;
};
