// Any bytes as an archive: whatever reads is written again and reads equal.
// SPDX-License-Identifier: MIT
#include "../require.h"

#include <hearth/foundation/zip_archive.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace {

using fuzz::Require;
using ht::THtZIP;
using ht::THtZIPEntry;

/// The contents, or the words of the refusal.
std::string Contents(THtZIP& archive, std::int32_t index)
{
    try {
        return "contents " + archive.Read(index);
    } catch (const ht::EHtZIP& error) {
        return error.Message.ToUtf8();
    }
}

void CheckEntry(THtZIP& archive, THtZIP& again, std::int32_t index)
{
    const THtZIPEntry& entry = archive.Entry(index);
    const THtZIPEntry& other = again.Entry(index);
    Require(entry.Name == other.Name && entry.Comment == other.Comment, "texts stay");
    Require(entry.Modified == other.Modified, "dates stay");
    Require(entry.Method == other.Method && entry.IsEncrypted == other.IsEncrypted, "methods stay");
    Require(entry.CRC32 == other.CRC32, "checksums stay");
    Require(entry.Size == other.Size && entry.CompressedSize == other.CompressedSize, "sizes stay");
    Require(Contents(archive, index) == Contents(again, index), "contents stay");
}

/// The bytes of the archive; nothing where it has an entry without its data.
std::string Saved(THtZIP& archive)
{
    ht::TBytesStream stream;
    try {
        archive.Save(stream);
    } catch (const ht::EHtZIP&) {
        return {};
    }
    return {reinterpret_cast<const char*>(stream.Memory()), static_cast<std::size_t>(stream.Size())};
}

ht::TBytesStream StreamOf(std::string_view bytes)
{
    ht::TBytesStream stream;
    stream.WriteBuffer(bytes);
    return stream;
}

bool Open(THtZIP& archive, ht::TBytesStream& stream)
{
    try {
        archive.Open(stream);
        return true;
    } catch (const ht::EHtZIP&) {
        Require(archive.Count() == 0, "what is refused leaves nothing");
        return false;
    }
}

/// What was written by us can be read, and is written the same again.
void CheckWritten(THtZIP& archive, const std::string& bytes)
{
    ht::TBytesStream stream = StreamOf(bytes);
    THtZIP again;
    Require(Open(again, stream), "what was written opens");
    Require(again.Count() == archive.Count() && again.Comment() == archive.Comment(), "no entry is lost");
    for (std::int32_t i = 0; i < again.Count(); ++i)
        CheckEntry(archive, again, i);
    Require(Saved(again) == bytes, "what was written is written the same");
}

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    ht::TBytesStream stream = StreamOf(bytes);
    THtZIP archive;
    if (!Open(archive, stream))
        return 0;
    const std::string saved = Saved(archive);
    if (!saved.empty())
        CheckWritten(archive, saved);
    archive.Add(ht::String::FromUtf8("added/" + std::to_string(size)), bytes);
    const std::string longer = Saved(archive);
    Require(longer.empty() == saved.empty(), "an added entry is no hindrance");
    if (longer.empty())
        return 0;
    ht::TBytesStream longerStream = StreamOf(longer);
    THtZIP again;
    Require(Open(again, longerStream), "an added entry does no harm");
    Require(again.Read(again.Count() - 1) == bytes, "an added entry is what was added");
    return 0;
}
