// Seekable byte streams over memory, text and files.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/array.h>
#include <hearth/runtime/encoding.h>
#include <hearth/runtime/object.h>

#include <cstdint>

namespace ht {

/// Fewer bytes came than were asked for.
class HT_API EReadError : public EStreamError {
public:
    EReadError();
    const char16_t* ClassName() const noexcept override { return u"EReadError"; }
};

/// Fewer bytes went out than were given.
class HT_API EWriteError : public EStreamError {
public:
    EWriteError();
    const char16_t* ClassName() const noexcept override { return u"EWriteError"; }
};

/// A file could not be made or opened.
class HT_API EFileStreamError : public EStreamError {
public:
    using EStreamError::EStreamError;
    const char16_t* ClassName() const noexcept override { return u"EFileStreamError"; }
};

class HT_API EFCreateError : public EFileStreamError {
public:
    using EFileStreamError::EFileStreamError;
    const char16_t* ClassName() const noexcept override { return u"EFCreateError"; }
};

class HT_API EFOpenError : public EFileStreamError {
public:
    using EFileStreamError::EFileStreamError;
    const char16_t* ClassName() const noexcept override { return u"EFOpenError"; }
};

enum TSeekOrigin : std::uint8_t { soBeginning, soCurrent, soEnd };

/// A sequence of bytes with a position. Read, Write and Seek of this class raise EAbstractError.
class HT_API TStream : public TObject {
public:
    static constexpr TClassInfo kClassInfo{u"TStream", &TObject::kClassInfo};
    const TClassInfo& ClassInfo() const override { return kClassInfo; }

    /// Reads up to `count` bytes from the position and returns how many they were: 0 at the end alone. Throws
    /// EReadError when the device fails, ERangeError for a negative count.
    virtual std::int32_t Read(void* buffer, std::int32_t count);
    /// Writes up to `count` bytes at the position and returns how many they were: 0 when the device is full
    /// or fails. Throws ERangeError for a negative count.
    virtual std::int32_t Write(const void* buffer, std::int32_t count);
    /// Moves the position and returns it; it may lie behind the end. Throws EStreamError in front of
    /// the start.
    virtual std::int64_t Seek(std::int64_t offset, TSeekOrigin origin);
    /// The number of bytes, found by seeking unless a descendant knows it.
    virtual std::int64_t Size();
    /// Cuts, or adds zeros; streams that cannot do so ignore it. Memory and files throw ERangeError for a
    /// negative size.
    virtual void SetSize(std::int64_t size);

    std::int64_t Position() { return Seek(0, soCurrent); }
    void SetPosition(std::int64_t position) { Seek(position, soBeginning); }

    /// Move all of `count` bytes; throw EReadError, EWriteError otherwise, and ERangeError for
    /// negative counts.
    void ReadBuffer(void* buffer, std::int64_t count);
    void WriteBuffer(const void* buffer, std::int64_t count);
    void WriteBuffer(std::string_view bytes)
    {
        WriteBuffer(bytes.data(), static_cast<std::int64_t>(bytes.size()));
    }
    /// Copies `count` bytes from the position of `source`, or all of it from its start when `count` is 0.
    /// Returns the number copied; throws EReadError when there are fewer.
    std::int64_t CopyFrom(TStream& source, std::int64_t count);
    /// The bytes from the position to the end, however many there turn out to be: no size is believed
    /// in advance.
    std::string ReadRest();

protected:
    /// The position that a seek asks for. Throws EStreamError in front of the start, EIntOverflow beyond
    /// 64 bits.
    static std::int64_t SeekTarget(
        std::int64_t offset, TSeekOrigin origin, std::int64_t position, std::int64_t size);
};

/// Bytes in memory, 2^31 - 1 at most.
class HT_API TMemoryStream : public TStream {
public:
    static constexpr TClassInfo kClassInfo{u"TMemoryStream", &TStream::kClassInfo};
    const TClassInfo& ClassInfo() const override { return kClassInfo; }

    TMemoryStream() = default;

    std::int32_t Read(void* buffer, std::int32_t count) override;
    /// Throws EStreamError when the bytes would pass 2^31 - 1 or the memory that there is.
    std::int32_t Write(const void* buffer, std::int32_t count) override;
    std::int64_t Seek(std::int64_t offset, TSeekOrigin origin) override;
    std::int64_t Size() override { return FData.Length(); }
    /// Throws EStreamError as Write does. The position stays unless it would lie behind the new end.
    void SetSize(std::int64_t size) override;

    /// Lifetime: until the next change of size.
    const std::uint8_t* Memory() const noexcept { return FData.data(); }
    void Clear();
    /// Replaces the contents by the whole other stream, or file; position 0. Throws as reading and
    /// opening do.
    void LoadFromStream(TStream& source);
    void LoadFromFile(const String& fileName);
    /// Writes the whole contents. Throw as writing and creating do.
    void SaveToStream(TStream& target) const;
    void SaveToFile(const String& fileName) const;

protected:
    explicit TMemoryStream(TBytes bytes)
        : FData(std::move(bytes))
    {
    }
    const TBytes& Data() const noexcept { return FData; }

private:
    TBytes FData;
    std::int64_t FPosition = 0;
};

/// A memory stream that starts with given bytes.
class HT_API TBytesStream : public TMemoryStream {
public:
    static constexpr TClassInfo kClassInfo{u"TBytesStream", &TMemoryStream::kClassInfo};
    const TClassInfo& ClassInfo() const override { return kClassInfo; }

    explicit TBytesStream(TBytes bytes = {})
        : TMemoryStream(std::move(bytes))
    {
    }
    const TBytes& Bytes() const noexcept { return Data(); }
};

/// A memory stream over text in a code page.
class HT_API TStringStream : public TMemoryStream {
public:
    static constexpr TClassInfo kClassInfo{u"TStringStream", &TMemoryStream::kClassInfo};
    const TClassInfo& ClassInfo() const override { return kClassInfo; }

    /// Throws EConvertError for an unknown code page.
    explicit TStringStream(std::u16string_view text = {}, std::uint32_t codePage = SystemCodePage());

    std::uint32_t CodePage() const noexcept { return FCodePage; }
    /// All bytes as text.
    String DataString() const;
    /// Decodes up to `count` bytes from the position on. Throws EConvertError when the code page cannot be
    /// used, ERangeError for a negative count.
    String ReadString(std::int32_t count);
    /// Writes the text in the code page. Throws EConvertError as ReadString does, EStreamError as Write does.
    void WriteString(std::u16string_view text);

private:
    std::uint32_t FCodePage;
};

/// How a file is opened. Share bits may be added; files are always shared here.
inline constexpr std::uint16_t fmCreate = 0xFF00;
inline constexpr std::uint16_t fmOpenRead = 0;
inline constexpr std::uint16_t fmOpenWrite = 1;
inline constexpr std::uint16_t fmOpenReadWrite = 2;
inline constexpr std::uint16_t fmShareExclusive = 0x10;
inline constexpr std::uint16_t fmShareDenyWrite = 0x20;
inline constexpr std::uint16_t fmShareDenyNone = 0x40;

/// A file. Throws EFCreateError or EFOpenError when it cannot be had.
class HT_API TFileStream : public TStream {
public:
    static constexpr TClassInfo kClassInfo{u"TFileStream", &TStream::kClassInfo};
    const TClassInfo& ClassInfo() const override { return kClassInfo; }

    TFileStream(const String& fileName, std::uint16_t mode);
    TFileStream(const TFileStream&) = delete;
    TFileStream& operator=(const TFileStream&) = delete;
    ~TFileStream() override;

    std::int32_t Read(void* buffer, std::int32_t count) override;
    std::int32_t Write(const void* buffer, std::int32_t count) override;
    std::int64_t Seek(std::int64_t offset, TSeekOrigin origin) override;
    std::int64_t Size() override;
    /// Throws EStreamError when the file cannot be resized. The position moves to the new end.
    void SetSize(std::int64_t size) override;

    const String& FileName() const noexcept { return FFileName; }
    /// The file as the system knows it. Lifetime: that of the stream.
    int Descriptor() const noexcept { return FDescriptor; }

private:
    String FFileName;
    int FDescriptor = -1;
};

}
