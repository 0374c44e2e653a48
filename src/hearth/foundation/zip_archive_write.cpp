// Making archives.
// SPDX-License-Identifier: MIT
#include "zip_format_p.h"

#include <hearth/runtime/checked.h>

#include <algorithm>
#include <ctime>
#include <filesystem>

#include <sys/stat.h>
#include <unistd.h>
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
    TBytesStream target;
    TZCompressionStream deflate(target, level, zfRaw);
    deflate.WriteBuffer(bytes);
    deflate.Finish();
    return {reinterpret_cast<const char*>(target.Memory()), static_cast<std::size_t>(target.Size())};
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

/// A file beside another one that takes its place once it is complete.
class TReplacement {
public:
    explicit TReplacement(const String& fileName)
        : FName(fileName.ToUtf8())
        , FBeside(FName + ".XXXXXX")
    {
        const int made = mkstemp(FBeside.data());
        if (made < 0)
            throw EFCreateError(Concat({u"Cannot create file \"", fileName, u"\""}));
        fchmod(made, 0644);
        close(made);
    }
    TReplacement(const TReplacement&) = delete;
    TReplacement& operator=(const TReplacement&) = delete;
    ~TReplacement() { unlink(FBeside.c_str()); }

    String Beside() const { return String::FromUtf8(FBeside); }
    void TakePlace()
    {
        std::error_code error;
        std::filesystem::rename(FBeside, FName, error);
        if (error)
            throw EFCreateError(Concat({u"Cannot replace file \"", String::FromUtf8(FName), u"\""}));
    }

private:
    std::string FName;
    std::string FBeside;
};

}

void THtZIP::Add(const String& name, std::string_view bytes, THtZIPMethod method, TDateTime modified,
    TZCompressionLevel level)
{
    if (name.IsEmpty() || name.ToUtf8().size() > kMaxText)
        throw EHtZIP(u"The name of an entry has 1 to 65535 bytes"_s);
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

    /// What both records of an entry have in common, from the version on.
    static void PutCommon(std::string& record, const THtZIPEntry& told, std::uint16_t version)
    {
        const bool isUtf8 = !IsAscii(told.Name) || !IsAscii(told.Comment);
        Put16(record, version);
        Put16(record, (isUtf8 ? kUtf8Flag : 0U) | (told.IsEncrypted ? kEncryptedFlag : 0U));
        Put16(record, told.Method);
        Put32(record, ToDosTime(told.Modified));
        Put32(record, told.CRC32);
        Put32(record, Short(told.CompressedSize));
        Put32(record, Short(told.Size));
        Put16(record, told.Name.ToUtf8().size());
    }

    /// The field with the numbers that are too large.
    static std::string Extra64(std::initializer_list<std::int64_t> numbers)
    {
        std::string field;
        for (const std::int64_t number : numbers) {
            if (IsLarge(number))
                Put64(field, static_cast<std::uint64_t>(number));
        }
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
        // A local header has both sizes in the field, or none.
        const bool isLarge = IsLarge(told.Size) || IsLarge(told.CompressedSize);
        const std::string localExtra = isLarge ? Extra64({told.Size, told.CompressedSize}) : std::string();
        std::string local;
        Put32(local, kLocalSignature);
        PutCommon(local, told, isLarge ? kVersion64 : kVersion);
        Put16(local, localExtra.size());
        Write(local + told.Name.ToUtf8() + localExtra);
        if (entry.IsAdded) {
            Write(entry.Data);
        } else {
            FArchive.CopyStored(entry, FTarget);
            FWritten += told.CompressedSize;
        }
        AddToDirectory(told, headerAt);
    }

    void AddToDirectory(const THtZIPEntry& told, std::int64_t headerAt)
    {
        const std::string extra = Extra64({told.Size, told.CompressedSize, headerAt});
        const std::uint16_t version = extra.empty() ? kVersion : kVersion64;
        const std::string comment = told.Comment.ToUtf8().substr(0, kMaxText);
        Put32(FDirectory, kCentralSignature);
        Put16(FDirectory, version);
        PutCommon(FDirectory, told, version);
        Put16(FDirectory, extra.size());
        Put16(FDirectory, comment.size());
        Put16(FDirectory, 0); // disk
        Put16(FDirectory, 0); // binary
        Put32(FDirectory, told.IsFolder() ? 0x10U : 0U);
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
        const std::string comment = FArchive.FComment.ToUtf8().substr(0, kMaxText);
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

/// The bytes of an entry as they stand in the opened archive, compressed or not.
void THtZIP::CopyStored(const TEntry& entry, TStream& target)
{
    FStream->SetPosition(DataStart(entry));
    if (entry.Told.CompressedSize > 0)
        target.CopyFrom(*FStream, entry.Told.CompressedSize);
}

void THtZIP::Save(TStream& target)
{
    TWriter(*this, target).Run();
}

void THtZIP::SaveToFile(const String& fileName)
{
    TReplacement replacement(fileName);
    {
        TFileStream file(replacement.Beside(), fmOpenReadWrite);
        Save(file);
    }
    replacement.TakePlace();
}

}
