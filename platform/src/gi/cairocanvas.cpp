// Surfaces and files of the renderer.
#include "cairocanvas.h"

#include "winstr.h"

#include <cairo-pdf.h>
#include <cairo-svg.h>

#include <cerrno>
#include <cmath>
#include <cstring>

namespace qorrender {

Canvas::~Canvas() {
    if (!mFinished) discard();
}

cairo_status_t Canvas::write(void* closure, const unsigned char* data, unsigned int length) {
    auto* self = static_cast<Canvas*>(closure);
    if (!self->mFile || std::fwrite(data, 1, length, self->mFile) != length) {
        self->mWriteFailed = true;
        return CAIRO_STATUS_WRITE_ERROR;
    }
    return CAIRO_STATUS_SUCCESS;
}

bool Canvas::open(const AcGiRenderSetup& setup, std::wstring& error) {
    mFormat = setup.format;
    const AcGiRenderView& view = setup.view;
    if (!view.isValid()) {
        error = L"no page to draw on";
        return false;
    }
    if (mFormat != AcGiRenderFormat::kImage) {
        mPath = qorToUtf8(setup.path);
        // Opened now, so that a path that cannot be written fails before any drawing.
        mFile = std::fopen(mPath.c_str(), "wb");
        if (!mFile) {
            error = L"cannot write " + setup.path + L": " + qorFromUtf8(std::strerror(errno));
            return false;
        }
    }
    const double w = view.pageWidth(), h = view.pageHeight();
    switch (mFormat) {
    case AcGiRenderFormat::kImage:
    case AcGiRenderFormat::kPng:
        mSurface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, static_cast<int>(std::lround(w)),
                                              static_cast<int>(std::lround(h)));
        break;
    case AcGiRenderFormat::kSvg:
        mSurface = cairo_svg_surface_create_for_stream(write, this, w, h);
        break;
    case AcGiRenderFormat::kPdf:
        mSurface = cairo_pdf_surface_create_for_stream(write, this, w, h);
        break;
    }
    mCr = cairo_create(mSurface);
    if (cairo_status(mCr) != CAIRO_STATUS_SUCCESS) {
        error = L"cannot make the page: " + qorFromUtf8(cairo_status_to_string(cairo_status(mCr)));
        discard();
        return false;
    }
    const double bg = setup.blackBackground ? 0.0 : 1.0;
    cairo_set_source_rgb(mCr, bg, bg, bg);
    cairo_paint(mCr);
    cairo_set_line_cap(mCr, CAIRO_LINE_CAP_ROUND);
    cairo_set_line_join(mCr, CAIRO_LINE_JOIN_ROUND);
    return true;
}

bool Canvas::snapshot(AcGiRenderImage& image) const {
    if (!mSurface) return false;
    cairo_surface_flush(mSurface);
    return copyPixels(mSurface, image);
}

bool Canvas::finish(std::wstring& error) {
    if (mFinished) return true;
    mFinished = true;
    cairo_status_t status = cairo_status(mCr);
    if (status == CAIRO_STATUS_SUCCESS && mFormat == AcGiRenderFormat::kPng)
        status = cairo_surface_write_to_png_stream(mSurface, write, this);
    cairo_destroy(mCr);
    mCr = nullptr;
    cairo_surface_finish(mSurface);
    if (status == CAIRO_STATUS_SUCCESS) status = cairo_surface_status(mSurface);
    cairo_surface_destroy(mSurface);
    mSurface = nullptr;
    bool ok = status == CAIRO_STATUS_SUCCESS && !mWriteFailed;
    if (mFile) {
        if (std::fclose(mFile) != 0) ok = false;
        mFile = nullptr;
    }
    if (!ok) {
        error = mWriteFailed || status == CAIRO_STATUS_WRITE_ERROR
                    ? L"cannot write " + qorFromUtf8(mPath)
                    : L"drawing failed: " + qorFromUtf8(cairo_status_to_string(status));
        if (!mPath.empty()) std::remove(mPath.c_str());
    }
    return ok;
}

void Canvas::discard() {
    // The file goes first: a document surface writes its end on destruction, and with no file
    // that write fails quietly.
    if (mFile) {
        std::fclose(mFile);
        mFile = nullptr;
        std::remove(mPath.c_str());
    }
    if (mCr) cairo_destroy(mCr);
    mCr = nullptr;
    if (mSurface) cairo_surface_destroy(mSurface);
    mSurface = nullptr;
}

} // namespace qorrender
