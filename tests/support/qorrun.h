// Commands run from a test as a user would run them in a shell: the qor program under test
// (with the object module of this build) or any other program, their output and exit code.
#pragma once

#include <cstdio>
#include <string>
#include <sys/wait.h>

struct Outcome {
    // The exit code; -1 when the command could not run or was ended by a signal.
    int status = -1;
    // Standard output with standard error folded in.
    std::string out;

    bool has(const std::string& text) const { return out.find(text) != std::string::npos; }
    int count(const std::string& text) const {
        int n = 0;
        for (size_t at = 0; (at = out.find(text, at)) != std::string::npos; at += text.size())
            ++n;
        return n;
    }
};

// The text as one shell word.
inline std::string quoted(const std::string& s) {
    std::string q = "'";
    for (char c : s)
        q += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return q + "'";
}

inline Outcome shell(const std::string& command) {
    Outcome r;
    FILE* p = popen((command + " 2>&1").c_str(), "r");
    if (!p) return r;
    char buf[4096];
    size_t n;
    while ((n = fread(buf, 1, sizeof buf, p)) > 0)
        r.out.append(buf, n);
    const int status = pclose(p);
    r.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return r;
}

// qor with the arguments (already quoted where they need it).
inline Outcome runQor(const std::string& args) {
    return shell("QOR_MODULE=" + quoted(QOR_MODULE_PATH) + " " +
                 quoted(std::string(QOR_BIN_DIR) + "/qor") + " " + args);
}
