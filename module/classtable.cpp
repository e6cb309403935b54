#include "module/classtable.h"

#include "module/dubline.h"

#include <vector>

// One row per class, in the fixed order of drawings' class records; each object class adds
// its row at its place in that order.
static const std::vector<QorClassRow> kClassTable = {
    QOR_CLASS_ROW(AcdbQorDubLine), // 35
};

std::span<const QorClassRow> qorClassTable() {
    return kClassTable;
}
