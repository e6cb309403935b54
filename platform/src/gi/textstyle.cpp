// Text styles for drawing and the house text metric.
#include "gi.h"
#include "textcodes.h"

#include <cmath>
#include <cstring>

namespace {

struct TextCount {
    double advance = 0.0; // in text heights
    int characters = 0;
};

// The characters a text shows (%% codes decoded unless raw; unknown codes lose their %% and
// show the character that follows), each advancing by the house metric.
TextCount measure(const ACHAR* text, int len, bool raw) {
    TextCount count;
    for (const QorShownChar& shown : qorDecodeTextCodes(text, len, raw)) {
        count.advance += qorIsFullWidthChar(shown.c) ? 1.0 : 0.5;
        ++count.characters;
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
