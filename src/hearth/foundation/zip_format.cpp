// Numbers and dates of ZIP records.
// SPDX-License-Identifier: MIT
#include "zip_format_p.h"

#include <algorithm>

namespace ht::zip {

namespace {

void PutNumber(std::string& bytes, std::uint64_t value, int count)
{
    for (int i = 0; i < count; ++i)
        bytes += static_cast<char>(value >> (8U * static_cast<unsigned>(i)) & 0xFFU);
}

}

std::string_view TByteReader::Take(std::size_t count)
{
    if (count > FBytes.size())
        RaiseDamaged();
    const std::string_view taken = FBytes.substr(0, count);
    FBytes.remove_prefix(count);
    return taken;
}

std::uint64_t TByteReader::TakeNumber(std::size_t count)
{
    const std::string_view taken = Take(count);
    std::uint64_t value = 0;
    for (std::size_t i = count; i-- > 0;)
        value = value << 8U | static_cast<unsigned char>(taken[i]);
    return value;
}

void Put16(std::string& bytes, std::uint64_t value)
{
    PutNumber(bytes, value, 2);
}

void Put32(std::string& bytes, std::uint64_t value)
{
    PutNumber(bytes, value, 4);
}

void Put64(std::string& bytes, std::uint64_t value)
{
    PutNumber(bytes, value, 8);
}

TDateTime FromDosTime(std::uint32_t value)
{
    const std::uint32_t date = value >> 16U;
    const std::uint32_t time = value & 0xFFFFU;
    const auto field = [](std::uint32_t word, unsigned shift, std::uint32_t mask) {
        return static_cast<int>(word >> shift & mask);
    };
    TDateTime day = 0;
    TDateTime clock = 0;
    if (!TryEncodeDate(1980 + field(date, 9, 0x7F), field(date, 5, 0xF), field(date, 0, 0x1F), day))
        return 0;
    if (!TryEncodeTime(field(time, 11, 0x1F), field(time, 5, 0x3F), field(time, 0, 0x1F) * 2, 0, clock))
        return day;
    return day + clock;
}

std::uint32_t ToDosTime(TDateTime value)
{
    int year = 0;
    int month = 0;
    int day = 0;
    int hour = 0;
    int minute = 0;
    int second = 0;
    int millisecond = 0;
    DecodeDate(value, year, month, day);
    DecodeTime(value, hour, minute, second, millisecond);
    if (year < 1980)
        return 1U << 21U | 1U << 16U; // 1 January 1980
    const auto field = [](int number, unsigned shift) { return static_cast<std::uint32_t>(number) << shift; };
    return field(std::min(year, 2107) - 1980, 25) | field(month, 21) | field(day, 16) | field(hour, 11)
        | field(minute, 5) | field(second / 2, 0);
}

std::string WithoutLargeNumbers(std::string_view extra)
{
    std::string kept;
    ForEachField(extra, [&kept](std::uint16_t id, std::string_view field) {
        if (id == kExtra64)
            return;
        Put16(kept, id);
        Put16(kept, field.size());
        kept += field;
    });
    return kept;
}

std::int32_t TStringSink::Write(const void* buffer, std::int32_t count)
{
    detail::WithStorage(
        [&] { Bytes.append(static_cast<const char*>(buffer), CheckedCast<std::size_t>(count)); });
    return count;
}

void RaiseDamaged()
{
    throw EHtZIP(u"The archive is damaged"_s);
}

}
