// Prompt points (user system) to database points (world system) and back.
#include "acedads.h"
#include "toolkit/geometry.h"

namespace {

// acedTrans between two coordinate-system codes; out is left alone when the host refuses.
void transCodes(const double* in, short from, short to, double (&out)[3]) {
    if (!in) return;
    resbuf rbFrom{}, rbTo{};
    rbFrom.restype = RTSHORT;
    rbFrom.resval.rint = from;
    rbTo.restype = RTSHORT;
    rbTo.resval.rint = to;
    acedTrans(in, &rbFrom, &rbTo, 0, out);
}

constexpr short kWcs = 0;
constexpr short kUcs = 1;

} // namespace

void M_ToWcs(const double* in, double (&out)[3]) {
    transCodes(in, kUcs, kWcs, out);
}

void M_ToUcs(const double* in, double (&out)[3]) {
    transCodes(in, kWcs, kUcs, out);
}

void M_Trans(const double* in, int from, int to, double (&out)[3]) {
    transCodes(in, static_cast<short>(from), static_cast<short>(to), out);
}

void M_pt_ads(AcGePoint2d p, double (&out)[3]) {
    const double in[3] = {p.x, p.y, 0.0};
    M_ToUcs(in, out);
}

void M_pt_ads(AcGePoint3d p, double (&out)[3]) {
    const double in[3] = {p.x, p.y, p.z};
    M_ToUcs(in, out);
}

void M_ads_pt(const double* in, AcGePoint2d& p) {
    if (!in) return;
    double w[3] = {p.x, p.y, 0.0};
    M_ToWcs(in, w);
    p.set(w[0], w[1]);
}

void M_ads_pt(const double* in, AcGePoint3d& p) {
    if (!in) return;
    double w[3] = {p.x, p.y, p.z};
    M_ToWcs(in, w);
    p.set(w[0], w[1], w[2]);
}

void M_ads_ads(const double* in, double (&out)[3]) {
    if (!in) return;
    out[0] = in[0];
    out[1] = in[1];
    out[2] = in[2];
}
