// Output files that are there whole or not at all.
#ifndef SAVEFILE_H
#define SAVEFILE_H

#include <stdexcept>
#include <string>

/// A file that can't be written; `what()` is one line for the user with the file's name.
class OutputError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A temporary file where the file is to be. It is gone with the object unless it was committed; where the system has
/// files without a name it is gone with the program too, however that ends.
class SaveFile {
public:
    /// Throws `OutputError` where the directory can't be written, and where the file itself mustn't be.
    explicit SaveFile(const std::string &path);
    SaveFile(const SaveFile &) = delete;
    SaveFile &operator=(const SaveFile &) = delete;
    ~SaveFile();

    /// By this name it can be opened and written to until it is committed.
    const std::string &temporary() const { return temporaryPath; }
    /// Throws `OutputError` if the content doesn't fit.
    void write(const std::string &content);
    /// The temporary file takes the place of the file. Throws `OutputError`.
    void commit();

private:
    bool openNameless();
    void openNamed();
    void nameIt();
    void discard();
    [[noreturn]] void fail(int error) const;

    std::string path;
    std::string target; // the path, or where a link leads to
    std::string temporaryPath;
    int nameless = -1; // descriptor of a file without a name; -1 where it has one
};

/// Whether a file of that name can't be replaced: "-" is standard output, others are devices and pipes.
bool isStream(const std::string &path);

/// Whether what is written there goes to standard output: "-", and the file that it already is.
bool isStandardOutput(const std::string &path);

/// Writes all of it. "-" is standard output; a device or a pipe is written to as it is.
void saveWhole(const std::string &path, const std::string &content);

#endif
