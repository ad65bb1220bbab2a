#include "findings/words.h"

#include <boost/algorithm/string/replace.hpp>

namespace marrowpress {

std::string counted(std::size_t count, const CountedNoun& noun) {
    return std::to_string(count) + ' ' + (count == 1 ? noun.one : noun.many);
}

std::string moreText(std::size_t count, const Words& words) {
    return boost::replace_first_copy(words.more, "{0}", std::to_string(count));
}

}  // namespace marrowpress
