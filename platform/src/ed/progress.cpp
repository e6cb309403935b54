// The progress meter: a bar redrawn in place on standard error.
#include "acedprogress.h"

#include "gi.h"
#include "winstr.h"

#include <algorithm>
#include <chrono>
#include <mutex>
#include <string>
#include <sys/ioctl.h>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;

// A bar that would flash by is not worth drawing; nor is redrawing faster than the eye reads.
constexpr auto kShowAfter = std::chrono::milliseconds(300);
constexpr auto kRedrawEvery = std::chrono::milliseconds(50);

struct Meter {
    std::mutex mutex;
    bool running = false;
    bool shown = false;
    std::wstring label;
    int minPos = 0, maxPos = 0, pos = 0;
    int drawnPermille = -1;
    Clock::time_point started, lastDrawn;
    // The test stream, drawn to at once; null means standard error when it is a terminal.
    std::FILE* forced = nullptr;
    int forcedColumns = 80;
    // Whether standard error is a terminal, asked once per run: steps come by the thousand.
    bool terminal = false;
};

Meter& meter() {
    static Meter m;
    return m;
}

int terminalColumns() {
    winsize ws{};
    if (ioctl(STDERR_FILENO, TIOCGWINSZ, &ws) == 0 && ws.ws_col > 0) return ws.ws_col;
    return 80;
}

int displayWidth(const std::wstring& s) {
    int w = 0;
    for (wchar_t c : s)
        w += qorIsFullWidthChar(c) ? 2 : 1;
    return w;
}

int permille(const Meter& m) {
    const long long span = static_cast<long long>(m.maxPos) - m.minPos;
    if (span <= 0) return 1000;
    return static_cast<int>((static_cast<long long>(m.pos) - m.minPos) * 1000 / span);
}

void draw(Meter& m, std::FILE* out, int columns) {
    const int done = permille(m);
    std::string line = "\r";
    line += qorToUtf8(m.label);
    // The label, a space, the bar in brackets, a space and "100%": the bar takes what is left.
    const int barWidth = std::clamp(columns - displayWidth(m.label) - 8, 0, 50);
    if (barWidth >= 10) {
        const int filled = barWidth * done / 1000;
        line += " [" + std::string(filled, '#') + std::string(barWidth - filled, '-') + "]";
    }
    char percent[16];
    std::snprintf(percent, sizeof percent, " %3d%%", done / 10);
    line += percent;
    std::fwrite(line.data(), 1, line.size(), out);
    std::fflush(out);
    m.drawnPermille = done;
    m.shown = true;
}

void erase(Meter& m, std::FILE* out) {
    if (!m.shown) return;
    std::fputs("\r\033[K", out);
    std::fflush(out);
    m.shown = false;
}

// Where the meter draws, or null when it draws nowhere.
std::FILE* target(const Meter& m, int& columns) {
    if (m.forced) {
        columns = m.forcedColumns;
        return m.forced;
    }
    if (!m.terminal) return nullptr;
    columns = terminalColumns();
    return stderr;
}

void update(Meter& m) {
    int columns = 80;
    std::FILE* out = target(m, columns);
    if (!out || permille(m) == m.drawnPermille) return;
    if (!m.forced) {
        const Clock::time_point now = Clock::now();
        if (now - m.started < kShowAfter) return;
        if (m.shown && now - m.lastDrawn < kRedrawEvery && permille(m) < 1000) return;
        m.lastDrawn = now;
    }
    draw(m, out, columns);
}

} // namespace

int acedSetStatusBarProgressMeter(const ACHAR* label, int minPos, int maxPos) {
    Meter& m = meter();
    std::lock_guard lock(m.mutex);
    if (maxPos < minPos) return -1;
    m.terminal = isatty(STDERR_FILENO);
    int columns = 80;
    if (std::FILE* out = target(m, columns)) erase(m, out);
    m.running = true;
    m.label = label ? label : L"";
    m.minPos = minPos;
    m.maxPos = maxPos;
    m.pos = minPos;
    m.drawnPermille = -1;
    m.started = Clock::now();
    update(m);
    return 0;
}

int acedSetStatusBarProgressMeterPos(int pos) {
    Meter& m = meter();
    std::lock_guard lock(m.mutex);
    if (!m.running) return -1;
    const long long next = pos < 0 ? static_cast<long long>(m.pos) - pos : pos;
    m.pos = static_cast<int>(std::clamp<long long>(next, m.minPos, m.maxPos));
    update(m);
    return 0;
}

void acedRestoreStatusBar() {
    Meter& m = meter();
    std::lock_guard lock(m.mutex);
    int columns = 80;
    if (std::FILE* out = target(m, columns)) erase(m, out);
    m.running = false;
    m.shown = false;
}

void qorSetProgressOutput(std::FILE* out, int columns) {
    Meter& m = meter();
    std::lock_guard lock(m.mutex);
    m.forced = out;
    m.forcedColumns = columns;
    m.shown = false;
    m.drawnPermille = -1;
}
