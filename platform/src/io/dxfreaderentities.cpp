// The plain entities, each made from its record with the platform's own setters. Points in
// the entity's plane system (OCS) are turned into world points here.
#include "io/dxfreader.h"

#include "db/ents/curvegeom.h"
#include "db2dpoly.h"
#include "db3dpoly.h"
#include "dbelipse.h"
#include "dbents.h"
#include "io/dxfwriter.h"

#include <algorithm>
#include <cmath>

namespace qor::dxf {

namespace {

constexpr double kPi = 3.14159265358979323846;
// An MTEXT line is this many text heights below the one before, at a spacing factor of 1.
constexpr double kMtextLineStep = 5.0 / 3.0;
// More copies than this from one MINSERT are left out rather than made.
constexpr long long kMostCopies = 10000;

double radians(double degrees) {
    return degrees * kPi / 180.0;
}

AcGePoint3d world(const Record& r, int code, const AcGeVector3d& n) {
    return ents_detail::ocsToWorld(r.point(code), n);
}

// An MTEXT string as plain lines: paragraphs split at \P, formatting codes and braces
// dropped, escaped characters kept, a stacked fraction written with a slash.
std::vector<std::wstring> mtextLines(const std::wstring& s) {
    std::vector<std::wstring> lines(1);
    auto skipTo = [&s](size_t i) {
        const size_t e = s.find(L';', i);
        return e == std::wstring::npos ? s.size() : e;
    };
    for (size_t i = 0; i < s.size(); ++i) {
        const wchar_t c = s[i];
        if (c == L'{' || c == L'}') continue;
        if (c != L'\\' || i + 1 >= s.size()) {
            lines.back() += c;
            continue;
        }
        const wchar_t k = s[++i];
        switch (k) {
        case L'P':
            lines.emplace_back();
            break;
        case L'~':
            lines.back() += L' ';
            break;
        case L'S': {
            const size_t e = skipTo(i);
            std::wstring part = s.substr(i + 1, e - i - 1);
            std::replace(part.begin(), part.end(), L'^', L'/');
            std::replace(part.begin(), part.end(), L'#', L'/');
            lines.back() += part;
            i = e;
            break;
        }
        case L'A':
        case L'C':
        case L'c':
        case L'F':
        case L'f':
        case L'H':
        case L'p':
        case L'Q':
        case L'T':
        case L'W':
            i = skipTo(i);
            break;
        case L'L':
        case L'l':
        case L'O':
        case L'o':
        case L'K':
        case L'k':
        case L'N':
            break;
        default: // \\, \{, \} and anything unknown stand for the character
            lines.back() += k;
            break;
        }
    }
    return lines;
}

} // namespace

AcDbEntity* Reader::line(const Record& r) const {
    auto* e = new AcDbLine(r.point(10), r.point(11));
    e->setThickness(r.real(39));
    e->setNormal(r.normal());
    return e;
}

AcDbEntity* Reader::circle(const Record& r) const {
    const AcGeVector3d n = r.normal();
    auto* e = new AcDbCircle(world(r, 10, n), n, std::fabs(r.real(40)));
    e->setThickness(r.real(39));
    return e;
}

AcDbEntity* Reader::arc(const Record& r) const {
    const AcGeVector3d n = r.normal();
    auto* e = new AcDbArc(world(r, 10, n), n, std::fabs(r.real(40)), radians(r.real(50)),
                          radians(r.real(51)));
    e->setThickness(r.real(39));
    return e;
}

AcDbEntity* Reader::lwpolyline(const Record& r) const {
    auto* p = new AcDbPolyline();
    p->setNormal(r.normal());
    p->setElevation(r.real(38));
    p->setThickness(r.real(39));
    const long long flags = r.integer(70);
    p->setClosed((flags & 1) != 0);
    p->setPlinegen((flags & 128) != 0);
    const double width = std::max(0.0, r.real(43));
    unsigned int n = 0;
    for (const Group* g = r.begin + 1; g < r.end; ++g) {
        double start = 0.0, end = 0.0;
        switch (g->code) {
        case 10: {
            const AcGePoint3d pt = pointAt(g, r.end);
            p->addVertexAt(n++, AcGePoint2d(pt.x, pt.y), 0.0, width, width);
            break;
        }
        case 40:
            if (n > 0 && p->getWidthsAt(n - 1, start, end) == Acad::eOk)
                p->setWidthsAt(n - 1, std::max(0.0, g->real), end);
            break;
        case 41:
            if (n > 0 && p->getWidthsAt(n - 1, start, end) == Acad::eOk)
                p->setWidthsAt(n - 1, start, std::max(0.0, g->real));
            break;
        case 42:
            if (n > 0) p->setBulgeAt(n - 1, g->real);
            break;
        default:
            break;
        }
    }
    return p;
}

AcDbEntity* Reader::textEntity(const Record& r, bool attribute) const {
    const AcGeVector3d n = r.normal();
    auto* t = new AcDbText();
    t->setNormal(n);
    const AcGePoint3d position = world(r, 10, n);
    t->setPosition(position);
    t->setHeight(r.real(40, mDb->textsize()));
    t->setRotation(radians(r.real(50)));
    t->setWidthFactor(r.real(41, 1.0));
    t->setOblique(radians(r.real(51)));
    t->setThickness(r.real(39));
    const AcDbObjectId style = styleNamed(text(r, 7));
    t->setTextStyle(style.isNull() ? mDb->textstyle() : style);
    const long long mirror = r.integer(71);
    t->mirrorInX((mirror & 2) != 0);
    t->mirrorInY((mirror & 4) != 0);
    const long long horz = r.integer(72);
    // Attributes keep the vertical alignment in 74: their 73 is a field length.
    const long long vert = r.integer(attribute ? 74 : 73);
    t->setHorizontalMode(horz >= 0 && horz <= 5 ? static_cast<AcDb::TextHorzMode>(horz)
                                                : AcDb::kTextLeft);
    t->setVerticalMode(vert >= 0 && vert <= 3 ? static_cast<AcDb::TextVertMode>(vert)
                                              : AcDb::kTextBase);
    if (r.find(11))
        t->setAlignmentPoint(world(r, 11, n));
    else if (!t->isDefaultAlignment())
        t->setAlignmentPoint(position);

    const long long flags = r.integer(70);
    if (r.type() == "ATTDEF" && (flags & 2) == 0) {
        // A definition shows its tag only while the block is edited; inserts show their own
        // attributes instead.
        t->setTextString(text(r, 2).c_str());
        t->setVisibility(AcDb::kInvisible);
    } else {
        t->setTextString(text(r, 1).c_str());
        if (attribute && (flags & 1) != 0) t->setVisibility(AcDb::kInvisible);
    }
    return t;
}

AcDbEntity* Reader::ellipse(const Record& r) const {
    const AcGePoint3d major = r.point(11);
    auto* e = new AcDbEllipse();
    if (e->set(r.point(10), r.normal(), AcGeVector3d(major.x, major.y, major.z), r.real(40, 1.0)) !=
            Acad::eOk ||
        e->setStartParam(r.real(41, 0.0)) != Acad::eOk ||
        e->setEndParam(r.real(42, 2 * kPi)) != Acad::eOk) {
        delete e;
        return nullptr;
    }
    return e;
}

// Fitted polylines come in as simple ones through their fitted vertices: the shape in the file
// is kept exactly, and the frame points that steered the fit are dropped.
AcDbEntity* Reader::polyline(const std::vector<Record>& records, size_t first, size_t end) const {
    const Record& head = records[first - 1];
    const long long flags = head.integer(70);
    // Polygon and polyface meshes have no platform class.
    if ((flags & (16 | 64)) != 0) return nullptr;
    constexpr long long kFrame = 16;
    if ((flags & 8) != 0) {
        auto* p = new AcDb3dPolyline();
        for (size_t k = first; k < end; ++k)
            if ((records[k].integer(70) & kFrame) == 0)
                p->appendVertex(new AcDb3dPolylineVertex(records[k].point(10)));
        if ((flags & 1) != 0) p->makeClosed();
        return p;
    }
    auto* p = new AcDb2dPolyline();
    p->setNormal(head.normal());
    p->setElevation(head.point(10).z);
    p->setThickness(head.real(39));
    const double startWidth = std::max(0.0, head.real(40)), endWidth = std::max(0.0, head.real(41));
    p->setDefaultStartWidth(startWidth);
    p->setDefaultEndWidth(endWidth);
    if ((flags & 128) != 0) p->setLinetypeGenerationOn();
    for (size_t k = first; k < end; ++k) {
        const Record& v = records[k];
        const long long vflags = v.integer(70);
        if ((vflags & kFrame) != 0) continue;
        auto* vertex = new AcDb2dVertex(
            v.point(10), v.real(42), std::max(0.0, v.real(40, startWidth)),
            std::max(0.0, v.real(41, endWidth)), 0.0, static_cast<Adesk::Int32>(v.integer(91)));
        if ((vflags & 2) != 0) {
            vertex->useTangent();
            vertex->setTangent(radians(v.real(50)));
        }
        p->appendVertex(vertex);
    }
    if ((flags & 1) != 0) p->makeClosed();
    return p;
}

std::vector<AcDbEntity*> Reader::mtext(const Record& r) const {
    std::wstring content;
    for (const Group* g = r.begin + 1; g < r.end; ++g)
        if (g->code == 3) content += text(g);
    content += text(r, 1);
    const std::vector<std::wstring> lines = mtextLines(content);

    const AcGeVector3d n = r.normal();
    AcGeVector3d ox, oy;
    ents_detail::ocsAxes(n, ox, oy);
    AcGeVector3d dir = ox * std::cos(r.real(50)) + oy * std::sin(r.real(50));
    if (r.find(11)) {
        const AcGePoint3d d = r.point(11);
        AcGeVector3d v(d.x, d.y, d.z);
        v = v - n * v.dotProduct(n);
        if (v.length() > 1e-12) dir = v / v.length();
    }
    const double rotation = std::atan2(dir.dotProduct(oy), dir.dotProduct(ox));
    const AcGeVector3d up = n.crossProduct(dir);
    const double height = r.real(40, mDb->textsize());
    const double step = height * kMtextLineStep * std::max(0.25, r.real(44, 1.0));
    const long long attach = std::clamp(r.integer(71, 1), 1LL, 9LL);
    const long long column = (attach - 1) % 3, row = (attach - 1) / 3;
    const double blockHeight = static_cast<double>(lines.size() - 1) * step + height;
    const double top = row == 0 ? 0.0 : row == 1 ? blockHeight / 2 : blockHeight;
    const AcGePoint3d insertion = r.point(10);
    const AcDbObjectId style = styleNamed(text(r, 7));

    std::vector<AcDbEntity*> texts;
    for (size_t i = 0; i < lines.size(); ++i) {
        if (lines[i].empty()) continue;
        const AcGePoint3d at = insertion + up * (top - static_cast<double>(i) * step);
        auto* t = new AcDbText();
        t->setNormal(n);
        t->setTextString(lines[i].c_str());
        t->setHeight(height);
        t->setRotation(rotation);
        t->setTextStyle(style.isNull() ? mDb->textstyle() : style);
        t->setHorizontalMode(column == 0   ? AcDb::kTextLeft
                             : column == 1 ? AcDb::kTextCenter
                                           : AcDb::kTextRight);
        t->setVerticalMode(AcDb::kTextTop);
        t->setPosition(at);
        t->setAlignmentPoint(at);
        texts.push_back(t);
    }
    return texts;
}

std::vector<AcDbEntity*> Reader::inserts(const Record& r) const {
    std::vector<AcDbEntity*> made;
    auto block = mBlocks.find(upperCase(text(r, 2)));
    if (block == mBlocks.end() || block->second.isNull()) return made;
    const AcGeVector3d n = r.normal();
    AcGeVector3d ox, oy;
    ents_detail::ocsAxes(n, ox, oy);
    auto scale = [&r](int code) {
        const double s = r.real(code, 1.0);
        return s != 0.0 ? s : 1.0;
    };
    const AcGeScale3d factors(scale(41), scale(42), scale(43));
    const double rotation = radians(r.real(50));
    const long long columns = std::max(1LL, r.integer(70, 1)),
                    rows = std::max(1LL, r.integer(71, 1));
    const double dx = r.real(44), dy = r.real(45);
    const AcGePoint3d base = r.point(10);
    const double c = std::cos(rotation), s = std::sin(rotation);
    for (long long row = 0; row < rows; ++row)
        for (long long col = 0; col < columns; ++col) {
            if (static_cast<long long>(made.size()) >= kMostCopies) return made;
            // Copies step along the insert's rotated axes in its plane.
            const double u = static_cast<double>(col) * dx, v = static_cast<double>(row) * dy;
            const AcGePoint3d ocs(base.x + u * c - v * s, base.y + u * s + v * c, base.z);
            auto* ref = new AcDbBlockReference(ents_detail::ocsToWorld(ocs, n), block->second);
            ref->setScaleFactors(factors);
            ref->setRotation(rotation);
            ref->setNormal(n);
            made.push_back(ref);
        }
    return made;
}

} // namespace qor::dxf
