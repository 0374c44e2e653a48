// Weight lists: their order, and that no value comes twice.
// SPDX-License-Identifier: MIT
#include <hearth/styling/css/weight_list.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

namespace {

using namespace ht;

/// One value a letter.
class weight_list : public testing::Test {
protected:
    /// "16/1a": the value "a" of weight 16 and order 1.
    void Add(std::string_view adds)
    {
        std::istringstream words{std::string(adds)};
        std::uint32_t weight = 0;
        char slash = 0;
        std::uint32_t order = 0;
        char value = 0;
        while (words >> weight >> slash >> order >> value)
            List.AddValue(weight, order, &Values[value - 'a']);
    }

    std::string Text() const
    {
        std::string text;
        for (std::int32_t i = 0; i < List.Count(); ++i) {
            text += (i == 0 ? "" : " ") + std::to_string(List.GetWeight(i)) + '/'
                + std::to_string(List.GetOrder(i)) + static_cast<char>('a' + (List.GetValue(i) - Values));
        }
        return text;
    }

    TCSSValue Values[26];
    TCSSWeightList List;
};

TEST_F(weight_list, sorts_by_weight_and_order)
{
    const struct {
        std::string_view Adds;
        std::string_view List;
    } rows[] = {
        {"1/1a 1/2b 16/1c", "1/1a 1/2b 16/1c"},
        {"16/1a 1/1b 4/1c 0/9d", "0/9d 1/1b 4/1c 16/1a"},
        {"4/5a 4/3b 4/4c 4/5d 4/3e", "4/3b 4/3e 4/4c 4/5a 4/5d"},
        {"4278190080/1a 1/1b 4278190081/1c 2147483648/1d", "1/1b 2147483648/1d 4278190080/1a 4278190081/1c"},
        // A value is there once, wherever in its weight.
        {"4/1a 4/1a 4/2a", "4/1a"},
        {"4/2a 4/1a 4/1b", "4/1b 4/2a"},
        {"4/1a 5/1a 3/1a 4/1a", "3/1a 4/1a 5/1a"},
    };
    for (const auto& row : rows) {
        List.Clear();
        Add(row.Adds);
        EXPECT_EQ(Text(), row.List) << row.Adds;
    }
}

TEST_F(weight_list, keeps_its_memory_when_cleared)
{
    for (TCSSValue& value : Values)
        List.AddValue(1, 1, &value);
    const std::int32_t capacity = List.Capacity();
    List.Clear();
    EXPECT_EQ(List.Count(), 0);
    EXPECT_EQ(List.Capacity(), capacity);
}

/// Adds the same values in several ways and compares with a stable sort.
TEST(weight_list_runs, ten_thousand_values_of_one_weight)
{
    constexpr std::int32_t kCount = 10'000;
    std::vector<TCSSValue> values(kCount);
    enum Way { inOrder, reversed, mixed };
    for (const Way way : {inOrder, reversed, mixed}) {
        TCSSWeightList list;
        std::vector<std::tuple<std::uint32_t, std::uint32_t, PCSSValue>> expected;
        for (std::int32_t i = 0; i < kCount; ++i) {
            const std::int32_t n = way == inOrder ? i : way == reversed ? kCount - 1 - i : i * 7919 % kCount;
            const auto order = static_cast<std::uint32_t>(n / 3);
            const std::uint32_t weight = way == mixed && n % 5 == 0 ? 16 : 1;
            PCSSValue value = &values[static_cast<std::size_t>(n)];
            list.AddValue(weight, order, value);
            expected.emplace_back(weight, order, value);
        }
        for (const auto& [weight, order, value] : expected)
            list.AddValue(weight, order + 1, value);
        std::stable_sort(expected.begin(), expected.end(), [](const auto& a, const auto& b) {
            return std::tie(std::get<0>(a), std::get<1>(a)) < std::tie(std::get<0>(b), std::get<1>(b));
        });
        ASSERT_EQ(list.Count(), kCount);
        for (std::int32_t i = 0; i < kCount; ++i) {
            const auto& [weight, order, value] = expected[static_cast<std::size_t>(i)];
            ASSERT_EQ(std::make_tuple(list.GetWeight(i), list.GetOrder(i), list.GetValue(i)),
                std::make_tuple(weight, order, value));
        }
    }
}

TEST(weight_list_runs, a_long_run_notices_other_changes)
{
    std::vector<TCSSValue> values(200);
    TCSSWeightList list;
    for (std::size_t i = 0; i < 199; ++i)
        list.AddValue(1, 1, &values[i]);
    list.Delete(0);
    list.AddValue(1, 1, &values[0]);
    list.AddValue(1, 1, &values[1]);
    EXPECT_EQ(list.Count(), 199);
    list.PutObject(5, &values[199]);
    list.AddValue(1, 1, &values[199]);
    EXPECT_EQ(list.Count(), 199);
    list.AddValue(1, 1, &values[6]); // the one that stood there
    EXPECT_EQ(list.Count(), 200);
}

}
