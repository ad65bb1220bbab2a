#pragma once

#include <cstddef>
#include <string>

#include "bench/floor/source_list.h"

namespace marrowpress::bench {

struct EngineCounts {
    std::size_t documents = 0;
    std::size_t topics = 0;
    /// Documents that could not be parsed; they count among neither of the others.
    std::size_t unread = 0;
};

/// Parses each source once, imports the root of each topic into one document, and writes that to
/// the file at `output`, a path in UTF-8. The engine is started and terminated in it.
///
/// The settings of the parser and of the serializer are those of the module: `xml/dom_parser.cpp`
/// and `xml/document_writer.cpp`. Documents that break their DTD are parsed to their end.
///
/// @throws std::runtime_error when the engine doesn't start or the output can't be written.
EngineCounts runEngine(const SourceList& list, const std::string& output);

}  // namespace marrowpress::bench
