// Names of enumeration values.
// SPDX-License-Identifier: MIT
#include <hearth/runtime/enum_names.h>

#include <gtest/gtest.h>

namespace ht {

enum TSample : std::uint8_t { saPlain, saWith_Line, saB, saLast };
enum class TScoped : int { Zero, One };
struct Outer {
    enum TInner : std::int16_t { inOnly };
};

template <> struct TEnumTraits<TSample> {
    static constexpr int kCount = 4;
    static constexpr const char16_t* kName = u"TSample";
};
template <> struct TEnumTraits<TScoped> {
    static constexpr int kCount = 2;
    static constexpr const char16_t* kName = u"TScoped";
};
template <> struct TEnumTraits<Outer::TInner> {
    static constexpr int kCount = 1;
    static constexpr const char16_t* kName = u"TInner";
};

namespace {

static_assert(EnumName(saWith_Line) == u"saWith_Line");
static_assert(EnumName(TScoped::One) == u"One");
static_assert(EnumName(Outer::inOnly) == u"inOnly");
static_assert(detail::IsNamed<TSample, 3>() && !detail::IsNamed<TSample, 4>());
static_assert(detail::IsNamed<TScoped, 1>() && !detail::IsNamed<TScoped, 2>());
static_assert(!detail::IsNamed<TSample, 256>());

TEST(enum_names, values_are_found_by_name_in_any_case)
{
    EXPECT_EQ(EnumValue<TSample>(u"SALAST"), saLast);
    EXPECT_EQ(EnumValue<TSample>(u"sawith_line"), saWith_Line);
    EXPECT_EQ(EnumValue<Outer::TInner>(u"inOnly"), Outer::inOnly);
    for (std::u16string_view miss : {u"", u"sa", u"saLas", u"saLastt", u"zz",
             u"\x17F"
             u"aB"})
        EXPECT_FALSE(EnumValue<TSample>(miss)) << String(miss);
    EXPECT_EQ(EnumName(static_cast<TSample>(4)), u"");
    EXPECT_EQ(EnumInfo<TSample>().ValueName(-1), u"");
    EXPECT_EQ(EnumInfo<TSample>().Find(u"nothing"), -1);
}

}
}
