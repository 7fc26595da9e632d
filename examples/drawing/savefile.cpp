#include "savefile.h"

#include "texts.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

mode_t usualMode()
{
    const mode_t mask = umask(0);
    umask(mask);
    return static_cast<mode_t>(0666) & ~mask;
}

} // namespace

SaveFile::SaveFile(const std::string &ownPath) : path(ownPath)
{
    std::error_code none;
    target = fs::is_symlink(path, none) ? fs::weakly_canonical(path, none).string() : path;
    if (target.empty() || fs::is_directory(target, none))
        fail(target.empty() ? ENOENT : EISDIR);
    if (!openNameless())
        openNamed();
    struct stat old = {}; // a file that is replaced hands over its mode
    chmod(temporaryPath.c_str(), stat(target.c_str(), &old) == 0 ? old.st_mode & 07777 : usualMode());
    if (access(temporaryPath.c_str(), W_OK) != 0) { // it is to stay as it is
        const int error = errno;
        discard();
        fail(error);
    }
}

SaveFile::~SaveFile() { discard(); }

void SaveFile::discard()
{
    if (nameless >= 0)
        close(nameless);
    else if (!temporaryPath.empty())
        unlink(temporaryPath.c_str());
}

// False where the system or the file system has no such files, and where any other fault is to be told by `openNamed`.
bool SaveFile::openNameless()
{
    const fs::path directory = fs::path(target).parent_path();
    nameless = open(directory.empty() ? "." : directory.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0600);
    if (nameless < 0)
        return false;
    temporaryPath = "/proc/self/fd/" + std::to_string(nameless);
    if (access(temporaryPath.c_str(), W_OK) == 0)
        return true;
    close(nameless);
    nameless = -1;
    return false;
}

void SaveFile::openNamed()
{
    temporaryPath = target + ".XXXXXX";
    const int descriptor = mkstemp(temporaryPath.data());
    if (descriptor < 0) {
        const int error = errno;
        temporaryPath.clear();
        fail(error);
    }
    close(descriptor);
}

// A file can be replaced only by one with a name; this one is complete.
void SaveFile::nameIt()
{
    std::string name;
    for (unsigned i = 0;; ++i) {
        name = target + "." + std::to_string(getpid()) + "." + std::to_string(i);
        if (linkat(AT_FDCWD, temporaryPath.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0)
            break;
        if (errno != EEXIST)
            fail(errno);
    }
    close(nameless);
    nameless = -1;
    temporaryPath = name;
}

void SaveFile::write(const std::string &content)
{
    errno = 0;
    std::ofstream file(temporaryPath, std::ios::binary);
    file << content;
    file.close();
    if (!file)
        fail(errno != 0 ? errno : EIO);
}

void SaveFile::commit()
{
    if (nameless >= 0)
        nameIt();
    if (std::rename(temporaryPath.c_str(), target.c_str()) != 0)
        fail(errno);
    temporaryPath.clear();
}

void SaveFile::fail(int error) const { throw OutputError(path + ": " + std::strerror(error)); }

bool isStream(const std::string &path)
{
    std::error_code none;
    return path == "-" || (fs::exists(path, none) && !fs::is_regular_file(path, none) && !fs::is_directory(path, none));
}

bool isStandardOutput(const std::string &path)
{
    struct stat file = {};
    struct stat output = {};
    if (path == "-")
        return true;
    const bool same = stat(path.c_str(), &file) == 0 && fstat(STDOUT_FILENO, &output) == 0 &&
                      file.st_dev == output.st_dev && file.st_ino == output.st_ino;
    return same && (!S_ISCHR(file.st_mode) || isatty(STDOUT_FILENO) != 0); // /dev/null is no one's alone
}

void saveWhole(const std::string &path, const std::string &content)
{
    if (isStream(path)) {
        const bool standardOutput = path == "-";
        std::FILE *file = standardOutput ? stdout : std::fopen(path.c_str(), "wb");
        const bool written =
            file && std::fwrite(content.data(), 1, content.size(), file) == content.size() && std::fflush(file) == 0;
        const int error = errno;
        if (file && !standardOutput)
            std::fclose(file);
        if (!written)
            throw OutputError((standardOutput ? std::string(bytesOf(text("standard output"))) : path) + ": " +
                              std::strerror(error));
        return;
    }
    SaveFile file(path);
    file.write(content);
    file.commit();
}
