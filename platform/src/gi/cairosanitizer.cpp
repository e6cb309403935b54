// Sanitizer builds only: fontconfig (2.14) leaks a few blocks while it parses its configuration,
// once per process, in every program that looks up a face. The leak checker is told to pass
// over allocations made inside fontconfig; the renderer destroys every pattern it makes.
#if defined(__SANITIZE_ADDRESS__)
#define QOR_LEAK_CHECKS 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define QOR_LEAK_CHECKS 1
#endif
#endif

#ifdef QOR_LEAK_CHECKS
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libfontconfig.so\n";
}
#endif
