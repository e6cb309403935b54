// Sorting and searching integer lists, and walking face lists (count, then that many indices).
#include "toolkit/geometry.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <utility>

namespace {

// Hoare partition around the middle element. Recursing into the smaller part only keeps the
// depth logarithmic whatever the input.
void quickSort(int* a, int lo, int hi) {
    while (lo < hi) {
        const int pivot = a[lo + (hi - lo) / 2];
        int i = lo, j = hi;
        while (i <= j) {
            while (a[i] < pivot)
                ++i;
            while (a[j] > pivot)
                --j;
            if (i <= j) std::swap(a[i++], a[j--]);
        }
        if (j - lo < hi - i) {
            quickSort(a, lo, j);
            lo = i;
        } else {
            quickSort(a, i, hi);
            hi = j;
        }
    }
}

} // namespace

void M_QuickSort(AcArray<int>& a) {
    if (a.length() > 1) quickSort(a.asArrayPtr(), 0, a.length() - 1);
}

int M_QuickSearch(AcArray<int> a, int key) {
    if (a.isEmpty()) return -1;
    if (a[0] == key) return 0;
    int low = 0, high = a.length() - 1;
    while (low <= high) {
        const int mid = low + (high - low) / 2;
        if (a[mid] == key) return mid;
        if (a[mid] < key)
            low = mid + 1;
        else
            high = mid - 1;
    }
    return -1;
}

void M_ReverseFaces(AcArray<int>& faces) {
    const int len = faces.length();
    for (int pos = 0; pos < len;) {
        const int count = faces[pos];
        // A hole's negative count, or a record running past the end, ends the walk: stepping
        // by it would go backwards or out of the list.
        if (count < 0 || count > len - pos - 1) return;
        std::reverse(faces.begin() + pos + 1, faces.begin() + pos + 1 + count);
        pos += count + 1;
    }
}

int M_GetEdgeCount(AcArray<int> faces) {
    const std::int64_t len = faces.length();
    std::int64_t edges = 0;
    for (std::int64_t pos = 0; pos < len;) {
        const std::int64_t count = std::llabs(static_cast<long long>(faces[static_cast<int>(pos)]));
        edges += count;
        pos += count + 1;
    }
    return static_cast<int>(std::min<std::int64_t>(edges, INT_MAX));
}
