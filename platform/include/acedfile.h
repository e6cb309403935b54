// Host file services: finding a file on the host's search path.
#pragma once

#include "adsdef.h"

#include <cstddef>
#include <string>
#include <vector>

#ifndef MAX_PATH
#define MAX_PATH 260
#endif

// Finds fname, which may use '\' or '/' separators. A name with a folder from the root is
// checked as it is; any other is looked for, in order, in the folder of the working drawing
// (when it has a file name), in the support folders the host has set, and in the current
// folder. Only files count, not folders. RTNORM with the full path (with '/' separators) in
// result; RTERROR, with an empty result, when the file is not found or its path does not fit
// in bufLen characters with its NUL.
int acedFindFile(const ACHAR* fname, ACHAR* result, size_t bufLen);
// The result buffer is taken to hold MAX_PATH characters.
int acedFindFile(const ACHAR* fname, ACHAR* result);

// The host's installation and support folders, searched after the drawing's folder.
void qorSetSupportFolders(std::vector<std::wstring> folders);
std::vector<std::wstring> qorSupportFolders();
