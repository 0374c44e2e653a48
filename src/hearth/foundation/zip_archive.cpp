// Reading archives: the directory and the contents of entries.
// SPDX-License-Identifier: MIT
#include "zip_format_p.h"

#include <hearth/runtime/checked.h>
#include <hearth/runtime/encoding.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <numeric>
#include <vector>

#include <zlib.h>

namespace ht {

namespace {

using namespace zip;

constexpr std::uint32_t kOldCodePage = 437;

/// `count` bytes of a stream at a place. Throws EHtZIP where there are fewer.
std::string ReadAt(TStream& stream, std::int64_t place, std::int64_t count)
{
    if (place < 0 || count < 0 || place > stream.Size() || count > stream.Size() - place)
        RaiseDamaged();
    std::string bytes(static_cast<std::size_t>(count), '\0');
    stream.SetPosition(place);
    stream.ReadBuffer(bytes.data(), count);
    return bytes;
}

/// The bytes of a stream from one place up to another, as a stream of their own.
class TPartStream final : public TStream {
public:
    TPartStream(TStream& stream, std::int64_t start, std::int64_t size)
        : FStream(stream)
        , FStart(start)
        , FSize(size)
    {
    }

    std::int32_t Read(void* buffer, std::int32_t count) override
    {
        FStream.SetPosition(FStart + FPosition);
        const auto wanted = static_cast<std::int32_t>(std::min<std::int64_t>(count, FSize - FPosition));
        const std::int32_t got = FStream.Read(buffer, wanted);
        FPosition += got;
        return got;
    }
    std::int64_t Seek(std::int64_t offset, TSeekOrigin origin) override
    {
        FPosition = std::min(SeekTarget(offset, origin, FPosition, FSize), FSize);
        return FPosition;
    }

private:
    TStream& FStream;
    std::int64_t FStart;
    std::int64_t FSize;
    std::int64_t FPosition = 0;
};

/// A stream into a string.
class TStringSink final : public TStream {
public:
    std::int32_t Write(const void* buffer, std::int32_t count) override
    {
        detail::WithStorage(
            [&] { Bytes.append(static_cast<const char*>(buffer), static_cast<std::size_t>(count)); });
        return count;
    }

    std::string Bytes;
};

std::filesystem::path PathOf(const String& name)
{
    return std::filesystem::path(name.ToUtf8());
}

void MakeFolders(const std::filesystem::path& folder)
{
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error)
        throw EFCreateError(Concat({u"Cannot create folder \"", String::FromUtf8(folder.string()), u"\". ",
            String::FromUtf8(error.message())}));
}

}

bool THtZIPEntry::IsUnsafe() const noexcept
{
    const std::u16string_view name = Name;
    if (name.empty() || name.starts_with(u'/') || name.substr(1).starts_with(u':'))
        return true;
    if (name.find(u'\\') != std::u16string_view::npos || name.find(u'\0') != std::u16string_view::npos)
        return true;
    std::size_t start = 0;
    while (start <= name.size()) {
        const std::size_t end = std::min(name.find(u'/', start), name.size());
        if (name.substr(start, end - start) == u"..")
            return true;
        start = end + 1;
    }
    return false;
}

/// Finds the directory at the end of a stream and reads its entries.
class THtZIP::TDirectoryReader {
public:
    TDirectoryReader(THtZIP& archive, TStream& stream)
        : FArchive(archive)
        , FStream(stream)
    {
    }

    void Run()
    {
        FindEnd();
        const std::string directory = ReadAt(FStream, FArchive.FDirectoryAt, FDirectorySize);
        TByteReader reader(directory);
        for (std::uint64_t i = 0; i < FCount; ++i)
            FArchive.FEntries.Add(ReadEntry(reader));
        CheckPlaces();
    }

private:
    /// The last record has a comment of up to 65,535 bytes behind it, so it is searched from behind.
    void FindEnd()
    {
        const std::int64_t size = FStream.Size();
        const std::int64_t start = std::max<std::int64_t>(0, size - kEndSize - 0xFFFF);
        const std::string tail = ReadAt(FStream, start, size - start);
        for (std::size_t at = tail.size(); at-- > 0;) {
            if (!std::string_view(tail).substr(at).starts_with("PK\5\6"))
                continue;
            if (tail.size() - at < kEndSize)
                continue;
            return ReadEnd(std::string_view(tail).substr(at), start + static_cast<std::int64_t>(at));
        }
        throw EHtZIP(u"The file is no ZIP archive"_s);
    }

    void ReadEnd(std::string_view record, std::int64_t place)
    {
        TByteReader reader(record);
        reader.Take32();
        RequireOneDisk(reader.Take16(), reader.Take16());
        reader.Take16(); // entries on this disk
        FCount = reader.Take16();
        FDirectorySize = reader.Take32();
        std::int64_t offset = reader.Take32();
        const std::uint16_t commentSize = reader.Take16();
        FArchive.FComment =
            DecodeBytes(reader.Take(std::min<std::size_t>(commentSize, reader.Rest())), kOldCodePage);
        std::int64_t end = place;
        if (FCount == kCountIn64 || FDirectorySize == kIn64 || offset == kIn64)
            ReadEnd64(place, end, offset);
        // Something may stand in front of the archive, a program that unpacks it for example.
        FArchive.FBase = CheckedSub(CheckedSub(end, FDirectorySize), offset);
        FArchive.FDirectoryAt = CheckedAdd(FArchive.FBase, offset);
        const auto fits = static_cast<std::uint64_t>(FDirectorySize / kCentralSize);
        if (FArchive.FBase < 0 || FDirectorySize < 0 || offset < 0 || FCount > fits)
            RaiseDamaged();
    }

    static void RequireOneDisk(std::uint32_t disk, std::uint32_t directoryDisk)
    {
        if (disk != directoryDisk || (disk != 0 && disk != kCountIn64))
            throw EHtZIP(u"Archives in several parts are not supported"_s);
    }

    /// Where the numbers are too large for the last record, one in front of it has them.
    void ReadEnd64(std::int64_t place, std::int64_t& end, std::int64_t& offset)
    {
        const std::string locator = ReadAt(FStream, place - kLocator64Size, kLocator64Size);
        TByteReader locatorReader(locator);
        if (locatorReader.Take32() != kLocator64Signature)
            return; // just so many
        // Its place is told from the start of the archive, which is not known yet.
        const std::int64_t recordAt = place - kLocator64Size - kEnd64Size;
        const std::string record = ReadAt(FStream, recordAt, kEnd64Size);
        TByteReader reader(record);
        if (reader.Take32() != kEnd64Signature)
            RaiseDamaged();
        reader.Take64(); // its own size
        reader.Take32(); // versions
        const std::uint32_t disk = reader.Take32();
        RequireOneDisk(disk, reader.Take32());
        reader.Take64(); // entries on this disk
        FCount = reader.Take64();
        FDirectorySize = CheckedCast<std::int64_t>(reader.Take64());
        offset = CheckedCast<std::int64_t>(reader.Take64());
        end = recordAt;
    }

    TEntry ReadEntry(TByteReader& reader)
    {
        if (reader.Take32() != kCentralSignature)
            RaiseDamaged();
        TEntry entry;
        THtZIPEntry& told = entry.Told;
        reader.Take32(); // versions
        const std::uint16_t flags = reader.Take16();
        told.Method = reader.Take16();
        const std::uint16_t time = reader.Take16();
        told.Modified = FromDosTime(reader.Take16(), time);
        told.CRC32 = reader.Take32();
        told.CompressedSize = reader.Take32();
        told.Size = reader.Take32();
        const std::uint16_t nameSize = reader.Take16();
        const std::uint16_t extraSize = reader.Take16();
        const std::uint16_t commentSize = reader.Take16();
        reader.Take(8); // disk and attributes
        entry.HeaderAt = reader.Take32();
        const std::uint32_t codePage = (flags & kUtf8Flag) != 0 ? kUtf8CodePage : kOldCodePage;
        told.IsEncrypted = (flags & kEncryptedFlag) != 0;
        told.Name = DecodeBytes(reader.Take(nameSize), codePage);
        ReadExtra(reader.Take(extraSize), entry);
        told.Comment = DecodeBytes(reader.Take(commentSize), codePage);
        entry.HeaderAt = CheckedAdd(entry.HeaderAt, FArchive.FBase);
        return entry;
    }

    /// Fields of a number and a size; one of them has what is too large for the record.
    static void ReadExtra(std::string_view extra, TEntry& entry)
    {
        TByteReader reader(extra);
        while (reader.Rest() >= 4) {
            const std::uint16_t id = reader.Take16();
            const std::uint16_t size = reader.Take16();
            TByteReader field(reader.Take(std::min<std::size_t>(size, reader.Rest())));
            if (id != kExtra64)
                continue;
            for (std::int64_t* number : {&entry.Told.Size, &entry.Told.CompressedSize, &entry.HeaderAt}) {
                if (*number == kIn64 && field.Rest() >= 8)
                    *number = CheckedCast<std::int64_t>(field.Take64());
            }
            return;
        }
    }

    /// Each entry has bytes of its own in front of the directory: an archive whose entries share them unpacks
    /// to many times of what its size and ratio promise.
    void CheckPlaces() const
    {
        const TArray<TEntry>& entries = FArchive.FEntries;
        std::vector<std::int32_t> order(entries.size());
        std::iota(order.begin(), order.end(), 0);
        std::sort(order.begin(), order.end(),
            [&entries](std::int32_t a, std::int32_t b) { return entries[a].HeaderAt < entries[b].HeaderAt; });
        std::int64_t free = FArchive.FBase;
        for (const std::int32_t index : order) {
            const TEntry& entry = entries[index];
            if (entry.HeaderAt < free || entry.HeaderAt > FArchive.FDirectoryAt)
                RaiseDamaged();
            free = CheckedAdd(entry.HeaderAt, CheckedAdd(kLocalSize, entry.Told.CompressedSize));
            if (free > FArchive.FDirectoryAt)
                RaiseDamaged();
        }
    }

    THtZIP& FArchive;
    TStream& FStream;
    std::uint64_t FCount = 0;
    std::int64_t FDirectorySize = 0;
};

THtZIP::~THtZIP() = default;

void THtZIP::Open(const String& fileName)
{
    auto file = std::make_unique<TFileStream>(fileName, fmOpenRead);
    Open(*file);
    FFile = std::move(file);
}

void THtZIP::Open(TStream& stream)
{
    FEntries.Clear();
    FComment = {};
    FStream = nullptr;
    try {
        TDirectoryReader(*this, stream).Run();
    } catch (...) {
        FEntries.Clear();
        FComment = {};
        throw;
    }
    FFile.reset();
    FStream = &stream;
}

std::int32_t THtZIP::IndexOf(std::u16string_view name) const
{
    std::int32_t index = Count() - 1;
    while (index >= 0 && FEntries[index].Told.Name != name)
        --index;
    return index;
}

std::int64_t THtZIP::DataStart(const TEntry& entry)
{
    const std::string header = ReadAt(*FStream, entry.HeaderAt, kLocalSize);
    TByteReader reader(header);
    if (reader.Take32() != kLocalSignature)
        RaiseDamaged();
    reader.Take(22);
    const std::uint16_t nameSize = reader.Take16();
    const std::int64_t start = entry.HeaderAt + kLocalSize + nameSize + reader.Take16();
    if (start + entry.Told.CompressedSize > FDirectoryAt)
        RaiseDamaged();
    return start;
}

void THtZIP::RequireReadable(const TEntry& entry) const
{
    if (entry.Told.IsEncrypted)
        throw EHtZIP(Concat({u"Entry \"", entry.Told.Name, u"\" is encrypted"}));
    if (entry.Told.Method != zmStored && entry.Told.Method != zmDeflated)
        throw EHtZIP(Concat({u"Entry \"", entry.Told.Name, u"\" is compressed by an unknown method"}));
}

std::string THtZIP::Read(std::int32_t index)
{
    TStringSink sink;
    Read(index, sink);
    return std::move(sink.Bytes);
}

String THtZIP::ReadText(std::int32_t index)
{
    const std::string bytes = Read(index);
    const THtByteOrderMarkMatch mark = DetectByteOrderMark(bytes);
    const std::uint32_t codePage = mark.Mark == bomNone ? kUtf8CodePage : CodePageOf(mark.Mark);
    return DecodeBytes(std::string_view(bytes).substr(mark.Size), codePage);
}

namespace {

/// Copies an entry's contents and proves them on the way.
void CopyProved(TStream& source, TStream& target, const THtZIPEntry& told)
{
    std::array<std::uint8_t, 64 * 1024> piece;
    uLong sum = crc32_z(0, nullptr, 0);
    std::int64_t size = 0;
    std::int32_t got = 0;
    while ((got = source.Read(piece.data(), piece.size())) > 0) {
        size += got;
        if (size > told.Size)
            break;
        sum = crc32_z(sum, piece.data(), static_cast<std::size_t>(got));
        target.WriteBuffer(piece.data(), got);
    }
    if (size != told.Size)
        throw EHtZIP(Concat({u"Entry \"", told.Name, u"\" has another size than told"}));
    if (sum != told.CRC32)
        throw EHtZIP(Concat({u"Entry \"", told.Name, u"\" has a wrong checksum"}));
}

}

void THtZIP::Read(std::int32_t index, TStream& target)
{
    const TEntry& entry = FEntries[index];
    RequireReadable(entry);
    TBytesStream added;
    if (entry.IsAdded) {
        added.WriteBuffer(entry.Data);
        added.SetPosition(0);
    }
    TPartStream part(entry.IsAdded ? static_cast<TStream&>(added) : *FStream,
        entry.IsAdded ? 0 : DataStart(entry), entry.Told.CompressedSize);
    if (entry.Told.Method == zmStored)
        return CopyProved(part, target, entry.Told);
    TZDecompressionStream inflated(part, zfRaw, Limits.InflateRatio);
    try {
        CopyProved(inflated, target, entry.Told);
    } catch (const EWriteError&) {
        throw; // the target's
    } catch (const EStreamError& error) {
        throw EHtZIP(Concat({u"Entry \"", entry.Told.Name, u"\": ", error.Message}));
    }
}

void THtZIP::Extract(std::int32_t index, const String& folder)
{
    const THtZIPEntry& entry = Entry(index);
    if (entry.IsUnsafe())
        throw EHtZIP(Concat({u"Entry \"", entry.Name, u"\" has an unsafe name"}));
    const std::filesystem::path path = PathOf(folder) / PathOf(entry.Name);
    if (entry.IsFolder())
        return MakeFolders(path);
    MakeFolders(path.parent_path());
    TFileStream file(String::FromUtf8(path.string()), fmCreate);
    Read(index, file);
}

}
