// Angle and axis helpers shared by the curve and plane sources.
#pragma once

#include "gebasic.h"

#include <cmath>
#include <numbers>

namespace geimpl {

constexpr double kTwoPi = 2.0 * std::numbers::pi;
// Sweeps this close to a full turn are a full turn: start + 2*pi - start rarely gives 2*pi.
constexpr double kAngleTol = 1e-12;

// Into [0, 2*pi).
inline double wrapAngle(double a) {
    a = std::fmod(a, kTwoPi);
    if (a < 0.0) a += kTwoPi;
    return a >= kTwoPi ? 0.0 : a;
}

// The sweep from start to end reduced to (0, 2*pi]; equal angles make a full turn.
inline double sweepOf(double start, double end) {
    double sw = end - start;
    if (std::fabs(sw - kTwoPi) <= kAngleTol) return kTwoPi;
    sw = std::fmod(sw, kTwoPi);
    if (sw <= 0.0) sw += kTwoPi;
    return sw;
}

// Plain arithmetic rather than the vector members, so that static planes can use it before
// other translation units are initialised.
inline AcGeVector3d unitOr(const AcGeVector3d& v, const AcGeVector3d& fallback) {
    const double len = v.length();
    return len > 0.0 ? v / len : fallback;
}

inline AcGeVector2d unitOr(const AcGeVector2d& v, const AcGeVector2d& fallback) {
    const double len = v.length();
    return len > 0.0 ? v / len : fallback;
}

// The first axis of the plane with unit normal n. Close to the z axis the y axis serves as the
// helper, so that the axis stays well defined; the threshold is the customary 1/64.
inline AcGeVector3d arbitraryAxis(const AcGeVector3d& n) {
    constexpr double kLimit = 1.0 / 64.0;
    const AcGeVector3d helper = std::fabs(n.x) < kLimit && std::fabs(n.y) < kLimit
                                    ? AcGeVector3d(0.0, 1.0, 0.0)
                                    : AcGeVector3d(0.0, 0.0, 1.0);
    return unitOr(helper.crossProduct(n), AcGeVector3d(1.0, 0.0, 0.0));
}

inline double cross2d(const AcGeVector2d& a, const AcGeVector2d& b) {
    return a.x * b.y - a.y * b.x;
}

} // namespace geimpl
