// Decoding of the %% control codes of drawing texts.
#include "textcodes.h"

#include <cwctype>

std::vector<QorShownChar> qorDecodeTextCodes(const ACHAR* text, int len, bool raw) {
    std::vector<QorShownChar> shown;
    if (!text) return shown;
    auto at = [&](int i) -> ACHAR { return (len >= 0 && i >= len) ? L'\0' : text[i]; };
    bool over = false, under = false, strike = false;
    auto show = [&](wchar_t c) { shown.push_back({c, over, under, strike}); };
    for (int i = 0; at(i) != L'\0';) {
        const ACHAR c = at(i);
        if (raw || c != L'%' || at(i + 1) != L'%' || at(i + 2) == L'\0') {
            show(c);
            ++i;
            continue;
        }
        const ACHAR code = at(i + 2);
        switch (std::towlower(static_cast<wint_t>(code))) {
        case L'o':
            over = !over;
            i += 3;
            break;
        case L'u':
            under = !under;
            i += 3;
            break;
        case L'k':
            strike = !strike;
            i += 3;
            break;
        case L'd':
            show(L'\u00B0');
            i += 3;
            break;
        case L'p':
            show(L'\u00B1');
            i += 3;
            break;
        case L'c':
            show(L'\u2300');
            i += 3;
            break;
        default:
            if (code >= L'0' && code <= L'9') {
                int value = 0, digits = 0;
                while (digits < 3 && at(i + 2 + digits) >= L'0' && at(i + 2 + digits) <= L'9') {
                    value = value * 10 + (at(i + 2 + digits) - L'0');
                    ++digits;
                }
                show(static_cast<wchar_t>(value));
                i += 2 + digits;
            } else {
                show(code); // "%%%" shows one percent sign
                i += 3;
            }
        }
    }
    return shown;
}
