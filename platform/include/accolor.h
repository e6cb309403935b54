// Platform colours: the colour method in the top byte, RGB (blue in the low byte) below it.
#pragma once

#include "adesk.h"

class AcCmEntityColor {
public:
    enum ColorMethod : Adesk::UInt8 {
        kByLayer = 0xC0,
        kByBlock = 0xC1,
        kByColor = 0xC2,
        kByACI = 0xC3,
        kByPen = 0xC4,
        kForeground = 0xC5,
        kLayerOff = 0xC6,
        kLayerFrozen = 0xC7,
        kNone = 0xC8,
    };
    enum ACIcolorMethod : Adesk::UInt16 {
        kACIbyBlock = 0,
        kACIRed = 1,
        kACIYellow = 2,
        kACIGreen = 3,
        kACICyan = 4,
        kACIBlue = 5,
        kACIMagenta = 6,
        kACIforeground = 7,
        kACIbyLayer = 256
    };

    AcCmEntityColor() = default;
    explicit AcCmEntityColor(ColorMethod m) { mValue = static_cast<Adesk::UInt32>(m) << 24; }
    AcCmEntityColor(Adesk::UInt8 red, Adesk::UInt8 green, Adesk::UInt8 blue) {
        setRGB(red, green, blue);
    }

    ColorMethod colorMethod() const { return static_cast<ColorMethod>(mValue >> 24); }
    void setColorMethod(ColorMethod m) {
        mValue = (mValue & 0x00FFFFFFu) | (static_cast<Adesk::UInt32>(m) << 24);
    }
    bool isByLayer() const {
        return colorMethod() == kByLayer || (isByACI() && colorIndex() == kACIbyLayer);
    }
    bool isByBlock() const {
        return colorMethod() == kByBlock || (isByACI() && colorIndex() == kACIbyBlock);
    }
    bool isByColor() const { return colorMethod() == kByColor; }
    bool isByACI() const { return colorMethod() == kByACI; }
    bool isNone() const { return colorMethod() == kNone; }

    // Index colour: 0 by block, 256 by layer, 1..255 the palette.
    void setColorIndex(Adesk::UInt16 index);
    Adesk::UInt16 colorIndex() const;
    void setRGB(Adesk::UInt8 red, Adesk::UInt8 green, Adesk::UInt8 blue);
    Adesk::UInt8 red() const;
    Adesk::UInt8 green() const;
    Adesk::UInt8 blue() const;
    // The packed value as filed: method byte, then red, green, blue.
    Adesk::UInt32 color() const { return mValue; }
    void setColor(Adesk::UInt32 value) { mValue = value; }
    bool operator==(const AcCmEntityColor& c) const { return mValue == c.mValue; }
    bool operator!=(const AcCmEntityColor& c) const { return mValue != c.mValue; }

    // The 256-colour palette: packed 0x00RRGGBB for an index.
    static Adesk::UInt32 lookUpRGB(Adesk::UInt8 colorIndex);
    // The nearest palette index (1..255) to an RGB colour.
    static Adesk::UInt8 lookUpACI(Adesk::UInt8 red, Adesk::UInt8 green, Adesk::UInt8 blue);

private:
    Adesk::UInt32 mValue = static_cast<Adesk::UInt32>(kByLayer) << 24;
};

class AcCmColor : public AcCmEntityColor {
public:
    AcCmColor() = default;
    AcCmColor(const AcCmEntityColor& c) : AcCmEntityColor(c) {}
    AcCmEntityColor entityColor() const { return *this; }
    void setByLayer() { setColorMethod(kByLayer); }
    void setByBlock() { setColorMethod(kByBlock); }
};

// The module's own stored colours use the Windows order: red in the low byte.
inline Adesk::UInt32 qorPackWindowsRGB(Adesk::UInt8 r, Adesk::UInt8 g, Adesk::UInt8 b) {
    return static_cast<Adesk::UInt32>(r) | (static_cast<Adesk::UInt32>(g) << 8) |
           (static_cast<Adesk::UInt32>(b) << 16);
}
inline Adesk::UInt8 qorWindowsRed(Adesk::UInt32 c) {
    return static_cast<Adesk::UInt8>(c & 0xFF);
}
inline Adesk::UInt8 qorWindowsGreen(Adesk::UInt32 c) {
    return static_cast<Adesk::UInt8>((c >> 8) & 0xFF);
}
inline Adesk::UInt8 qorWindowsBlue(Adesk::UInt32 c) {
    return static_cast<Adesk::UInt8>((c >> 16) & 0xFF);
}
