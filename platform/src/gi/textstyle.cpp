// Text styles for drawing and the house text metric.
#include "gi.h"

#include <cmath>
#include <cstring>
#include <cwctype>

namespace {

struct TextCount {
    double advance = 0.0; // in text heights
    int characters = 0;
};

// Walks the characters a text shows: len < 0 or a terminator ends it; %% codes are decoded
// unless raw. Unknown codes lose their %% and show the character that follows.
TextCount measure(const ACHAR* text, int len, bool raw) {
    TextCount count;
    if (!text) return count;
    auto at = [&](int i) -> ACHAR { return (len >= 0 && i >= len) ? L'\0' : text[i]; };
    auto show = [&](wchar_t c) {
        count.advance += qorIsFullWidthChar(c) ? 1.0 : 0.5;
        ++count.characters;
    };
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
        case L'u':
        case L'k': // over-, underline and strike-through switches draw nothing themselves
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
    return count;
}

ACHAR* copyString(const std::wstring& s) {
    auto* out = new ACHAR[s.size() + 1];
    std::wmemcpy(out, s.c_str(), s.size() + 1);
    return out;
}

} // namespace

bool qorIsFullWidthChar(wchar_t c) {
    return static_cast<std::uint32_t>(c) >= 0x2E80u;
}

double qorTextAdvance(const ACHAR* text, int len, bool raw) {
    return measure(text, len, raw).advance;
}

AcGiTextStyle::AcGiTextStyle(AcDbDatabase*) {}

AcGiTextStyle::AcGiTextStyle(const ACHAR* fontName, const ACHAR* bigFontName, double textSize,
                             double xScale, double obliqueAngle, double trackPercent,
                             Adesk::Boolean isBackward, Adesk::Boolean isUpsideDown,
                             Adesk::Boolean isVertical, Adesk::Boolean isOverlined,
                             Adesk::Boolean isUnderlined, const ACHAR* styleName)
    : mTextSize(textSize), mXScale(xScale), mOblique(obliqueAngle), mTracking(trackPercent),
      mBackward(isBackward), mUpsideDown(isUpsideDown), mVertical(isVertical),
      mUnderlined(isUnderlined), mOverlined(isOverlined) {
    setFileName(fontName);
    setBigFontFileName(bigFontName);
    setStyleName(styleName);
}

int AcGiTextStyle::loadStyleRec(AcDbDatabase*) const {
    int loaded = 0;
    if (!mFileName.empty() || !mTypeface.empty()) loaded |= 1;
    if (!mBigFont.empty()) loaded |= 2;
    return loaded;
}

Acad::ErrorStatus AcGiTextStyle::setFont(const ACHAR* typeface, bool bold, bool italic, int charset,
                                         int pitchAndFamily) {
    mTypeface = typeface ? typeface : L"";
    mBold = bold;
    mItalic = italic;
    mCharset = charset;
    mPitchAndFamily = pitchAndFamily;
    return Acad::eOk;
}

Acad::ErrorStatus AcGiTextStyle::font(ACHAR*& typeface, bool& bold, bool& italic, int& charset,
                                      int& pitchAndFamily) const {
    typeface = copyString(mTypeface);
    bold = mBold;
    italic = mItalic;
    charset = mCharset;
    pitchAndFamily = mPitchAndFamily;
    return Acad::eOk;
}

AcGePoint2d AcGiTextStyle::extents(const ACHAR* text, Adesk::Boolean, int len, Adesk::Boolean raw,
                                   AcGiWorldDraw*) const {
    const TextCount count = measure(text, len, raw);
    if (mVertical)
        return {count.characters > 0 ? mTextSize * mXScale : 0.0, count.characters * mTextSize};
    return {count.advance * mTextSize * mXScale * mTracking, mTextSize};
}
