// The library's text: reference-counted UTF-16 that copies in constant time.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/export.h>

#include <algorithm>
#include <atomic>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#if defined(__GLIBC__)
#include <sys/single_threaded.h>
#endif

namespace ht {

/// Throws ERangeError. Out of line, so that checks in hot code cost a compare and a jump.
[[noreturn]] HT_API void RaiseRangeError();

namespace detail {

/// Stands directly in front of the units of every string.
struct TextHeader {
    std::int32_t count; // references; kStaticCount for literals, which are never counted
    std::int32_t length; // units without the terminator
};

inline constexpr std::int32_t kStaticCount = -1;

template <std::size_t N> struct TextLiteral {
    TextHeader header{kStaticCount, static_cast<std::int32_t>(N - 1)};
    char16_t units[N]{};

    consteval TextLiteral(const char16_t (&text)[N]) { std::copy_n(text, N, units); }
};

/// Room for a name of up to 20 units inside a constexpr table; String::OfStatic makes an uncounted string
/// of it.
struct StaticName {
    TextHeader header{kStaticCount, 0};
    char16_t units[21]{};

    template <std::size_t N> consteval StaticName(const char16_t (&text)[N])
    {
        static_assert(N > 1 && N <= sizeof(units) / sizeof(char16_t));
        header.length = static_cast<std::int32_t>(N - 1);
        std::copy_n(text, N, units);
    }
    constexpr std::u16string_view View() const { return {units, static_cast<std::size_t>(header.length)}; }
};

/// True while a plain count is safe: the C library knows of one thread only.
inline bool OneThread() noexcept
{
#if defined(__GLIBC__)
    return __libc_single_threaded;
#else
    return false;
#endif
}

}

/// UTF-16 text, one pointer wide. Copying costs a count; the units never change while two owners share them.
/// A null string is the empty string. Indexes count from 0. Different strings may be used by different
/// threads, shared units included; one string object belongs to one thread.
class HT_API String {
public:
    constexpr String() noexcept = default;
    /// Copies the units of `text`; embedded U+0000 are kept.
    explicit String(std::u16string_view text);
    /// `count` times the same unit. Throws EIntOverflow.
    String(std::size_t count, char16_t unit);
    String(const String& other) noexcept
        : FUnits(other.FUnits)
    {
        AddReference();
    }
    constexpr String(String&& other) noexcept
        : FUnits(std::exchange(other.FUnits, nullptr))
    {
    }
    String& operator=(const String& other) noexcept
    {
        if (FUnits != other.FUnits) {
            other.AddReference();
            if (FUnits)
                Release();
            FUnits = other.FUnits;
        }
        return *this;
    }
    String& operator=(String&& other) noexcept
    {
        if (this != &other) {
            if (FUnits)
                Release();
            FUnits = std::exchange(other.FUnits, nullptr);
        }
        return *this;
    }
    constexpr ~String()
    {
        // While compiling there are only literals; so `constexpr String kName = u"x"_s` is possible.
        if (!std::is_constant_evaluated() && FUnits)
            Release();
    }

    /// The static string behind a `u"..."_s` literal.
    template <detail::TextLiteral L> static constexpr String OfLiteral() noexcept;

    /// The uncounted string of a name that stands in a constexpr table.
    static String OfStatic(const detail::StaticName& name) noexcept { return String(TAdopt{}, name.units); }

    /// Makes a string of `length` units that the caller fills through `units` before using it.
    /// Throws EIntOverflow.
    static String Uninitialized(std::size_t length, char16_t*& units);

    /// Decodes UTF-8; each maximal ill-formed part becomes U+FFFD.
    static String FromUtf8(std::string_view bytes);
    /// One unit a byte, U+0000 to U+00FF.
    static String FromLatin1(std::string_view bytes);
    /// Encodes UTF-8; a lone surrogate becomes U+FFFD.
    std::string ToUtf8() const;

    std::int32_t Length() const noexcept { return FUnits ? Header().length : 0; }
    std::size_t size() const noexcept { return static_cast<std::size_t>(Length()); }
    bool IsEmpty() const noexcept { return Length() == 0; }
    bool empty() const noexcept { return Length() == 0; }
    /// The units with U+0000 behind the last; never null. Lifetime: as long as a string shares them.
    const char16_t* data() const noexcept { return FUnits ? FUnits : u""; }
    const char16_t* begin() const noexcept { return data(); }
    const char16_t* end() const noexcept { return data() + Length(); }
    std::u16string_view View() const noexcept { return {data(), size()}; }
    operator std::u16string_view() const noexcept { return View(); }

    /// The unit at `index`, from 0; throws ERangeError outside the text.
    char16_t operator[](std::int32_t index) const
    {
        if (static_cast<std::uint32_t>(index) >= static_cast<std::uint32_t>(Length())) [[unlikely]]
            RaiseRangeError();
        return FUnits[index];
    }

    /// True when both are the same units in memory; a fast test in front of a comparison.
    bool IsSame(const String& other) const noexcept { return FUnits == other.FUnits; }
    /// Number of owners of the units; 0 for null, -1 for literals.
    std::int32_t ReferenceCount() const noexcept;

    /// Up to `count` units from `start` (from 0); what lies outside is left out.
    String Substring(std::int32_t start, std::int32_t count) const;
    /// The text with A to Z folded; the same string if nothing changes.
    String ToLowerAscii() const;
    /// The text with a to z in upper case; the same string if nothing changes.
    String ToUpperAscii() const;
    /// Without units up to U+0020 at both ends, at the start, or at the end; the same string if
    /// nothing changes.
    String Trim() const;
    String TrimLeft() const;
    String TrimRight() const;

    /// Appends in place while this string is the only owner and has room, otherwise copies once.
    String& operator+=(std::u16string_view text);
    String& operator+=(char16_t unit) { return *this += std::u16string_view(&unit, 1); }

    void swap(String& other) noexcept { std::swap(FUnits, other.FUnits); }

    friend bool operator==(const String& a, const String& b) noexcept
    {
        return a.FUnits == b.FUnits || a.View() == b.View();
    }
    friend bool operator==(const String& a, std::u16string_view b) noexcept { return a.View() == b; }
    friend std::strong_ordering operator<=>(const String& a, const String& b) noexcept
    {
        return a.View() <=> b.View();
    }
    friend std::strong_ordering operator<=>(const String& a, std::u16string_view b) noexcept
    {
        return a.View() <=> b;
    }

private:
    /// Takes over units that a header stands in front of.
    struct TAdopt { };
    constexpr String(TAdopt, const char16_t* units) noexcept
        : FUnits(units)
    {
    }
    detail::TextHeader& Header() const noexcept
    {
        return reinterpret_cast<detail::TextHeader*>(const_cast<char16_t*>(FUnits))[-1];
    }
    void AddReference() const noexcept
    {
        if (!FUnits)
            return;
        std::atomic_ref<std::int32_t> count(Header().count);
        const std::int32_t seen = count.load(std::memory_order_relaxed);
        if (seen < 0)
            return;
        if (detail::OneThread())
            count.store(seen + 1, std::memory_order_relaxed);
        else
            count.fetch_add(1, std::memory_order_relaxed);
    }
    void Release() noexcept
    {
        std::atomic_ref<std::int32_t> count(Header().count);
        const std::int32_t seen = count.load(std::memory_order_acquire);
        if (seen < 0)
            return;
        if (seen == 1 || detail::OneThread()) {
            if (seen > 1) {
                count.store(seen - 1, std::memory_order_relaxed);
                return;
            }
        } else if (count.fetch_sub(1, std::memory_order_acq_rel) != 1) {
            return;
        }
        FreeUnits();
    }
    void FreeUnits() noexcept;

    const char16_t* FUnits = nullptr;
};

static_assert(sizeof(String) == sizeof(void*));

/// Both texts in one string. Throws EIntOverflow.
HT_API String operator+(std::u16string_view a, std::u16string_view b);

/// Joins pieces with one allocation. Throws EIntOverflow.
HT_API String Concat(std::initializer_list<std::u16string_view> pieces);

namespace detail {
template <TextLiteral L> inline constexpr auto kLiteral = L;
}

template <detail::TextLiteral L> constexpr String String::OfLiteral() noexcept
{
    if constexpr (sizeof(L.units) == sizeof(char16_t))
        return String();
    else
        return String(TAdopt{}, detail::kLiteral<L>.units);
}

inline namespace literals {

/// `u"div"_s`: a static String that is never counted and never freed.
template <detail::TextLiteral L> constexpr String operator""_s() noexcept
{
    return String::OfLiteral<L>();
}

}

/// Shows the text in test messages, as UTF-8.
HT_API std::ostream& operator<<(std::ostream& out, const String& text);

constexpr bool IsAsciiUpper(char16_t c) noexcept
{
    return c >= u'A' && c <= u'Z';
}
constexpr bool IsAsciiLower(char16_t c) noexcept
{
    return c >= u'a' && c <= u'z';
}
constexpr bool IsAsciiDigit(char16_t c) noexcept
{
    return c >= u'0' && c <= u'9';
}
constexpr bool IsHighSurrogate(char16_t c) noexcept
{
    return (c & 0xFC00) == 0xD800;
}
constexpr bool IsLowSurrogate(char16_t c) noexcept
{
    return (c & 0xFC00) == 0xDC00;
}

/// A to Z folded to lower case, everything else as it is.
constexpr char16_t FoldAscii(char16_t c) noexcept
{
    return IsAsciiUpper(c) ? static_cast<char16_t>(c + 32) : c;
}
/// The value of a hexadecimal digit of either case; -1 for everything else.
constexpr int HexDigitValue(char16_t c) noexcept
{
    if (IsAsciiDigit(c))
        return c - u'0';
    const char16_t lower = FoldAscii(c);
    return lower >= u'a' && lower <= u'f' ? lower - u'a' + 10 : -1;
}

/// What String::ToUtf8 gives, from text that is no String. The foundation knows it as HtUTF8Encode too.
HT_API std::string EncodeUtf8(std::u16string_view text);

/// Equal when A to Z and a to z count as the same letters.
HT_API bool SameText(std::u16string_view a, std::u16string_view b) noexcept;
/// Negative, 0 or positive, by unit value after folding A to Z to lower case.
HT_API int CompareText(std::u16string_view a, std::u16string_view b) noexcept;
/// Only units up to U+0020, or nothing.
HT_API bool IsBlankText(std::u16string_view text) noexcept;
/// The part without units up to U+0020 at both ends, at the start, or at the end. Lifetime: that of `text`.
HT_API std::u16string_view TrimView(std::u16string_view text) noexcept;
HT_API std::u16string_view TrimLeftView(std::u16string_view text) noexcept;
HT_API std::u16string_view TrimRightView(std::u16string_view text) noexcept;

}

template <> struct std::hash<ht::String> {
    std::size_t operator()(const ht::String& text) const noexcept
    {
        return std::hash<std::u16string_view>{}(text.View());
    }
};
