// Helpers of the localisation tests: a temporary installation home and environment guards.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>

// A scratch directory that stands in for an installation home; removed with its contents.
struct TempHome {
    std::string path;
    TempHome() {
        char tmpl[] = "/tmp/comn_home_XXXXXX";
        path = mkdtemp(tmpl);
    }
    ~TempHome() {
        std::error_code ec;
        std::filesystem::remove_all(path, ec);
    }
    TempHome(const TempHome &) = delete;
    TempHome &operator=(const TempHome &) = delete;
    // Writes a file below the home, creating its directories.
    void write(const std::string &rel, const std::string &text) const {
        std::filesystem::path p = std::filesystem::path(path) / rel;
        std::filesystem::create_directories(p.parent_path());
        std::ofstream(p, std::ios::binary) << text;
    }
    void remove(const std::string &rel) const { std::filesystem::remove(path + "/" + rel); }
};

// Restores an environment variable to its value at construction.
struct EnvGuard {
    std::string name;
    std::optional<std::string> saved;
    explicit EnvGuard(const char *n) : name(n) {
        if (const char *v = std::getenv(n)) saved = v;
    }
    ~EnvGuard() {
        if (saved)
            setenv(name.c_str(), saved->c_str(), 1);
        else
            unsetenv(name.c_str());
    }
    void set(const std::string &v) const { setenv(name.c_str(), v.c_str(), 1); }
    void unset() const { unsetenv(name.c_str()); }
};
