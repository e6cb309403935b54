// Vertices of the 2D and 3D polylines, their types, and the iterator over them.
//
// A polyline owns its vertices: appendVertex hands one over and the polyline deletes it. They
// live inside the polyline and are filed with it, so they have no object ids; reach them with
// vertexIterator() and entity(). Closing a vertex does nothing.
#pragma once

#include "dbmain.h"

namespace AcDb {
// Vertex types. Value 1 marks the vertices a curve fit adds in 2D and the spline frame's control
// points in 3D.
enum Vertex2dType {
    k2dVertex = 0,
    k2dCurveFitVertex = 1,
    k2dSplineFitVertex = 8,
    k2dSplineCtlVertex = 9,
};
enum Vertex3dType { k3dSimpleVertex = 0, k3dControlVertex = 1, k3dFitVertex = 2 };
enum Poly2dType {
    k2dSimplePoly = 0,
    k2dFitCurvePoly = 1,
    k2dQuadSplinePoly = 2,
    k2dCubicSplinePoly = 3,
};
enum Poly3dType { k3dSimplePoly = 0, k3dQuadSplinePoly = 1, k3dCubicSplinePoly = 2 };
} // namespace AcDb

class AcDbVertex : public AcDbEntity {
public:
    ACRX_DECLARE_MEMBERS(AcDbVertex);
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;
};

// Walks the entities of a container from a snapshot taken when it was made: valid while the
// container keeps them.
class AcDbObjectIterator : public AcRxObject {
public:
    ACRX_DECLARE_MEMBERS(AcDbObjectIterator);
    explicit AcDbObjectIterator(std::vector<AcDbEntity*> entities = {})
        : mItems(std::move(entities)) {}

    bool done() const { return mPos >= mItems.size(); }
    void start(bool atEnd = false);
    void step(bool backwards = false, bool skipDeleted = true);
    void setPosition(AcDbEntity* ent);
    void setPosition(AcDbObjectId id);
    // Null when done.
    AcDbEntity* entity();
    // Null for entities that live inside their container.
    AcDbObjectId objectId();

private:
    std::vector<AcDbEntity*> mItems;
    size_t mPos = 0;
};
