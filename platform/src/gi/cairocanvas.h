// The page a renderer draws on: a cairo surface for an image in memory, a PNG file, or an SVG
// or PDF document streamed to its file.
#pragma once

#include "girender.h"

#include <cairo.h>

#include <cstdio>
#include <string>

namespace qorrender {

// Copies an image surface (RGB24 or ARGB32) into the picture, alpha undone; false for any other
// surface.
bool copyPixels(cairo_surface_t* surface, AcGiRenderImage& image);

class Canvas {
public:
    Canvas() = default;
    ~Canvas();
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;

    // Creates the surface (and the file) and paints the background. False with the reason.
    bool open(const AcGiRenderSetup& setup, std::wstring& error);
    cairo_t* cr() const { return mCr; }
    // The picture so far, for raster pages.
    bool snapshot(AcGiRenderImage& image) const;
    // Writes the PNG or completes the document and closes the file; a failed file is removed.
    bool finish(std::wstring& error);

private:
    static cairo_status_t write(void* closure, const unsigned char* data, unsigned int length);
    void discard();

    AcGiRenderFormat mFormat = AcGiRenderFormat::kImage;
    cairo_surface_t* mSurface = nullptr;
    cairo_t* mCr = nullptr;
    std::FILE* mFile = nullptr;
    std::string mPath;
    bool mWriteFailed = false;
    bool mFinished = false;
};

} // namespace qorrender
