// The extents of what a drawable actually draws, from its recorded primitives. A view fitted
// to these shows everything drawn, also where an object's own extents leave out its drawn
// width (as the double line's do, by design).
#pragma once

#include "dbmain.h"
#include "girecorder.h"
#include "renderstyle.h"

namespace qorrender {

// Adds the bounds of every recorded primitive on a shown layer. Construction lines and rays
// have no bounds; arcs add only the part they sweep.
void addDrawnBounds(const AcGiRecorder& recorder, DrawingStyles& styles, AcDbExtents& extents);

} // namespace qorrender
