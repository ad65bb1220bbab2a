#include "xml/kept_dtds.h"

#include <algorithm>
#include <xercesc/framework/XMLGrammarDescription.hpp>

#include "support/xerces_ptr.h"

namespace marrowpress {

void KeptDtds::beginTry() noexcept {
    current_ = nullptr;
    isScanned_ = false;
    isDtdRead_ = false;
}

std::vector<std::string>* KeptDtds::beginDtd(xercesc::Grammar& grammar) {
    const auto [dtd, isNew] = dtds_.try_emplace(&grammar);
    current_ = &dtd->second;
    isScanned_ = isNew;
    if (!isNew) {
        return nullptr;
    }
    current_->path = domText(grammar.getGrammarDescription()->getGrammarKey());
    current_->grammar = &grammar;
    return &current_->publicIds;
}

void KeptDtds::endDtd(ReaderPosition position) noexcept {
    isDtdRead_ = current_;
    dtdEnd_ = position;
}

void KeptDtds::failAt(ReaderPosition position) noexcept {
    // The engine looks at the DTD as a whole before it goes on behind the doctype. A document that
    // meets the DTD later is spared that.
    if (position != dtdEnd_) {
        noteThatDtdIsSound();
    }
}

void KeptDtds::succeed() noexcept {
    noteThatDtdIsSound();
}

const KeptDtd* KeptDtds::findSound(const std::u16string& path) const {
    const auto found = std::find_if(dtds_.begin(), dtds_.end(), [&](const auto& dtd) {
        return dtd.second.isSound && dtd.second.path == path;
    });
    return found == dtds_.end() ? nullptr : &found->second;
}

void KeptDtds::noteThatDtdIsSound() noexcept {
    if (isScanned_ && isDtdRead_) {
        current_->isSound = true;
    }
}

}  // namespace marrowpress
