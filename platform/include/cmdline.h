// The command line: acutPrintf writes to a sink, which prints UTF-8 on standard output unless
// something else (a test, a script host) has installed its own.
#pragma once

#include "winstr.h"

#include <cstddef>
#include <functional>
#include <string>

using AcutPrintSink = std::function<void(const std::wstring&)>;

// Formats by the Windows wide rules (see winstr.h) and sends the text to the sink. Returns the
// number of characters written.
int acutPrintf(const ACHAR* fmt, ...);
int acutPrintfV(const ACHAR* fmt, va_list args);

// CString and std::wstring arguments are passed as their character pointers, as they
// effectively are on Windows.
template <class... Args>
requires(!(qor::detail::VarargSafe<Args> && ...)) int acutPrintf(const ACHAR* fmt, Args&&... args) {
    return acutPrintf(fmt, qor::detail::varArg(std::forward<Args>(args))...);
}

// Installs a sink and returns the one it replaces; an empty function restores standard output.
// A sink must not install another sink while it runs.
AcutPrintSink acutSetPrintSink(AcutPrintSink sink);

// Formats into `buffer` of `size` wide characters, always terminated when size > 0. Returns the
// number of characters written, or -1 when the text was cut to fit.
int acutSPrintf(ACHAR* buffer, size_t size, const ACHAR* fmt, ...);

template <class... Args>
requires(!(qor::detail::VarargSafe<Args> &&
           ...)) int acutSPrintf(ACHAR* buffer, size_t size, const ACHAR* fmt, Args&&... args) {
    return acutSPrintf(buffer, size, fmt, qor::detail::varArg(std::forward<Args>(args))...);
}

// Collects everything printed while it is alive, instead of printing it.
class AcutCapture {
public:
    AcutCapture();
    ~AcutCapture();
    AcutCapture(const AcutCapture&) = delete;
    AcutCapture& operator=(const AcutCapture&) = delete;

    const std::wstring& text() const { return mText; }
    std::string utf8() const { return qorToUtf8(mText); }
    void clear() { mText.clear(); }

private:
    std::wstring mText;
    AcutPrintSink mPrevious;
};
