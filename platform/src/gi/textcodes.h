// The characters a text shows once its %% control codes are decoded, with the over-, under-
// and strike-through lines in force at each. The house text metric measures this same list, so
// that what is drawn advances exactly as much as what is measured.
#pragma once

#include "adesk.h"

#include <vector>

struct QorShownChar {
    wchar_t c = 0;
    bool overline = false;
    bool underline = false;
    bool strike = false;
};

// len < 0 reads to the terminator, and a terminator ends the text early. Raw text shows every
// character as it is.
std::vector<QorShownChar> qorDecodeTextCodes(const ACHAR* text, int len, bool raw);
