// The recorder's lightweight-polyline primitive, read through the polyline's own interface.
#include "dbents.h"
#include "girecorder.h"

#include <gtest/gtest.h>

namespace {

TEST(GiRecorderPline, RecordsTheRequestedSegmentsWithBulgesAndWidths) {
    AcDbPolyline pl;
    pl.addVertexAt(0, AcGePoint2d(0, 0), 0.0, 0.5, 0.5);
    pl.addVertexAt(1, AcGePoint2d(4, 0), 1.0, 0.5, 0.25);
    pl.addVertexAt(2, AcGePoint2d(4, 4));
    pl.setClosed(true);

    AcGiRecorder rec;
    AcGiWorldGeometry& g = rec.geometry();
    g.pline(pl);       // all three segments: back to the first vertex
    g.pline(pl, 1, 1); // the arc segment alone
    g.pline(pl, 3);    // past the last segment
    pl.setClosed(false);
    g.pline(pl, 1, 9); // more segments than there are: what is left

    const auto& items = rec.items();
    ASSERT_EQ(items.size(), 3u);
    EXPECT_EQ(rec.rejectedCount(), 1);

    const AcGiRecordedItem& all = items[0];
    EXPECT_EQ(all.kind, AcGiRecordedKind::kPline);
    ASSERT_EQ(all.points.length(), 4);
    EXPECT_EQ(all.points[3], AcGePoint3d(0, 0, 0));
    ASSERT_EQ(all.numbers.length(), 12);
    EXPECT_DOUBLE_EQ(all.numbers[3], 1.0);  // bulge of the second vertex
    EXPECT_DOUBLE_EQ(all.numbers[5], 0.25); // its end width
    EXPECT_EQ(all.ints[1], 3);

    const AcGiRecordedItem& arc = items[1];
    ASSERT_EQ(arc.points.length(), 2);
    EXPECT_EQ(arc.points[0], AcGePoint3d(4, 0, 0));
    EXPECT_EQ(arc.points[1], AcGePoint3d(4, 4, 0));

    EXPECT_EQ(items[2].ints[1], 1);
    EXPECT_EQ(items[2].points.length(), 2);
}

} // namespace
