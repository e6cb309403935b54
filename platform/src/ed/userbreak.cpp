// The user-break test: a flag that Ctrl+C or a host raises and the next test takes down.
#include "aced.h"

#include <atomic>
#include <csignal>
#include <mutex>

namespace {

// Set from a signal handler: it must be lock-free to be safe there.
std::atomic<int> gBreakRequested{0};
static_assert(std::atomic<int>::is_always_lock_free);

struct Installed {
    std::mutex mutex;
    bool active = false;
    struct sigaction previous {};
};

Installed& installed() {
    static Installed i;
    return i;
}

// A second Ctrl+C before any loop took the first means nothing is listening: the process ends
// as it would without the handler.
extern "C" void onInterrupt(int sig) {
    if (gBreakRequested.exchange(1, std::memory_order_relaxed) != 0) {
        std::signal(sig, SIG_DFL);
        std::raise(sig);
    }
}

} // namespace

int acedUsrBrk() {
    return gBreakRequested.exchange(0, std::memory_order_relaxed) != 0 ? 1 : 0;
}

void qorRequestUserBreak() {
    gBreakRequested.store(1, std::memory_order_relaxed);
}

bool qorInstallBreakHandler() {
    Installed& i = installed();
    std::lock_guard lock(i.mutex);
    if (i.active) return true;
    struct sigaction action {};
    action.sa_handler = onInterrupt;
    sigemptyset(&action.sa_mask);
    // A prompt waiting for its line goes on waiting; the break is taken at the next test.
    action.sa_flags = SA_RESTART;
    if (sigaction(SIGINT, &action, &i.previous) != 0) return false;
    i.active = true;
    return true;
}

void qorRemoveBreakHandler() {
    Installed& i = installed();
    std::lock_guard lock(i.mutex);
    if (!i.active) return;
    sigaction(SIGINT, &i.previous, nullptr);
    i.active = false;
}
