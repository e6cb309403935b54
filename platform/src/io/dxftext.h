// DXF string values: the file's character encoding and the escapes strings use inside it.
#pragma once

#include <string>
#include <string_view>

namespace qor::dxf {

// Turns raw string values into text. Files of AC1021 and later are UTF-8; older ones are in
// the code page their header names ($DWGCODEPAGE), and when it names none, UTF-8 where the
// bytes are valid UTF-8 and the ANSI code page (936) otherwise. Then ^J-style control
// characters, "^ " for a caret and \U+XXXX escapes are undone.
class TextDecoder {
public:
    TextDecoder() = default;
    ~TextDecoder();
    TextDecoder(const TextDecoder&) = delete;
    TextDecoder& operator=(const TextDecoder&) = delete;

    // version: $ACADVER ("AC1015"), empty when unstated; codePage: $DWGCODEPAGE ("ANSI_936").
    void configure(std::string_view version, std::string_view codePage);
    std::wstring operator()(std::string_view raw) const;

private:
    enum class Mode { kUtf8, kGbk, kIconv, kGuess };
    std::wstring decodeBytes(std::string_view raw) const;

    Mode mMode = Mode::kUtf8;
    void* mIconv = nullptr; // iconv_t for other code pages
};

// Appends text as a DXF string value: UTF-8, with control characters as ^ and a letter and a
// caret as "^ ", so that no value breaks its line.
void encodeText(std::wstring_view text, std::string& out);

} // namespace qor::dxf
