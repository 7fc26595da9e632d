#include "savefile.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>

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
    temporaryPath = target + ".XXXXXX";
    const int descriptor = mkstemp(temporaryPath.data());
    if (descriptor < 0) {
        const int error = errno;
        temporaryPath.clear();
        fail(error);
    }
    struct stat old = {}; // a file that is replaced hands over its mode
    fchmod(descriptor, stat(target.c_str(), &old) == 0 ? old.st_mode & 07777 : usualMode());
    close(descriptor);
}

SaveFile::~SaveFile()
{
    if (!temporaryPath.empty())
        unlink(temporaryPath.c_str());
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
            throw OutputError(path + ": " + std::strerror(error));
        return;
    }
    SaveFile file(path);
    file.write(content);
    file.commit();
}
