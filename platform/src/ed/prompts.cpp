// Prompts: each answer is one line of the input source. A malformed answer is refused with a
// message and the prompt asks again, reading the next line; the end of the input cancels.
#include "aced.h"
#include "cmdline.h"
#include "winstr.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cwctype>
#include <istream>
#include <optional>

namespace {

struct Keyword {
    std::wstring local, global;
};

struct InitGet {
    int flags = 0;
    std::vector<Keyword> keywords;
};

struct State {
    std::istream* in = nullptr;
    int line = 0;
    bool echo = true;
    int commandDepth = 0;
    bool cancelled = false; // within a command: a cancel was answered
    InitGet next;           // what acedInitGet set for the next prompt
    std::optional<std::wstring> input;
    double last[3] = {0.0, 0.0, 0.0};
};

State& state() {
    static State s;
    return s;
}

InitGet takeInitGet() {
    InitGet init = std::move(state().next);
    state().next = InitGet();
    return init;
}

std::wstring trim(const std::wstring& s) {
    size_t b = 0, e = s.size();
    while (b < e && std::iswspace(s[b]))
        ++b;
    while (e > b && std::iswspace(s[e - 1]))
        --e;
    return s.substr(b, e - b);
}

std::wstring upper(std::wstring s) {
    for (auto& c : s)
        c = static_cast<wchar_t>(std::towupper(c));
    return s;
}

bool sameText(const std::wstring& a, const std::wstring& b) {
    return upper(a) == upper(b);
}

bool readLine(std::wstring& line) {
    State& s = state();
    if (!s.in) return false;
    // A person at a terminal must see the prompt before the read waits.
    std::fflush(stdout);
    std::string bytes;
    if (!std::getline(*s.in, bytes)) return false;
    ++s.line;
    if (!bytes.empty() && bytes.back() == '\r') bytes.pop_back();
    if (s.line == 1 && bytes.starts_with("\xEF\xBB\xBF")) bytes.erase(0, 3);
    line = qorFromUtf8(bytes);
    return true;
}

// Prints the prompt and reads its answer: RTNORM, or RTCAN for a cancel or the end of input.
int readAnswer(const ACHAR* prompt, std::wstring& answer) {
    State& s = state();
    s.input.reset();
    if (s.cancelled) return RTCAN;
    if (prompt) acutPrintf(L"%s", prompt);
    std::wstring line;
    if (!readLine(line) || sameText(trim(line), L"*cancel*")) {
        acutPrintf(L"*Cancel*");
        if (s.commandDepth > 0) s.cancelled = true;
        return RTCAN;
    }
    if (s.echo) acutPrintf(L"%s", line.c_str());
    answer = std::move(line);
    return RTNORM;
}

void refuse(const std::wstring& why) {
    acutPrintf(L"\nInvalid input: %s.", why.c_str());
}

int copyOut(const std::wstring& text, ACHAR* out, size_t bufLen) {
    const size_t n = std::min(text.size(), bufLen - 1);
    std::char_traits<wchar_t>::copy(out, text.data(), n);
    out[n] = L'\0';
    return n < text.size() ? RTINPUTTRUNCATED : RTNORM;
}

// ---------------------------------------------------------------- values

bool asciiOnly(const std::wstring& s, std::string& out) {
    out.clear();
    for (wchar_t c : s) {
        if (c <= 0 || c > 0x7E) return false;
        out += static_cast<char>(c);
    }
    return true;
}

// A plain decimal number: an optional sign, digits with an optional point, an optional exponent.
bool parseReal(const std::wstring& text, double& v) {
    std::string s;
    if (!asciiOnly(trim(text), s) || s.empty()) return false;
    if (s[0] == '+') {
        s.erase(0, 1);
        if (s.empty() || s[0] == '+' || s[0] == '-') return false;
    }
    double d = 0.0;
    auto [end, ec] = std::from_chars(s.data(), s.data() + s.size(), d, std::chars_format::general);
    if (ec != std::errc() || end != s.data() + s.size() || !std::isfinite(d)) return false;
    v = d;
    return true;
}

bool parseWhole(const std::wstring& text, long long& v) {
    std::string s;
    if (!asciiOnly(trim(text), s) || s.empty()) return false;
    if (s[0] == '+') {
        s.erase(0, 1);
        if (s.empty() || s[0] == '+' || s[0] == '-') return false;
    }
    auto [end, ec] = std::from_chars(s.data(), s.data() + s.size(), v);
    return ec == std::errc() && end == s.data() + s.size();
}

bool parsePoint(const std::wstring& text, const double* base, double out[3]) {
    std::wstring body = text;
    const bool relative = !body.empty() && body[0] == L'@';
    if (relative) body.erase(0, 1);
    double p[3] = {0.0, 0.0, 0.0};
    if (!(relative && trim(body).empty())) {
        std::vector<std::wstring> parts;
        size_t start = 0;
        for (size_t comma; (comma = body.find(L',', start)) != std::wstring::npos;
             start = comma + 1)
            parts.push_back(body.substr(start, comma - start));
        parts.push_back(body.substr(start));
        if (parts.size() < 2 || parts.size() > 3) return false;
        for (size_t i = 0; i < parts.size(); ++i)
            if (!parseReal(parts[i], p[i])) return false;
    }
    const double* from = relative ? (base ? base : state().last) : nullptr;
    for (int i = 0; i < 3; ++i)
        out[i] = from ? from[i] + p[i] : p[i];
    return true;
}

// ---------------------------------------------------------------- keywords

std::vector<std::wstring> words(const ACHAR* list) {
    std::vector<std::wstring> out;
    std::wstring word;
    for (const ACHAR* p = list; p && *p; ++p) {
        if (std::iswspace(*p)) {
            if (!word.empty()) out.push_back(std::move(word));
            word.clear();
        } else {
            word += *p;
        }
    }
    if (!word.empty()) out.push_back(std::move(word));
    return out;
}

bool isAsciiLower(wchar_t c) {
    return c >= L'a' && c <= L'z';
}

// The whole keyword, or its capitals, or (for a keyword led by capitals, like "LType") any
// longer part of it that starts with them.
bool abbreviates(const std::wstring& answer, const std::wstring& keyword) {
    if (answer.empty()) return false;
    if (sameText(answer, keyword)) return true;
    size_t lead = 0;
    while (lead < keyword.size() && !isAsciiLower(keyword[lead]))
        ++lead;
    if (lead > 0 && lead < keyword.size() && answer.size() >= lead &&
        answer.size() <= keyword.size() && sameText(answer, keyword.substr(0, answer.size())))
        return true;
    std::wstring caps;
    for (wchar_t c : keyword)
        if (c >= L'A' && c <= L'Z') caps += c;
    return !caps.empty() && caps.size() < keyword.size() && sameText(answer, caps);
}

const Keyword* matchKeyword(const std::vector<Keyword>& keywords, const std::wstring& answer) {
    if (answer.size() > 1 && answer[0] == L'_') {
        const std::wstring global = answer.substr(1);
        for (const Keyword& k : keywords)
            if (abbreviates(global, k.global)) return &k;
        return nullptr;
    }
    for (const Keyword& k : keywords)
        if (sameText(answer, k.local)) return &k;
    for (const Keyword& k : keywords)
        if (abbreviates(answer, k.local)) return &k;
    return nullptr;
}

// ---------------------------------------------------------------- the prompt loop

enum class Verdict { kOk, kNotValue, kRefused };

// Asks until the answer is a value (RTNORM), Enter (RTNONE, unless refused), a keyword (RTKWORD)
// or a cancel. parse(text, flags, refusal) judges one answer.
template <class Parse> int ask(const ACHAR* prompt, const wchar_t* wanted, Parse parse) {
    const InitGet init = takeInitGet();
    for (;;) {
        std::wstring answer;
        if (int rc = readAnswer(prompt, answer); rc != RTNORM) return rc;
        const std::wstring text = trim(answer);
        if (text.empty()) {
            if (!(init.flags & RSG_NONULL)) return RTNONE;
            refuse(L"an answer is required");
            continue;
        }
        std::wstring refusal;
        const Verdict verdict = parse(text, init.flags, refusal);
        if (verdict == Verdict::kOk) return RTNORM;
        if (verdict == Verdict::kRefused) {
            refuse(refusal);
            continue;
        }
        if (const Keyword* k = matchKeyword(init.keywords, text)) {
            state().input = k->global;
            return RTKWORD;
        }
        if (init.flags & RSG_OTHER) {
            state().input = text;
            return RTKWORD;
        }
        refuse(std::wstring(wanted) + (init.keywords.empty() ? L"" : L" or an option keyword") +
               L" is required");
    }
}

Verdict checkNumber(double v, int flags, std::wstring& refusal) {
    if ((flags & RSG_NOZERO) && v == 0.0) {
        refusal = L"the value must not be zero";
        return Verdict::kRefused;
    }
    if ((flags & RSG_NONEG) && v < 0.0) {
        refusal = L"the value must not be negative";
        return Verdict::kRefused;
    }
    return Verdict::kOk;
}

} // namespace

// ---------------------------------------------------------------- the interface

int acedInitGet(int val, const ACHAR* kwl) {
    InitGet init;
    init.flags = val;
    const std::vector<std::wstring> list = words(kwl);
    auto split = std::find(list.begin(), list.end(), L"_");
    const std::vector<std::wstring> locals(list.begin(), split);
    std::vector<std::wstring> globals;
    if (split != list.end()) globals.assign(split + 1, list.end());
    // Global names count only when there is one for every keyword.
    if (globals.size() != locals.size()) globals = locals;
    for (size_t i = 0; i < locals.size(); ++i)
        init.keywords.push_back({locals[i], globals[i]});
    state().next = std::move(init);
    return RTNORM;
}

int acedGetString(int cronly, const ACHAR* prompt, ACHAR* result, size_t bufLen) {
    takeInitGet();
    if (!result || bufLen == 0) return RTERROR;
    std::wstring answer;
    if (int rc = readAnswer(prompt, answer); rc != RTNORM) return rc;
    return copyOut(cronly ? answer : trim(answer), result, bufLen);
}

int acedGetString(int cronly, const ACHAR* prompt, ACHAR* result) {
    return acedGetString(cronly, prompt, result, kQorPromptAnswerMax + 1);
}

int acedGetReal(const ACHAR* prompt, ads_real* result) {
    if (!result) {
        takeInitGet();
        return RTERROR;
    }
    return ask(prompt, L"a number", [&](const std::wstring& text, int flags, std::wstring& why) {
        double v = 0.0;
        if (!parseReal(text, v)) return Verdict::kNotValue;
        const Verdict verdict = checkNumber(v, flags, why);
        if (verdict == Verdict::kOk) *result = v;
        return verdict;
    });
}

int acedGetDist(const ads_point base, const ACHAR* prompt, ads_real* result) {
    if (!result) {
        takeInitGet();
        return RTERROR;
    }
    return ask(prompt, L"a distance", [&](const std::wstring& text, int flags, std::wstring& why) {
        double v = 0.0;
        double p[3];
        // With a base point, a point answer stands for its distance from the base.
        if (base && parsePoint(text, base, p))
            v = std::hypot(p[0] - base[0], p[1] - base[1], p[2] - base[2]);
        else if (!parseReal(text, v))
            return Verdict::kNotValue;
        const Verdict verdict = checkNumber(v, flags, why);
        if (verdict == Verdict::kOk) *result = v;
        return verdict;
    });
}

int acedGetInt(const ACHAR* prompt, int* result) {
    if (!result) {
        takeInitGet();
        return RTERROR;
    }
    return ask(prompt, L"an integer", [&](const std::wstring& text, int flags, std::wstring& why) {
        long long v = 0;
        if (!parseWhole(text, v)) return Verdict::kNotValue;
        if (v < -32768 || v > 32767) {
            why = L"the value must be from -32768 to 32767";
            return Verdict::kRefused;
        }
        const Verdict verdict = checkNumber(static_cast<double>(v), flags, why);
        if (verdict == Verdict::kOk) *result = static_cast<int>(v);
        return verdict;
    });
}

int acedGetPoint(const ads_point base, const ACHAR* prompt, ads_point result) {
    if (!result) {
        takeInitGet();
        return RTERROR;
    }
    return ask(prompt, L"a point (x,y or x,y,z)",
               [&](const std::wstring& text, int, std::wstring&) {
                   double p[3];
                   if (!parsePoint(text, base, p)) return Verdict::kNotValue;
                   for (int i = 0; i < 3; ++i)
                       result[i] = state().last[i] = p[i];
                   return Verdict::kOk;
               });
}

int acedGetKword(const ACHAR* prompt, ACHAR* result, size_t bufLen) {
    const InitGet init = state().next;
    if (!result || bufLen == 0 || (init.keywords.empty() && !(init.flags & RSG_OTHER))) {
        takeInitGet();
        return RTERROR;
    }
    std::wstring chosen;
    // The keywords are the values here, so the prompt loop sees none of its own.
    state().next.keywords.clear();
    state().next.flags &= ~RSG_OTHER;
    const int rc =
        ask(prompt, L"one of the options", [&](const std::wstring& text, int, std::wstring&) {
            if (const Keyword* k = matchKeyword(init.keywords, text))
                chosen = k->global;
            else if (init.flags & RSG_OTHER)
                chosen = text;
            else
                return Verdict::kNotValue;
            return Verdict::kOk;
        });
    return rc == RTNORM ? copyOut(chosen, result, bufLen) : rc;
}

int acedGetKword(const ACHAR* prompt, ACHAR* result) {
    return acedGetKword(prompt, result, kQorPromptAnswerMax + 1);
}

int acedGetInput(ACHAR* str, size_t bufLen) {
    if (!str || bufLen == 0 || !state().input) return RTERROR;
    return copyOut(*state().input, str, bufLen);
}

int acedGetInput(ACHAR* str) {
    return acedGetInput(str, kQorPromptAnswerMax + 1);
}

std::istream* qorSetPromptInput(std::istream* in) {
    State& s = state();
    std::istream* previous = s.in;
    s.in = in;
    s.line = 0;
    s.cancelled = false;
    s.next = InitGet();
    s.input.reset();
    return previous;
}

void qorSetPromptEcho(bool echo) {
    state().echo = echo;
}

bool qorReadInputLine(std::wstring& line) {
    return readLine(line);
}

int qorInputLineNumber() {
    return state().line;
}

bool qor::detail::beginCommandPrompts() {
    State& s = state();
    const bool outer = s.cancelled;
    s.cancelled = false;
    ++s.commandDepth;
    s.next = InitGet();
    return outer;
}

void qor::detail::endCommandPrompts(bool outer) {
    State& s = state();
    if (s.commandDepth > 0) --s.commandDepth;
    s.cancelled = outer;
    s.next = InitGet();
}
