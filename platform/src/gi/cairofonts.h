// The faces texts are drawn with. Every style maps onto an installed face through fontconfig:
// a typeface that is installed under its own name is used as it is; anything else (shape fonts,
// missing faces) falls to the house face, the installed CJK face. A character that the chosen
// face lacks is taken from the house face.
#pragma once

#include <cairo.h>

#include <string>

namespace qorrender {

struct Glyph {
    cairo_font_face_t* face = nullptr; // null: no installed face has the character
    unsigned long index = 0;
    double advance = 0.0; // the face's own advance, in ems
};

// Faces stay loaded for the life of the process: cairo's caches may hold on to a face after
// the drawing that asked for it is gone.
Glyph findGlyph(const std::wstring& typeface, wchar_t c);

// Font options for drawing: outlines unhinted and metrics unrounded, so that glyphs sit exactly
// where the text metric puts them at any size.
const cairo_font_options_t* drawingFontOptions();

} // namespace qorrender
