// Points, vectors and matrices. The plane-dependent members live with the plane.
#include "gebasic.h"

#include <algorithm>
#include <numbers>
#include <utility>

namespace {

constexpr double kTwoPi = 2.0 * std::numbers::pi;

// The same rule the plane uses to derive its axes from a normal, so that a plane's own
// coordinate system and planeToWorld agree.
void arbitraryAxes(const AcGeVector3d& normal, AcGeVector3d& xAxis, AcGeVector3d& yAxis,
                   AcGeVector3d& zAxis) {
    zAxis = normal.normal();
    constexpr double kLimit = 1.0 / 64.0;
    if (std::fabs(zAxis.x) < kLimit && std::fabs(zAxis.y) < kLimit)
        xAxis = AcGeVector3d::kYAxis.crossProduct(zAxis).normal();
    else
        xAxis = AcGeVector3d::kZAxis.crossProduct(zAxis).normal();
    yAxis = zAxis.crossProduct(xAxis).normal();
}

// Sine of the angle between two vectors, or -1 when either is too short to have a direction.
template <class V> double unitCross(const V& a, const V& b, double cross, const AcGeTol& tol) {
    const double la = a.length(), lb = b.length();
    if (la <= tol.equalVector() || lb <= tol.equalVector()) return -1.0;
    return std::fabs(cross) / (la * lb);
}

} // namespace

AcGeTol AcGeContext::gTol;

const AcGeVector2d AcGeVector2d::kIdentity(0, 0);
const AcGeVector2d AcGeVector2d::kXAxis(1, 0);
const AcGeVector2d AcGeVector2d::kYAxis(0, 1);
const AcGePoint2d AcGePoint2d::kOrigin(0, 0);
const AcGeVector3d AcGeVector3d::kIdentity(0, 0, 0);
const AcGeVector3d AcGeVector3d::kXAxis(1, 0, 0);
const AcGeVector3d AcGeVector3d::kYAxis(0, 1, 0);
const AcGeVector3d AcGeVector3d::kZAxis(0, 0, 1);
const AcGePoint3d AcGePoint3d::kOrigin(0, 0, 0);
const AcGeScale3d AcGeScale3d::kIdentity(1, 1, 1);
const AcGeMatrix2d AcGeMatrix2d::kIdentity;
const AcGeMatrix3d AcGeMatrix3d::kIdentity;

// ---------------------------------------------------------------- 2D vectors and points

double AcGeVector2d::angle() const {
    double a = std::atan2(y, x);
    if (a < 0.0) a += kTwoPi;
    return a >= kTwoPi ? 0.0 : a;
}

double AcGeVector2d::angleTo(const AcGeVector2d& v) const {
    return std::fabs(std::atan2(x * v.y - y * v.x, dotProduct(v)));
}

AcGeVector2d AcGeVector2d::normal(const AcGeTol& tol) const {
    AcGeVector2d v = *this;
    return v.normalize(tol);
}

AcGeVector2d& AcGeVector2d::normalize(const AcGeTol& tol) {
    const double len = length();
    if (len > tol.equalVector()) {
        x /= len;
        y /= len;
    }
    return *this;
}

AcGeVector2d& AcGeVector2d::rotateBy(double a) {
    const double c = std::cos(a), s = std::sin(a);
    return set(x * c - y * s, x * s + y * c);
}

AcGeVector2d& AcGeVector2d::transformBy(const AcGeMatrix2d& m) {
    return set(m.entry[0][0] * x + m.entry[0][1] * y, m.entry[1][0] * x + m.entry[1][1] * y);
}

bool AcGeVector2d::isEqualTo(const AcGeVector2d& v, const AcGeTol& tol) const {
    return (*this - v).length() <= tol.equalVector();
}

bool AcGeVector2d::isParallelTo(const AcGeVector2d& v, const AcGeTol& tol) const {
    const double s = unitCross(*this, v, x * v.y - y * v.x, tol);
    return s >= 0.0 && s <= tol.equalVector();
}

bool AcGeVector2d::isCodirectionalTo(const AcGeVector2d& v, const AcGeTol& tol) const {
    return isParallelTo(v, tol) && dotProduct(v) > 0.0;
}

bool AcGeVector2d::isPerpendicularTo(const AcGeVector2d& v, const AcGeTol& tol) const {
    const double la = length(), lb = v.length();
    if (la <= tol.equalVector() || lb <= tol.equalVector()) return false;
    return std::fabs(dotProduct(v)) / (la * lb) <= tol.equalVector();
}

AcGePoint2d& AcGePoint2d::rotateBy(double a, const AcGePoint2d& wrt) {
    AcGeVector2d v = *this - wrt;
    return *this = wrt + v.rotateBy(a);
}

AcGePoint2d& AcGePoint2d::scaleBy(double s, const AcGePoint2d& wrt) {
    return *this = wrt + (*this - wrt) * s;
}

AcGePoint2d& AcGePoint2d::transformBy(const AcGeMatrix2d& m) {
    return set(m.entry[0][0] * x + m.entry[0][1] * y + m.entry[0][2],
               m.entry[1][0] * x + m.entry[1][1] * y + m.entry[1][2]);
}

// ---------------------------------------------------------------- 3D vectors and points

double AcGeVector3d::angleTo(const AcGeVector3d& v) const {
    return std::atan2(crossProduct(v).length(), dotProduct(v));
}

double AcGeVector3d::angleTo(const AcGeVector3d& v, const AcGeVector3d& refVec) const {
    const double a = angleTo(v);
    if (a == 0.0) return 0.0;
    return crossProduct(v).dotProduct(refVec) < 0.0 ? kTwoPi - a : a;
}

AcGeVector3d AcGeVector3d::normal(const AcGeTol& tol) const {
    AcGeVector3d v = *this;
    return v.normalize(tol);
}

AcGeVector3d& AcGeVector3d::normalize(const AcGeTol& tol) {
    const double len = length();
    if (len > tol.equalVector()) *this /= len;
    return *this;
}

AcGeVector3d AcGeVector3d::perpVector() const {
    constexpr double kLimit = 1.0 / 64.0;
    if (std::fabs(x) < kLimit && std::fabs(y) < kLimit)
        return AcGeVector3d::kYAxis.crossProduct(*this);
    return AcGeVector3d::kZAxis.crossProduct(*this);
}

AcGeVector3d& AcGeVector3d::rotateBy(double a, const AcGeVector3d& axis) {
    return transformBy(AcGeMatrix3d::rotation(a, axis));
}

AcGeVector3d& AcGeVector3d::transformBy(const AcGeMatrix3d& m) {
    const auto& e = m.entry;
    return set(e[0][0] * x + e[0][1] * y + e[0][2] * z, e[1][0] * x + e[1][1] * y + e[1][2] * z,
               e[2][0] * x + e[2][1] * y + e[2][2] * z);
}

bool AcGeVector3d::isEqualTo(const AcGeVector3d& v, const AcGeTol& tol) const {
    return (*this - v).length() <= tol.equalVector();
}

bool AcGeVector3d::isParallelTo(const AcGeVector3d& v, const AcGeTol& tol) const {
    const double s = unitCross(*this, v, crossProduct(v).length(), tol);
    return s >= 0.0 && s <= tol.equalVector();
}

bool AcGeVector3d::isCodirectionalTo(const AcGeVector3d& v, const AcGeTol& tol) const {
    return isParallelTo(v, tol) && dotProduct(v) > 0.0;
}

bool AcGeVector3d::isPerpendicularTo(const AcGeVector3d& v, const AcGeTol& tol) const {
    const double la = length(), lb = v.length();
    if (la <= tol.equalVector() || lb <= tol.equalVector()) return false;
    return std::fabs(dotProduct(v)) / (la * lb) <= tol.equalVector();
}

double AcGePoint3d::distanceTo(const AcGePoint3d& p) const {
    return (*this - p).length();
}

AcGePoint3d& AcGePoint3d::transformBy(const AcGeMatrix3d& m) {
    const auto& e = m.entry;
    const double nx = e[0][0] * x + e[0][1] * y + e[0][2] * z + e[0][3];
    const double ny = e[1][0] * x + e[1][1] * y + e[1][2] * z + e[1][3];
    const double nz = e[2][0] * x + e[2][1] * y + e[2][2] * z + e[2][3];
    const double w = e[3][0] * x + e[3][1] * y + e[3][2] * z + e[3][3];
    if (w != 1.0 && w != 0.0) return set(nx / w, ny / w, nz / w);
    return set(nx, ny, nz);
}

AcGePoint3d& AcGePoint3d::rotateBy(double a, const AcGeVector3d& axis, const AcGePoint3d& wrt) {
    return transformBy(AcGeMatrix3d::rotation(a, axis, wrt));
}

AcGePoint3d& AcGePoint3d::scaleBy(double s, const AcGePoint3d& wrt) {
    return *this = wrt + (*this - wrt) * s;
}

// ---------------------------------------------------------------- 2D matrices

AcGeMatrix2d AcGeMatrix2d::operator*(const AcGeMatrix2d& m) const {
    AcGeMatrix2d r;
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) {
            double s = 0.0;
            for (int k = 0; k < 3; ++k)
                s += entry[i][k] * m.entry[k][j];
            r.entry[i][j] = s;
        }
    return r;
}

AcGeMatrix2d AcGeMatrix2d::translation(const AcGeVector2d& v) {
    AcGeMatrix2d m;
    m.entry[0][2] = v.x;
    m.entry[1][2] = v.y;
    return m;
}

AcGeMatrix2d AcGeMatrix2d::rotation(double a, const AcGePoint2d& c) {
    AcGeMatrix2d r;
    const double cs = std::cos(a), sn = std::sin(a);
    r.entry[0][0] = cs;
    r.entry[0][1] = -sn;
    r.entry[1][0] = sn;
    r.entry[1][1] = cs;
    return translation(c.asVector()) * r * translation(-c.asVector());
}

AcGeMatrix2d AcGeMatrix2d::scaling(double s, const AcGePoint2d& c) {
    AcGeMatrix2d r;
    r.entry[0][0] = r.entry[1][1] = s;
    return translation(c.asVector()) * r * translation(-c.asVector());
}

// ---------------------------------------------------------------- 3D matrices

AcGeMatrix3d AcGeMatrix3d::operator*(const AcGeMatrix3d& m) const {
    AcGeMatrix3d r;
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j) {
            double s = 0.0;
            for (int k = 0; k < 4; ++k)
                s += entry[i][k] * m.entry[k][j];
            r.entry[i][j] = s;
        }
    return r;
}

bool AcGeMatrix3d::isEqualTo(const AcGeMatrix3d& m, const AcGeTol& tol) const {
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            if (std::fabs(entry[i][j] - m.entry[i][j]) > tol.equalVector()) return false;
    return true;
}

AcGeMatrix3d& AcGeMatrix3d::setToTranslation(const AcGeVector3d& v) {
    setToIdentity();
    entry[0][3] = v.x;
    entry[1][3] = v.y;
    entry[2][3] = v.z;
    return *this;
}

AcGeMatrix3d& AcGeMatrix3d::setToRotation(double a, const AcGeVector3d& axis,
                                          const AcGePoint3d& center) {
    setToIdentity();
    const AcGeVector3d u = axis.normal();
    if (u.isZeroLength()) return *this;
    const double c = std::cos(a), s = std::sin(a), t = 1.0 - c;
    entry[0][0] = t * u.x * u.x + c;
    entry[0][1] = t * u.x * u.y - s * u.z;
    entry[0][2] = t * u.x * u.z + s * u.y;
    entry[1][0] = t * u.x * u.y + s * u.z;
    entry[1][1] = t * u.y * u.y + c;
    entry[1][2] = t * u.y * u.z - s * u.x;
    entry[2][0] = t * u.x * u.z - s * u.y;
    entry[2][1] = t * u.y * u.z + s * u.x;
    entry[2][2] = t * u.z * u.z + c;
    // Keep the centre fixed: p' = R (p - c) + c.
    const AcGeVector3d cv = center.asVector();
    AcGeVector3d rc = cv;
    rc.transformBy(*this);
    entry[0][3] = cv.x - rc.x;
    entry[1][3] = cv.y - rc.y;
    entry[2][3] = cv.z - rc.z;
    return *this;
}

AcGeMatrix3d& AcGeMatrix3d::setToScaling(double s, const AcGePoint3d& center) {
    setToIdentity();
    entry[0][0] = entry[1][1] = entry[2][2] = s;
    entry[0][3] = center.x * (1.0 - s);
    entry[1][3] = center.y * (1.0 - s);
    entry[2][3] = center.z * (1.0 - s);
    return *this;
}

AcGeMatrix3d& AcGeMatrix3d::setToMirroring(const AcGePoint3d& p) {
    return setToScaling(-1.0, p);
}

AcGeMatrix3d& AcGeMatrix3d::setCoordSystem(const AcGePoint3d& origin, const AcGeVector3d& xAxis,
                                           const AcGeVector3d& yAxis, const AcGeVector3d& zAxis) {
    setToIdentity();
    for (int i = 0; i < 3; ++i) {
        entry[i][0] = xAxis[i];
        entry[i][1] = yAxis[i];
        entry[i][2] = zAxis[i];
        entry[i][3] = origin[i];
    }
    return *this;
}

void AcGeMatrix3d::getCoordSystem(AcGePoint3d& origin, AcGeVector3d& x, AcGeVector3d& y,
                                  AcGeVector3d& z) const {
    for (int i = 0; i < 3; ++i) {
        x[i] = entry[i][0];
        y[i] = entry[i][1];
        z[i] = entry[i][2];
        origin[i] = entry[i][3];
    }
}

AcGeMatrix3d& AcGeMatrix3d::setToAlignCoordSys(const AcGePoint3d& fromOrigin,
                                               const AcGeVector3d& fromX, const AcGeVector3d& fromY,
                                               const AcGeVector3d& fromZ,
                                               const AcGePoint3d& toOrigin, const AcGeVector3d& toX,
                                               const AcGeVector3d& toY, const AcGeVector3d& toZ) {
    AcGeMatrix3d from, to;
    from.setCoordSystem(fromOrigin, fromX, fromY, fromZ);
    to.setCoordSystem(toOrigin, toX, toY, toZ);
    return *this = to * from.inverse();
}

AcGeMatrix3d& AcGeMatrix3d::setToPlaneToWorld(const AcGeVector3d& normal) {
    AcGeVector3d x, y, z;
    arbitraryAxes(normal, x, y, z);
    return setCoordSystem(AcGePoint3d::kOrigin, x, y, z);
}

AcGeMatrix3d& AcGeMatrix3d::setToWorldToPlane(const AcGeVector3d& normal) {
    // The plane's axes are orthonormal, so the inverse is the transpose.
    setToPlaneToWorld(normal);
    return transposeIt();
}

AcGeMatrix3d AcGeMatrix3d::translation(const AcGeVector3d& v) {
    return AcGeMatrix3d().setToTranslation(v);
}
AcGeMatrix3d AcGeMatrix3d::rotation(double a, const AcGeVector3d& axis, const AcGePoint3d& c) {
    return AcGeMatrix3d().setToRotation(a, axis, c);
}
AcGeMatrix3d AcGeMatrix3d::scaling(double s, const AcGePoint3d& c) {
    return AcGeMatrix3d().setToScaling(s, c);
}
AcGeMatrix3d AcGeMatrix3d::mirroring(const AcGePoint3d& p) {
    return AcGeMatrix3d().setToMirroring(p);
}
AcGeMatrix3d AcGeMatrix3d::planeToWorld(const AcGeVector3d& n) {
    return AcGeMatrix3d().setToPlaneToWorld(n);
}
AcGeMatrix3d AcGeMatrix3d::worldToPlane(const AcGeVector3d& n) {
    return AcGeMatrix3d().setToWorldToPlane(n);
}
AcGeMatrix3d AcGeMatrix3d::alignCoordSys(const AcGePoint3d& fo, const AcGeVector3d& fx,
                                         const AcGeVector3d& fy, const AcGeVector3d& fz,
                                         const AcGePoint3d& to, const AcGeVector3d& tx,
                                         const AcGeVector3d& ty, const AcGeVector3d& tz) {
    return AcGeMatrix3d().setToAlignCoordSys(fo, fx, fy, fz, to, tx, ty, tz);
}

double AcGeMatrix3d::det() const {
    // Laplace expansion along 2x2 minors of the top and bottom row pairs.
    const auto& m = entry;
    const double s0 = m[0][0] * m[1][1] - m[1][0] * m[0][1];
    const double s1 = m[0][0] * m[1][2] - m[1][0] * m[0][2];
    const double s2 = m[0][0] * m[1][3] - m[1][0] * m[0][3];
    const double s3 = m[0][1] * m[1][2] - m[1][1] * m[0][2];
    const double s4 = m[0][1] * m[1][3] - m[1][1] * m[0][3];
    const double s5 = m[0][2] * m[1][3] - m[1][2] * m[0][3];
    const double c5 = m[2][2] * m[3][3] - m[3][2] * m[2][3];
    const double c4 = m[2][1] * m[3][3] - m[3][1] * m[2][3];
    const double c3 = m[2][1] * m[3][2] - m[3][1] * m[2][2];
    const double c2 = m[2][0] * m[3][3] - m[3][0] * m[2][3];
    const double c1 = m[2][0] * m[3][2] - m[3][0] * m[2][2];
    const double c0 = m[2][0] * m[3][1] - m[3][0] * m[2][1];
    return s0 * c5 - s1 * c4 + s2 * c3 + s3 * c2 - s4 * c1 + s5 * c0;
}

AcGeMatrix3d AcGeMatrix3d::inverse() const {
    // Gauss-Jordan with partial pivoting; a singular matrix comes back unchanged.
    double a[4][8];
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j) {
            a[i][j] = entry[i][j];
            a[i][j + 4] = i == j ? 1.0 : 0.0;
        }
    for (int col = 0; col < 4; ++col) {
        int pivot = col;
        for (int r = col + 1; r < 4; ++r)
            if (std::fabs(a[r][col]) > std::fabs(a[pivot][col])) pivot = r;
        if (a[pivot][col] == 0.0) return *this;
        if (pivot != col)
            for (int j = 0; j < 8; ++j)
                std::swap(a[pivot][j], a[col][j]);
        const double inv = 1.0 / a[col][col];
        for (int j = 0; j < 8; ++j)
            a[col][j] *= inv;
        for (int r = 0; r < 4; ++r) {
            if (r == col || a[r][col] == 0.0) continue;
            const double f = a[r][col];
            for (int j = 0; j < 8; ++j)
                a[r][j] -= f * a[col][j];
        }
    }
    AcGeMatrix3d r;
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            r.entry[i][j] = a[i][j + 4];
    return r;
}

bool AcGeMatrix3d::isSingular(const AcGeTol& tol) const {
    return std::fabs(det()) <= tol.equalVector();
}

AcGeMatrix3d AcGeMatrix3d::transpose() const {
    AcGeMatrix3d r;
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            r.entry[i][j] = entry[j][i];
    return r;
}

double AcGeMatrix3d::scale() const {
    double s = 0.0;
    for (int j = 0; j < 3; ++j)
        s = std::max(s, std::hypot(entry[0][j], entry[1][j], entry[2][j]));
    return s;
}

bool AcGeMatrix3d::isUniScaledOrtho(const AcGeTol& tol) const {
    AcGePoint3d o;
    AcGeVector3d x, y, z;
    getCoordSystem(o, x, y, z);
    const double lx = x.length();
    if (lx <= tol.equalVector()) return false;
    const double rel = tol.equalVector() * lx;
    return std::fabs(y.length() - lx) <= rel && std::fabs(z.length() - lx) <= rel &&
           std::fabs(x.dotProduct(y)) <= rel * lx && std::fabs(y.dotProduct(z)) <= rel * lx &&
           std::fabs(z.dotProduct(x)) <= rel * lx;
}
