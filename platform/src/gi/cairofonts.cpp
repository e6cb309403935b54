// Face lookup through fontconfig, glyph lookup through FreeType, faces for cairo.
#include "cairofonts.h"

#include "winstr.h"

#include <cairo-ft.h>
#include <fontconfig/fontconfig.h>
#include <ft2build.h>
#include FT_FREETYPE_H

#include <cwctype>
#include <map>
#include <memory>
#include <mutex>
#include <unordered_map>

namespace qorrender {

namespace {

// The house face: a CJK face whose Latin letters are half a character wide, as the metric
// has them; then any face that covers Chinese.
constexpr const char* kHouseFamily = "WenQuanYi Micro Hei Mono";
constexpr FcChar32 kProbeHan = 0x4E00;

struct Face {
    cairo_font_face_t* face = nullptr;
    cairo_scaled_font_t* unit = nullptr; // one em to one unit, for glyph lookups
    std::unordered_map<wchar_t, Glyph> glyphs;
};

std::wstring folded(const std::wstring& s) {
    std::wstring out = s;
    for (wchar_t& c : out)
        c = static_cast<wchar_t>(std::towlower(static_cast<wint_t>(c)));
    return out;
}

bool hasFamily(FcPattern* p, const std::wstring& family) {
    FcChar8* name = nullptr;
    for (int i = 0; FcPatternGetString(p, FC_FAMILY, i, &name) == FcResultMatch; ++i)
        if (folded(qorFromUtf8(reinterpret_cast<const char*>(name))) == folded(family)) return true;
    return false;
}

bool coversHan(FcPattern* p) {
    FcCharSet* cs = nullptr;
    return FcPatternGetCharSet(p, FC_CHARSET, 0, &cs) == FcResultMatch && cs &&
           FcCharSetHasChar(cs, kProbeHan);
}

// The best installed match for a pattern, owned by the caller; null when fontconfig has none.
FcPattern* bestMatch(FcPattern* pattern) {
    FcConfigSubstitute(nullptr, pattern, FcMatchPattern);
    FcDefaultSubstitute(pattern);
    FcResult result = FcResultNoMatch;
    FcPattern* match = FcFontMatch(nullptr, pattern, &result);
    FcPatternDestroy(pattern);
    if (match && result != FcResultMatch) {
        FcPatternDestroy(match);
        return nullptr;
    }
    return match;
}

FcPattern* familyPattern(const std::string& family) {
    FcPattern* p = FcPatternCreate();
    FcPatternAddString(p, FC_FAMILY, reinterpret_cast<const FcChar8*>(family.c_str()));
    return p;
}

FcPattern* houseMatch() {
    if (FcPattern* m = bestMatch(familyPattern(kHouseFamily))) {
        if (coversHan(m)) return m;
        FcPatternDestroy(m);
    }
    FcPattern* p = FcPatternCreate();
    FcLangSet* langs = FcLangSetCreate();
    FcLangSetAdd(langs, reinterpret_cast<const FcChar8*>("zh-cn"));
    FcPatternAddLangSet(p, FC_LANG, langs);
    FcLangSetDestroy(langs);
    return bestMatch(p); // may lack Chinese: its characters then show as empty boxes
}

class FontBook {
public:
    Glyph glyph(const std::wstring& typeface, wchar_t c) {
        std::lock_guard lock(mMutex);
        Face* chosen = faceFor(typeface);
        Glyph g = lookUp(chosen, c);
        if (!g.face && chosen != house()) g = lookUp(house(), c);
        return g;
    }

private:
    Face* house() {
        if (!mHouseLoaded) {
            mHouseLoaded = true;
            mHouse = load(houseMatch());
        }
        return mHouse;
    }

    Face* faceFor(const std::wstring& typeface) {
        if (typeface.empty()) return house();
        auto it = mByName.find(typeface);
        if (it != mByName.end()) return it->second;
        Face* face = house();
        if (FcPattern* m = bestMatch(familyPattern(qorToUtf8(typeface)))) {
            if (hasFamily(m, typeface))
                face = load(m);
            else
                FcPatternDestroy(m);
        }
        mByName.emplace(typeface, face);
        return face;
    }

    // Takes the pattern; one face per font file.
    Face* load(FcPattern* match) {
        if (!match) return nullptr;
        FcChar8* file = nullptr;
        int index = 0;
        FcPatternGetString(match, FC_FILE, 0, &file);
        FcPatternGetInteger(match, FC_INDEX, 0, &index);
        const std::string key = (file ? reinterpret_cast<const char*>(file) : "") +
                                std::string("#") + std::to_string(index);
        auto it = mByFile.find(key);
        if (it != mByFile.end()) {
            FcPatternDestroy(match);
            return it->second.get();
        }
        auto face = std::make_unique<Face>();
        face->face = cairo_ft_font_face_create_for_pattern(match);
        FcPatternDestroy(match);
        cairo_matrix_t identity;
        cairo_matrix_init_identity(&identity);
        face->unit =
            cairo_scaled_font_create(face->face, &identity, &identity, drawingFontOptions());
        if (cairo_scaled_font_status(face->unit) != CAIRO_STATUS_SUCCESS) {
            cairo_scaled_font_destroy(face->unit);
            cairo_font_face_destroy(face->face);
            return nullptr;
        }
        return mByFile.emplace(key, std::move(face)).first->second.get();
    }

    static Glyph lookUp(Face* face, wchar_t c) {
        if (!face) return {};
        auto it = face->glyphs.find(c);
        if (it != face->glyphs.end()) return it->second;
        Glyph g;
        if (FT_Face ft = cairo_ft_scaled_font_lock_face(face->unit)) {
            const FT_UInt index = FT_Get_Char_Index(ft, static_cast<FT_ULong>(c));
            if (index != 0 && FT_Load_Glyph(ft, index, FT_LOAD_NO_SCALE) == 0 &&
                ft->units_per_EM > 0) {
                g.face = face->face;
                g.index = index;
                g.advance = static_cast<double>(ft->glyph->advance.x) / ft->units_per_EM;
            }
            cairo_ft_scaled_font_unlock_face(face->unit);
        }
        face->glyphs.emplace(c, g);
        return g;
    }

    std::mutex mMutex;
    bool mHouseLoaded = false;
    Face* mHouse = nullptr;
    std::map<std::wstring, Face*> mByName;
    std::map<std::string, std::unique_ptr<Face>> mByFile;
};

FontBook& book() {
    // Never destroyed: cairo may release its last reference to a face after static
    // destruction has begun.
    static FontBook* b = new FontBook();
    return *b;
}

} // namespace

Glyph findGlyph(const std::wstring& typeface, wchar_t c) {
    return book().glyph(typeface, c);
}

const cairo_font_options_t* drawingFontOptions() {
    static cairo_font_options_t* options = [] {
        cairo_font_options_t* o = cairo_font_options_create();
        cairo_font_options_set_hint_style(o, CAIRO_HINT_STYLE_NONE);
        cairo_font_options_set_hint_metrics(o, CAIRO_HINT_METRICS_OFF);
        return o;
    }();
    return options;
}

} // namespace qorrender
