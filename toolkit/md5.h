// MD5 digests of short texts, as lowercase hexadecimal, over their ANSI (code page 936) bytes.
#pragma once

#include "winstr.h"

#include <cstddef>
#include <cstdint>

// The message digest of RFC 1321, fed in pieces.
class CMD5Checksum {
public:
    CMD5Checksum();
    void Update(const std::uint8_t* data, std::size_t length);
    // Pads, appends the bit count and gives the 32 hexadecimal digits; the object is spent.
    CString Final();

private:
    void Transform(const std::uint8_t block[64]);

    std::uint8_t m_lpszBuffer[64] = {};
    std::uint32_t m_nCount[2] = {0, 0}; // bits, low word first
    std::uint32_t m_lMD5[4];
};

// The digest of the text's ANSI form; len 16 gives the middle 16 of the 32 digits.
CString M_GetMD5(CString text, int len);
// The text in the ANSI code page with its terminator, into buf of size bytes: size on success;
// 0 with buf emptied on failure; 0 for a null buf.
int M_T2A(CString text, char* buf, int size);
