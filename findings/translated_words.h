#pragma once

#include "findings/words.h"

namespace marrowpress {

/// What formats for people say besides the texts of findings, in the language that was chosen.
Words translatedWords();

}  // namespace marrowpress
