// Entity colours and the 256-colour index palette.
#include "accolor.h"

#include <array>
#include <cmath>

namespace {

using Palette = std::array<Adesk::UInt32, 256>;

Adesk::UInt32 pack(double r, double g, double b) {
    auto byte = [](double v) { return static_cast<Adesk::UInt32>(v) & 0xFFu; };
    return (byte(r) << 16) | (byte(g) << 8) | byte(b);
}

// Indices 10 to 249 walk the hue circle in 15-degree steps, ten shades per hue: five
// brightness levels, each full and half saturated; channel values are truncated.
Adesk::UInt32 shade(int index) {
    static constexpr double kValue[5] = {255.0, 204.0, 153.0, 127.0, 76.0};
    const int hueStep = index / 10 - 1;
    const int variant = index % 10;
    const double v = kValue[variant / 2];
    const double lo = (variant % 2) ? v / 2.0 : 0.0;
    const int sector = hueStep / 4;
    const double f = (hueStep % 4) / 4.0;
    const double rise = lo + (v - lo) * f, fall = lo + (v - lo) * (1.0 - f);
    switch (sector) {
    case 0:
        return pack(v, rise, lo);
    case 1:
        return pack(fall, v, lo);
    case 2:
        return pack(lo, v, rise);
    case 3:
        return pack(lo, fall, v);
    case 4:
        return pack(rise, lo, v);
    default:
        return pack(v, lo, fall);
    }
}

Palette buildPalette() {
    Palette p{};
    static constexpr Adesk::UInt32 kFirst[10] = {0x000000, 0xFF0000, 0xFFFF00, 0x00FF00, 0x00FFFF,
                                                 0x0000FF, 0xFF00FF, 0xFFFFFF, 0x808080, 0xC0C0C0};
    for (int i = 0; i < 10; ++i)
        p[i] = kFirst[i];
    for (int i = 10; i < 250; ++i)
        p[i] = shade(i);
    static constexpr Adesk::UInt32 kGreys[6] = {51, 91, 132, 173, 214, 255};
    for (int i = 0; i < 6; ++i)
        p[250 + i] = kGreys[i] * 0x010101u;
    return p;
}

const Palette& palette() {
    static const Palette p = buildPalette();
    return p;
}

} // namespace

Adesk::UInt32 AcCmEntityColor::lookUpRGB(Adesk::UInt8 colorIndex) {
    return palette()[colorIndex];
}

Adesk::UInt8 AcCmEntityColor::lookUpACI(Adesk::UInt8 red, Adesk::UInt8 green, Adesk::UInt8 blue) {
    // Nearest in RGB space; the lowest index wins a tie, so pure red is 1, not 10.
    int best = 1;
    long bestDist = -1;
    for (int i = 1; i < 256; ++i) {
        const Adesk::UInt32 c = palette()[i];
        const long dr = static_cast<long>((c >> 16) & 0xFF) - red;
        const long dg = static_cast<long>((c >> 8) & 0xFF) - green;
        const long db = static_cast<long>(c & 0xFF) - blue;
        const long d = dr * dr + dg * dg + db * db;
        if (bestDist < 0 || d < bestDist) {
            bestDist = d;
            best = i;
            if (d == 0) break;
        }
    }
    return static_cast<Adesk::UInt8>(best);
}

void AcCmEntityColor::setColorIndex(Adesk::UInt16 index) {
    ColorMethod m = kByACI;
    if (index == kACIbyLayer)
        m = kByLayer;
    else if (index == kACIbyBlock)
        m = kByBlock;
    mValue = (static_cast<Adesk::UInt32>(m) << 24) | index;
}

Adesk::UInt16 AcCmEntityColor::colorIndex() const {
    switch (colorMethod()) {
    case kByLayer:
        return kACIbyLayer;
    case kByBlock:
        return kACIbyBlock;
    case kByACI:
        return static_cast<Adesk::UInt16>(mValue & 0xFFFF);
    case kByColor:
        return lookUpACI(red(), green(), blue());
    case kForeground:
        return kACIforeground;
    default:
        return 0;
    }
}

void AcCmEntityColor::setRGB(Adesk::UInt8 red, Adesk::UInt8 green, Adesk::UInt8 blue) {
    mValue = (static_cast<Adesk::UInt32>(kByColor) << 24) |
             (static_cast<Adesk::UInt32>(red) << 16) | (static_cast<Adesk::UInt32>(green) << 8) |
             blue;
}

namespace {
// The RGB a colour shows: its own for a true colour, the palette's for an index colour.
Adesk::UInt32 shownRGB(const AcCmEntityColor& c, Adesk::UInt32 value) {
    if (c.isByColor()) return value & 0xFFFFFF;
    if (c.isByACI() && c.colorIndex() < 256) return palette()[c.colorIndex()];
    return 0;
}
} // namespace

Adesk::UInt8 AcCmEntityColor::red() const {
    return static_cast<Adesk::UInt8>(shownRGB(*this, mValue) >> 16);
}
Adesk::UInt8 AcCmEntityColor::green() const {
    return static_cast<Adesk::UInt8>(shownRGB(*this, mValue) >> 8);
}
Adesk::UInt8 AcCmEntityColor::blue() const {
    return static_cast<Adesk::UInt8>(shownRGB(*this, mValue));
}
