// Feeds arbitrary text to the registry store's reader. Text that reads must write out again
// and read back to the same store; nothing may crash or read out of bounds.
#include "win/regstore.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    qor::reg::Store store;
    qor::reg::ParseError error;
    if (!qor::reg::parseStore(text, store, error)) return 0;
    const std::string written = qor::reg::formatStore(store);
    qor::reg::Store again;
    if (!qor::reg::parseStore(written, again, error) || qor::reg::formatStore(again) != written)
        std::abort();
    return 0;
}
