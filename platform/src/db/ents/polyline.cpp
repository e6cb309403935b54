// The lightweight polyline: vertex i is parameter i, and each segment's parameter runs
// linearly along its length (along the angle on arc segments).
#include "cmdline.h"
#include "db/ents/entsimpl.h"
#include "gecurves.h"

#include <algorithm>
#include <cmath>

ACRX_CONS_DEFINE_MEMBERS(AcDbPolyline, AcDbCurve, L"LWPOLYLINE")

using namespace ents_detail;

namespace {

double widthIn(double w) {
    return std::isfinite(w) && w > 0.0 ? w : 0.0;
}

bool finite2(const AcGePoint2d& p) {
    return std::isfinite(p.x) && std::isfinite(p.y);
}

Frame planeFrame(const AcGeVector3d& normal, double elevation) {
    const AcGeVector3d n = unitNormal(normal);
    return Frame::ocs(n, AcGePoint3d::kOrigin + n * elevation);
}

} // namespace

void AcDbPolylineImpl::geom(const AcDbPolyline& e, CurveGeom& g) {
    g.frame = planeFrame(e.mNormal, e.mElevation);
    const auto& v = e.mVerts;
    const size_t n = v.size();
    if (n == 0) return;
    if (n == 1) {
        g.add(Piece::line(v[0].pt, v[0].pt), 0.0, 0.0);
        return;
    }
    g.closed = e.mClosed;
    const size_t segs = e.mClosed ? n : n - 1;
    for (size_t i = 0; i < segs; ++i)
        g.add(Piece::bulged(v[i].pt, v[(i + 1) % n].pt, v[i].bulge), static_cast<double>(i), 1.0);
}

AcDbCurve* AcDbPolylineImpl::sub(const AcDbPolyline& e, double from, double to) {
    CurveGeom g;
    geom(e, g);
    if (g.empty() || !(to >= from)) return nullptr;
    const auto& v = e.mVerts;
    const size_t segs = g.pieces.size();
    auto* out = new AcDbPolyline();
    out->setPropertiesFrom(&e);
    out->mNormal = e.mNormal;
    out->mElevation = e.mElevation;
    out->mThickness = e.mThickness;
    out->mPlinegen = e.mPlinegen;
    const double eps = 1e-12 * std::max(1.0, std::fabs(to));
    AcGePoint2d last = g.pieces.front().a;
    for (auto k = static_cast<long long>(std::floor(from)); static_cast<double>(k) < to - eps;
         ++k) {
        const double a = std::max(from, static_cast<double>(k)),
                     b = std::min(to, static_cast<double>(k + 1));
        if (b - a <= eps) continue;
        const size_t s = static_cast<size_t>(((k % static_cast<long long>(segs)) + segs) % segs);
        const Piece& pc = g.pieces[s];
        const double ua = a - static_cast<double>(k), ub = b - static_cast<double>(k);
        const double sw = v[s].startWidth, ew = v[s].endWidth;
        AcDbPolyline::Vertex vx;
        vx.pt = pc.at(ua);
        vx.bulge = pc.arc ? bulgeOf(pc.sweep * (ub - ua)) : 0.0;
        vx.startWidth = sw + (ew - sw) * ua;
        vx.endWidth = sw + (ew - sw) * ub;
        out->mVerts.push_back(vx);
        last = pc.at(ub);
    }
    AcDbPolyline::Vertex end;
    end.pt = last;
    out->mVerts.push_back(end);
    return out;
}

AcDbPolyline::AcDbPolyline(unsigned int numVerts) {
    mVerts.reserve(std::min(numVerts, 1u << 16));
}

// ---------------------------------------------------------------- vertices

unsigned int AcDbPolyline::numVerts() const {
    assertReadEnabled();
    return static_cast<unsigned int>(mVerts.size());
}

unsigned int AcDbPolyline::numSegments() const {
    assertReadEnabled();
    const auto n = static_cast<unsigned int>(mVerts.size());
    return n < 2 ? 0 : (mClosed ? n : n - 1);
}

Acad::ErrorStatus AcDbPolyline::addVertexAt(unsigned int index, const AcGePoint2d& pt, double bulge,
                                            double startWidth, double endWidth) {
    if (!finite2(pt) || !std::isfinite(bulge)) return Acad::eInvalidInput;
    assertWriteEnabled();
    Vertex v;
    v.pt = pt;
    v.bulge = bulge;
    v.startWidth = widthIn(startWidth);
    v.endWidth = widthIn(endWidth);
    const size_t at = std::min<size_t>(index, mVerts.size());
    mVerts.insert(mVerts.begin() + static_cast<std::ptrdiff_t>(at), v);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::removeVertexAt(unsigned int index) {
    if (index >= mVerts.size()) return Acad::eInvalidIndex;
    assertWriteEnabled();
    mVerts.erase(mVerts.begin() + static_cast<std::ptrdiff_t>(index));
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getPointAt(unsigned int index, AcGePoint2d& pt) const {
    assertReadEnabled();
    if (index >= mVerts.size()) return Acad::eInvalidIndex;
    pt = mVerts[index].pt;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getPointAt(unsigned int index, AcGePoint3d& pt) const {
    assertReadEnabled();
    if (index >= mVerts.size()) return Acad::eInvalidIndex;
    pt = planeFrame(mNormal, mElevation).toWorld(mVerts[index].pt);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::setPointAt(unsigned int index, const AcGePoint2d& pt) {
    if (index >= mVerts.size()) return Acad::eInvalidIndex;
    if (!finite2(pt)) return Acad::eInvalidInput;
    assertWriteEnabled();
    mVerts[index].pt = pt;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getBulgeAt(unsigned int index, double& bulge) const {
    assertReadEnabled();
    if (index >= mVerts.size()) return Acad::eInvalidIndex;
    bulge = mVerts[index].bulge;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::setBulgeAt(unsigned int index, double bulge) {
    if (index >= mVerts.size()) return Acad::eInvalidIndex;
    if (!std::isfinite(bulge)) return Acad::eInvalidInput;
    assertWriteEnabled();
    mVerts[index].bulge = bulge;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getWidthsAt(unsigned int index, double& startWidth,
                                            double& endWidth) const {
    assertReadEnabled();
    if (index >= mVerts.size()) return Acad::eInvalidIndex;
    startWidth = mVerts[index].startWidth;
    endWidth = mVerts[index].endWidth;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::setWidthsAt(unsigned int index, double startWidth,
                                            double endWidth) {
    if (index >= mVerts.size()) return Acad::eInvalidIndex;
    assertWriteEnabled();
    mVerts[index].startWidth = widthIn(startWidth);
    mVerts[index].endWidth = widthIn(endWidth);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getStartWidthAt(unsigned int index, double& w) const {
    double e = 0.0;
    return getWidthsAt(index, w, e);
}

Acad::ErrorStatus AcDbPolyline::getEndWidthAt(unsigned int index, double& w) const {
    double s = 0.0;
    return getWidthsAt(index, s, w);
}

Acad::ErrorStatus AcDbPolyline::getConstantWidth(double& w) const {
    assertReadEnabled();
    if (mVerts.empty()) {
        w = mConstantWidth;
        return Acad::eOk;
    }
    const double w0 = mVerts.front().startWidth;
    for (const auto& v : mVerts)
        if (v.startWidth != w0 || v.endWidth != w0) return Acad::eNotApplicable;
    w = w0;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::setConstantWidth(double w) {
    if (!std::isfinite(w) || w < 0.0) return Acad::eInvalidInput;
    assertWriteEnabled();
    mConstantWidth = w;
    for (auto& v : mVerts)
        v.startWidth = v.endWidth = w;
    return Acad::eOk;
}

bool AcDbPolyline::hasWidth() const {
    assertReadEnabled();
    return std::any_of(mVerts.begin(), mVerts.end(),
                       [](const Vertex& v) { return v.startWidth != 0.0 || v.endWidth != 0.0; });
}

bool AcDbPolyline::hasBulges() const {
    assertReadEnabled();
    return std::any_of(mVerts.begin(), mVerts.end(),
                       [](const Vertex& v) { return v.bulge != 0.0; });
}

bool AcDbPolyline::isOnlyLines() const {
    return !hasBulges();
}

double AcDbPolyline::elevation() const {
    assertReadEnabled();
    return mElevation;
}

void AcDbPolyline::setElevation(double e) {
    if (!std::isfinite(e)) return;
    assertWriteEnabled();
    mElevation = e;
}

AcGeVector3d AcDbPolyline::normal() const {
    assertReadEnabled();
    return mNormal;
}

void AcDbPolyline::setNormal(const AcGeVector3d& n) {
    if (n.length() <= 1e-300 || !std::isfinite(n.length())) return;
    assertWriteEnabled();
    mNormal = unitNormal(n);
}

double AcDbPolyline::thickness() const {
    assertReadEnabled();
    return mThickness;
}

Acad::ErrorStatus AcDbPolyline::setThickness(double t) {
    if (!std::isfinite(t)) return Acad::eInvalidInput;
    assertWriteEnabled();
    mThickness = t;
    return Acad::eOk;
}

void AcDbPolyline::setClosed(bool closed) {
    assertWriteEnabled();
    mClosed = closed;
}

bool AcDbPolyline::isClosed() const {
    assertReadEnabled();
    return mClosed;
}

bool AcDbPolyline::hasPlinegen() const {
    assertReadEnabled();
    return mPlinegen;
}

void AcDbPolyline::setPlinegen(bool on) {
    assertWriteEnabled();
    mPlinegen = on;
}

void AcDbPolyline::reset(bool reuse, unsigned int numVerts) {
    assertWriteEnabled();
    if (!reuse)
        mVerts.clear();
    else if (numVerts < mVerts.size())
        mVerts.resize(numVerts);
}

// ---------------------------------------------------------------- segments

AcDbPolyline::SegType AcDbPolyline::segType(unsigned int index) const {
    assertReadEnabled();
    const size_t n = mVerts.size();
    if (n == 0) return kEmpty;
    if (n == 1) return index == 0 ? kPoint : kEmpty;
    if (index >= n) return kEmpty;
    // The last vertex of an open polyline starts no segment.
    if (!mClosed && index == n - 1) return kPoint;
    const Vertex& a = mVerts[index];
    const Vertex& b = mVerts[(index + 1) % n];
    if (a.pt.isEqualTo(b.pt)) return kCoincident;
    return a.bulge != 0.0 ? kArc : kLine;
}

Acad::ErrorStatus AcDbPolyline::getLineSegAt(unsigned int index, AcGeLineSeg2d& seg) const {
    assertReadEnabled();
    if (index >= mVerts.size() || index >= numSegments()) return Acad::eInvalidIndex;
    const SegType t = segType(index);
    if (t != kLine && t != kCoincident) return Acad::eNotApplicable;
    seg.set(mVerts[index].pt, mVerts[(index + 1) % mVerts.size()].pt);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getLineSegAt(unsigned int index, AcGeLineSeg3d& seg) const {
    AcGeLineSeg2d s2;
    if (Acad::ErrorStatus es = getLineSegAt(index, s2); es != Acad::eOk) return es;
    const Frame f = planeFrame(mNormal, mElevation);
    seg.set(f.toWorld(mVerts[index].pt), f.toWorld(mVerts[(index + 1) % mVerts.size()].pt));
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getArcSegAt(unsigned int index, AcGeCircArc2d& arc) const {
    assertReadEnabled();
    if (index >= mVerts.size() || index >= numSegments()) return Acad::eInvalidIndex;
    if (segType(index) != kArc) return Acad::eNotApplicable;
    const Piece pc = Piece::bulged(mVerts[index].pt, mVerts[(index + 1) % mVerts.size()].pt,
                                   mVerts[index].bulge);
    // Angles from the x axis, increasing in the arc's sense of travel.
    const bool cw = pc.sweep < 0.0;
    const double start = cw ? normAngle(-pc.start) : normAngle(pc.start);
    arc.set(pc.c, pc.r, start, start + std::fabs(pc.sweep), AcGeVector2d(1, 0), cw);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getArcSegAt(unsigned int index, AcGeCircArc3d& arc) const {
    assertReadEnabled();
    if (index >= mVerts.size() || index >= numSegments()) return Acad::eInvalidIndex;
    if (segType(index) != kArc) return Acad::eNotApplicable;
    const Piece pc = Piece::bulged(mVerts[index].pt, mVerts[(index + 1) % mVerts.size()].pt,
                                   mVerts[index].bulge);
    const Frame f = planeFrame(mNormal, mElevation);
    // Counter-clockwise about the normal that makes the travel positive.
    const AcGeVector3d n = pc.sweep >= 0.0 ? f.z : -f.z;
    const AcGePoint3d c = f.toWorld(pc.c);
    const AcGeVector3d ref = f.toWorld(pc.a) - c;
    arc.set(c, n, unitNormal(ref), pc.r, 0.0, std::fabs(pc.sweep));
    return Acad::eOk;
}

bool AcDbPolyline::onSegAt(unsigned int index, const AcGePoint2d& pt, double& param) const {
    assertReadEnabled();
    CurveGeom g;
    AcDbPolylineImpl::geom(*this, g);
    if (index >= numSegments() || index >= g.pieces.size()) return false;
    const Piece& pc = g.pieces[index];
    const double u = pc.closestU(pt, false, false);
    if (pc.at(u).distanceTo(pt) > g.tolerance(1e-9)) return false;
    param = index + u;
    return true;
}

// ---------------------------------------------------------------- curve operations

Acad::ErrorStatus AcDbPolyline::extend(double newParam) {
    assertWriteEnabled();
    if (mClosed) return Acad::eNotApplicable;
    if (mVerts.size() < 2 || !std::isfinite(newParam)) return Acad::eInvalidInput;
    const size_t last = mVerts.size() - 2;
    const double end = static_cast<double>(mVerts.size() - 1);
    size_t seg = 0;
    double u = 0.0;
    if (newParam < 0.0)
        u = newParam;
    else if (newParam > end) {
        seg = last;
        u = newParam - static_cast<double>(last);
    } else
        return Acad::eInvalidInput;
    const Piece pc = Piece::bulged(mVerts[seg].pt, mVerts[seg + 1].pt, mVerts[seg].bulge);
    if (!pc.arc && pc.length() <= 0.0) return Acad::eInvalidInput;
    const double newSweep = pc.arc ? pc.sweep * (newParam < 0.0 ? 1.0 - u : u) : 0.0;
    if (std::fabs(newSweep) >= kTwoPi) return Acad::eInvalidInput;
    const AcGePoint2d p = pc.at(u);
    if (newParam < 0.0)
        mVerts[0].pt = p;
    else
        mVerts[seg + 1].pt = p;
    if (pc.arc) mVerts[seg].bulge = bulgeOf(newSweep);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getArea(double& area) const {
    assertReadEnabled();
    const size_t n = mVerts.size();
    double twice = 0.0, segments = 0.0;
    for (size_t i = 0; i < n; ++i) {
        const AcGePoint2d& a = mVerts[i].pt;
        const AcGePoint2d& b = mVerts[(i + 1) % n].pt;
        twice += a.x * b.y - b.x * a.y;
        // An open polyline counts as closed by a straight chord.
        if (n < 2 || (!mClosed && i == n - 1)) continue;
        const Piece pc = Piece::bulged(a, b, mVerts[i].bulge);
        if (pc.arc) segments += 0.5 * pc.r * pc.r * (pc.sweep - std::sin(pc.sweep));
    }
    area = std::fabs(0.5 * twice + segments);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::reverseCurve() {
    assertWriteEnabled();
    const size_t n = mVerts.size();
    if (n < 2) return Acad::eOk;
    std::vector<Vertex> r(n);
    for (size_t j = 0; j < n; ++j) {
        // Segment j of the reversed polyline is the old segment (n - 2 - j) mod n travelled
        // backwards.
        const Vertex& seg = mVerts[(2 * n - 2 - j) % n];
        r[j].pt = mVerts[n - 1 - j].pt;
        r[j].bulge = -seg.bulge;
        r[j].startWidth = seg.endWidth;
        r[j].endWidth = seg.startWidth;
    }
    if (!mClosed) {
        r[n - 1].bulge = 0.0;
        r[n - 1].startWidth = r[n - 1].endWidth = 0.0;
    }
    mVerts = std::move(r);
    return Acad::eOk;
}

// ---------------------------------------------------------------- filing

Acad::ErrorStatus AcDbPolyline::dwgOutFields(AcDbDwgFiler* filer) const {
    if (Acad::ErrorStatus es = AcDbCurve::dwgOutFields(filer); es != Acad::eOk) return es;
    filer->writeUInt32(static_cast<Adesk::UInt32>(mVerts.size()));
    for (const auto& v : mVerts) {
        filer->writePoint2d(v.pt);
        filer->writeDouble(v.bulge);
        filer->writeDouble(v.startWidth);
        filer->writeDouble(v.endWidth);
    }
    filer->writeDouble(mElevation);
    filer->writeVector3d(mNormal);
    filer->writeDouble(mThickness);
    filer->writeDouble(mConstantWidth);
    filer->writeBool(mClosed);
    filer->writeBool(mPlinegen);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbPolyline::dwgInFields(AcDbDwgFiler* filer) {
    if (Acad::ErrorStatus es = AcDbCurve::dwgInFields(filer); es != Acad::eOk) return es;
    mVerts.clear();
    Adesk::UInt32 n = 0;
    filer->readUInt32(&n);
    std::vector<Vertex> verts;
    // The count comes from the data: grow as vertices actually arrive.
    for (Adesk::UInt32 i = 0; i < n && filer->filerStatus() == Acad::eOk; ++i) {
        Vertex v;
        filer->readPoint2d(&v.pt);
        filer->readDouble(&v.bulge);
        filer->readDouble(&v.startWidth);
        filer->readDouble(&v.endWidth);
        if (filer->filerStatus() == Acad::eOk) verts.push_back(v);
    }
    double elevation = 0.0, thickness = 0.0, constantWidth = 0.0;
    AcGeVector3d normal;
    bool closed = false, plinegen = false;
    filer->readDouble(&elevation);
    filer->readVector3d(&normal);
    filer->readDouble(&thickness);
    filer->readDouble(&constantWidth);
    filer->readBool(&closed);
    filer->readBool(&plinegen);
    if (filer->filerStatus() != Acad::eOk) return filer->filerStatus();
    mVerts = std::move(verts);
    mElevation = elevation;
    mNormal = unitNormal(normal);
    mThickness = thickness;
    mConstantWidth = constantWidth;
    mClosed = closed;
    mPlinegen = plinegen;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::dxfOutFields(AcDbDxfFiler* filer) const {
    if (Acad::ErrorStatus es = AcDbCurve::dxfOutFields(filer); es != Acad::eOk) return es;
    filer->writeString(AcDb::kDxfSubclass, L"AcDbPolyline");
    filer->writeInt32(AcDb::kDxfInt32, static_cast<Adesk::Int32>(mVerts.size()));
    filer->writeInt16(AcDb::kDxfInt16,
                      static_cast<Adesk::Int16>((mClosed ? 1 : 0) | (mPlinegen ? 128 : 0)));
    double w = 0.0;
    if (getConstantWidth(w) == Acad::eOk) filer->writeDouble(AcDb::kDxfViewFrontClip, w);
    filer->writeDouble(AcDb::kDxfElevation, mElevation);
    filer->writeDouble(AcDb::kDxfThickness, mThickness);
    for (const auto& v : mVerts) {
        filer->writePoint2d(AcDb::kDxfXCoord, v.pt);
        filer->writeDouble(AcDb::kDxfReal, v.startWidth);
        filer->writeDouble(AcDb::kDxfTxtStyleXScale, v.endWidth);
        filer->writeDouble(AcDb::kDxfTxtStylePSize, v.bulge);
    }
    filer->writeVector3d(AcDb::kDxfNormalX, mNormal);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbPolyline::dxfInFields(AcDbDxfFiler* filer) {
    if (Acad::ErrorStatus es = AcDbCurve::dxfInFields(filer); es != Acad::eOk) return es;
    if (!filer->atSubclassData(L"AcDbPolyline")) return Acad::eBadDxfSequence;
    mVerts.clear();
    double constantWidth = 0.0;
    resbuf rb{};
    while (nextItem(filer, rb)) {
        switch (rb.restype) {
        case AcDb::kDxfInt32:
        case AcDb::kDxfVertexIdentifier:
            continue; // the count is implied by the vertices that follow
        case AcDb::kDxfInt16:
            mClosed = (rb.resval.rint & 1) != 0;
            mPlinegen = (rb.resval.rint & 128) != 0;
            continue;
        case AcDb::kDxfViewFrontClip:
            constantWidth = widthIn(rb.resval.rreal);
            mConstantWidth = constantWidth;
            for (auto& v : mVerts)
                v.startWidth = v.endWidth = constantWidth;
            continue;
        case AcDb::kDxfElevation:
            mElevation = rb.resval.rreal;
            continue;
        case AcDb::kDxfThickness:
            mThickness = rb.resval.rreal;
            continue;
        case AcDb::kDxfXCoord: {
            Vertex v;
            v.pt.set(rb.resval.rpoint[0], rb.resval.rpoint[1]);
            v.startWidth = v.endWidth = constantWidth;
            mVerts.push_back(v);
            continue;
        }
        case AcDb::kDxfReal:
            if (!mVerts.empty()) mVerts.back().startWidth = widthIn(rb.resval.rreal);
            continue;
        case AcDb::kDxfTxtStyleXScale:
            if (!mVerts.empty()) mVerts.back().endWidth = widthIn(rb.resval.rreal);
            continue;
        case AcDb::kDxfTxtStylePSize:
            if (!mVerts.empty() && std::isfinite(rb.resval.rreal))
                mVerts.back().bulge = rb.resval.rreal;
            continue;
        case AcDb::kDxfNormalX:
            mNormal = unitNormal(rbVector(rb));
            continue;
        default:
            filer->pushBackItem();
            break;
        }
        break;
    }
    return filer->filerStatus() == Acad::eEndOfFile ? Acad::eOk : filer->filerStatus();
}

// ---------------------------------------------------------------- listing and drawing

void AcDbPolyline::subList() const {
    AcDbCurve::subList();
    acutPrintf(L"\n%18s %s", mClosed ? L"Closed" : L"Open",
               mPlinegen ? L"(linetype generation on)" : L"");
    double w = 0.0;
    if (getConstantWidth(w) == Acad::eOk) listValue(L"Constant width", w);
    if (mElevation != 0.0) listValue(L"elevation", mElevation);
    if (mThickness != 0.0) listValue(L"thickness", mThickness);
    if (!unitNormal(mNormal).isEqualTo(AcGeVector3d(0, 0, 1)))
        listVector(L"Extrusion direction", mNormal);
    double area = 0.0;
    getArea(area);
    listValue(L"area", area);
    CurveGeom g;
    AcDbPolylineImpl::geom(*this, g);
    listValue(mClosed ? L"perimeter" : L"length", g.length());
    const Frame f = planeFrame(mNormal, mElevation);
    const bool varying = getConstantWidth(w) != Acad::eOk;
    for (const auto& v : mVerts) {
        listPoint(L"at point", f.toWorld(v.pt));
        if (v.bulge != 0.0) listValue(L"bulge", v.bulge);
        if (varying) {
            listValue(L"starting width", v.startWidth);
            listValue(L"ending width", v.endWidth);
        }
    }
}

namespace {

// The band of a wide segment as a polygon in plane coordinates.
void bandOutline(const Piece& pc, double w0, double w1, double maxStep,
                 std::vector<AcGePoint2d>& out) {
    out.clear();
    if (!pc.arc) {
        const AcGeVector2d d = pc.b - pc.a;
        const double len = d.length();
        if (!(len > 0.0)) return;
        const AcGeVector2d side = (d / len).perpVector();
        out = {pc.a + side * (w0 / 2), pc.b + side * (w1 / 2), pc.b - side * (w1 / 2),
               pc.a - side * (w0 / 2)};
        return;
    }
    const int steps =
        std::clamp(static_cast<int>(std::ceil(std::fabs(pc.sweep) / maxStep)), 2, 512);
    for (int side = 0; side < 2; ++side)
        for (int k = 0; k <= steps; ++k) {
            const double u =
                side == 0 ? static_cast<double>(k) / steps : 1.0 - static_cast<double>(k) / steps;
            const double w = w0 + (w1 - w0) * u;
            const double t = pc.start + u * pc.sweep;
            const double r = pc.r + (side == 0 ? w / 2 : -w / 2);
            out.emplace_back(pc.c.x + r * std::cos(t), pc.c.y + r * std::sin(t));
        }
}

} // namespace

Adesk::Boolean AcDbPolyline::subWorldDraw(AcGiWorldDraw* wd) {
    assertReadEnabled();
    if (!wd || mVerts.empty()) return Adesk::kTrue;
    CurveGeom g;
    AcDbPolylineImpl::geom(*this, g);
    const Frame& f = g.frame;
    AcGiWorldGeometry& geo = wd->geometry();
    if (mThickness != 0.0) wd->subEntityTraits().setThickness(mThickness);
    if (mVerts.size() == 1) {
        const AcGePoint3d p[2] = {f.toWorld(mVerts[0].pt), f.toWorld(mVerts[0].pt)};
        geo.polyline(2, p, &f.z);
        return Adesk::kTrue;
    }
    if (hasWidth()) {
        const AcGiFillType was = wd->subEntityTraits().fillType();
        wd->subEntityTraits().setFillType(kAcGiFillAlways);
        std::vector<AcGePoint2d> outline;
        std::vector<AcGePoint3d> pts;
        for (size_t i = 0; i < g.pieces.size(); ++i) {
            const Piece& pc = g.pieces[i];
            const Vertex& v = mVerts[i];
            if (v.startWidth == 0.0 && v.endWidth == 0.0) {
                const AcGePoint3d line[2] = {f.toWorld(pc.a), f.toWorld(pc.b)};
                if (!pc.arc)
                    geo.polyline(2, line, &f.z);
                else {
                    const double s = pc.sweep >= 0.0 ? pc.start : pc.start + pc.sweep;
                    geo.circularArc(f.toWorld(pc.c), pc.r, f.z,
                                    f.toWorld(AcGeVector2d(std::cos(s), std::sin(s))),
                                    std::fabs(pc.sweep));
                }
                continue;
            }
            double step = kPi / 32;
            if (pc.arc) {
                const double dev = wd->deviation(kAcGiMaxDevForCurve, f.toWorld(pc.c));
                const double r = pc.r + std::max(v.startWidth, v.endWidth) / 2;
                if (dev > 0.0 && dev < r)
                    step = std::clamp(2.0 * std::acos(1.0 - dev / r), 0.005, kPi / 8);
            }
            bandOutline(pc, v.startWidth, v.endWidth, step, outline);
            if (outline.size() < 3) continue;
            pts.clear();
            for (const auto& p : outline)
                pts.push_back(f.toWorld(p));
            geo.polygon(static_cast<Adesk::UInt32>(pts.size()), pts.data());
        }
        wd->subEntityTraits().setFillType(was);
        return Adesk::kTrue;
    }
    // One polyline per run of straight segments, one arc per arc segment.
    std::vector<AcGePoint3d> run;
    auto flush = [&] {
        if (run.size() >= 2) geo.polyline(static_cast<Adesk::UInt32>(run.size()), run.data(), &f.z);
        run.clear();
    };
    for (const auto& pc : g.pieces) {
        if (!pc.arc) {
            if (run.empty()) run.push_back(f.toWorld(pc.a));
            run.push_back(f.toWorld(pc.b));
            continue;
        }
        flush();
        const double s = pc.sweep >= 0.0 ? pc.start : pc.start + pc.sweep;
        geo.circularArc(f.toWorld(pc.c), pc.r, f.z,
                        f.toWorld(AcGeVector2d(std::cos(s), std::sin(s))), std::fabs(pc.sweep));
    }
    flush();
    return Adesk::kTrue;
}

// ---------------------------------------------------------------- grips, snaps, transforms,
// explode

Acad::ErrorStatus AcDbPolyline::subGetGripPoints(AcGePoint3dArray& grips, AcDbIntArray&,
                                                 AcDbIntArray&) const {
    assertReadEnabled();
    const Frame f = planeFrame(mNormal, mElevation);
    for (const auto& v : mVerts)
        grips.append(f.toWorld(v.pt));
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::subMoveGripPointsAt(const AcDbIntArray& indices,
                                                    const AcGeVector3d& offset) {
    assertWriteEnabled();
    const Frame f = planeFrame(mNormal, mElevation);
    const AcGeVector2d d(offset.dotProduct(f.x), offset.dotProduct(f.y));
    std::vector<bool> moved(mVerts.size(), false);
    for (int i : indices)
        if (i >= 0 && static_cast<size_t>(i) < mVerts.size() && !moved[static_cast<size_t>(i)]) {
            moved[static_cast<size_t>(i)] = true;
            mVerts[static_cast<size_t>(i)].pt += d;
        }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::subGetOsnapPoints(AcDb::OsnapMode mode, Adesk::GsMarker,
                                                  const AcGePoint3d& pickPoint,
                                                  const AcGePoint3d& lastPoint, const AcGeMatrix3d&,
                                                  AcGePoint3dArray& snapPoints,
                                                  AcDbIntArray&) const {
    assertReadEnabled();
    CurveGeom g;
    AcDbPolylineImpl::geom(*this, g);
    curveSnaps(g, mode, pickPoint, lastPoint, snapPoints);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::subTransformBy(const AcGeMatrix3d& xform) {
    assertWriteEnabled();
    const Frame f = planeFrame(mNormal, mElevation);
    const bool circular = keepsCircles(xform, f.x, f.y);
    if (hasBulges() && !circular) return kCannotScaleNonUniformly;
    AcGeVector3d xi = f.x, yi = f.y, ni = f.z;
    xi.transformBy(xform);
    yi.transformBy(xform);
    ni.transformBy(xform);
    const AcGeVector3d cr = xi.crossProduct(yi);
    if (!(cr.length() > 1e-300)) return Acad::eInvalidInput;
    const AcGeVector3d planeNormal = unitNormal(cr);
    // A transform that turns the plane over keeps the normal's side and mirrors the bulges.
    const bool flip = ni.length() > 1e-300 && planeNormal.dotProduct(ni) < 0.0;
    const AcGeVector3d newNormal = flip ? -planeNormal : planeNormal;
    AcGePoint3d origin = f.origin;
    origin.transformBy(xform);
    const Frame nf = Frame::ocs(newNormal, AcGePoint3d::kOrigin);
    const double widthScale = circular ? xi.length() : std::sqrt(xi.length() * yi.length());
    for (auto& v : mVerts) {
        AcGePoint3d p = f.toWorld(v.pt);
        p.transformBy(xform);
        v.pt = nf.toLocal(p);
        if (flip) v.bulge = -v.bulge;
        v.startWidth *= widthScale;
        v.endWidth *= widthScale;
    }
    mConstantWidth *= widthScale;
    mElevation = nf.height(origin);
    mNormal = newNormal;
    const double along = ni.dotProduct(newNormal);
    if (std::isfinite(along)) mThickness *= along;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::subExplode(AcDbVoidPtrArray& entities) const {
    assertReadEnabled();
    CurveGeom g;
    AcDbPolylineImpl::geom(*this, g);
    if (mVerts.size() < 2) return Acad::eOk;
    const Frame& f = g.frame;
    const double tol = g.tolerance(1e-12);
    for (const auto& pc : g.pieces) {
        if (pc.length() <= tol) continue; // coincident vertices make no entity
        AcDbCurve* c = nullptr;
        if (!pc.arc) {
            auto* l = new AcDbLine(f.toWorld(pc.a), f.toWorld(pc.b));
            l->setNormal(mNormal);
            l->setThickness(mThickness);
            c = l;
        } else {
            // Arcs run counter-clockwise: a clockwise segment starts at its end.
            const double s = pc.sweep >= 0.0 ? pc.start : pc.start + pc.sweep;
            auto* a = new AcDbArc(f.toWorld(pc.c), f.z, pc.r, s, s + std::fabs(pc.sweep));
            a->setThickness(mThickness);
            c = a;
        }
        c->setPropertiesFrom(this);
        entities.append(c);
    }
    return Acad::eOk;
}
