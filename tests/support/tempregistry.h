// Points the registry at a store file in a temporary folder for the life of a test, and back
// at what it was afterwards.
#pragma once

#include "support/tempdir.h"

#include <cstdlib>
#include <fstream>
#include <optional>
#include <sstream>
#include <string>

class TempRegistry {
public:
    TempRegistry() : mPath((mDir.path() / "registry").string()) {
        if (const char* old = std::getenv("QOR_REGISTRY")) mOld = old;
        setenv("QOR_REGISTRY", mPath.c_str(), 1);
    }
    ~TempRegistry() {
        if (mOld)
            setenv("QOR_REGISTRY", mOld->c_str(), 1);
        else
            unsetenv("QOR_REGISTRY");
    }
    TempRegistry(const TempRegistry&) = delete;
    TempRegistry& operator=(const TempRegistry&) = delete;

    const std::string& path() const { return mPath; }
    const TempDir& dir() const { return mDir; }

    // Replaces the store file, as a person editing it would.
    void write(const std::string& text) const {
        std::ofstream(mPath, std::ios::binary | std::ios::trunc) << text;
    }
    std::string read() const {
        std::ifstream in(mPath, std::ios::binary);
        std::ostringstream text;
        text << in.rdbuf();
        return text.str();
    }

private:
    TempDir mDir;
    std::string mPath;
    std::optional<std::string> mOld;
};
