// File names as the system takes them: UTF-8 with '/' separators. The platform's file
// functions accept names with either separator.
#pragma once

#include "winstr.h"

#include <string>

inline std::string qorNativePath(const wchar_t* name) {
    std::string path = qorToUtf8(name);
    for (char& c : path)
        if (c == '\\') c = '/';
    return path;
}
