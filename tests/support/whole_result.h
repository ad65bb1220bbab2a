#pragma once

#include "library/result.h"

namespace marrowpress {

/// A result that has something of each kind.
inline ResultData wholeResult() {
    ResultData data;
    data.error = "\"quoted\"\n";
    data.signal = 9;
    data.status = -42;
    data.values = {{1, -42},
                   {3, std::string("text")},
                   {6, std::vector<std::string>{"a", "b"}},
                   {15, std::vector<std::int32_t>{1, -2}}};
    data.findings =
        R"({"id":"MP208","severity":"warning","text":"t","file":"/a.dita","line":3,"column":4,)"
        R"("hint":null})"
        "\n"
        R"({"id":"MP106","severity":"error","text":"u","file":null,"line":null,"column":null})"
        "\n";
    data.dependencies = R"({"file":"/b.dita","kind":"topic","state":"absent",)"
                        R"("from":{"file":"/m.ditamap","line":2,"column":3}})"
                        "\n"
                        R"({"file":"/m.ditamap","kind":"map reference","state":"read","from":null})"
                        "\n";
    data.keys = "{\"key\":\"k\"}\n";
    data.outputs = {"/o.dita"};
    return data;
}

}  // namespace marrowpress
