// A temporary folder removed with everything in it when the test ends.
#pragma once

#include <filesystem>
#include <string>
#include <unistd.h>

class TempDir {
public:
    TempDir() {
        std::string pattern = (std::filesystem::temp_directory_path() / "qor-test-XXXXXX").string();
        mPath = mkdtemp(pattern.data()) ? pattern : std::string();
    }
    ~TempDir() {
        std::error_code ec;
        if (!mPath.empty()) std::filesystem::remove_all(mPath, ec);
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
    std::filesystem::path path() const { return mPath; }
    std::wstring file(const std::string& name) const {
        return (std::filesystem::path(mPath) / name).wstring();
    }

private:
    std::string mPath;
};
