// Numbers, editing and assembling of the 16-bit fast string.
// SPDX-License-Identifier: MIT
#include <hearth/foundation/fast_string.h>

#include <hearth/foundation/number_format_p.h>
#include <hearth/runtime/streams.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <iterator>
#include <limits>

namespace ht {

namespace {

constexpr std::int32_t kMostDecimals = 8;
constexpr double kScales[kMostDecimals + 1] = {1, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8};
constexpr double kInt64Bound = 9223372036854775808.0;

/// From here on a double has no decimals, and a scaled one may have lost some.
constexpr double kWholeBound = 9007199254740992.0;

/// Rounds half to even, as the rounding mode of every thread here is.
std::int64_t RoundToInt64(double value) noexcept
{
    const double rounded = std::nearbyint(value);
    if (std::isnan(rounded))
        return 0;
    if (std::abs(rounded) < kInt64Bound)
        return static_cast<std::int64_t>(rounded);
    constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
    return rounded < 0 ? -kMost : kMost;
}

/// A magnitude as so many hundredths, thousandths and so on as `decimals` asks for. Of a large one only those
/// decimals are taken that it takes to read the same number back, as the product holds noise behind them.
std::uint64_t ScaledDigits(double magnitude, std::size_t& decimals)
{
    const double scaled = std::nearbyint(magnitude * kScales[decimals]);
    if (scaled < kWholeBound)
        return static_cast<std::uint64_t>(scaled);
    const double whole = std::trunc(magnitude);
    const double fraction = magnitude - whole;
    const auto places = [fraction](std::size_t count) { return std::nearbyint(fraction * kScales[count]); };
    while (decimals > 1 && whole + places(decimals - 1) / kScales[decimals - 1] == magnitude)
        --decimals;
    return static_cast<std::uint64_t>(whole) * static_cast<std::uint64_t>(kScales[decimals])
        + static_cast<std::uint64_t>(places(decimals));
}

}

TFastString::TFastString(std::int32_t delta)
    : ChunkChain(delta)
{
}

TFastString::~TFastString() = default;

TFastString& TFastString::Add(std::int64_t value)
{
    char16_t scratch[21];
    char16_t* const end = std::end(scratch);
    const std::int64_t magnitude = value < 0 ? CheckedNegate(value) : value;
    char16_t* first = detail::WriteDigits(static_cast<std::uint64_t>(magnitude), end);
    if (value < 0)
        *--first = u'-';
    return Add(first, static_cast<std::int32_t>(end - first));
}

TFastString& TFastString::Add(double value, std::int32_t digits, bool zero)
{
    auto decimals = static_cast<std::size_t>(digits < 0 ? kMostDecimals : std::min(digits, kMostDecimals));
    const std::int64_t whole = RoundToInt64(value);
    // Not a number is no magnitude below the bound either.
    if (decimals == 0 || !(std::abs(value) < kWholeBound)
        || std::abs(value - static_cast<double>(whole)) * kScales[decimals] < 0.5)
        return Add(whole);
    const std::uint64_t scaled = ScaledDigits(std::abs(value), decimals);
    char16_t scratch[32];
    char16_t* end = std::end(scratch);
    char16_t* first = detail::WriteDigits(scaled, end);
    while (static_cast<std::size_t>(end - first) < decimals)
        *--first = u'0';
    // Open the gap for the point: the digits in front of it move down by one.
    char16_t* const point = end - decimals - 1;
    std::copy(first, point + 1, first - 1);
    --first;
    *point = u'.';
    while (end[-1] == u'0')
        --end;
    // Half of the last place that is rounded to even leaves no decimals at all.
    if (end[-1] == u'.')
        --end;
    if (first == end || (zero && first == point))
        *--first = u'0';
    if (value < 0 && scaled != 0)
        *--first = u'-';
    return Add(first, static_cast<std::int32_t>(end - first));
}

String TFastString::GetAsString() const
{
    char16_t* units = nullptr;
    String text = String::Uninitialized(static_cast<std::size_t>(GetTotalLen()), units);
    CopyTo(units, 0, GetTotalLen());
    return text;
}

void TFastString::ToStringFrom(String& s, std::int32_t startPos) const
{
    const std::int32_t start = std::max(startPos, 1) - 1;
    const std::int32_t length = std::max(GetTotalLen() - std::max(startPos, 0), 0);
    char16_t* units = nullptr;
    String text = String::Uninitialized(static_cast<std::size_t>(length), units);
    CopyTo(units, start, length);
    s = std::move(text);
}

void TFastString::ClearandLeaveSpace() noexcept
{
    FreeBehindHead();
    FHead.Len = 0;
}

void TFastString::Refill(std::u16string_view text)
{
    Clear();
    Add(text);
}

void TFastString::DeletefromEnd(std::int32_t count)
{
    if (count < 1)
        return;
    if (count <= FCurrent->Len) {
        FCurrent->Len -= count;
        return;
    }
    const std::int32_t left = std::max(GetTotalLen() - count, 0);
    const String text = GetAsString();
    Refill(text.View().substr(0, static_cast<std::size_t>(left)));
}

void TFastString::Prepend(std::u16string_view s)
{
    if (!s.empty())
        PutInFront(s);
}

void TFastString::Grab(TFastString& source)
{
    if (source.GetTotalLen() == 0)
        return;
    const bool single = source.FCurrent == &source.FHead;
    if (&source == this)
        Add(GetAsString());
    else if (single && source.FHead.Len < source.FHead.Size / 2)
        Add(TextOf(source.FHead));
    else
        TakeChunks(source);
}

/// An empty last chunk is given up and the one before it trimmed in its place, so that a text is looked at
/// no further back than it is cut.
template <class Blank> void TFastString::TrimTrailing(Blank blank)
{
    const auto* text = static_cast<const char16_t*>(FCurrent->Data);
    std::int32_t length = FCurrent->Len;
    while (length > 0 && blank(text[length - 1]))
        --length;
    FCurrent->Len = length;
    while (FCurrent->Len == 0 && FCurrent->Previous) {
        DropCurrent();
        FCurrent->Len = static_cast<std::int32_t>(TrimRightView(TextOf(*FCurrent)).size());
    }
}

void TFastString::TrimTrailingSpaces()
{
    TrimTrailing([](char16_t c) { return c == u' '; });
}

void TFastString::TrimTrailingBlanks()
{
    TrimTrailing([](char16_t c) { return c <= u' '; });
}

bool TFastString::EndsWith(std::u16string_view s) const noexcept
{
    if (GetTotalLen() == 0)
        return false;
    for (const TFSNode* node = FCurrent; node && !s.empty(); node = node->Previous) {
        std::u16string_view text = TextOf(*node);
        text = text.substr(text.size() - std::min(text.size(), s.size()));
        if (!s.ends_with(text))
            return false;
        s.remove_suffix(text.size());
    }
    return s.empty();
}

char16_t TFastString::LastChar() const noexcept
{
    for (const TFSNode* node = FCurrent; node; node = node->Previous) {
        if (node->Len > 0)
            return TextOf(*node).back();
    }
    return 0;
}

void TFastString::SavetoStream(TStream& stream) const
{
    for (const TFSNode* node = &FHead; node; node = node->Next) {
        if (node->Len > 0)
            stream.WriteBuffer(node->Data, std::int64_t{node->Len} * std::int64_t{sizeof(char16_t)});
    }
}

void TFastString::SavetoBuffer(void* buffer) const noexcept
{
    auto* to = static_cast<unsigned char*>(buffer);
    for (const TFSNode* node = &FHead; node; node = node->Next) {
        const std::size_t bytes = static_cast<std::size_t>(node->Len) * sizeof(char16_t);
        if (bytes > 0)
            std::memcpy(to, node->Data, bytes);
        to += bytes;
    }
}

}
