#pragma once

#include <string>
#include <vector>

#include "tests/support/told_files.h"

namespace marrowpress {

/// A map, its topic and their DTDs, as a list of files.
class ListedFiles : protected ToldFiles {
protected:
    ListedFiles() {
        refer(ReferenceKind::kTopic, "/w/m.ditamap", 2, "/w/a.dita");
        name("/w/a.dita", "/dtd/t.dtd");
        name("", "/dtd/d.dtd");
        open("/w/m.ditamap");
        open("/w/a.dita");
        list.finish();
    }

    std::vector<const Dependency*> files() const {
        std::vector<const Dependency*> files;
        for (const Dependency& file : list.files()) {
            files.push_back(&file);
        }
        return files;
    }

    std::vector<const DependencyEdge*> edges() const {
        std::vector<const DependencyEdge*> edges;
        for (const DependencyEdge& edge : list.edges()) {
            edges.push_back(&edge);
        }
        return edges;
    }
};

}  // namespace marrowpress
