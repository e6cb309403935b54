#include "module/classtable.h"

#include <vector>

// One row per class, in the fixed order of drawings' class records; each object class adds its row.
static const std::vector<QorClassRow> kClassTable = {};

std::span<const QorClassRow> qorClassTable() { return kClassTable; }
