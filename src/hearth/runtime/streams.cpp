// Streams over memory and text, and what all streams share; files stand in file_stream.cpp.
// SPDX-License-Identifier: MIT
#include <hearth/runtime/streams.h>

#include <hearth/runtime/checked.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <limits>
#include <memory>

namespace ht {

namespace {

constexpr std::int32_t kPieceSize = 0x10000;
constexpr std::int64_t kMaxPiece = std::numeric_limits<std::int32_t>::max();

void RequireCount(std::int64_t count)
{
    if (count < 0)
        RaiseRangeError();
}

[[noreturn]] void RaiseNoMemory()
{
    throw EStreamError(u"Out of memory while expanding memory stream"_s);
}

}

EReadError::EReadError()
    : EStreamError(u"Stream read error"_s)
{
}

EWriteError::EWriteError()
    : EStreamError(u"Stream write error"_s)
{
}

std::int32_t TStream::Read(void*, std::int32_t)
{
    throw EAbstractError();
}

std::int32_t TStream::Write(const void*, std::int32_t)
{
    throw EAbstractError();
}

std::int64_t TStream::Seek(std::int64_t, TSeekOrigin)
{
    throw EAbstractError();
}

std::int64_t TStream::Size()
{
    const std::int64_t position = Seek(0, soCurrent);
    const std::int64_t size = Seek(0, soEnd);
    Seek(position, soBeginning);
    return size;
}

void TStream::SetSize(std::int64_t) { }

std::int64_t TStream::SeekTarget(
    std::int64_t offset, TSeekOrigin origin, std::int64_t position, std::int64_t size)
{
    const std::int64_t base = origin == soBeginning ? 0 : origin == soCurrent ? position : size;
    const std::int64_t target = CheckedAdd(base, offset);
    if (target < 0)
        throw EStreamError(u"Invalid stream operation"_s);
    return target;
}

void TStream::ReadBuffer(void* buffer, std::int64_t count)
{
    RequireCount(count);
    auto* to = static_cast<char*>(buffer);
    while (count > 0) {
        const std::int32_t got = Read(to, static_cast<std::int32_t>(std::min(count, kMaxPiece)));
        if (got <= 0)
            throw EReadError();
        to += got;
        count -= got;
    }
}

void TStream::WriteBuffer(const void* buffer, std::int64_t count)
{
    RequireCount(count);
    const auto* from = static_cast<const char*>(buffer);
    while (count > 0) {
        const std::int32_t gone = Write(from, static_cast<std::int32_t>(std::min(count, kMaxPiece)));
        if (gone <= 0)
            throw EWriteError();
        from += gone;
        count -= gone;
    }
}

std::int64_t TStream::CopyFrom(TStream& source, std::int64_t count)
{
    RequireCount(count);
    if (count == 0) {
        source.SetPosition(0);
        count = source.Size();
    }
    const auto pieceSize = static_cast<std::int32_t>(std::min<std::int64_t>(count, kPieceSize));
    const auto piece = std::make_unique<char[]>(static_cast<std::size_t>(pieceSize));
    for (std::int64_t left = count; left > 0;) {
        const std::int64_t step = std::min<std::int64_t>(left, pieceSize);
        source.ReadBuffer(piece.get(), step);
        WriteBuffer(piece.get(), step);
        left -= step;
    }
    return count;
}

std::string TStream::ReadRest()
{
    return detail::WithStorage([this] {
        std::string bytes;
        while (true) {
            const std::size_t before = bytes.size();
            bytes.resize(before + kPieceSize);
            const std::int32_t got = Read(bytes.data() + before, kPieceSize);
            bytes.resize(before + static_cast<std::size_t>(std::max(got, 0)));
            if (got <= 0)
                return bytes;
        }
    });
}

std::int32_t TMemoryStream::Read(void* buffer, std::int32_t count)
{
    RequireCount(count);
    const std::int64_t left = FData.Length() - FPosition;
    if (left <= 0 || count == 0)
        return 0;
    const auto step = static_cast<std::int32_t>(std::min<std::int64_t>(left, count));
    std::memcpy(buffer, FData.data() + FPosition, static_cast<std::size_t>(step));
    FPosition += step;
    return step;
}

std::int32_t TMemoryStream::Write(const void* buffer, std::int32_t count)
{
    RequireCount(count);
    if (count == 0)
        return 0;
    const std::int64_t end = CheckedAdd(FPosition, std::int64_t{count});
    // The caller may write a part of this very stream, which growing would move.
    const auto* from = static_cast<const std::uint8_t*>(buffer);
    const std::uint8_t* const data = FData.data();
    const std::less<> before;
    const bool inside = data && !before(from, data) && before(from, data + FData.Length());
    const std::ptrdiff_t own = inside ? from - data : 0;
    if (end > FData.Length())
        SetSize(end);
    std::memmove(
        FData.data() + FPosition, inside ? FData.data() + own : from, static_cast<std::size_t>(count));
    FPosition = end;
    return count;
}

std::int64_t TMemoryStream::Seek(std::int64_t offset, TSeekOrigin origin)
{
    FPosition = SeekTarget(offset, origin, FPosition, FData.Length());
    return FPosition;
}

void TMemoryStream::SetSize(std::int64_t size)
{
    RequireCount(size);
    if (size > std::numeric_limits<std::int32_t>::max())
        RaiseNoMemory();
    try {
        FData.SetLength(static_cast<std::int32_t>(size));
    } catch (const EOutOfMemory&) {
        RaiseNoMemory();
    }
    FPosition = std::min(FPosition, size);
}

void TMemoryStream::Clear()
{
    FData = {};
    FPosition = 0;
}

void TMemoryStream::LoadFromStream(TStream& source)
{
    source.SetPosition(0);
    TMemoryStream loaded;
    loaded.WriteBuffer(source.ReadRest());
    FData = std::move(loaded.FData);
    FPosition = 0;
}

void TMemoryStream::LoadFromFile(const String& fileName)
{
    TFileStream file(fileName, fmOpenRead | fmShareDenyWrite);
    LoadFromStream(file);
}

void TMemoryStream::SaveToStream(TStream& target) const
{
    target.WriteBuffer(FData.data(), FData.Length());
}

void TMemoryStream::SaveToFile(const String& fileName) const
{
    TFileStream file(fileName, fmCreate);
    SaveToStream(file);
}

TStringStream::TStringStream(std::u16string_view text, std::uint32_t codePage)
    : FCodePage(codePage)
{
    WriteBuffer(EncodeBytes(text, codePage));
    SetPosition(0);
}

String TStringStream::DataString() const
{
    return DecodeBytes({reinterpret_cast<const char*>(Data().data()), Data().size()}, FCodePage);
}

String TStringStream::ReadString(std::int32_t count)
{
    RequireCount(count);
    const std::int64_t left = std::max<std::int64_t>(Size() - Position(), 0);
    std::string bytes(static_cast<std::size_t>(std::min<std::int64_t>(left, count)), '\0');
    ReadBuffer(bytes.data(), static_cast<std::int64_t>(bytes.size()));
    return DecodeBytes(bytes, FCodePage);
}

void TStringStream::WriteString(std::u16string_view text)
{
    WriteBuffer(EncodeBytes(text, FCodePage));
}

}
