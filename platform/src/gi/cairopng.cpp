// Pictures in memory, and PNG files read back into them.
#include "cairocanvas.h"
#include "girender.h"

#include "winstr.h"

#include <cairo.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

void AcGiRenderImage::reset(int width, int height, std::uint32_t fill) {
    mWidth = width > 0 && height > 0 ? width : 0;
    mHeight = mWidth > 0 ? height : 0;
    mPixels.assign(static_cast<size_t>(mWidth) * static_cast<size_t>(mHeight), fill);
}

namespace {

cairo_status_t readFrom(void* closure, unsigned char* data, unsigned int length) {
    return std::fread(data, 1, length, static_cast<std::FILE*>(closure)) == length
               ? CAIRO_STATUS_SUCCESS
               : CAIRO_STATUS_READ_ERROR;
}

// cairo keeps colours multiplied by their alpha; the image keeps them plain.
std::uint32_t unpremultiplied(std::uint32_t p) {
    const std::uint32_t a = p >> 24;
    if (a == 0xFF || a == 0) return a == 0 ? 0 : p;
    auto channel = [&](int shift) {
        const std::uint32_t c = (p >> shift) & 0xFF;
        return std::min<std::uint32_t>(255, (c * 255 + a / 2) / a) << shift;
    };
    return (a << 24) | channel(16) | channel(8) | channel(0);
}

} // namespace

bool qorrender::copyPixels(cairo_surface_t* surface, AcGiRenderImage& image) {
    if (cairo_surface_get_type(surface) != CAIRO_SURFACE_TYPE_IMAGE) return false;
    const cairo_format_t format = cairo_image_surface_get_format(surface);
    if (format != CAIRO_FORMAT_ARGB32 && format != CAIRO_FORMAT_RGB24) return false;
    const int w = cairo_image_surface_get_width(surface);
    const int h = cairo_image_surface_get_height(surface);
    const int stride = cairo_image_surface_get_stride(surface);
    const unsigned char* data = cairo_image_surface_get_data(surface);
    image.reset(w, h);
    for (int y = 0; y < h; ++y) {
        const auto* src =
            reinterpret_cast<const std::uint32_t*>(data + static_cast<size_t>(y) * stride);
        std::uint32_t* dst = image.row(y);
        // RGB24 leaves the top byte undefined.
        for (int x = 0; x < w; ++x)
            dst[x] =
                format == CAIRO_FORMAT_RGB24 ? (src[x] | 0xFF000000u) : unpremultiplied(src[x]);
    }
    return true;
}

bool acgiReadPng(const ACHAR* path, AcGiRenderImage& image, std::wstring& error) {
    const std::wstring name = path ? path : L"";
    std::FILE* file = std::fopen(qorToUtf8(name).c_str(), "rb");
    if (!file) {
        error = L"cannot read " + name + L": " + qorFromUtf8(std::strerror(errno));
        return false;
    }
    cairo_surface_t* surface = cairo_image_surface_create_from_png_stream(readFrom, file);
    std::fclose(file);
    const cairo_format_t format = cairo_image_surface_get_format(surface);
    if (cairo_surface_status(surface) != CAIRO_STATUS_SUCCESS ||
        (format != CAIRO_FORMAT_ARGB32 && format != CAIRO_FORMAT_RGB24)) {
        error = name + L" is not a PNG picture";
        cairo_surface_destroy(surface);
        return false;
    }
    qorrender::copyPixels(surface, image);
    cairo_surface_destroy(surface);
    return true;
}
