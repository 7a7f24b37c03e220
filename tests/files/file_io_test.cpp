// Replacing files: only regular files are replaced. Every writer here refuses
// to produce content, so even a regression in the check cannot rename
// anything over a special file (the tests may run as root, next to /dev/null).
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <functional>
#include <string>

#include <gtest/gtest.h>

#include "files/file_io.h"
#include "tests/support/temp_folder.h"

namespace lumeth {
namespace {

// The file type bits of `path` itself (a link is not followed); 0 when absent.
mode_t EntryType(const std::string& path) {
    struct stat st {};
    return ::lstat(path.c_str(), &st) == 0 ? st.st_mode & S_IFMT : 0;
}

// A socket bound at `path`, closed again (the entry stays).
void MakeSocket(const std::string& path) {
    const int fd = ::socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_GE(fd, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    ASSERT_LT(path.size(), sizeof address.sun_path);
    std::memcpy(address.sun_path, path.c_str(), path.size());
    ASSERT_EQ(::bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    ::close(fd);
}

TEST(ReplaceFile, RefusesWhatIsNotARegularFileBeforeWritingAnything) {
    namespace fs = std::filesystem;
    test::TempFolder dir;
    ASSERT_EQ(::mkfifo(dir.file("fifo").c_str(), 0600), 0);
    MakeSocket(dir.file("sock"));
    fs::create_symlink(dir.file("fifo"), dir.file("to-fifo"));
    fs::create_symlink("/dev/null", dir.file("to-null"));
    fs::create_symlink(dir.file("absent"), dir.file("dangling"));
    fs::create_symlink("loop", dir.file("loop"));
    fs::create_symlink(dir.file("to-fifo"), dir.file("to-link-to-fifo"));
    const size_t entries = dir.EntryCount();

    const struct {
        std::string target;
        mode_t type; // of the entry itself, which stays as it was
    } refused[] = {
        {dir.file("fifo"), S_IFIFO},    {dir.file("sock"), S_IFSOCK},
        {dir.file("to-fifo"), S_IFLNK}, {dir.file("to-link-to-fifo"), S_IFLNK},
        {dir.file("to-null"), S_IFLNK}, {dir.file("dangling"), S_IFLNK},
        {dir.file("loop"), S_IFLNK},    {"/dev/null", S_IFCHR},
    };
    for (const auto& c : refused) {
        bool asked = false;
        const Status status = ReplaceFile(c.target, [&](const ByteSink&) {
            asked = true;
            return false;
        });
        EXPECT_EQ(status.failure().detail, "not a regular file") << c.target;
        EXPECT_EQ(status.failure().code, ErrorCode::PathFileAccessError) << c.target;
        EXPECT_FALSE(asked) << c.target;
        EXPECT_EQ(EntryType(c.target), c.type) << c.target;
    }
    EXPECT_EQ(EntryType("/dev/null"), static_cast<mode_t>(S_IFCHR));
    EXPECT_EQ(dir.EntryCount(), entries);
    EXPECT_FALSE(dir.Exists("absent"));

    // A link to a regular file still replaces the file it names.
    dir.Write("plain.txt", "old");
    fs::create_symlink("plain.txt", dir.file("to-plain"));
    ASSERT_TRUE(ReplaceFileContents(dir.file("to-plain"), "new").ok());
    EXPECT_EQ(EntryType(dir.file("to-plain")), static_cast<mode_t>(S_IFLNK));
    EXPECT_EQ(dir.Read("plain.txt"), "new");
}

} // namespace
} // namespace lumeth
