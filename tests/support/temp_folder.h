#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

namespace lumeth::test {

// The whole content of a file; empty when it cannot be read.
inline std::string ReadFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// A fresh, empty folder under the system temp directory, removed afterwards.
// path() ends in a separator, as the program's folder does.
class TempFolder {
public:
    TempFolder() {
        std::random_device rd;
        const auto base = std::filesystem::temp_directory_path();
        do {
            m_dir = base / ("lumeth-test-" + std::to_string(rd()) + std::to_string(rd()));
        } while (!std::filesystem::create_directory(m_dir));
    }
    ~TempFolder() {
        std::error_code ec;
        std::filesystem::permissions(m_dir, std::filesystem::perms::owner_all,
                                     std::filesystem::perm_options::add, ec);
        std::filesystem::remove_all(m_dir, ec);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    std::string path() const { return m_dir.string() + "/"; }
    std::string file(const std::string& name) const { return (m_dir / name).string(); }

    void Write(const std::string& name, const std::string& bytes) const {
        std::ofstream out(file(name), std::ios::binary);
        out << bytes;
    }
    std::string Read(const std::string& name) const { return ReadFile(file(name)); }
    bool Exists(const std::string& name) const { return std::filesystem::exists(file(name)); }
    size_t EntryCount() const {
        return static_cast<size_t>(std::distance(std::filesystem::directory_iterator(m_dir),
                                                 std::filesystem::directory_iterator()));
    }

private:
    std::filesystem::path m_dir;
};

} // namespace lumeth::test
