// The records of a ZIP file, and bytes in their order.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/foundation/zip_archive.h>

#include <algorithm>
#include <string>
#include <string_view>

namespace ht::zip {

inline constexpr std::uint32_t kLocalSignature = 0x04034B50;
inline constexpr std::uint32_t kCentralSignature = 0x02014B50;
inline constexpr std::uint32_t kDescriptorSignature = 0x08074B50;
inline constexpr std::uint32_t kEndSignature = 0x06054B50;
inline constexpr std::uint32_t kEnd64Signature = 0x06064B50;
inline constexpr std::uint32_t kLocator64Signature = 0x07064B50;

// Sizes of the records without their variable parts.
inline constexpr std::int64_t kLocalSize = 30;
inline constexpr std::int64_t kCentralSize = 46;
inline constexpr std::int64_t kEndSize = 22;
inline constexpr std::int64_t kEnd64Size = 56;
inline constexpr std::int64_t kLocator64Size = 20;

inline constexpr std::uint16_t kEncryptedFlag = 1U << 0U;
inline constexpr std::uint16_t kDescriptorFlag = 1U << 3U; // checksum and sizes stand behind the data
inline constexpr std::uint16_t kUtf8Flag = 1U << 11U;
inline constexpr std::uint16_t kExtra64 = 1; // the extra field with 64-bit sizes

// What stands where a number has its room in a 64-bit record.
inline constexpr std::uint32_t kIn64 = 0xFFFFFFFF;
inline constexpr std::uint16_t kCountIn64 = 0xFFFF;

/// Takes numbers, low byte first. Throws EHtZIP behind the end.
class TByteReader {
public:
    explicit TByteReader(std::string_view bytes)
        : FBytes(bytes)
    {
    }
    std::uint16_t Take16() { return static_cast<std::uint16_t>(TakeNumber(2)); }
    std::uint32_t Take32() { return static_cast<std::uint32_t>(TakeNumber(4)); }
    std::uint64_t Take64() { return TakeNumber(8); }
    std::string_view Take(std::size_t count);
    bool AtEnd() const noexcept { return FBytes.empty(); }
    std::size_t Rest() const noexcept { return FBytes.size(); }

private:
    std::uint64_t TakeNumber(std::size_t count);

    std::string_view FBytes;
};

void Put16(std::string& bytes, std::uint64_t value);
void Put32(std::string& bytes, std::uint64_t value);
void Put64(std::string& bytes, std::uint64_t value);

/// The date and time of a record, the date in the upper half; 0 for what is no date.
TDateTime FromDosTime(std::uint32_t value);
/// Years before 1980 and behind 2107 become the nearest that there is.
std::uint32_t ToDosTime(TDateTime value);

/// Calls `handle` with the number and the bytes of each field of a list, and all that there is of a last one
/// that is cut off.
template <class Handle> void ForEachField(std::string_view extra, Handle&& handle)
{
    constexpr std::size_t kHead = 4;
    TByteReader reader(extra);
    while (reader.Rest() >= kHead) {
        const std::uint16_t id = reader.Take16();
        const std::uint16_t size = reader.Take16();
        handle(id, reader.Take(std::min<std::size_t>(size, reader.Rest())));
    }
}

/// The fields but those of large numbers, which are made anew.
std::string WithoutLargeNumbers(std::string_view extra);

/// A stream into a string.
class TStringSink final : public TStream {
public:
    std::int32_t Write(const void* buffer, std::int32_t count) override;

    std::string Bytes;
};

[[noreturn]] void RaiseDamaged();

}
