// The command-line sink behind acutPrintf.
#include "cmdline.h"

#include <cstdio>
#include <cwchar>
#include <mutex>

namespace {

void printToStdout(const std::wstring& text) {
    const std::string bytes = qorToUtf8(text);
    std::fwrite(bytes.data(), 1, bytes.size(), stdout);
}

struct SinkState {
    // Recursive, so that a sink may itself print.
    std::recursive_mutex mutex;
    AcutPrintSink sink = printToStdout;
};

SinkState& state() {
    static SinkState s;
    return s;
}

int emit(const std::wstring& text) {
    SinkState& s = state();
    std::lock_guard lock(s.mutex);
    if (!text.empty()) s.sink(text);
    return static_cast<int>(std::min<size_t>(text.size(), 0x7FFFFFFF));
}

} // namespace

int acutPrintfV(const ACHAR* fmt, va_list args) {
    return emit(qorFormatV(fmt, args));
}

int acutPrintf(const ACHAR* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    const std::wstring text = qorFormatV(fmt, args);
    va_end(args);
    return emit(text);
}

AcutPrintSink acutSetPrintSink(AcutPrintSink sink) {
    SinkState& s = state();
    std::lock_guard lock(s.mutex);
    AcutPrintSink previous = std::move(s.sink);
    s.sink = sink ? std::move(sink) : AcutPrintSink(printToStdout);
    return previous;
}

int acutSPrintf(ACHAR* buffer, size_t size, const ACHAR* fmt, ...) {
    if (!buffer || size == 0) return -1;
    va_list args;
    va_start(args, fmt);
    const std::wstring text = qorFormatV(fmt, args);
    va_end(args);
    const size_t n = std::min(text.size(), size - 1);
    std::wmemcpy(buffer, text.data(), n);
    buffer[n] = L'\0';
    return n < text.size() ? -1 : static_cast<int>(n);
}

AcutCapture::AcutCapture()
    : mPrevious(acutSetPrintSink([this](const std::wstring& text) { mText += text; })) {}

AcutCapture::~AcutCapture() {
    acutSetPrintSink(std::move(mPrevious));
}
