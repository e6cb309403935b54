// Storage handed across the filer interface: strings from readString, chunks from readBChunk.
#include "dbfiler.h"

#include <cstdlib>

void* acdbAlloc(size_t n) {
    // A zero-byte request still gives a distinct, freeable block.
    return std::malloc(n ? n : 1);
}

void acdbFree(void* p) {
    std::free(p);
}
