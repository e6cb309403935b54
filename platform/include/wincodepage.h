// Code pages: the ANSI code page is 936 (GBK), as on a Chinese Windows system; UTF-8 is the
// other one supported. Conversions follow the Windows rules: a length of -1 means a
// NUL-terminated input whose NUL is converted too, an output size of 0 asks for the size
// needed, and a result of 0 is a failure whose reason GetLastError gives.
#pragma once

#include "winerror.h"
#include "winstr.h"

#include <string>
#include <string_view>

using LPBOOL = BOOL*;

#define CP_ACP 0
#define CP_OEMCP 1
#define CP_MACCP 2
#define CP_THREAD_ACP 3
#define CP_UTF8 65001

#define MB_PRECOMPOSED 0x00000001
#define MB_COMPOSITE 0x00000002
#define MB_USEGLYPHCHARS 0x00000004
#define MB_ERR_INVALID_CHARS 0x00000008

#define WC_COMPOSITECHECK 0x00000200
#define WC_DISCARDNS 0x00000010
#define WC_SEPCHARS 0x00000020
#define WC_DEFAULTCHAR 0x00000040
#define WC_ERR_INVALID_CHARS 0x00000080
#define WC_NO_BEST_FIT_CHARS 0x00000400

// 936 both.
UINT GetACP();
UINT GetOEMCP();
// CP_ACP, CP_OEMCP, CP_THREAD_ACP, 936 and CP_UTF8.
BOOL IsValidCodePage(UINT codePage);

// Wide to code page. In 936 a character that has no code becomes lpDefaultChar (one byte, or
// a lead and a trail byte; '?' when null) and sets *lpUsedDefaultChar; UTF-8 takes neither
// (ERROR_INVALID_PARAMETER) and writes a lone surrogate as U+FFFD, or fails with
// ERROR_NO_UNICODE_TRANSLATION under WC_ERR_INVALID_CHARS. Surrogate pairs are joined first.
// A buffer that is too small fails with ERROR_INSUFFICIENT_BUFFER and receives nothing.
int WideCharToMultiByte(UINT CodePage, DWORD dwFlags, LPCWSTR lpWideCharStr, int cchWideChar,
                        LPSTR lpMultiByteStr, int cbMultiByte, LPCSTR lpDefaultChar,
                        LPBOOL lpUsedDefaultChar);

// Code page to wide. An invalid or unmapped sequence becomes '?' in 936 (a lead and trail
// byte pair counts as one) and U+FFFD in UTF-8; under MB_ERR_INVALID_CHARS it fails with
// ERROR_NO_UNICODE_TRANSLATION instead.
int MultiByteToWideChar(UINT CodePage, DWORD dwFlags, LPCSTR lpMultiByteStr, int cbMultiByte,
                        LPWSTR lpWideCharStr, int cchWideChar);

// Whole strings by the same rules, for platform code; an unsupported code page gives an empty
// string. UTF-8 goes through qorToUtf8 and qorFromUtf8.
std::string qorToCodePage(UINT codePage, std::wstring_view text, bool* usedDefaultChar = nullptr);
std::wstring qorFromCodePage(UINT codePage, std::string_view bytes);
