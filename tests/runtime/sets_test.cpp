// Sets over enumerations.
// SPDX-License-Identifier: MIT
#include <hearth/runtime/exceptions.h>
#include <hearth/runtime/sets.h>

#include <gtest/gtest.h>

#include <vector>

namespace ht {

enum TShade : std::uint8_t { shPlain, shDark, shB, shLast };
enum TWide : std::uint8_t { waFirst, waSecond, waEdge = 63, waNext = 64, waLast = 129 };

template <> struct TEnumTraits<TShade> {
    static constexpr int kCount = 4;
    static constexpr const char16_t* kName = u"TShade";
};

namespace {

using TWideSet = TSet<TWide, 130>;

static_assert(sizeof(TSet<TShade>) == 1 && sizeof(TSet<TShade, 9>) == 2 && sizeof(TSet<TShade, 17>) == 4);
static_assert(sizeof(TSet<TShade, 33>) == 8 && sizeof(TSet<TShade, 65>) == 16);
static_assert(TSet<TShade>::All().Size() == 4 && TSet<TShade, 16>::All().Size() == 16);
static_assert((TSet<TShade>{shPlain, shB} - TSet<TShade>{shB}) == TSet<TShade>{shPlain});

TEST(sets, values_on_both_sides_of_a_word)
{
    TWideSet set{waLast, waFirst, waNext, waEdge};
    EXPECT_EQ(std::vector<TWide>(set.begin(), set.end()), (std::vector{waFirst, waEdge, waNext, waLast}));
    EXPECT_EQ(set.Complement().Size(), 126);
    EXPECT_EQ(TWideSet::All().Size(), 130);
    EXPECT_TRUE((set * set.Complement()).IsEmpty());
    EXPECT_EQ(set + set.Complement(), TWideSet::All());
    EXPECT_TRUE((TWideSet{waNext}).IsSubsetOf(set));
    EXPECT_FALSE(set.IsSubsetOf({waNext}));
    set.Exclude(waNext);
    EXPECT_FALSE(set.Contains(waNext));
    EXPECT_TRUE(set.Contains(waFirst));
}

TEST(sets, numbers_that_are_no_values)
{
    TSet<TShade> set;
    EXPECT_THROW(set.Include(static_cast<TShade>(4)), ERangeError);
    EXPECT_THROW(set.Include(static_cast<TShade>(200)), ERangeError);
    set.Exclude(static_cast<TShade>(64));
    EXPECT_FALSE(set.Contains(static_cast<TShade>(64)));
    EXPECT_EQ(TSet<TShade>::FromBits(0xFF), TSet<TShade>::All());
}

}
}
