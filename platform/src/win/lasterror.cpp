// The calling thread's last error.
#include "winerror.h"

namespace {
thread_local DWORD tLastError = ERROR_SUCCESS;
} // namespace

DWORD GetLastError() {
    return tLastError;
}

void SetLastError(DWORD code) {
    tLastError = code;
}
