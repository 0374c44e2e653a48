// A file that is read where it lies.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/streams.h>

#include <string_view>

namespace ht {

/// A file mapped into memory, for reading alone. Reading copies and is safe whatever becomes of the file:
/// when it has shrunk, less is read. Bytes() shows the bytes in place, which nobody may cut off meanwhile:
/// the system ends a program that looks at what is gone. Writing and resizing throw EStreamError.
class HT_API THtCachedFileStream : public TStream {
public:
    static constexpr TClassInfo kClassInfo{u"THtCachedFileStream", &TStream::kClassInfo};
    const TClassInfo& ClassInfo() const override { return kClassInfo; }

    /// Throws EFOpenError when the file cannot be read.
    explicit THtCachedFileStream(const String& fileName);
    THtCachedFileStream(const THtCachedFileStream&) = delete;
    THtCachedFileStream& operator=(const THtCachedFileStream&) = delete;
    ~THtCachedFileStream() override;

    std::int32_t Read(void* buffer, std::int32_t count) override;
    std::int32_t Write(const void* buffer, std::int32_t count) override;
    std::int64_t Seek(std::int64_t offset, TSeekOrigin origin) override;
    /// As it was when the file was opened.
    std::int64_t Size() override { return FSize; }
    void SetSize(std::int64_t size) override;

    /// All bytes, mapped on the first call; none for a file whose size the system does not know, which can
    /// only be read. Throws EStreamError when the system cannot map them, or the file has shrunk since it was
    /// opened. Lifetime: that of the stream.
    std::string_view Bytes();

private:
    TFileStream FFile;
    std::int64_t FSize;
    void* FMapped = nullptr;
};

}
