// Texts: each character in the cell the house metric gives it (a full-width character one text
// height wide, any other half of it, times the width factor), its glyph from the installed
// face centred in the cell, or squeezed into it when the glyph is wider.
#include "cairoimpl.h"

#include "cairofonts.h"
#include "textcodes.h"

#include <algorithm>
#include <cmath>
#include <cwctype>
#include <numbers>

using namespace qorrender;

namespace {

// Glyphs smaller than this on the page are not legible; larger ones reach beyond the
// coordinates cairo places exactly. Device units of one text height.
constexpr double kSmallestText = 1.0;
constexpr double kLargestText = 2.0e4;
// Obliquing is limited as drawing programs limit it, short of the shear degenerating.
constexpr double kMaxOblique = 85.0 * std::numbers::pi / 180.0;

struct TextLook {
    double height = 1.0;
    double widthFactor = 1.0;
    double oblique = 0.0;
    double tracking = 1.0;
    bool backward = false, upsideDown = false, vertical = false;
    bool underlined = false, overlined = false;
    std::wstring typeface;
};

bool textInputOk(const AcGePoint3d& position, const AcGeVector3d& normal,
                 const AcGeVector3d& direction) {
    if (!finite(position) || !finite(normal) || !finite(direction)) return false;
    // The direction must have a part in the text's plane.
    const double across = normal.crossProduct(direction).length();
    return across > 1e-12 * normal.length() * direction.length();
}

struct Cell {
    QorShownChar ch;
    double x = 0.0, y = 0.0; // where the cell starts on the baseline, in drawing units
    double width = 0.0;      // its advance
};

// A run of glyphs drawn with one face and one font matrix.
class GlyphRun {
public:
    GlyphRun(cairo_t* cr) : mCr(cr) {}
    ~GlyphRun() { flush(); }
    void add(cairo_font_face_t* face, const cairo_matrix_t& m, double x, double y,
             unsigned long index) {
        if (face != mFace || !sameMatrix(m)) {
            flush();
            mFace = face;
            mMatrix = m;
        }
        mGlyphs.push_back({index, x, y});
    }
    void flush() {
        if (mGlyphs.empty()) return;
        cairo_set_font_face(mCr, mFace);
        cairo_set_font_matrix(mCr, &mMatrix);
        cairo_show_glyphs(mCr, mGlyphs.data(), static_cast<int>(mGlyphs.size()));
        mGlyphs.clear();
    }

private:
    bool sameMatrix(const cairo_matrix_t& m) const {
        return m.xx == mMatrix.xx && m.yx == mMatrix.yx && m.xy == mMatrix.xy && m.yy == mMatrix.yy;
    }
    cairo_t* mCr;
    cairo_font_face_t* mFace = nullptr;
    cairo_matrix_t mMatrix{};
    std::vector<cairo_glyph_t> mGlyphs;
};

bool drawable(wchar_t c) {
    return c > 0x20 && !(c >= 0x7F && c < 0xA0) && !std::iswspace(static_cast<wint_t>(c));
}

Adesk::Boolean drawText(AcGiRenderer::Impl& d, const AcGePoint3d& position,
                        const AcGeVector3d& normal, const AcGeVector3d& direction,
                        const std::vector<QorShownChar>& shown, const TextLook& look) {
    if (shown.empty() || !(look.height > 0.0) || !(look.widthFactor > 0.0)) return Adesk::kFalse;
    Pen pen;
    if (!d.pen(pen)) return Adesk::kFalse;

    // The text's frame on the page: one drawing unit along the text and up.
    const AcGeVector3d n = normal.normal();
    const AcGeVector3d xw = (direction - n * direction.dotProduct(n)).normal();
    const AcGeVector3d yw = n.crossProduct(xw);
    AcGePoint2d origin = d.dev(position);
    AcGeVector2d X = d.toDevice.vector(xw), Y = d.toDevice.vector(yw);
    const double h = look.height;
    const double deviceHeight = h * Y.length();
    if (!(deviceHeight >= kSmallestText) || !(deviceHeight <= kLargestText)) return Adesk::kFalse;

    // The cells, by the house metric.
    std::vector<Cell> cells;
    cells.reserve(shown.size());
    double advance = 0.0;
    for (size_t i = 0; i < shown.size(); ++i) {
        const double full = qorIsFullWidthChar(shown[i].c) ? 1.0 : 0.5;
        Cell cell{shown[i], 0.0, 0.0, full * h * look.widthFactor * look.tracking};
        if (look.vertical) {
            cell.y = -static_cast<double>(i) * h;
            cell.width = h * look.widthFactor;
        } else {
            cell.x = advance;
            advance += cell.width;
        }
        cells.push_back(cell);
    }
    const double extent = look.vertical ? h * look.widthFactor : advance;
    if (look.backward) {
        origin = origin + X * extent;
        X = -X;
    }
    if (look.upsideDown) {
        origin = origin + Y * h;
        Y = -Y;
    }
    const double slant = std::tan(std::clamp(look.oblique, -kMaxOblique, kMaxOblique));
    auto at = [&](double x, double y) { return origin + X * (x + y * slant) + Y * y; };

    // Nothing of it near the page: nothing to do.
    const double low = look.vertical ? -(static_cast<double>(cells.size()) - 1.0) * h : 0.0;
    const AcGePoint2d corners[4] = {at(0, low - 0.3 * h), at(extent, low - 0.3 * h), at(0, 1.2 * h),
                                    at(extent, 1.2 * h)};
    const Box reach = d.page.grownBy(pen.width + 2.0);
    if (!reach.meets(Box::around(corners, 4))) return Adesk::kFalse;

    cairo_t* cr = d.canvas.cr();
    d.applyColor(pen);
    cairo_set_font_options(cr, drawingFontOptions());
    Points boxes; // outlines for characters no face has, four corners each
    {
        GlyphRun run(cr);
        for (const Cell& cell : cells) {
            if (!drawable(cell.ch.c)) continue;
            const AcGePoint2d cellCorners[4] = {
                at(cell.x, cell.y - 0.3 * h), at(cell.x + cell.width, cell.y - 0.3 * h),
                at(cell.x, cell.y + 1.2 * h), at(cell.x + cell.width, cell.y + 1.2 * h)};
            if (!reach.meets(Box::around(cellCorners, 4))) continue;
            Glyph g = findGlyph(look.typeface, cell.ch.c);
            // The diameter sign is missing from many faces; the slashed O stands in for it.
            if (!g.face && cell.ch.c == L'\u2300') g = findGlyph(look.typeface, L'\u00D8');
            const double base = cell.width / look.tracking;
            if (!g.face || !(g.advance > 0.0)) {
                const double inset = 0.1 * base;
                for (const auto& [x, y] : {std::pair{cell.x + inset, cell.y},
                                           std::pair{cell.x + cell.width - inset, cell.y},
                                           std::pair{cell.x + cell.width - inset, cell.y + 0.8 * h},
                                           std::pair{cell.x + inset, cell.y + 0.8 * h}})
                    boxes.push_back(at(x, y));
                continue;
            }
            const double natural = g.advance * h * look.widthFactor;
            const double squeeze = natural > base ? base / natural : 1.0;
            const double offset = (cell.width - natural * squeeze) / 2.0;
            // Glyph space runs y down, in ems.
            const double sx = h * look.widthFactor * squeeze;
            cairo_matrix_t m;
            cairo_matrix_init(&m, X.x * sx, X.y * sx, -(X.x * slant + Y.x) * h,
                              -(X.y * slant + Y.y) * h, 0.0, 0.0);
            const double det = m.xx * m.yy - m.xy * m.yx;
            if (!(std::fabs(det) > 1e-6)) continue;
            const AcGePoint2d o = at(cell.x + offset, cell.y);
            run.add(g.face, m, o.x, o.y, g.index);
        }
    }
    Pen thin = pen;
    thin.width = d.minWidth;
    thin.dashes = nullptr;
    for (size_t i = 0; i + 3 < boxes.size(); i += 4)
        d.stroke({boxes[i], boxes[i + 1], boxes[i + 2], boxes[i + 3]}, true, thin);

    // Over-, under- and strike-through lines along the runs of characters that have them.
    Pen line = pen;
    line.dashes = nullptr;
    auto rule = [&](auto has, double y) {
        for (size_t i = 0; i < cells.size();) {
            if (!has(cells[i].ch)) {
                ++i;
                continue;
            }
            size_t j = i;
            while (j + 1 < cells.size() && has(cells[j + 1].ch))
                ++j;
            if (look.vertical) {
                for (size_t k = i; k <= j; ++k)
                    d.stroke({at(0, cells[k].y + y), at(cells[k].width, cells[k].y + y)}, false,
                             line);
            } else {
                d.stroke({at(cells[i].x, y), at(cells[j].x + cells[j].width, y)}, false, line);
            }
            i = j + 1;
        }
    };
    rule([&](const QorShownChar& c) { return c.underline != look.underlined; }, -0.2 * h);
    rule([&](const QorShownChar& c) { return c.overline != look.overlined; }, 1.1 * h);
    rule([](const QorShownChar& c) { return c.strike; }, 0.4 * h);
    return Adesk::kFalse;
}

} // namespace

Adesk::Boolean AcGiRenderGeometry::text(const AcGePoint3d& position, const AcGeVector3d& normal,
                                        const AcGeVector3d& direction, double height, double width,
                                        double oblique, const ACHAR* pMsg) const {
    AcGiRenderer::Impl& d = *mOwner->mImpl;
    if (!textInputOk(position, normal, direction) || !std::isfinite(height) ||
        !std::isfinite(width) || !std::isfinite(oblique))
        return d.reject();
    TextLook look;
    look.height = height;
    look.widthFactor = width;
    look.oblique = oblique;
    return drawText(d, position, normal, direction, qorDecodeTextCodes(pMsg, -1, false), look);
}

Adesk::Boolean AcGiRenderGeometry::text(const AcGePoint3d& position, const AcGeVector3d& normal,
                                        const AcGeVector3d& direction, const ACHAR* pMsg,
                                        Adesk::Int32 length, Adesk::Boolean raw,
                                        const AcGiTextStyle& style) const {
    AcGiRenderer::Impl& d = *mOwner->mImpl;
    if (!textInputOk(position, normal, direction) || !std::isfinite(style.textSize()) ||
        !std::isfinite(style.xScale()) || !std::isfinite(style.obliquingAngle()) ||
        !std::isfinite(style.trackingPercent()))
        return d.reject();
    TextLook look;
    look.height = style.textSize();
    look.widthFactor = style.xScale();
    look.oblique = style.obliquingAngle();
    look.tracking = style.trackingPercent() > 0.0 ? style.trackingPercent() : 1.0;
    look.backward = style.isBackward();
    look.upsideDown = style.isUpsideDown();
    look.vertical = style.isVertical();
    look.underlined = style.isUnderlined();
    look.overlined = style.isOverlined();
    look.typeface = style.typeface();
    return drawText(d, position, normal, direction, qorDecodeTextCodes(pMsg, length, raw), look);
}
