// Making archives.
// SPDX-License-Identifier: MIT
#include "file_replacement_p.h"
#include "zip_format_p.h"

#include <hearth/runtime/checked.h>

#include <algorithm>
#include <ctime>

#include <sys/stat.h>
#include <zlib.h>

namespace ht {

namespace {

using namespace zip;

constexpr std::uint16_t kVersion = 20; // folders and deflated entries
constexpr std::uint16_t kVersion64 = 45;
constexpr std::size_t kMaxText = 0xFFFF;

bool IsAscii(std::u16string_view text)
{
    return std::all_of(text.begin(), text.end(), [](char16_t c) { return c < 0x80; });
}

std::uint32_t ChecksumOf(std::string_view bytes)
{
    return static_cast<std::uint32_t>(crc32_z(0, reinterpret_cast<const Bytef*>(bytes.data()), bytes.size()));
}

std::string Deflated(std::string_view bytes, TZCompressionLevel level)
{
    TStringSink target;
    TZCompressionStream deflate(target, level, zfRaw);
    deflate.WriteBuffer(bytes);
    deflate.Finish();
    return std::move(target.Bytes);
}

/// When a file was changed last, by the local clock; 0 where that is not known.
TDateTime ModifiedOf(const String& fileName)
{
    struct stat status { };
    std::tm local{};
    if (stat(fileName.ToUtf8().c_str(), &status) != 0 || !localtime_r(&status.st_mtime, &local))
        return 0;
    TDateTime day = 0;
    TDateTime clock = 0;
    if (!TryEncodeDate(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, day)
        || !TryEncodeTime(local.tm_hour, local.tm_min, std::min(local.tm_sec, 59), 0, clock))
        return 0;
    return day + clock;
}

[[noreturn]] void RaiseName()
{
    throw EHtZIP(u"The name of an entry has 1 to 65535 bytes"_s);
}

/// Names that were not UTF-8 get longer. An empty one can be read, so it is written again.
void RequireName(std::string_view name)
{
    if (name.size() > kMaxText)
        RaiseName();
}

/// As many bytes of a text as a record has room for, in whole characters.
std::string CutUtf8(const String& text)
{
    std::string bytes = text.ToUtf8();
    if (bytes.size() <= kMaxText)
        return bytes;
    std::size_t end = kMaxText;
    while ((static_cast<unsigned char>(bytes[end]) & 0xC0U) == 0x80U)
        --end;
    bytes.resize(end);
    return bytes;
}

}

void THtZIP::Add(const String& name, std::string_view bytes, THtZIPMethod method, TDateTime modified,
    TZCompressionLevel level)
{
    if (name.IsEmpty())
        RaiseName();
    RequireName(name.ToUtf8());
    TEntry entry;
    entry.IsAdded = true;
    entry.Told.Name = name;
    entry.Told.Modified = modified;
    entry.Told.CRC32 = ChecksumOf(bytes);
    entry.Told.Size = static_cast<std::int64_t>(bytes.size());
    if (method == zmDeflated)
        entry.Data = Deflated(bytes, level);
    if (method == zmDeflated && entry.Data.size() < bytes.size())
        entry.Told.Method = zmDeflated;
    else
        entry.Data = bytes;
    entry.Told.CompressedSize = static_cast<std::int64_t>(entry.Data.size());
    FEntries.Add(std::move(entry));
}

void THtZIP::AddStream(
    const String& name, TStream& source, THtZIPMethod method, TDateTime modified, TZCompressionLevel level)
{
    Add(name, source.ReadRest(), method, modified, level);
}

void THtZIP::AddFile(const String& fileName, const String& name, THtZIPMethod method)
{
    TFileStream file(fileName, fmOpenRead);
    const std::size_t slash = fileName.View().rfind(u'/') + 1; // 0 without one
    const String own(fileName.View().substr(slash));
    AddStream(name.IsEmpty() ? own : name, file, method, ModifiedOf(fileName));
}

void THtZIP::AddFolder(const String& name, TDateTime modified)
{
    Add(name.View().ends_with(u'/') ? name : Concat({name, u"/"}), {}, zmStored, modified);
}

/// Writes local headers with their data, then the directory.
class THtZIP::TWriter {
public:
    TWriter(THtZIP& archive, TStream& target)
        : FArchive(archive)
        , FTarget(target)
    {
    }

    void Run()
    {
        for (const TEntry& entry : FArchive.FEntries)
            WriteEntry(entry);
        const std::int64_t directoryAt = FWritten;
        Write(FDirectory);
        WriteEnd(directoryAt);
    }

private:
    void Write(std::string_view bytes)
    {
        FTarget.WriteBuffer(bytes);
        FWritten += static_cast<std::int64_t>(bytes.size());
    }

    static bool IsLarge(std::int64_t number) { return number >= kIn64; }
    static std::uint64_t Short(std::int64_t number)
    {
        return IsLarge(number) ? kIn64 : static_cast<std::uint64_t>(number);
    }

    /// Flags also say how data are compressed or encrypted, so those of an entry that was read are kept. The
    /// checksum and the sizes stand in front of its data now, but for encrypted ones: the flag for these
    /// tells by what a password is proved.
    static std::uint16_t FlagsOf(const TEntry& entry)
    {
        const bool isUtf8 = !IsAscii(entry.Told.Name) || !IsAscii(entry.Told.Comment);
        const unsigned made = kUtf8Flag | (entry.Told.IsEncrypted ? 0U : kDescriptorFlag);
        return static_cast<std::uint16_t>((entry.Record.Flags & ~made) | (isUtf8 ? kUtf8Flag : 0U));
    }
    static bool HasDescriptor(const TEntry& entry) { return (FlagsOf(entry) & kDescriptorFlag) != 0; }

    /// What both records of an entry have in common, from the version on.
    static void PutCommon(std::string& record, const TEntry& entry, std::uint16_t version,
        std::uint64_t compressedSize, std::uint64_t size)
    {
        const THtZIPEntry& told = entry.Told;
        Put16(record, std::max(version, entry.Record.Version));
        Put16(record, FlagsOf(entry));
        Put16(record, told.Method);
        Put32(record, entry.IsAdded ? ToDosTime(told.Modified) : entry.Record.DosTime);
        Put32(record, told.CRC32);
        Put32(record, compressedSize);
        Put32(record, size);
        Put16(record, told.Name.ToUtf8().size());
    }

    /// The fields of the entry, unless there is no room for them beside ours.
    static std::string Joined(std::string fields, const std::string& kept)
    {
        return fields.size() + kept.size() > kMaxText ? fields : fields + kept;
    }

    /// The field for large numbers.
    static std::string Extra64(const std::string& field)
    {
        if (field.empty())
            return field;
        std::string extra;
        Put16(extra, kExtra64);
        Put16(extra, field.size());
        return extra + field;
    }

    void WriteEntry(const TEntry& entry)
    {
        const THtZIPEntry& told = entry.Told;
        const std::int64_t headerAt = FWritten;
        const std::string name = told.Name.ToUtf8();
        RequireName(name);
        // A local header has both sizes in the field, or none.
        const bool isLarge = IsLarge(told.Size) || IsLarge(told.CompressedSize);
        std::string large;
        if (isLarge) {
            Put64(large, static_cast<std::uint64_t>(told.Size));
            Put64(large, static_cast<std::uint64_t>(told.CompressedSize));
        }
        const TLocalPart old = entry.IsAdded ? TLocalPart() : FArchive.ReadLocal(entry);
        const std::string extra = Joined(Extra64(large), WithoutLargeNumbers(old.Extra));
        std::string local;
        Put32(local, kLocalSignature);
        PutCommon(local, entry, isLarge ? kVersion64 : kVersion, isLarge ? kIn64 : Short(told.CompressedSize),
            isLarge ? kIn64 : Short(told.Size));
        Put16(local, extra.size());
        Write(local + name + extra);
        if (entry.IsAdded)
            Write(entry.Data);
        else
            Copy(old.DataAt, told.CompressedSize);
        if (HasDescriptor(entry))
            WriteDescriptor(told, isLarge);
        AddToDirectory(entry, headerAt);
    }

    /// Bytes as they stand in the opened archive, compressed or not.
    void Copy(std::int64_t from, std::int64_t count)
    {
        FArchive.FStream->SetPosition(from);
        if (count > 0)
            FTarget.CopyFrom(*FArchive.FStream, count);
        FWritten += count;
    }

    void WriteDescriptor(const THtZIPEntry& told, bool isLarge)
    {
        const auto put = isLarge ? Put64 : Put32;
        std::string descriptor;
        Put32(descriptor, kDescriptorSignature);
        Put32(descriptor, told.CRC32);
        put(descriptor, static_cast<std::uint64_t>(told.CompressedSize));
        put(descriptor, static_cast<std::uint64_t>(told.Size));
        Write(descriptor);
    }

    void AddToDirectory(const TEntry& entry, std::int64_t headerAt)
    {
        const THtZIPEntry& told = entry.Told;
        std::string large;
        for (const std::int64_t number : {told.Size, told.CompressedSize, headerAt}) {
            if (IsLarge(number))
                Put64(large, static_cast<std::uint64_t>(number));
        }
        const std::string extra = Joined(Extra64(large), entry.Record.Extra);
        const std::uint16_t version = large.empty() ? kVersion : kVersion64;
        const std::string comment = CutUtf8(told.Comment);
        constexpr std::uint32_t kFolderAttribute = 0x10;
        const std::uint32_t added = told.IsFolder() ? kFolderAttribute : 0;
        Put32(FDirectory, kCentralSignature);
        Put16(FDirectory, entry.IsAdded ? version : entry.Record.MadeBy);
        PutCommon(FDirectory, entry, version, Short(told.CompressedSize), Short(told.Size));
        Put16(FDirectory, extra.size());
        Put16(FDirectory, comment.size());
        Put16(FDirectory, 0); // disk
        Put16(FDirectory, entry.Record.InternalAttributes);
        Put32(FDirectory, entry.IsAdded ? added : entry.Record.ExternalAttributes);
        Put32(FDirectory, Short(headerAt));
        FDirectory += told.Name.ToUtf8() + extra + comment;
    }

    void WriteEnd(std::int64_t directoryAt)
    {
        const auto count = static_cast<std::int64_t>(FArchive.FEntries.size());
        const auto size = static_cast<std::int64_t>(FDirectory.size());
        if (count >= kCountIn64 || IsLarge(size) || IsLarge(directoryAt))
            WriteEnd64(count, size, directoryAt);
        std::string end;
        Put32(end, kEndSignature);
        Put32(end, 0); // disks
        const auto shortCount = static_cast<std::uint64_t>(std::min<std::int64_t>(count, kCountIn64));
        Put16(end, shortCount);
        Put16(end, shortCount);
        Put32(end, Short(size));
        Put32(end, Short(directoryAt));
        const std::string comment = CutUtf8(FArchive.FComment);
        Put16(end, comment.size());
        Write(end + comment);
    }

    void WriteEnd64(std::int64_t count, std::int64_t size, std::int64_t directoryAt)
    {
        constexpr std::int64_t kHead = 12; // the signature and the size do not count
        const std::int64_t recordAt = FWritten;
        std::string end;
        Put32(end, kEnd64Signature);
        Put64(end, kEnd64Size - kHead);
        Put16(end, kVersion64);
        Put16(end, kVersion64);
        Put32(end, 0);
        Put32(end, 0);
        Put64(end, static_cast<std::uint64_t>(count));
        Put64(end, static_cast<std::uint64_t>(count));
        Put64(end, static_cast<std::uint64_t>(size));
        Put64(end, static_cast<std::uint64_t>(directoryAt));
        Put32(end, kLocator64Signature);
        Put32(end, 0);
        Put64(end, static_cast<std::uint64_t>(recordAt));
        Put32(end, 1); // disks
        Write(end);
    }

    THtZIP& FArchive;
    TStream& FTarget;
    std::int64_t FWritten = 0;
    std::string FDirectory;
};

void THtZIP::Save(TStream& target)
{
    TWriter(*this, target).Run();
}

void THtZIP::SaveToFile(const String& fileName)
{
    TFileReplacement replacement(fileName);
    {
        TFileStream file(replacement.Beside(), fmOpenReadWrite);
        Save(file);
    }
    replacement.TakePlace();
}

}
