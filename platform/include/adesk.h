// Basic integer types and character conventions shared by every interface.
#pragma once

#include <cstddef>
#include <cstdint>

// Characters are wide, as on the host platform.
using ACHAR = wchar_t;

#ifndef ACRX_T
#define ACRX_T(x) L##x
#endif
#ifndef _T
#define _T(x) L##x
#endif

struct Adesk {
    using Int8 = std::int8_t;
    using Int16 = std::int16_t;
    using Int32 = std::int32_t;
    using Int64 = std::int64_t;
    using UInt8 = std::uint8_t;
    using UInt16 = std::uint16_t;
    using UInt32 = std::uint32_t;
    using UInt64 = std::uint64_t;
    using UChar = unsigned char;
    using Boolean = bool;
    using Bool8 = bool;
    using IntPtr = std::intptr_t;
    using UIntPtr = std::uintptr_t;
    using GsMarker = std::intptr_t;
    static constexpr bool kFalse = false;
    static constexpr bool kTrue = true;
};

// Windows-style sizes: `long` is 32 bits in every filed or printed value.
using DWORD = std::uint32_t;
using WORD = std::uint16_t;
using BYTE = std::uint8_t;
using BOOL = int;
using UINT = unsigned int;
using LONG = std::int32_t;
#ifndef TRUE
#define TRUE 1
#define FALSE 0
#endif
