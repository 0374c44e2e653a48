// Archives in the ZIP format.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/foundation/limits.h>
#include <hearth/runtime/array.h>
#include <hearth/runtime/date_time.h>
#include <hearth/runtime/streams.h>
#include <hearth/runtime/zlib_stream.h>

#include <cstdint>
#include <memory>
#include <string_view>

namespace ht {

/// A file is no archive, or an entry of it cannot be read.
class HT_API EHtZIP : public Exception {
public:
    using Exception::Exception;
    const char16_t* ClassName() const noexcept override { return u"EHtZIP"; }
};

enum THtZIPMethod : std::uint16_t { zmStored = 0, zmDeflated = 8 };

/// What the directory of an archive tells of an entry. Names part folders by "/"; that of a folder ends in
/// one.
struct THtZIPEntry {
    String Name;
    String Comment;
    TDateTime Modified = 0; // local time in steps of two seconds; 0 where none is told
    std::uint16_t Method = zmStored; // as the file has it; others than THtZIPMethod cannot be read
    bool IsEncrypted = false; // cannot be read either
    std::uint32_t CRC32 = 0;
    std::int64_t Size = 0; // bytes
    std::int64_t CompressedSize = 0;

    bool IsFolder() const noexcept { return Name.View().ends_with(u'/'); }
    /// True for a name that leads out of the folder that an archive is unpacked to, or could elsewhere: an
    /// absolute one, one with a drive, a "..", a backslash or a U+0000.
    bool IsUnsafe() const noexcept;
};

/// Reads an archive, or makes one; archives over 4 GB and of more than 65,535 entries too. Names and comments
/// are UTF-8 where an entry says so, else in code page 437. Entries that are stored or deflated can be read.
///
/// Nothing that the file says is believed before it was seen: no memory is taken for more than the file can
/// hold, and data that inflate by more than the InflateRatio of the limits are refused.
class HT_API THtZIP : public TObject {
public:
    static constexpr TClassInfo kClassInfo{u"THtZIP", &TObject::kClassInfo};
    const TClassInfo& ClassInfo() const override { return kClassInfo; }

    /// An empty archive to add to.
    THtZIP() = default;
    THtZIP(const THtZIP&) = delete;
    THtZIP& operator=(const THtZIP&) = delete;
    ~THtZIP() override;

    // Reading.

    /// Reads the directory of an archive; what stands in front of the archive is passed over. Throws EHtZIP
    /// for what is no archive, and as file streams do. The stream is not owned and outlives its use here.
    void Open(const String& fileName);
    void Open(TStream& stream);

    std::int32_t Count() const noexcept { return FEntries.Length(); }
    /// Throws ERangeError outside 0 to Count() - 1.
    const THtZIPEntry& Entry(std::int32_t index) const { return FEntries[index].Told; }
    /// The entry of that name, case included, -1 for a miss; of several the last one.
    std::int32_t IndexOf(std::u16string_view name) const;
    /// The comment of the archive.
    const String& Comment() const noexcept { return FComment; }
    void SetComment(const String& value) { FComment = value; }

    /// The contents of an entry. Throw EHtZIP for a wrong checksum or size, damaged data, an unknown method
    /// and an encrypted entry; what was written by then has been written.
    std::string Read(std::int32_t index);
    void Read(std::int32_t index, TStream& target);
    /// The contents as text, by the byte order mark, else as UTF-8.
    String ReadText(std::int32_t index);
    /// Writes a file, or makes a folder, under the entry's name in `folder`, making folders on the way. A
    /// file that is there is replaced once all of the entry was read. Throws EHtZIP for an entry whose name
    /// is unsafe or leads through a link below `folder`, and as Read and file streams do.
    void Extract(std::int32_t index, const String& folder);

    // Making.

    /// Adds an entry at the end. Bytes are deflated unless they are to be stored, or get no smaller. Throw
    /// EHtZIP for a name that is empty or over 65,535 bytes long. What a stream gives is what is from its
    /// position on.
    void Add(const String& name, std::string_view bytes, THtZIPMethod method = zmDeflated,
        TDateTime modified = 0, TZCompressionLevel level = zcDefault);
    void AddStream(const String& name, TStream& source, THtZIPMethod method = zmDeflated,
        TDateTime modified = 0, TZCompressionLevel level = zcDefault);
    /// The file with its date, under the given name or the last part of its own.
    void AddFile(const String& fileName, const String& name = {}, THtZIPMethod method = zmDeflated);
    /// A folder without anything in it.
    void AddFolder(const String& name, TDateTime modified = 0);
    void Delete(std::int32_t index) { FEntries.Delete(index); }

    /// Writes the archive: entries that were read as they stand in their file, with what only other programs
    /// understand of them, and those that were added. Names become UTF-8. The file is replaced only when all
    /// of it was written, so an archive may be saved over itself. Throw as streams do, and EHtZIP for a
    /// damaged entry.
    void Save(TStream& target);
    void SaveToFile(const String& fileName);

    THtLimits Limits = HtLimits();

private:
    /// What the records of an entry that was read say besides, in the words of the format.
    struct TRecord {
        std::uint16_t MadeBy = 0;
        std::uint16_t Version = 0;
        std::uint16_t Flags = 0;
        std::uint32_t DosTime = 0;
        std::uint16_t InternalAttributes = 0;
        std::uint32_t ExternalAttributes = 0;
        std::string Extra; // without the field of large numbers
    };
    struct TEntry {
        THtZIPEntry Told;
        TRecord Record;
        std::int64_t HeaderAt = 0; // in the opened stream
        bool IsAdded = false;
        std::string Data; // of an added entry, as the archive will hold it
    };
    class TDirectoryReader;
    class TWriter;

    /// What stands between the local header of an entry and its data.
    struct TLocalPart {
        std::string Extra;
        std::int64_t DataAt = 0; // in the opened stream
    };
    void ReadDirectory(TStream& stream);
    TLocalPart ReadLocal(const TEntry& entry);
    void RequireReadable(const TEntry& entry) const;

    TArray<TEntry> FEntries;
    String FComment;
    std::unique_ptr<TStream> FFile; // owned where Open made it
    TStream* FStream = nullptr;
    std::int64_t FBase = 0; // where the archive begins in the stream
    std::int64_t FDirectoryAt = 0; // entries end in front of it
};

}
