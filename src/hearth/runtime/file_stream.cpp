// Streams over files.
// SPDX-License-Identifier: MIT
#include <hearth/runtime/checked.h>
#include <hearth/runtime/streams.h>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace ht {

namespace {

String SystemErrorText(int error)
{
    return String::FromUtf8(std::generic_category().message(error));
}

int FlagsOf(std::uint16_t mode)
{
    if (mode >= fmCreate)
        return O_RDWR | O_CREAT | O_TRUNC;
    switch (mode & 3) {
    case fmOpenWrite:
        return O_WRONLY;
    case fmOpenReadWrite:
        return O_RDWR;
    default:
        return O_RDONLY;
    }
}

/// Calls again what a signal has interrupted.
template <class Call> auto Persist(Call call)
{
    auto result = call();
    while (result < 0 && errno == EINTR)
        result = call();
    return result;
}

bool IsDirectory(int descriptor)
{
    struct stat status { };
    return fstat(descriptor, &status) == 0 && S_ISDIR(status.st_mode);
}

}

TFileStream::TFileStream(const String& fileName, std::uint16_t mode)
    : FFileName(fileName)
{
    // A name with U+0000 would open the file that its first part names.
    const bool cut = fileName.View().find(u'\0') != std::u16string_view::npos;
    const std::string path = fileName.ToUtf8();
    int error = EINVAL;
    if (!cut) {
        FDescriptor = Persist([&] { return open(path.c_str(), FlagsOf(mode) | O_CLOEXEC, 0666); });
        error = errno;
    }
    if (FDescriptor >= 0 && IsDirectory(FDescriptor)) {
        close(FDescriptor);
        FDescriptor = -1;
        error = EISDIR;
    }
    if (FDescriptor >= 0)
        return;
    const String reason = SystemErrorText(error);
    if (mode >= fmCreate)
        throw EFCreateError(Concat({u"Cannot create file \"", fileName, u"\". ", reason}));
    throw EFOpenError(Concat({u"Cannot open file \"", fileName, u"\". ", reason}));
}

TFileStream::~TFileStream()
{
    close(FDescriptor);
}

std::int32_t TFileStream::Read(void* buffer, std::int32_t count)
{
    const auto size = CheckedCast<std::size_t>(count);
    const ssize_t got = Persist([&] { return read(FDescriptor, buffer, size); });
    if (got < 0) // the end would look the same, and the rest of the file be lost without a word
        throw EReadError();
    return static_cast<std::int32_t>(got);
}

std::int32_t TFileStream::Write(const void* buffer, std::int32_t count)
{
    const auto size = CheckedCast<std::size_t>(count);
    const ssize_t gone = Persist([&] { return write(FDescriptor, buffer, size); });
    return static_cast<std::int32_t>(std::max<ssize_t>(gone, 0));
}

std::int64_t TFileStream::Seek(std::int64_t offset, TSeekOrigin origin)
{
    const int whence = origin == soBeginning ? SEEK_SET : origin == soCurrent ? SEEK_CUR : SEEK_END;
    const off_t position = lseek(FDescriptor, offset, whence);
    if (position < 0)
        throw EStreamError(u"Invalid stream operation"_s);
    return position;
}

std::int64_t TFileStream::Size()
{
    struct stat status { };
    return fstat(FDescriptor, &status) == 0 && S_ISREG(status.st_mode) ? status.st_size : TStream::Size();
}

void TFileStream::SetSize(std::int64_t size)
{
    if (size < 0)
        RaiseRangeError();
    if (Persist([&] { return ftruncate(FDescriptor, size); }) != 0)
        throw EStreamError(SystemErrorText(errno));
    Seek(size, soBeginning);
}

}
