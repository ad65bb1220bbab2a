#pragma once

struct _xmlDoc;

namespace marrowpress {

/// Whether libxml2 would end the process as it reads `document` as a catalog: it compares the
/// target of each "nextCatalog" with those of earlier ones, and does so too where there is none
/// because the attribute is missing or no URI.
bool isFatalCatalog(const _xmlDoc& document);

/// The same of what an open descriptor has left to read, which it has not then. What is no XML is
/// no catalog either, and does no harm.
bool isFatalCatalog(int descriptor);

}  // namespace marrowpress
