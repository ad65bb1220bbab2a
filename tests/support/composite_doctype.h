#pragma once

#include <string>

namespace marrowpress {

/// What stands in front of the root in everything that the module writes as a composite.
inline const std::string kCompositeDoctype =
    R"(<?xml version="1.0" encoding="UTF-8" standalone="no" ?>)"
    R"(<!DOCTYPE dita PUBLIC "-//OASIS//DTD DITA Composite//EN" "ditabase.dtd">)";

}  // namespace marrowpress
