#pragma once

#include <boost/json/object.hpp>
#include <iosfwd>
#include <string>
#include <vector>

#include "findings/finding.h"

namespace marrowpress {

/// One finding, as `writeJson` writes it.
boost::json::object findingObject(const Finding& finding);

/// Writes each finding as a JSON object, a line each, and the summary as the last one;
/// docs/schemas/findings.schema.json describes them. Always valid UTF-8. Artefacts are written
/// like all others, and marked: who doesn't want them takes them out before.
///
/// @param job  Of a batch, to which they belong, and which each line names then; may be empty.
void writeJson(std::ostream& out, const std::vector<Finding>& findings,
               const FindingSummary& summary, const std::string& job = {});

}  // namespace marrowpress
