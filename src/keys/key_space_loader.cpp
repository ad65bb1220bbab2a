#include "keys/key_space_loader.h"

#include "support/text.h"
#include "xml/document_store.h"
#include "xml/document_writer.h"

namespace marrowpress {
xercesc::DOMDocument& KeySpaceLoader::load(const std::u16string& mapPath,
                                           const std::u16string& keySpaceDocPath,
                                           TopicIdMap& /*topicIds*/,
                                           const std::u16string& dtdPath) const {
    writeEmptyDocument("map", "-//OASIS//DTD DITA Map//EN", toUtf8(dtdPath), keySpaceDocPath);
    xercesc::DOMDocument& keySpace = DocumentStore::instance().mustLoad(keySpaceDocPath);
    DocumentStore::instance().mustLoad(mapPath);
    return keySpace;
}

}  // namespace marrowpress
