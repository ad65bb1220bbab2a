#pragma once

#include <boost/json/object.hpp>
#include <functional>
#include <iosfwd>
#include <optional>

#include "findings/finding.h"

namespace marrowpress {

/// A finding from one object, as `readJson` reads it.
///
/// @throws std::runtime_error that says what is wrong.
Finding parseFinding(const boost::json::object& object);

/// Reads what `writeJson` wrote. Only `id` and `severity` have to be there; unknown members and
/// blank lines are passed over.
///
/// @param take  Gets each finding when it has been read, so that nobody has to hold them all.
/// @return      The summary; empty when there is none.
/// @throws std::runtime_error that names the line, from 1, and what is wrong with it; also when
///         the stream fails.
std::optional<FindingSummary> readJson(std::istream& in, const std::function<void(Finding)>& take);

}  // namespace marrowpress
