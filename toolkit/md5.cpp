#include "toolkit/md5.h"

#include "wincodepage.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr std::uint32_t kShift[64] = {7, 12, 17, 22, 7, 12, 17, 22, 7, 12, 17, 22, 7, 12, 17, 22,
                                      5, 9,  14, 20, 5, 9,  14, 20, 5, 9,  14, 20, 5, 9,  14, 20,
                                      4, 11, 16, 23, 4, 11, 16, 23, 4, 11, 16, 23, 4, 11, 16, 23,
                                      6, 10, 15, 21, 6, 10, 15, 21, 6, 10, 15, 21, 6, 10, 15, 21};

// floor(abs(sin(i + 1)) * 2^32), written out so the digest never depends on the math library.
constexpr std::uint32_t kSine[64] = {
    0xd76aa478, 0xe8c7b756, 0x242070db, 0xc1bdceee, 0xf57c0faf, 0x4787c62a, 0xa8304613, 0xfd469501,
    0x698098d8, 0x8b44f7af, 0xffff5bb1, 0x895cd7be, 0x6b901122, 0xfd987193, 0xa679438e, 0x49b40821,
    0xf61e2562, 0xc040b340, 0x265e5a51, 0xe9b6c7aa, 0xd62f105d, 0x02441453, 0xd8a1e681, 0xe7d3fbc8,
    0x21e1cde6, 0xc33707d6, 0xf4d50d87, 0x455a14ed, 0xa9e3e905, 0xfcefa3f8, 0x676f02d9, 0x8d2a4c8a,
    0xfffa3942, 0x8771f681, 0x6d9d6122, 0xfde5380c, 0xa4beea44, 0x4bdecfa9, 0xf6bb4b60, 0xbebfbc70,
    0x289b7ec6, 0xeaa127fa, 0xd4ef3085, 0x04881d05, 0xd9d4d039, 0xe6db99e5, 0x1fa27cf8, 0xc4ac5665,
    0xf4292244, 0x432aff97, 0xab9423a7, 0xfc93a039, 0x655b59c3, 0x8f0ccc92, 0xffeff47d, 0x85845dd1,
    0x6fa87e4f, 0xfe2ce6e0, 0xa3014314, 0x4e0811a1, 0xf7537e82, 0xbd3af235, 0x2ad7d2bb, 0xeb86d391};

// Which message word each step reads: i, 5i + 1, 3i + 5 and 7i (mod 16) in the four rounds.
constexpr int kWord[64] = {0, 1, 2,  3,  4,  5,  6,  7,  8,  9,  10, 11, 12, 13, 14, 15,
                           1, 6, 11, 0,  5,  10, 15, 4,  9,  14, 3,  8,  13, 2,  7,  12,
                           5, 8, 11, 14, 1,  4,  7,  10, 13, 0,  3,  6,  9,  12, 15, 2,
                           0, 7, 14, 5,  12, 3,  10, 1,  8,  15, 6,  13, 4,  11, 2,  9};

std::uint32_t rotl(std::uint32_t x, std::uint32_t n) {
    return (x << n) | (x >> (32 - n));
}

struct RoundF {
    static std::uint32_t mix(std::uint32_t b, std::uint32_t c, std::uint32_t d) {
        return (b & c) | (~b & d);
    }
};
struct RoundG {
    static std::uint32_t mix(std::uint32_t b, std::uint32_t c, std::uint32_t d) {
        return (d & b) | (~d & c);
    }
};
struct RoundH {
    static std::uint32_t mix(std::uint32_t b, std::uint32_t c, std::uint32_t d) {
        return b ^ c ^ d;
    }
};
struct RoundI {
    static std::uint32_t mix(std::uint32_t b, std::uint32_t c, std::uint32_t d) {
        return c ^ (b | ~d);
    }
};

// The sixteen steps of one round, each with its own mixing function: one function per round
// rather than a test per step lets the compiler unroll the steps into straight code.
template <class Round>
void round16(int first, const std::uint32_t m[16], std::uint32_t& a, std::uint32_t& b,
             std::uint32_t& c, std::uint32_t& d) {
#pragma GCC unroll 16
    for (int i = first; i < first + 16; ++i) {
        const std::uint32_t next =
            b + rotl(a + Round::mix(b, c, d) + kSine[i] + m[kWord[i]], kShift[i]);
        a = d;
        d = c;
        c = b;
        b = next;
    }
}

} // namespace

CMD5Checksum::CMD5Checksum() : m_lMD5{0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476} {}

void CMD5Checksum::Transform(const std::uint8_t block[64]) {
    std::uint32_t m[16];
    for (int i = 0; i < 16; ++i)
        m[i] = block[i * 4] | (block[i * 4 + 1] << 8) | (block[i * 4 + 2] << 16) |
               (static_cast<std::uint32_t>(block[i * 4 + 3]) << 24);
    std::uint32_t a = m_lMD5[0], b = m_lMD5[1], c = m_lMD5[2], d = m_lMD5[3];
    round16<RoundF>(0, m, a, b, c, d);
    round16<RoundG>(16, m, a, b, c, d);
    round16<RoundH>(32, m, a, b, c, d);
    round16<RoundI>(48, m, a, b, c, d);
    m_lMD5[0] += a;
    m_lMD5[1] += b;
    m_lMD5[2] += c;
    m_lMD5[3] += d;
}

void CMD5Checksum::Update(const std::uint8_t* data, std::size_t length) {
    std::size_t used = (m_nCount[0] >> 3) & 0x3F;
    const std::uint64_t bits = (static_cast<std::uint64_t>(m_nCount[1]) << 32 | m_nCount[0]) +
                               static_cast<std::uint64_t>(length) * 8;
    m_nCount[0] = static_cast<std::uint32_t>(bits);
    m_nCount[1] = static_cast<std::uint32_t>(bits >> 32);
    while (length > 0) {
        // Whole blocks are read where they lie; only the pieces go through the buffer.
        if (used == 0 && length >= 64) {
            Transform(data);
            data += 64;
            length -= 64;
            continue;
        }
        const std::size_t take = std::min(length, 64 - used);
        std::memcpy(m_lpszBuffer + used, data, take);
        used += take;
        data += take;
        length -= take;
        if (used == 64) {
            Transform(m_lpszBuffer);
            used = 0;
        }
    }
}

CString CMD5Checksum::Final() {
    std::uint8_t count[8];
    for (int i = 0; i < 4; ++i) {
        count[i] = static_cast<std::uint8_t>(m_nCount[0] >> (8 * i));
        count[i + 4] = static_cast<std::uint8_t>(m_nCount[1] >> (8 * i));
    }
    static const std::uint8_t kPadding[64] = {0x80};
    const std::size_t used = (m_nCount[0] >> 3) & 0x3F;
    Update(kPadding, used < 56 ? 56 - used : 120 - used);
    Update(count, 8);
    CString hex;
    for (std::uint32_t word : m_lMD5)
        for (int i = 0; i < 4; ++i) {
            const unsigned byte = (word >> (8 * i)) & 0xFF;
            CString digits;
            if (byte == 0)
                digits = L"00";
            else if (byte < 16)
                digits.Format(L"0%x", byte);
            else
                digits.Format(L"%x", byte);
            hex += digits;
        }
    return hex;
}

int M_T2A(CString text, char* buf, int size) {
    if (!buf) return 0;
    const int written =
        WideCharToMultiByte(CP_ACP, WC_COMPOSITECHECK, text, -1, buf, size, nullptr, nullptr);
    if (written == 0) {
        if (size > 0) buf[0] = '\0';
        return 0;
    }
    return size;
}

CString M_GetMD5(CString text, int len) {
    char ansi[0x104] = {};
    M_T2A(text, ansi, sizeof ansi);
    CMD5Checksum md5;
    md5.Update(reinterpret_cast<const std::uint8_t*>(ansi), std::strlen(ansi));
    const CString digest = md5.Final();
    return len == 16 ? digest.Mid(8, 16) : digest;
}
