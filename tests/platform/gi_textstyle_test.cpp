// Text styles: the house text metric behind every measurement of text.
#include "gi.h"

#include <gtest/gtest.h>

namespace {

TEST(GiTextStyle, MixedChineseAndLatinTextAdvancesByCharacterWidth) {
    AcGiTextStyle style;
    style.setTextSize(2.5);
    style.setXScale(0.8);
    // Two full-width characters and five half-width ones: 4.5 text heights.
    const AcGePoint2d ext = style.extents(L"道路Road1", true, -1, false);
    EXPECT_DOUBLE_EQ(ext.x, 4.5 * 2.5 * 0.8);
    EXPECT_DOUBLE_EQ(ext.y, 2.5);
    // Full-width Latin forms and CJK punctuation count as full width, a space as half.
    EXPECT_DOUBLE_EQ(style.extents(L"Ａ，", true, -1, false).x, 2 * 2.5 * 0.8);
    EXPECT_DOUBLE_EQ(style.extents(L"a b", true, -1, false).x, 1.5 * 2.5 * 0.8);
    // Tracking spreads the characters further.
    style.setTrackingPercent(1.5);
    EXPECT_DOUBLE_EQ(style.extents(L"道", true, -1, false).x, 2.5 * 0.8 * 1.5);
}

TEST(GiTextStyle, TheFullWidthRangeStartsAtTheCjkRadicals) {
    EXPECT_FALSE(qorIsFullWidthChar(L'a'));
    EXPECT_FALSE(qorIsFullWidthChar(L'\u00B0'));
    EXPECT_FALSE(qorIsFullWidthChar(static_cast<wchar_t>(0x2E7F)));
    EXPECT_TRUE(qorIsFullWidthChar(static_cast<wchar_t>(0x2E80)));
    EXPECT_TRUE(qorIsFullWidthChar(L'中'));
    EXPECT_TRUE(qorIsFullWidthChar(static_cast<wchar_t>(0x20000))); // beyond the basic plane
}

TEST(GiTextStyle, ControlCodesAreDecodedUnlessTheTextIsRaw) {
    // %%c is one character; the switches %%u and %%o take no room; %%% is a percent sign.
    EXPECT_DOUBLE_EQ(qorTextAdvance(L"%%c100", -1, false), 2.0);
    EXPECT_DOUBLE_EQ(qorTextAdvance(L"%%c100", -1, true), 3.0);
    EXPECT_DOUBLE_EQ(qorTextAdvance(L"%%uAB%%u", -1, false), 1.0);
    EXPECT_DOUBLE_EQ(qorTextAdvance(L"50%%%", -1, false), 1.5);
    EXPECT_DOUBLE_EQ(qorTextAdvance(L"%%D", -1, false), 0.5);
    // A character code of up to three digits is one character.
    EXPECT_DOUBLE_EQ(qorTextAdvance(L"%%1777", -1, false), 1.0);
    // A code cut short by the end of the text stays as written.
    EXPECT_DOUBLE_EQ(qorTextAdvance(L"a%%", -1, false), 1.5);
    EXPECT_DOUBLE_EQ(qorTextAdvance(L"%%", 1, false), 0.5);
}

TEST(GiTextStyle, LengthAndTerminatorBoundTheMeasuredText) {
    AcGiTextStyle style;
    style.setTextSize(1.0);
    EXPECT_DOUBLE_EQ(style.extents(L"道路Road", true, 2, false).x, 2.0);
    // A length beyond the terminator stops at the terminator.
    const wchar_t buffer[] = {L'a', L'b', L'\0', L'X', L'Y', L'Z'};
    EXPECT_DOUBLE_EQ(style.extents(buffer, true, 6, false).x, 1.0);
    EXPECT_DOUBLE_EQ(style.extents(nullptr, true, -1, false).x, 0.0);
    EXPECT_DOUBLE_EQ(style.extents(L"", true, -1, false).x, 0.0);
    EXPECT_DOUBLE_EQ(style.extents(L"abc", true, 0, false).x, 0.0);
}

TEST(GiTextStyle, VerticalTextStacksItsCharacters) {
    AcGiTextStyle style(L"simsun", L"", 2.0, 0.5, 0.0, 1.0, false, false, true, false, false);
    const AcGePoint2d ext = style.extents(L"标高a", true, -1, false);
    EXPECT_DOUBLE_EQ(ext.x, 1.0);
    EXPECT_DOUBLE_EQ(ext.y, 6.0);
}

TEST(GiTextStyle, LoadStyleRecReportsWhichFontsAreNamed) {
    AcGiTextStyle style;
    EXPECT_EQ(style.loadStyleRec(), 0);
    style.setFileName(L"黑体");
    EXPECT_EQ(style.loadStyleRec(), 1);
    style.setBigFontFileName(L"gbcbig.shx");
    EXPECT_EQ(style.loadStyleRec(), 3);

    AcGiTextStyle byTypeface;
    byTypeface.setFont(L"SimSun", true, false, 134, 2);
    EXPECT_EQ(byTypeface.loadStyleRec(), 1);
    ACHAR* typeface = nullptr;
    bool bold = false, italic = true;
    int charset = 0, pitch = 0;
    ASSERT_EQ(byTypeface.font(typeface, bold, italic, charset, pitch), Acad::eOk);
    EXPECT_STREQ(typeface, L"SimSun");
    EXPECT_TRUE(bold);
    EXPECT_FALSE(italic);
    EXPECT_EQ(charset, 134);
    EXPECT_EQ(pitch, 2);
    delete[] typeface;
}

} // namespace
