// The archive reader: little-endian numbers, the MFC string encoding in its narrow (code page
// 936) and wide forms, and data that ends too soon.
#include "archive.h"

#include "support/tempdir.h"

#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <string>
#include <vector>

namespace {

// Builds archive bytes by hand, so the reader is checked against the layout itself.
struct Bytes {
    std::vector<BYTE> b;

    template <class T> Bytes& le(T v) {
        BYTE raw[sizeof(T)];
        std::memcpy(raw, &v, sizeof v);
        b.insert(b.end(), raw, raw + sizeof raw);
        return *this;
    }
    Bytes& raw(const std::string& s) {
        b.insert(b.end(), s.begin(), s.end());
        return *this;
    }
    // A narrow string with the shortest length prefix.
    Bytes& narrow(const std::string& s) {
        length(s.size());
        return raw(s);
    }
    Bytes& wide(const std::u16string& s) {
        le<BYTE>(0xFF).le<WORD>(0xFFFE);
        length(s.size());
        for (char16_t c : s)
            le<WORD>(static_cast<WORD>(c));
        return *this;
    }
    void length(size_t n) {
        if (n < 0xFF) {
            le<BYTE>(static_cast<BYTE>(n));
        } else if (n < 0xFFFF) {
            le<BYTE>(0xFF).le<WORD>(static_cast<WORD>(n));
        } else {
            le<BYTE>(0xFF).le<WORD>(0xFFFF).le<DWORD>(static_cast<DWORD>(n));
        }
    }
};

template <class T>
concept Readable = requires(CArchive& a, T& v) {
    a >> v;
};

TEST(Archive, NumbersAreLittleEndian) {
    Bytes in;
    in.le<Adesk::Int32>(202).le<Adesk::Int32>(-7).le<double>(1.2).le<WORD>(0xBEEF);
    in.le<short>(-2).le<BYTE>(0x7F).le<DWORD>(0xDEADBEEF).le<LONGLONG>(-1234567890123LL);
    in.le<float>(0.5f).le<BYTE>(2);
    CMemFile file(in.b.data(), static_cast<UINT>(in.b.size()));
    CArchive ar(&file, CArchive::load);
    int version = 0, negative = 0;
    double ratio = 0;
    WORD w = 0;
    short s = 0;
    BYTE byte = 0;
    DWORD d = 0;
    LONGLONG ll = 0;
    float f = 0;
    bool flag = false;
    ar >> version >> negative >> ratio >> w >> s >> byte >> d >> ll >> f >> flag;
    EXPECT_FALSE(ar.Failed());
    EXPECT_EQ(version, 202);
    EXPECT_EQ(negative, -7);
    EXPECT_EQ(ratio, 1.2);
    EXPECT_EQ(w, 0xBEEF);
    EXPECT_EQ(s, -2);
    EXPECT_EQ(byte, 0x7F);
    EXPECT_EQ(d, 0xDEADBEEFu);
    EXPECT_EQ(ll, -1234567890123LL);
    EXPECT_EQ(f, 0.5f);
    EXPECT_TRUE(flag);
    EXPECT_EQ(file.GetPosition(), file.GetLength());
    // A filed long is 32 bits but a long here is 64; the archive will not guess.
    static_assert(Readable<int> && Readable<LONG> && Readable<LONGLONG>);
    static_assert(!Readable<long> && !Readable<unsigned long>);
}

TEST(Archive, NarrowStringsAreGbkAndWideOnesUtf16) {
    Bytes in;
    in.narrow("DX-DGX").narrow("\xB5\xC8\xB8\xDF\xCF\xDF").narrow("");
    in.wide(u"道路").wide(u"\U0001F600x");
    CMemFile file(in.b.data(), static_cast<UINT>(in.b.size()));
    CArchive ar(&file, CArchive::load);
    CString key, layer, empty(L"was"), road, emoji;
    ar >> key >> layer >> empty >> road >> emoji;
    EXPECT_FALSE(ar.Failed());
    EXPECT_EQ(key, L"DX-DGX");
    EXPECT_EQ(layer, L"等高线");
    EXPECT_EQ(empty, L"");
    EXPECT_EQ(road, L"道路");
    EXPECT_EQ(emoji, L"\U0001F600x") << "a surrogate pair is one character here";
}

TEST(Archive, LongStringsUseTheWiderLengthPrefixes) {
    const std::string s255(255, 'a'), s70000(70000, 'b');
    const std::u16string w300(300, u'宽');
    Bytes in;
    in.narrow(s255).narrow(s70000).wide(w300);
    // A 16-bit length of 0xFFFE after the wide marker is a length, not another marker.
    in.le<BYTE>(0xFF).le<WORD>(0xFFFE).le<BYTE>(0xFF).le<WORD>(0xFFFE);
    in.b.resize(in.b.size() + 2 * 0xFFFE, 0);
    for (size_t i = in.b.size() - 2 * 0xFFFE; i < in.b.size(); i += 2)
        in.b[i] = 'c';
    CMemFile file(in.b.data(), static_cast<UINT>(in.b.size()));
    CArchive ar(&file, CArchive::load);
    CString a, b, c, d;
    ar >> a >> b >> c >> d;
    ASSERT_FALSE(ar.Failed());
    EXPECT_EQ(a.str(), std::wstring(255, L'a'));
    EXPECT_EQ(b.str(), std::wstring(70000, L'b'));
    EXPECT_EQ(c.str(), std::wstring(300, L'宽'));
    EXPECT_EQ(d.str(), std::wstring(0xFFFE, L'c'));
}

TEST(Archive, ShortDataFailsWithZeroValuesAndTheFailureSticks) {
    Bytes in;
    in.le<Adesk::Int32>(2).raw("\x01\x02\x03");
    CMemFile file(in.b.data(), static_cast<UINT>(in.b.size()));
    CArchive ar(&file, CArchive::load);
    int version = 0, cut = -1;
    ar >> version >> cut;
    EXPECT_EQ(version, 2);
    EXPECT_EQ(cut, 0) << "a partial number is not assembled from the bytes there were";
    EXPECT_TRUE(ar.Failed());
    double d = 5;
    BYTE b = 9;
    ar >> d >> b;
    EXPECT_EQ(d, 0.0);
    EXPECT_EQ(b, 0) << "after a failure nothing more is read";
}

TEST(Archive, StringLengthsBeyondTheDataFailWithoutReading) {
    struct Case {
        const char* what;
        Bytes bytes;
    };
    std::vector<Case> cases;
    cases.push_back({"byte length", Bytes().le<BYTE>(10).raw("abc")});
    cases.push_back({"16-bit length", Bytes().le<BYTE>(0xFF).le<WORD>(300).raw("abc")});
    cases.push_back(
        {"32-bit length", Bytes().le<BYTE>(0xFF).le<WORD>(0xFFFF).le<DWORD>(0xFFFFFFF0u).raw("a")});
    cases.push_back({"64-bit length", Bytes()
                                          .le<BYTE>(0xFF)
                                          .le<WORD>(0xFFFF)
                                          .le<DWORD>(0xFFFFFFFFu)
                                          .le<ULONGLONG>(~0ull)
                                          .raw("a")});
    cases.push_back({"odd wide data", Bytes().le<BYTE>(0xFF).le<WORD>(0xFFFE).le<BYTE>(2).raw(
                                          std::string("a\0b", 3))});
    cases.push_back({"cut-off prefix", Bytes().le<BYTE>(0xFF).le<BYTE>(0xFE)});
    cases.push_back({"nothing at all", Bytes()});
    for (Case& c : cases) {
        CMemFile file(c.bytes.b.data(), static_cast<UINT>(c.bytes.b.size()));
        CArchive ar(&file, CArchive::load);
        CString s(L"old");
        ar >> s;
        EXPECT_TRUE(ar.Failed()) << c.what;
        EXPECT_EQ(s, L"") << c.what;
    }
}

TEST(Archive, FilesOpenForReadingOnlyWithEitherSeparator) {
    TempDir dir;
    Bytes in;
    in.le<Adesk::Int32>(3).le<double>(2.5);
    {
        std::ofstream out(dir.path() / "LandView.dat", std::ios::binary);
        out.write(reinterpret_cast<const char*>(in.b.data()),
                  static_cast<std::streamsize>(in.b.size()));
    }
    std::wstring backslashed = dir.file("LandView.dat");
    for (wchar_t& c : backslashed)
        if (c == L'/') c = L'\\';

    CFile file;
    ASSERT_TRUE(file.Open(backslashed.c_str(), CFile::modeRead | CFile::typeBinary));
    EXPECT_EQ(file.GetLength(), 12u);
    CArchive ar(&file, CArchive::load);
    int version = 0;
    double value = 0;
    int past = -1;
    ar >> version >> value;
    EXPECT_FALSE(ar.Failed());
    EXPECT_EQ(version, 3);
    EXPECT_EQ(value, 2.5);
    ar >> past;
    EXPECT_TRUE(ar.Failed());
    EXPECT_EQ(past, 0);

    CFile other;
    EXPECT_FALSE(other.Open(dir.file("missing.dat").c_str(), CFile::modeRead));
    EXPECT_FALSE(other.Open(dir.path().wstring().c_str(), CFile::modeRead)) << "a folder";
    EXPECT_FALSE(other.Open(dir.file("LandView.dat").c_str(), CFile::modeCreate | CFile::modeWrite))
        << "the platform does not write archives";
    EXPECT_EQ(other.Read(&past, 4), 0u);

    CArchive none(nullptr, CArchive::load);
    int v = 7;
    none >> v;
    EXPECT_TRUE(none.Failed());
    EXPECT_EQ(v, 0);
}

} // namespace
