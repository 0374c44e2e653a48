// Reading archives: the directory and the contents of entries.
// SPDX-License-Identifier: MIT
#include "file_replacement_p.h"
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

/// Text without a word on its encoding. ASCII stays what it is: the table of the code page has pictures where
/// control characters are.
String DecodeOld(std::string_view bytes)
{
    const String text = DecodeBytes(bytes, kOldCodePage);
    std::u16string units(text.View());
    for (std::size_t i = 0; i < std::min(units.size(), bytes.size()); ++i) {
        const auto byte = static_cast<unsigned char>(bytes[i]);
        if (byte < 0x80)
            units[i] = byte;
    }
    return String(units);
}

/// The comment of an archive has no mark of its encoding.
String DecodeComment(std::string_view bytes)
{
    const String text = String::FromUtf8(bytes);
    return text.ToUtf8() == bytes ? text : DecodeOld(bytes);
}

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
        std::size_t found = std::string::npos;
        for (std::size_t at = tail.size(); at-- > 0;) {
            const std::string_view record = std::string_view(tail).substr(at);
            if (!record.starts_with("PK\5\6") || record.size() < kEndSize)
                continue;
            // The first letters may stand in the comment too.
            const bool fits = TByteReader(record.substr(kEndSize - 2)).Take16() == record.size() - kEndSize;
            if (fits || found == std::string::npos)
                found = at;
            if (fits)
                break;
        }
        if (found == std::string::npos)
            throw EHtZIP(u"The file is no ZIP archive"_s);
        ReadEnd(std::string_view(tail).substr(found), start + static_cast<std::int64_t>(found));
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
        FArchive.FComment = DecodeComment(reader.Take(std::min<std::size_t>(commentSize, reader.Rest())));
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
        TRecord& record = entry.Record;
        record.MadeBy = reader.Take16();
        record.Version = reader.Take16();
        record.Flags = reader.Take16();
        told.Method = reader.Take16();
        record.DosTime = reader.Take32();
        told.Modified = FromDosTime(record.DosTime);
        told.CRC32 = reader.Take32();
        told.CompressedSize = reader.Take32();
        told.Size = reader.Take32();
        const std::uint16_t nameSize = reader.Take16();
        const std::uint16_t extraSize = reader.Take16();
        const std::uint16_t commentSize = reader.Take16();
        reader.Take16(); // disk
        record.InternalAttributes = reader.Take16();
        record.ExternalAttributes = reader.Take32();
        entry.HeaderAt = reader.Take32();
        const auto decode = (record.Flags & kUtf8Flag) != 0 ? String::FromUtf8 : DecodeOld;
        told.IsEncrypted = (record.Flags & kEncryptedFlag) != 0;
        told.Name = decode(reader.Take(nameSize));
        const std::string_view extra = reader.Take(extraSize);
        ReadLargeNumbers(extra, entry);
        record.Extra = WithoutLargeNumbers(extra);
        told.Comment = decode(reader.Take(commentSize));
        entry.HeaderAt = CheckedAdd(entry.HeaderAt, FArchive.FBase);
        return entry;
    }

    /// One field has what is too large for the record.
    static void ReadLargeNumbers(std::string_view extra, TEntry& entry)
    {
        ForEachField(extra, [&entry](std::uint16_t id, std::string_view bytes) {
            TByteReader field(bytes);
            for (std::int64_t* number : {&entry.Told.Size, &entry.Told.CompressedSize, &entry.HeaderAt}) {
                if (id == kExtra64 && *number == kIn64 && field.Rest() >= 8)
                    *number = CheckedCast<std::int64_t>(field.Take64());
            }
        });
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

void THtZIP::ReadDirectory(TStream& stream)
{
    try {
        TDirectoryReader(*this, stream).Run();
    } catch (const EIntOverflow&) { // numbers that no file can have
        RaiseDamaged();
    } catch (const ERangeError&) {
        RaiseDamaged();
    }
}

void THtZIP::Open(TStream& stream)
{
    FEntries.Clear();
    FComment = {};
    FStream = nullptr;
    try {
        ReadDirectory(stream);
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

THtZIP::TLocalPart THtZIP::ReadLocal(const TEntry& entry)
{
    const std::string header = ReadAt(*FStream, entry.HeaderAt, kLocalSize);
    TByteReader reader(header);
    if (reader.Take32() != kLocalSignature)
        RaiseDamaged();
    reader.Take(22);
    const std::uint16_t nameSize = reader.Take16();
    const std::uint16_t extraSize = reader.Take16();
    const std::int64_t extraAt = entry.HeaderAt + kLocalSize + nameSize;
    TLocalPart part;
    part.DataAt = extraAt + extraSize;
    if (part.DataAt > FDirectoryAt || entry.Told.CompressedSize > FDirectoryAt - part.DataAt)
        RaiseDamaged();
    part.Extra = ReadAt(*FStream, extraAt, extraSize);
    return part;
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
        entry.IsAdded ? 0 : ReadLocal(entry).DataAt, entry.Told.CompressedSize);
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

namespace {

/// A link that stands in the folder already may lead out of it. One in the place of a file is replaced.
void RequireNoLink(std::filesystem::path path, const THtZIPEntry& entry)
{
    const std::filesystem::path name = PathOf(entry.Name);
    for (const std::filesystem::path& part : name.parent_path()) {
        path /= part;
        std::error_code missing;
        if (std::filesystem::is_symlink(std::filesystem::symlink_status(path, missing)))
            throw EHtZIP(Concat({u"Entry \"", entry.Name, u"\" leads through a link"}));
    }
}

}

void THtZIP::Extract(std::int32_t index, const String& folder)
{
    const THtZIPEntry& entry = Entry(index);
    if (entry.IsUnsafe())
        throw EHtZIP(Concat({u"Entry \"", entry.Name, u"\" has an unsafe name"}));
    const std::filesystem::path path = PathOf(folder) / PathOf(entry.Name);
    RequireNoLink(PathOf(folder), entry);
    if (entry.IsFolder())
        return MakeFolders(path);
    MakeFolders(path.parent_path());
    TFileReplacement replacement(String::FromUtf8(path.string()));
    {
        TFileStream file(replacement.Beside(), fmOpenReadWrite);
        Read(index, file);
    }
    replacement.TakePlace();
}

}
