// Offsetting a lightweight polyline in its own plane.
#include "db/ents/offset2d.h"
#include "dbents.h"

Acad::ErrorStatus AcDbPolyline::getOffsetCurves(double offsetDist,
                                                AcDbVoidPtrArray& offsetCurves) const {
    assertReadEnabled();
    ents_detail::BulgePath path;
    path.closed = mClosed;
    for (const Vertex& v : mVerts)
        path.verts.push_back({v.pt, v.bulge});
    const std::optional<ents_detail::BulgePath> result = ents_detail::offsetPath(path, offsetDist);
    if (!result) return Acad::eInvalidInput;

    auto* pl = new AcDbPolyline;
    pl->setPropertiesFrom(this);
    pl->mNormal = mNormal;
    pl->mElevation = mElevation;
    pl->mThickness = mThickness;
    pl->mConstantWidth = mConstantWidth;
    pl->mClosed = result->closed;
    pl->mPlinegen = mPlinegen;
    for (const ents_detail::BulgeVertex& v : result->verts)
        pl->mVerts.push_back({v.pt, v.bulge, mConstantWidth, mConstantWidth});
    offsetCurves.append(pl);
    return Acad::eOk;
}
