// The ground the demonstration's pictures show, around the site and its roads.
#pragma once

// x1, y1, x2, y2 in drawing units.
inline constexpr double kQorDemoWindow[4] = {-30.0, -30.0, 270.0, 180.0};
