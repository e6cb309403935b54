// Pages and views: papers by name, a window fitted into a page, and the page and view that
// rendering options ask for.
#include "girender.h"

#include <algorithm>
#include <cmath>
#include <cwctype>

namespace {

struct Paper {
    const wchar_t* name;
    double width, height; // millimetres, portrait
};

constexpr Paper kPapers[] = {
    {L"a0", 841.0, 1189.0},     {L"a1", 594.0, 841.0},     {L"a2", 420.0, 594.0},
    {L"a3", 297.0, 420.0},      {L"a4", 210.0, 297.0},     {L"a5", 148.0, 210.0},
    {L"a6", 105.0, 148.0},      {L"letter", 215.9, 279.4}, {L"legal", 215.9, 355.6},
    {L"tabloid", 279.4, 431.8},
};

constexpr double kMmPerInch = 25.4;
constexpr int kDefaultImageWidth = 1600;
constexpr int kDefaultDocumentWidth = 842; // the long side of A4, in points
// Beyond this an image no longer fits comfortably in memory (four bytes a pixel).
constexpr double kMaxImagePixels = 1.0e8;
// The margin around fitted extents, as a share of their larger side, and the longest a fitted
// view may be against its breadth.
constexpr double kMargin = 0.03;
constexpr double kMaxAspect = 4.0;

bool finite(const AcGePoint2d& p) {
    return std::isfinite(p.x) && std::isfinite(p.y);
}

} // namespace

bool acgiPaperSize(const ACHAR* name, double& widthMm, double& heightMm) {
    if (!name) return false;
    std::wstring s;
    for (const ACHAR* p = name; *p; ++p)
        if (!std::iswspace(static_cast<wint_t>(*p)))
            s.push_back(static_cast<wchar_t>(std::towlower(static_cast<wint_t>(*p))));
    std::wstring orientation;
    if (const size_t comma = s.find(L','); comma != std::wstring::npos) {
        orientation = s.substr(comma + 1);
        s.erase(comma);
    }
    if (!orientation.empty() && orientation != L"landscape" && orientation != L"portrait")
        return false;
    for (const Paper& paper : kPapers) {
        if (s != paper.name) continue;
        widthMm = paper.width;
        heightMm = paper.height;
        if (orientation == L"landscape") std::swap(widthMm, heightMm);
        return true;
    }
    return false;
}

AcGiRenderView::AcGiRenderView(const AcGePoint2d& windowMin, const AcGePoint2d& windowMax,
                               double pageWidth, double pageHeight) {
    const double x0 = std::min(windowMin.x, windowMax.x), x1 = std::max(windowMin.x, windowMax.x);
    const double y0 = std::min(windowMin.y, windowMax.y), y1 = std::max(windowMin.y, windowMax.y);
    const double wx = x1 - x0, wy = y1 - y0;
    if (!(wx > 0.0) || !(wy > 0.0) || !std::isfinite(wx) || !std::isfinite(wy) ||
        !(pageWidth > 0.0) || !(pageHeight > 0.0) || !std::isfinite(pageWidth) ||
        !std::isfinite(pageHeight))
        return;
    const double scale = std::min(pageWidth / wx, pageHeight / wy);
    if (!(scale > 0.0) || !std::isfinite(scale)) return;
    mWidth = pageWidth;
    mHeight = pageHeight;
    mScale = scale;
    // The window's centre at the page's centre.
    mOriginX = pageWidth / 2.0 - (x0 + x1) / 2.0 * scale;
    mOriginY = pageHeight / 2.0 + (y0 + y1) / 2.0 * scale;
}

bool acgiRenderSetupFor(const AcGiRenderOptions& options, const AcGePoint2d* extentsMin,
                        const AcGePoint2d* extentsMax, AcGiRenderSetup& setup,
                        std::wstring& error) {
    const bool raster =
        options.format == AcGiRenderFormat::kPng || options.format == AcGiRenderFormat::kImage;
    const int maxSide = raster ? kAcGiRenderMaxPixels : kAcGiRenderMaxPoints;
    const int width =
        options.width > 0 ? options.width : (raster ? kDefaultImageWidth : kDefaultDocumentWidth);
    if (options.width < 0 || width > maxSide) {
        error = L"the width must be 1 to " + std::to_wstring(maxSide) +
                (raster ? L" pixels" : L" points");
        return false;
    }
    const bool paper = options.paperWidthMm > 0.0 || options.paperHeightMm > 0.0;
    if (paper && !(options.paperWidthMm > 0.0 && options.paperHeightMm > 0.0 &&
                   std::isfinite(options.paperWidthMm) && std::isfinite(options.paperHeightMm))) {
        error = L"the paper needs a width and a height";
        return false;
    }

    // The window: as given, or the extents with a margin, or a unit square for a blank page.
    AcGePoint2d wmin(0, 0), wmax(1, 1);
    if (options.hasWindow) {
        wmin = options.windowMin;
        wmax = options.windowMax;
        if (!finite(wmin) || !finite(wmax) || wmin.x == wmax.x || wmin.y == wmax.y) {
            error = L"the window needs two corners with a width and a height between them";
            return false;
        }
    } else if (extentsMin && extentsMax && finite(*extentsMin) && finite(*extentsMax) &&
               extentsMin->x <= extentsMax->x && extentsMin->y <= extentsMax->y) {
        const double sx = extentsMax->x - extentsMin->x, sy = extentsMax->y - extentsMin->y;
        // A lone point gets a unit square around it.
        const double side = std::max(sx, sy) > 0.0 ? std::max(sx, sy) : 1.0;
        // Thin drawings are padded across, so that a fitted page is never longer than
        // kMaxAspect times its breadth.
        const double mx = side * kMargin + std::max(0.0, side / kMaxAspect - sx) / 2.0;
        const double my = side * kMargin + std::max(0.0, side / kMaxAspect - sy) / 2.0;
        wmin.set(extentsMin->x - mx, extentsMin->y - my);
        wmax.set(extentsMax->x + mx, extentsMax->y + my);
    }
    const double wx = std::fabs(wmax.x - wmin.x), wy = std::fabs(wmax.y - wmin.y);

    double pageW = width, pageH = 0.0;
    if (paper && !raster) {
        pageW = options.paperWidthMm * 72.0 / kMmPerInch;
        pageH = options.paperHeightMm * 72.0 / kMmPerInch;
        setup.unitsPerMm = 72.0 / kMmPerInch;
    } else {
        pageH = paper ? width * options.paperHeightMm / options.paperWidthMm : width * wy / wx;
        if (pageH > maxSide) {
            pageW = std::max(1.0, width * maxSide / pageH);
            pageH = maxSide;
        }
        if (raster) {
            pageW = std::max(1.0, std::round(pageW));
            pageH = std::max(1.0, std::round(pageH));
        } else {
            pageH = std::max(1.0, pageH);
        }
        setup.unitsPerMm =
            paper ? pageW / options.paperWidthMm : (raster ? 96.0 / kMmPerInch : 72.0 / kMmPerInch);
    }
    if (raster && pageW * pageH > kMaxImagePixels) {
        error = L"the picture would have " + std::to_wstring(static_cast<long long>(pageW)) +
                L" x " + std::to_wstring(static_cast<long long>(pageH)) +
                L" pixels; give a smaller width";
        return false;
    }
    setup.format = options.format;
    setup.blackBackground = options.blackBackground;
    setup.view = AcGiRenderView(wmin, wmax, pageW, pageH);
    if (!setup.view.isValid()) {
        error = L"the view is too large or too small to draw";
        return false;
    }
    return true;
}
