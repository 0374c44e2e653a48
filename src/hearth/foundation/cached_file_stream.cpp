// Mapping a file into memory.
// SPDX-License-Identifier: MIT
#include <hearth/foundation/cached_file_stream.h>

#include <hearth/runtime/checked.h>

#include <sys/mman.h>

namespace ht {

THtCachedFileStream::THtCachedFileStream(const String& fileName)
    : FFile(fileName, fmOpenRead)
    , FSize(FFile.Size())
{
}

THtCachedFileStream::~THtCachedFileStream()
{
    if (FMapped)
        munmap(FMapped, static_cast<std::size_t>(FSize));
}

/// Through the file and not the mapping: the system then answers what is gone with fewer bytes.
std::int32_t THtCachedFileStream::Read(void* buffer, std::int32_t count)
{
    return FFile.Read(buffer, count);
}

std::int32_t THtCachedFileStream::Write(const void*, std::int32_t)
{
    throw EStreamError(u"The file is open for reading alone"_s);
}

std::int64_t THtCachedFileStream::Seek(std::int64_t offset, TSeekOrigin origin)
{
    return FFile.Seek(offset, origin);
}

void THtCachedFileStream::SetSize(std::int64_t)
{
    throw EStreamError(u"The file is open for reading alone"_s);
}

std::string_view THtCachedFileStream::Bytes()
{
    const auto size = CheckedCast<std::size_t>(FSize);
    if (size == 0)
        return {};
    if (!FMapped) {
        if (FFile.Size() < FSize)
            throw EStreamError(Concat({u"File \"", FFile.FileName(), u"\" has shrunk"}));
        void* const mapped = mmap(nullptr, size, PROT_READ, MAP_PRIVATE, FFile.Descriptor(), 0);
        if (mapped == MAP_FAILED)
            throw EStreamError(Concat({u"Cannot map file \"", FFile.FileName(), u"\""}));
        FMapped = mapped;
    }
    return {static_cast<const char*>(FMapped), size};
}

}
