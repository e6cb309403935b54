// Windows result codes, as the registry and code-page functions return them, and the calling
// thread's last error.
#pragma once

#include "adesk.h"

#define ERROR_SUCCESS 0
#define ERROR_FILE_NOT_FOUND 2
#define ERROR_ACCESS_DENIED 5
#define ERROR_INVALID_HANDLE 6
#define ERROR_NOT_ENOUGH_MEMORY 8
#define ERROR_INVALID_PARAMETER 87
#define ERROR_INSUFFICIENT_BUFFER 122
#define ERROR_BAD_PATHNAME 161
#define ERROR_MORE_DATA 234
#define ERROR_NO_MORE_ITEMS 259
#define ERROR_INVALID_FLAGS 1004
#define ERROR_BADDB 1009
#define ERROR_REGISTRY_IO_FAILED 1016
#define ERROR_KEY_DELETED 1018
#define ERROR_NO_UNICODE_TRANSLATION 1113

// Per thread, as on Windows. The code-page functions set it when they fail; the registry
// functions return their code instead.
DWORD GetLastError();
void SetLastError(DWORD code);
