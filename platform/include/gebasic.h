// Points, vectors, matrices and tolerances of the geometry library.
#pragma once

#include <cmath>

class AcGeMatrix3d;
class AcGeMatrix2d;
class AcGePlane;

class AcGeTol {
public:
    AcGeTol() = default;
    double equalPoint() const { return mEqualPoint; }
    double equalVector() const { return mEqualVector; }
    void setEqualPoint(double t) { mEqualPoint = t; }
    void setEqualVector(double t) { mEqualVector = t; }

private:
    double mEqualPoint = 1e-10;
    double mEqualVector = 1e-10;
};

struct AcGeContext {
    static AcGeTol gTol;
};

// ---------------------------------------------------------------- 2D

class AcGeVector2d {
public:
    double x = 0.0, y = 0.0;

    AcGeVector2d() = default;
    AcGeVector2d(double xx, double yy) : x(xx), y(yy) {}

    static const AcGeVector2d kIdentity, kXAxis, kYAxis;

    double operator[](unsigned i) const { return i == 0 ? x : y; }
    double& operator[](unsigned i) { return i == 0 ? x : y; }
    AcGeVector2d operator+(const AcGeVector2d& v) const { return {x + v.x, y + v.y}; }
    AcGeVector2d operator-(const AcGeVector2d& v) const { return {x - v.x, y - v.y}; }
    AcGeVector2d operator-() const { return {-x, -y}; }
    AcGeVector2d operator*(double s) const { return {x * s, y * s}; }
    AcGeVector2d operator/(double s) const { return {x / s, y / s}; }
    AcGeVector2d& operator+=(const AcGeVector2d& v) {
        x += v.x;
        y += v.y;
        return *this;
    }
    AcGeVector2d& operator-=(const AcGeVector2d& v) {
        x -= v.x;
        y -= v.y;
        return *this;
    }
    AcGeVector2d& operator*=(double s) {
        x *= s;
        y *= s;
        return *this;
    }
    AcGeVector2d& operator/=(double s) {
        x /= s;
        y /= s;
        return *this;
    }
    bool operator==(const AcGeVector2d& v) const { return isEqualTo(v); }
    bool operator!=(const AcGeVector2d& v) const { return !isEqualTo(v); }

    AcGeVector2d& set(double xx, double yy) {
        x = xx;
        y = yy;
        return *this;
    }
    double length() const { return std::sqrt(x * x + y * y); }
    double lengthSqrd() const { return x * x + y * y; }
    double dotProduct(const AcGeVector2d& v) const { return x * v.x + y * v.y; }
    // Angle from the x axis, counter-clockwise, in [0, 2*pi).
    double angle() const;
    // Unsigned angle to v, in [0, pi].
    double angleTo(const AcGeVector2d& v) const;
    AcGeVector2d normal(const AcGeTol& tol = AcGeContext::gTol) const;
    AcGeVector2d& normalize(const AcGeTol& tol = AcGeContext::gTol);
    AcGeVector2d& negate() {
        x = -x;
        y = -y;
        return *this;
    }
    AcGeVector2d& rotateBy(double angle);
    AcGeVector2d& transformBy(const AcGeMatrix2d& m);
    AcGeVector2d perpVector() const { return {-y, x}; }
    bool isZeroLength(const AcGeTol& tol = AcGeContext::gTol) const {
        return length() <= tol.equalVector();
    }
    bool isUnitLength(const AcGeTol& tol = AcGeContext::gTol) const {
        return std::fabs(length() - 1.0) <= tol.equalVector();
    }
    bool isEqualTo(const AcGeVector2d& v, const AcGeTol& tol = AcGeContext::gTol) const;
    bool isParallelTo(const AcGeVector2d& v, const AcGeTol& tol = AcGeContext::gTol) const;
    bool isCodirectionalTo(const AcGeVector2d& v, const AcGeTol& tol = AcGeContext::gTol) const;
    bool isPerpendicularTo(const AcGeVector2d& v, const AcGeTol& tol = AcGeContext::gTol) const;
};

inline AcGeVector2d operator*(double s, const AcGeVector2d& v) {
    return v * s;
}

class AcGePoint2d {
public:
    double x = 0.0, y = 0.0;

    AcGePoint2d() = default;
    AcGePoint2d(double xx, double yy) : x(xx), y(yy) {}

    static const AcGePoint2d kOrigin;

    double operator[](unsigned i) const { return i == 0 ? x : y; }
    double& operator[](unsigned i) { return i == 0 ? x : y; }
    AcGePoint2d operator+(const AcGeVector2d& v) const { return {x + v.x, y + v.y}; }
    AcGePoint2d operator-(const AcGeVector2d& v) const { return {x - v.x, y - v.y}; }
    AcGeVector2d operator-(const AcGePoint2d& p) const { return {x - p.x, y - p.y}; }
    AcGePoint2d& operator+=(const AcGeVector2d& v) {
        x += v.x;
        y += v.y;
        return *this;
    }
    AcGePoint2d& operator-=(const AcGeVector2d& v) {
        x -= v.x;
        y -= v.y;
        return *this;
    }
    AcGePoint2d operator*(double s) const { return {x * s, y * s}; }
    bool operator==(const AcGePoint2d& p) const { return isEqualTo(p); }
    bool operator!=(const AcGePoint2d& p) const { return !isEqualTo(p); }

    AcGePoint2d& set(double xx, double yy) {
        x = xx;
        y = yy;
        return *this;
    }
    AcGeVector2d asVector() const { return {x, y}; }
    double distanceTo(const AcGePoint2d& p) const { return std::hypot(x - p.x, y - p.y); }
    bool isEqualTo(const AcGePoint2d& p, const AcGeTol& tol = AcGeContext::gTol) const {
        return distanceTo(p) <= tol.equalPoint();
    }
    AcGePoint2d& rotateBy(double angle, const AcGePoint2d& wrt = kOrigin);
    AcGePoint2d& scaleBy(double s, const AcGePoint2d& wrt = kOrigin);
    AcGePoint2d& transformBy(const AcGeMatrix2d& m);
};

// ---------------------------------------------------------------- 3D

class AcGeVector3d {
public:
    double x = 0.0, y = 0.0, z = 0.0;

    AcGeVector3d() = default;
    AcGeVector3d(double xx, double yy, double zz) : x(xx), y(yy), z(zz) {}
    AcGeVector3d(const AcGePlane& plane, const AcGeVector2d& v);

    static const AcGeVector3d kIdentity, kXAxis, kYAxis, kZAxis;

    double operator[](unsigned i) const { return i == 0 ? x : (i == 1 ? y : z); }
    double& operator[](unsigned i) { return i == 0 ? x : (i == 1 ? y : z); }
    AcGeVector3d operator+(const AcGeVector3d& v) const { return {x + v.x, y + v.y, z + v.z}; }
    AcGeVector3d operator-(const AcGeVector3d& v) const { return {x - v.x, y - v.y, z - v.z}; }
    AcGeVector3d operator-() const { return {-x, -y, -z}; }
    AcGeVector3d operator*(double s) const { return {x * s, y * s, z * s}; }
    AcGeVector3d operator/(double s) const { return {x / s, y / s, z / s}; }
    AcGeVector3d& operator+=(const AcGeVector3d& v) {
        x += v.x;
        y += v.y;
        z += v.z;
        return *this;
    }
    AcGeVector3d& operator-=(const AcGeVector3d& v) {
        x -= v.x;
        y -= v.y;
        z -= v.z;
        return *this;
    }
    AcGeVector3d& operator*=(double s) {
        x *= s;
        y *= s;
        z *= s;
        return *this;
    }
    AcGeVector3d& operator/=(double s) {
        x /= s;
        y /= s;
        z /= s;
        return *this;
    }
    bool operator==(const AcGeVector3d& v) const { return isEqualTo(v); }
    bool operator!=(const AcGeVector3d& v) const { return !isEqualTo(v); }

    AcGeVector3d& set(double xx, double yy, double zz) {
        x = xx;
        y = yy;
        z = zz;
        return *this;
    }
    double length() const { return std::sqrt(x * x + y * y + z * z); }
    double lengthSqrd() const { return x * x + y * y + z * z; }
    double dotProduct(const AcGeVector3d& v) const { return x * v.x + y * v.y + z * v.z; }
    AcGeVector3d crossProduct(const AcGeVector3d& v) const {
        return {y * v.z - z * v.y, z * v.x - x * v.z, x * v.y - y * v.x};
    }
    double angleTo(const AcGeVector3d& v) const;
    // Signed angle to v about refVec, in [0, 2*pi).
    double angleTo(const AcGeVector3d& v, const AcGeVector3d& refVec) const;
    AcGeVector3d normal(const AcGeTol& tol = AcGeContext::gTol) const;
    AcGeVector3d& normalize(const AcGeTol& tol = AcGeContext::gTol);
    AcGeVector3d& negate() {
        x = -x;
        y = -y;
        z = -z;
        return *this;
    }
    AcGeVector3d perpVector() const;
    AcGeVector3d& rotateBy(double angle, const AcGeVector3d& axis);
    AcGeVector3d& transformBy(const AcGeMatrix3d& m);
    AcGeVector2d convert2d() const { return {x, y}; }
    bool isZeroLength(const AcGeTol& tol = AcGeContext::gTol) const {
        return length() <= tol.equalVector();
    }
    bool isUnitLength(const AcGeTol& tol = AcGeContext::gTol) const {
        return std::fabs(length() - 1.0) <= tol.equalVector();
    }
    bool isEqualTo(const AcGeVector3d& v, const AcGeTol& tol = AcGeContext::gTol) const;
    bool isParallelTo(const AcGeVector3d& v, const AcGeTol& tol = AcGeContext::gTol) const;
    bool isCodirectionalTo(const AcGeVector3d& v, const AcGeTol& tol = AcGeContext::gTol) const;
    bool isPerpendicularTo(const AcGeVector3d& v, const AcGeTol& tol = AcGeContext::gTol) const;
};

inline AcGeVector3d operator*(double s, const AcGeVector3d& v) {
    return v * s;
}

class AcGePoint3d {
public:
    double x = 0.0, y = 0.0, z = 0.0;

    AcGePoint3d() = default;
    AcGePoint3d(double xx, double yy, double zz) : x(xx), y(yy), z(zz) {}
    AcGePoint3d(const AcGePlane& plane, const AcGePoint2d& p);

    static const AcGePoint3d kOrigin;

    double operator[](unsigned i) const { return i == 0 ? x : (i == 1 ? y : z); }
    double& operator[](unsigned i) { return i == 0 ? x : (i == 1 ? y : z); }
    AcGePoint3d operator+(const AcGeVector3d& v) const { return {x + v.x, y + v.y, z + v.z}; }
    AcGePoint3d operator-(const AcGeVector3d& v) const { return {x - v.x, y - v.y, z - v.z}; }
    AcGeVector3d operator-(const AcGePoint3d& p) const { return {x - p.x, y - p.y, z - p.z}; }
    AcGePoint3d& operator+=(const AcGeVector3d& v) {
        x += v.x;
        y += v.y;
        z += v.z;
        return *this;
    }
    AcGePoint3d& operator-=(const AcGeVector3d& v) {
        x -= v.x;
        y -= v.y;
        z -= v.z;
        return *this;
    }
    AcGePoint3d operator*(double s) const { return {x * s, y * s, z * s}; }
    bool operator==(const AcGePoint3d& p) const { return isEqualTo(p); }
    bool operator!=(const AcGePoint3d& p) const { return !isEqualTo(p); }

    AcGePoint3d& set(double xx, double yy, double zz) {
        x = xx;
        y = yy;
        z = zz;
        return *this;
    }
    AcGeVector3d asVector() const { return {x, y, z}; }
    AcGePoint2d convert2d() const { return {x, y}; }
    AcGePoint2d convert2d(const AcGePlane& plane) const;
    double distanceTo(const AcGePoint3d& p) const;
    bool isEqualTo(const AcGePoint3d& p, const AcGeTol& tol = AcGeContext::gTol) const {
        return distanceTo(p) <= tol.equalPoint();
    }
    AcGePoint3d& transformBy(const AcGeMatrix3d& m);
    AcGePoint3d& rotateBy(double angle, const AcGeVector3d& axis, const AcGePoint3d& wrt = kOrigin);
    AcGePoint3d& scaleBy(double s, const AcGePoint3d& wrt = kOrigin);
    // Projection onto a plane along its normal.
    AcGePoint3d orthoProject(const AcGePlane& plane) const;
};

class AcGeScale3d {
public:
    double sx = 1.0, sy = 1.0, sz = 1.0;
    AcGeScale3d() = default;
    explicit AcGeScale3d(double s) : sx(s), sy(s), sz(s) {}
    AcGeScale3d(double x, double y, double z) : sx(x), sy(y), sz(z) {}
    static const AcGeScale3d kIdentity;
    double operator[](unsigned i) const { return i == 0 ? sx : (i == 1 ? sy : sz); }
    double& operator[](unsigned i) { return i == 0 ? sx : (i == 1 ? sy : sz); }
    bool operator==(const AcGeScale3d& s) const { return sx == s.sx && sy == s.sy && sz == s.sz; }
};

// ---------------------------------------------------------------- matrices

class AcGeMatrix2d {
public:
    double entry[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    static const AcGeMatrix2d kIdentity;
    AcGeMatrix2d operator*(const AcGeMatrix2d& m) const;
    static AcGeMatrix2d translation(const AcGeVector2d& v);
    static AcGeMatrix2d rotation(double angle, const AcGePoint2d& center = AcGePoint2d::kOrigin);
    static AcGeMatrix2d scaling(double s, const AcGePoint2d& center = AcGePoint2d::kOrigin);
};

class AcGeMatrix3d {
public:
    double entry[4][4] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}};

    static const AcGeMatrix3d kIdentity;

    double operator()(unsigned r, unsigned c) const { return entry[r][c]; }
    double& operator()(unsigned r, unsigned c) { return entry[r][c]; }
    AcGeMatrix3d operator*(const AcGeMatrix3d& m) const;
    AcGeMatrix3d& operator*=(const AcGeMatrix3d& m) { return *this = *this * m; }
    bool operator==(const AcGeMatrix3d& m) const { return isEqualTo(m); }
    bool isEqualTo(const AcGeMatrix3d& m, const AcGeTol& tol = AcGeContext::gTol) const;

    AcGeMatrix3d& setToIdentity() { return *this = AcGeMatrix3d(); }
    AcGeMatrix3d& preMultBy(const AcGeMatrix3d& m) { return *this = m * *this; }
    AcGeMatrix3d& postMultBy(const AcGeMatrix3d& m) { return *this = *this * m; }
    AcGeMatrix3d& setToTranslation(const AcGeVector3d& v);
    AcGeMatrix3d& setToRotation(double angle, const AcGeVector3d& axis,
                                const AcGePoint3d& center = AcGePoint3d::kOrigin);
    AcGeMatrix3d& setToScaling(double s, const AcGePoint3d& center = AcGePoint3d::kOrigin);
    AcGeMatrix3d& setToMirroring(const AcGePlane& plane);
    AcGeMatrix3d& setToMirroring(const AcGePoint3d& p);
    // The matrix that takes the world system to the given one (origin and axes).
    AcGeMatrix3d& setCoordSystem(const AcGePoint3d& origin, const AcGeVector3d& xAxis,
                                 const AcGeVector3d& yAxis, const AcGeVector3d& zAxis);
    AcGeMatrix3d& setToAlignCoordSys(const AcGePoint3d& fromOrigin, const AcGeVector3d& fromX,
                                     const AcGeVector3d& fromY, const AcGeVector3d& fromZ,
                                     const AcGePoint3d& toOrigin, const AcGeVector3d& toX,
                                     const AcGeVector3d& toY, const AcGeVector3d& toZ);
    AcGeMatrix3d& setToPlaneToWorld(const AcGeVector3d& normal);
    AcGeMatrix3d& setToWorldToPlane(const AcGeVector3d& normal);

    static AcGeMatrix3d translation(const AcGeVector3d& v);
    static AcGeMatrix3d rotation(double angle, const AcGeVector3d& axis,
                                 const AcGePoint3d& center = AcGePoint3d::kOrigin);
    static AcGeMatrix3d scaling(double s, const AcGePoint3d& center = AcGePoint3d::kOrigin);
    static AcGeMatrix3d mirroring(const AcGePlane& plane);
    static AcGeMatrix3d mirroring(const AcGePoint3d& p);
    static AcGeMatrix3d planeToWorld(const AcGeVector3d& normal);
    static AcGeMatrix3d worldToPlane(const AcGeVector3d& normal);
    static AcGeMatrix3d alignCoordSys(const AcGePoint3d& fromOrigin, const AcGeVector3d& fromX,
                                      const AcGeVector3d& fromY, const AcGeVector3d& fromZ,
                                      const AcGePoint3d& toOrigin, const AcGeVector3d& toX,
                                      const AcGeVector3d& toY, const AcGeVector3d& toZ);

    AcGeVector3d translation() const { return {entry[0][3], entry[1][3], entry[2][3]}; }
    double det() const;
    AcGeMatrix3d inverse() const;
    AcGeMatrix3d& invert() { return *this = inverse(); }
    bool isSingular(const AcGeTol& tol = AcGeContext::gTol) const;
    AcGeMatrix3d transpose() const;
    AcGeMatrix3d& transposeIt() { return *this = transpose(); }
    // Largest length of the images of the unit axes: the factor by which lengths grow.
    double scale() const;
    bool isUniScaledOrtho(const AcGeTol& tol = AcGeContext::gTol) const;
    void getCoordSystem(AcGePoint3d& origin, AcGeVector3d& x, AcGeVector3d& y,
                        AcGeVector3d& z) const;
};
