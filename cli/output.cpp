// Writing to standard output, and beside a file that then takes its place.
// SPDX-License-Identifier: MIT
#include "output.h"

#include "errors.h"

#include <CLI/CLI.hpp>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>
#include <utility>

namespace hearth_cli {

namespace {

/// Waits until a handle that another program made non-blocking takes bytes again.
void WaitWritable(int handle)
{
    pollfd wait{handle, POLLOUT, 0};
    ::poll(&wait, 1, -1);
}

void WriteAll(int handle, std::string_view bytes, const std::string& name)
{
    while (!bytes.empty()) {
        const ssize_t count = ::write(handle, bytes.data(), bytes.size());
        if (count >= 0)
            bytes.remove_prefix(static_cast<std::size_t>(count));
        else if (errno == EAGAIN)
            WaitWritable(handle);
        else if (errno == EPIPE)
            return;
        else if (errno != EINTR)
            throw FileError(name, errno);
    }
}

/// A file open for writing, closed at the end of the scope.
class OutputFile {
public:
    OutputFile(const std::string& path, int flags, const std::string& name)
        : FName(name)
        , FHandle(::open(path.c_str(), O_WRONLY | O_CLOEXEC | flags, 0666))
    {
        if (FHandle < 0)
            throw FileError(FName, errno);
    }
    ~OutputFile()
    {
        if (FHandle >= 0)
            ::close(FHandle);
    }
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    void Write(std::string_view bytes) const { WriteAll(FHandle, bytes, FName); }
    void SetMode(mode_t mode) const
    {
        if (::fchmod(FHandle, mode & 07777U) != 0)
            throw FileError(FName, errno);
    }
    /// Some file systems tell only now that the bytes found no room.
    void Close()
    {
        if (::close(std::exchange(FHandle, -1)) != 0)
            throw FileError(FName, errno);
    }

private:
    std::string FName;
    int FHandle;
};

/// A path that is removed at the end of the scope unless the file got its real name.
class TemporaryPath {
public:
    explicit TemporaryPath(const std::filesystem::path& target)
        : FPath((target.parent_path() / (".hearth-" + std::to_string(::getpid()) + ".part")).string())
    {
        ::unlink(FPath.c_str());
    }
    ~TemporaryPath()
    {
        if (!FPath.empty())
            ::unlink(FPath.c_str());
    }
    TemporaryPath(const TemporaryPath&) = delete;
    TemporaryPath& operator=(const TemporaryPath&) = delete;

    const std::string& Path() const { return FPath; }
    void RenameTo(const std::filesystem::path& target, const std::string& name)
    {
        if (std::rename(FPath.c_str(), target.c_str()) != 0)
            throw FileError(name, errno);
        FPath.clear();
    }

private:
    std::string FPath;
};

using Maker = std::function<void(const Output::Sink& sink)>;

void ReplaceFile(const std::string& name, const struct stat* old, const Maker& make)
{
    if (old && ::access(name.c_str(), W_OK) != 0)
        throw FileError(name, errno);
    std::error_code unresolved;
    std::filesystem::path target =
        std::filesystem::canonical(name, unresolved); // behind a link, not the link
    if (unresolved)
        target = name;
    TemporaryPath temporary(target);
    OutputFile file(temporary.Path(), O_CREAT | O_EXCL, name);
    if (old)
        file.SetMode(old->st_mode);
    make([&file](std::string_view bytes) { file.Write(bytes); });
    file.Close();
    temporary.RenameTo(target, name);
}

void WriteFile(const std::string& name, const Maker& make)
{
    struct stat status { };
    const bool exists = ::stat(name.c_str(), &status) == 0;
    if (!exists || S_ISREG(status.st_mode))
        return ReplaceFile(name, exists ? &status : nullptr, make);
    // A device or a pipe must not be replaced by a file.
    OutputFile file(name, 0, name);
    make([&file](std::string_view bytes) { file.Write(bytes); });
    file.Close();
}

}

CLI::Option* Output::AddTo(CLI::App& command)
{
    return command
        .add_option(
            "-o,--output", FFile, "Write to a file, which is replaced only when all of the output was made")
        ->type_name("FILE");
}

void Output::WriteText(std::string_view text) const
{
    WriteBy([text](const Sink& sink) {
        sink(text);
        sink(text.ends_with('\n') ? "" : "\n");
    });
}

void Output::WriteBytes(std::string_view bytes) const
{
    WriteBy([bytes](const Sink& sink) { sink(bytes); });
}

void Output::WriteBy(const Maker& make) const
{
    if (IsFile())
        return WriteFile(FFile, make);
    make([](std::string_view bytes) { WriteAll(STDOUT_FILENO, bytes, "standard output"); });
}

}
