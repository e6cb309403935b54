// Hatch patterns: families of parallel lines clipped by the loops, and drawing the hatch as
// those lines or as a filled shell.
#include "db/ents/entsimpl.h"
#include "db/ents/hatchloop.h"

#include <algorithm>
#include <cmath>
#include <cwctype>

using namespace ents_detail;

struct AcDbHatchImpl {
    struct Family {
        double angle, spacing;
    };

    static std::vector<Family> families(const AcDbHatch& h) {
        if (h.isSolidFill() || h.isGradient()) return {};
        if (h.mPatternType == AcDbHatch::kUserDefined) {
            std::vector<Family> f{{h.mPatternAngle, h.mPatternSpace}};
            if (h.mPatternDouble) f.push_back({h.mPatternAngle + kPi / 2, h.mPatternSpace});
            return f;
        }
        std::wstring name = h.mPatternName;
        for (auto& ch : name)
            ch = static_cast<wchar_t>(std::towupper(static_cast<wint_t>(ch)));
        // The predefined patterns this platform knows, at scale 1; others hatch as ANSI31.
        constexpr double kStep = 3.175;
        std::vector<Family> f;
        if (name == L"ANSI37")
            f = {{kPi / 4, kStep}, {3 * kPi / 4, kStep}};
        else if (name == L"NET")
            f = {{0.0, kStep}, {kPi / 2, kStep}};
        else if (name == L"LINE")
            f = {{0.0, kStep}};
        else
            f = {{kPi / 4, kStep}};
        for (auto& fam : f) {
            fam.angle += h.mPatternAngle;
            fam.spacing *= h.mPatternScale;
        }
        return f;
    }

    // The rings that bound the pattern, by the hatch style.
    static std::vector<std::vector<AcGePoint2d>> rings(const AcDbHatch& h) {
        const double eps = 1e-4 * loopsSize(h.mLoops);
        std::vector<std::vector<AcGePoint2d>> out;
        for (size_t i = 0; i < h.mLoops.size(); ++i) {
            const AcDbHatch::Loop& l = *h.mLoops[i];
            const bool outer = (l.type & (AcDbHatch::kExternal | AcDbHatch::kOutermost)) != 0;
            if (h.mStyle == AcDbHatch::kIgnore && !(l.type & AcDbHatch::kExternal) && i > 0)
                continue;
            if (h.mStyle == AcDbHatch::kOuter && !outer && i > 0) continue;
            out.push_back(loopRing(l, eps));
        }
        return out;
    }

    // The pattern's lines by the even-odd rule; false when there would be too many. Each ring
    // edge adds its crossings to the lines it spans, so the work follows the crossings.
    static bool lines(const AcDbHatch& h, std::vector<std::pair<AcGePoint2d, AcGePoint2d>>& out) {
        out.clear();
        const auto fams = families(h);
        if (fams.empty()) return true;
        const auto rs = rings(h);
        const double same = 1e-9 * loopsSize(h.mLoops);
        constexpr double kMaxCrossings = 4e6;
        double planned = 0.0;
        for (const auto& fam : fams) {
            if (!(fam.spacing > 0.0) || !std::isfinite(fam.spacing)) continue;
            const AcGeVector2d u(std::cos(fam.angle), std::sin(fam.angle)), n = u.perpVector();
            // (line number, position along the line) of every crossing.
            std::vector<std::pair<double, double>> cuts;
            for (const auto& r : rs)
                for (size_t i = 0; i < r.size(); ++i) {
                    const AcGePoint2d& a = r[i];
                    const AcGePoint2d& b = r[(i + 1) % r.size()];
                    const double sa = a.asVector().dotProduct(n), sb = b.asVector().dotProduct(n);
                    // Half-open, so a line through a vertex counts it once: lo <= offset < hi.
                    const double lo = std::min(sa, sb), hi = std::max(sa, sb);
                    if (!(hi > lo)) continue;
                    const double first = std::ceil(lo / fam.spacing);
                    planned += std::max(0.0, (hi - lo) / fam.spacing + 1.0);
                    if (!(planned <= kMaxCrossings)) return false;
                    for (double k = first; k * fam.spacing < hi; k += 1.0) {
                        const double off = k * fam.spacing;
                        if (off < lo) continue;
                        const AcGePoint2d p = a + (b - a) * ((sa - off) / (sa - sb));
                        cuts.emplace_back(k, p.asVector().dotProduct(u));
                    }
                }
            std::sort(cuts.begin(), cuts.end());
            for (size_t i = 0; i < cuts.size();) {
                size_t e = i;
                std::vector<double> kept;
                for (; e < cuts.size() && cuts[e].first == cuts[i].first; ++e) {
                    // A line touching a ring at a vertex meets both its edges there: the two
                    // cuts cancel, and the line goes on.
                    if (!kept.empty() && cuts[e].second - kept.back() <= same)
                        kept.pop_back();
                    else
                        kept.push_back(cuts[e].second);
                }
                const AcGePoint2d base = AcGePoint2d::kOrigin + n * (cuts[i].first * fam.spacing);
                for (size_t j = 0; j + 1 < kept.size(); j += 2)
                    if (kept[j + 1] > kept[j])
                        out.emplace_back(base + u * kept[j], base + u * kept[j + 1]);
                i = e;
            }
        }
        return true;
    }
};

Acad::ErrorStatus AcDbHatch::evaluateHatch(bool) {
    assertWriteEnabled();
    if (!AcDbHatchImpl::lines(*this, mLines)) {
        mLines.clear();
        mEvaluated = false;
        return Acad::eInvalidInput; // far too dense to draw
    }
    mEvaluated = true;
    return Acad::eOk;
}

int AcDbHatch::numHatchLines() const {
    assertReadEnabled();
    return static_cast<int>(mLines.size());
}

Acad::ErrorStatus AcDbHatch::getHatchLineDataAt(int lineIndex, AcGePoint2d& startPt,
                                                AcGePoint2d& endPt) const {
    assertReadEnabled();
    if (lineIndex < 0 || lineIndex >= numHatchLines()) return Acad::eInvalidIndex;
    startPt = mLines[static_cast<size_t>(lineIndex)].first;
    endPt = mLines[static_cast<size_t>(lineIndex)].second;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::getHatchLinesData(AcGePoint2dArray& startPts,
                                               AcGePoint2dArray& endPts) const {
    assertReadEnabled();
    startPts.removeAll();
    endPts.removeAll();
    for (const auto& [a, b] : mLines) {
        startPts.append(a);
        endPts.append(b);
    }
    return Acad::eOk;
}

Adesk::Boolean AcDbHatch::subWorldDraw(AcGiWorldDraw* wd) {
    assertReadEnabled();
    if (!wd || mLoops.empty()) return Adesk::kTrue;
    const AcGeVector3d n = unitNormal(mNormal);
    const Frame f = Frame::ocs(n, AcGePoint3d::kOrigin + n * mElevation);
    if (isSolidFill() || isGradient()) {
        // One shell: external loops are faces, the others holes of the face before them.
        const double eps = 1e-4 * loopsSize(mLoops);
        std::vector<AcGePoint3d> pts;
        std::vector<Adesk::Int32> faces;
        for (size_t i = 0; i < mLoops.size(); ++i) {
            const std::vector<AcGePoint2d> ring = loopRing(*mLoops[i], eps);
            if (ring.size() < 3) continue;
            const bool face = faces.empty() || (mLoops[i]->type & kExternal);
            const auto count = static_cast<Adesk::Int32>(ring.size());
            faces.push_back(face ? count : -count);
            for (const auto& p : ring) {
                faces.push_back(static_cast<Adesk::Int32>(pts.size()));
                pts.push_back(f.toWorld(p));
            }
        }
        if (faces.empty()) return Adesk::kTrue;
        const AcGiFillType was = wd->subEntityTraits().fillType();
        wd->subEntityTraits().setFillType(kAcGiFillAlways);
        wd->geometry().shell(static_cast<Adesk::UInt32>(pts.size()), pts.data(),
                             static_cast<Adesk::UInt32>(faces.size()), faces.data());
        wd->subEntityTraits().setFillType(was);
        return Adesk::kTrue;
    }
    std::vector<std::pair<AcGePoint2d, AcGePoint2d>> computed;
    const auto* lines = &mLines;
    if (!mEvaluated) {
        if (!AcDbHatchImpl::lines(*this, computed)) return Adesk::kTrue;
        lines = &computed;
    }
    for (const auto& [a, b] : *lines) {
        const AcGePoint3d seg[2] = {f.toWorld(a), f.toWorld(b)};
        wd->geometry().polyline(2, seg, &n);
    }
    return Adesk::kTrue;
}
