// Meshes and shells: their faces filled when the fill type says so, else their edges drawn,
// each with its own colour and visibility where the caller gives them.
#include "cairoimpl.h"

#include <cstdint>

using namespace qorrender;

namespace {

// Ceiling on the vertices of one mesh: more cannot come from a real array.
constexpr std::uint64_t kMaxMeshVertices = 1ull << 28;

bool visible(const Adesk::UInt8* flags, std::uint64_t i) {
    return !flags || flags[i] != kAcGiInvisible;
}

// The colour of an edge or face from its data, when the data has one.
bool itemColor(const short* colors, const AcCmEntityColor* trueColors, std::uint64_t i,
               AcCmEntityColor& color) {
    if (trueColors) {
        color = trueColors[i];
        return true;
    }
    if (colors) {
        color.setColorIndex(static_cast<Adesk::UInt16>(colors[i]));
        return true;
    }
    return false;
}

Pen edgePen(const AcGiRenderer::Impl& d, const Pen& base, const AcGiEdgeData* e, std::uint64_t i) {
    Pen p = base;
    AcCmEntityColor c;
    if (e && itemColor(e->colors(), e->trueColors(), i, c)) d.recolor(p, c);
    return p;
}

Pen facePen(const AcGiRenderer::Impl& d, const Pen& base, const AcGiFaceData* f, std::uint64_t i) {
    Pen p = base;
    AcCmEntityColor c;
    if (f && itemColor(f->colors(), f->trueColors(), i, c)) d.recolor(p, c);
    return p;
}

bool hasEdgeDetail(const AcGiEdgeData* e) {
    return e && (e->colors() || e->trueColors() || e->visibility());
}

} // namespace

Adesk::Boolean AcGiRenderGeometry::mesh(Adesk::UInt32 rows, Adesk::UInt32 columns,
                                        const AcGePoint3d* pVertexList,
                                        const AcGiEdgeData* pEdgeData,
                                        const AcGiFaceData* pFaceData, const AcGiVertexData*,
                                        bool) const {
    AcGiRenderer::Impl& d = *mOwner->mImpl;
    const std::uint64_t r = rows, c = columns, vertices = r * c;
    if (!pVertexList || r == 0 || c == 0 || vertices < 2 || vertices > kMaxMeshVertices)
        return d.reject();
    for (std::uint64_t i = 0; i < vertices; ++i)
        if (!finite(pVertexList[i])) return d.reject();
    Pen base;
    if (!d.pen(base)) return Adesk::kFalse;
    Points pts;
    pts.reserve(vertices);
    for (std::uint64_t i = 0; i < vertices; ++i)
        pts.push_back(d.dev(pVertexList[i]));
    auto at = [&](std::uint64_t row, std::uint64_t col) { return pts[row * c + col]; };

    if (d.traits.t.fillType == kAcGiFillAlways && r > 1 && c > 1) {
        for (std::uint64_t i = 0; i + 1 < r; ++i)
            for (std::uint64_t j = 0; j + 1 < c; ++j) {
                const std::uint64_t face = i * (c - 1) + j;
                if (pFaceData && !visible(pFaceData->visibility(), face)) continue;
                d.fill({{at(i, j), at(i, j + 1), at(i + 1, j + 1), at(i + 1, j)}},
                       facePen(d, base, pFaceData, face));
            }
        return Adesk::kFalse;
    }
    if (!hasEdgeDetail(pEdgeData)) {
        // Whole rows and columns, so that their corners join.
        for (std::uint64_t i = 0; i < r && c > 1; ++i)
            d.stroke(Points(pts.begin() + i * c, pts.begin() + (i + 1) * c), false, base);
        for (std::uint64_t j = 0; j < c && r > 1; ++j) {
            Points column;
            for (std::uint64_t i = 0; i < r; ++i)
                column.push_back(at(i, j));
            d.stroke(column, false, base);
        }
        return Adesk::kFalse;
    }
    // Edges run along the rows, then along the columns.
    std::uint64_t edge = 0;
    for (std::uint64_t i = 0; i < r; ++i)
        for (std::uint64_t j = 0; j + 1 < c; ++j, ++edge)
            if (visible(pEdgeData->visibility(), edge))
                d.stroke({at(i, j), at(i, j + 1)}, false, edgePen(d, base, pEdgeData, edge));
    for (std::uint64_t i = 0; i + 1 < r; ++i)
        for (std::uint64_t j = 0; j < c; ++j, ++edge)
            if (visible(pEdgeData->visibility(), edge))
                d.stroke({at(i, j), at(i + 1, j)}, false, edgePen(d, base, pEdgeData, edge));
    return Adesk::kFalse;
}

Adesk::Boolean AcGiRenderGeometry::shell(Adesk::UInt32 nbVertex, const AcGePoint3d* pVertexList,
                                         Adesk::UInt32 faceListSize, const Adesk::Int32* pFaceList,
                                         const AcGiEdgeData* pEdgeData,
                                         const AcGiFaceData* pFaceData, const AcGiVertexData*,
                                         const resbuf*, bool) const {
    AcGiRenderer::Impl& d = *mOwner->mImpl;
    if (nbVertex == 0 || !pVertexList || faceListSize == 0 || !pFaceList) return d.reject();
    // Every loop must fit in the list and name existing vertices; a hole needs a face before it.
    bool anyFace = false;
    for (std::uint64_t i = 0; i < faceListSize;) {
        const std::int64_t count = pFaceList[i];
        const std::uint64_t n = static_cast<std::uint64_t>(count < 0 ? -count : count);
        if (n == 0 || n > faceListSize - i - 1) return d.reject();
        if (count < 0 && !anyFace) return d.reject();
        for (std::uint64_t k = 1; k <= n; ++k) {
            const Adesk::Int32 index = pFaceList[i + k];
            if (index < 0 || static_cast<std::uint64_t>(index) >= nbVertex) return d.reject();
        }
        anyFace = anyFace || count > 0;
        i += n + 1;
    }
    for (Adesk::UInt32 i = 0; i < nbVertex; ++i)
        if (!finite(pVertexList[i])) return d.reject();
    Pen base;
    if (!d.pen(base)) return Adesk::kFalse;
    Points pts;
    pts.reserve(nbVertex);
    for (Adesk::UInt32 i = 0; i < nbVertex; ++i)
        pts.push_back(d.dev(pVertexList[i]));

    const bool filled = d.traits.t.fillType == kAcGiFillAlways;
    const bool edgeDetail = hasEdgeDetail(pEdgeData);
    std::vector<Points> face; // the current face and its holes
    std::uint64_t faceIndex = 0, edge = 0;
    auto flushFace = [&] {
        if (!face.empty() && (!pFaceData || visible(pFaceData->visibility(), faceIndex - 1)))
            d.fill(face, facePen(d, base, pFaceData, faceIndex - 1));
        face.clear();
    };
    for (std::uint64_t i = 0; i < faceListSize;) {
        const std::int64_t count = pFaceList[i];
        const std::uint64_t n = static_cast<std::uint64_t>(count < 0 ? -count : count);
        Points loop;
        for (std::uint64_t k = 1; k <= n; ++k)
            loop.push_back(pts[pFaceList[i + k]]);
        i += n + 1;
        if (filled) {
            if (count > 0) {
                flushFace();
                ++faceIndex;
            }
            face.push_back(std::move(loop));
            continue;
        }
        if (!edgeDetail) {
            d.stroke(loop, true, base);
            edge += n;
            continue;
        }
        for (std::uint64_t k = 0; k < n; ++k, ++edge)
            if (visible(pEdgeData->visibility(), edge))
                d.stroke({loop[k], loop[(k + 1) % n]}, false, edgePen(d, base, pEdgeData, edge));
    }
    if (filled) flushFace();
    return Adesk::kFalse;
}
