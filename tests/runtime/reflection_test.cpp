// Values of any type, and objects and records read and written by the names of their members.
// SPDX-License-Identifier: MIT
#include <hearth/runtime/date_time.h>
#include <hearth/runtime/reflection.h>
#include <hearth/runtime/strings.h>

#include <gtest/gtest.h>

#include <limits>
#include <thread>
#include <vector>

namespace ht {

enum TShade : std::uint8_t { shDark, shPlain, shLight };
template <> struct TEnumTraits<TShade> {
    static constexpr int kCount = 3;
    static constexpr const char16_t* kName = u"TShade";
};

namespace {

struct TSpot {
    std::int32_t X = 1;
    double Y = 0.5;
    String Label;
    TArray<String> Words;
};

class TShape : public TObject {
public:
    static constexpr TClassInfo kClassInfo{u"TShape", &TObject::kClassInfo};
    const TClassInfo& ClassInfo() const override { return kClassInfo; }

    const String& Name() const { return FName; }
    void SetName(std::u16string_view value) { FName = String(value); }
    std::uint8_t Sides() const noexcept { return FSides; }
    void SetSides(std::uint8_t value) { FSides = value; }
    TStringList& Lines() const { return *FLines; }

    std::unique_ptr<TStringList> FLines = std::make_unique<TStringList>();
    TShape* Neighbour = nullptr;
    TSpot Spot;
    TSet<TShade> Shades;
    TDateTime Made = 0;

private:
    String FName;
    std::uint8_t FSides = 0;
};

class TBox : public TShape {
public:
    static constexpr TClassInfo kClassInfo{u"TBox", &TShape::kClassInfo};
    const TClassInfo& ClassInfo() const override { return kClassInfo; }
    TDateTime Sold() const { return FSold; }
    void SetSold(TDateTime value) { FSold = value; }

private:
    TDateTime FSold = 0;
};

void RegisterAll()
{
    TRttiContext::Register<TSpot>()
        .Field(u"X", &TSpot::X)
        .Field(u"Y", &TSpot::Y)
        .Field(u"Label", &TSpot::Label)
        .Field(u"Words", &TSpot::Words);
    TRttiContext::Register<TShape>()
        .Property(u"Name", &TShape::Name, &TShape::SetName)
        .Property(u"Sides", &TShape::Sides, &TShape::SetSides)
        .Property(u"Lines", &TShape::Lines)
        .Field(u"Neighbour", &TShape::Neighbour)
        .Field(u"Owned", &TShape::FLines)
        .Field(u"Spot", &TShape::Spot)
        .Field(u"Shades", &TShape::Shades)
        .DateField(u"Made", &TShape::Made);
    TRttiContext::Register<TBox>().DateProperty(u"Sold", &TBox::Sold, &TBox::SetSold);
}

TEST(value, holds_every_kind_and_nothing_else_than_it_is)
{
    EXPECT_TRUE(TValue().IsEmpty());
    EXPECT_THROW(TValue().AsOrdinal(), EInvalidCast);
    EXPECT_EQ(TValue::From(std::int8_t{-3}).AsInteger(), -3);
    EXPECT_EQ(TValue::From(0.25F).AsExtended(), 0.25);
    EXPECT_EQ(TValue::From(7).AsExtended(), 7);
    EXPECT_EQ(TValue::From(u"a"_s).AsString(), u"a");
    EXPECT_EQ(TValue::From(u'a').AsString(), u"a");
    EXPECT_THROW(TValue::From(u"a"_s).AsOrdinal(), EInvalidCast);
    EXPECT_THROW(TValue::From(1).AsString(), EInvalidCast);
    EXPECT_THROW(TValue::From(1).Get<std::uint32_t>(), EInvalidCast);
    EXPECT_THROW(TValue::From(std::int64_t{1} << 40).AsInteger(), ERangeError);
    EXPECT_EQ(TValue::From(std::numeric_limits<std::uint64_t>::max()).ToString(), u"18446744073709551615");
    EXPECT_EQ(TValue::From(true).ToString(), u"True");
    EXPECT_EQ(TValue::From(shLight).ToString(), u"shLight");
    EXPECT_EQ(TValue::From(TSet<TShade>{shDark, shLight}).ToString(), u"[shDark,shLight]");
    EXPECT_EQ(TValue::From(TSpot()).ToString(), u"(TSpot)");
    TShape shape;
    EXPECT_EQ(TValue::From(&shape).ToString(), u"(TShape)");
}

TEST(value, reads_back_what_it_writes)
{
    const TValue values[] = {TValue::From(-5), TValue::From(std::numeric_limits<std::uint64_t>::max()),
        TValue::From(1e-7), TValue::From(u"x y"_s), TValue::From(u'é'), TValue::From(false),
        TValue::From(shPlain), TValue::From(TSet<TShade>{shDark, shPlain}), TValue::From(TSet<TShade>())};
    for (const TValue& value : values) {
        const String text = value.ToString();
        EXPECT_EQ(TValue::FromText(*value.TypeInfo(), text).ToString(), text);
    }
    const std::pair<const TTypeInfo*, String> refused[] = {
        {&TypeInfoOf<std::int32_t>(), u"x"_s},
        {&TypeInfoOf<std::uint64_t>(), u"18446744073709551616"_s},
        {&TypeInfoOf<TShade>(), u"shNone"_s},
        {&TypeInfoOf<TSet<TShade>>(), u"[shDark,]x"_s},
        {&TypeInfoOf<char16_t>(), u"ab"_s},
    };
    for (const auto& [type, text] : refused)
        EXPECT_THROW(TValue::FromText(*type, text), EConvertError) << text;
    EXPECT_THROW(TValue::FromText(TypeInfoOf<std::uint8_t>(), u"256"_s), ERangeError);
    EXPECT_THROW(TValue::FromText(TypeInfoOf<TSpot>(), u""_s), EInvalidCast);
}

TEST(value, casts_between_related_types)
{
    EXPECT_EQ(TValue::From(2).Cast(TypeInfoOf<TShade>()).Get<TShade>(), shLight);
    EXPECT_THROW(TValue::From(3).Cast(TypeInfoOf<TShade>()), ERangeError);
    EXPECT_THROW(TValue::From(300).Cast(TypeInfoOf<std::uint8_t>()), ERangeError);
    EXPECT_EQ(TValue::From(3).Cast(TypeInfoOf<float>()).Get<float>(), 3.0F);
    EXPECT_EQ(TValue::From(u'a').Cast(TypeInfoOf<String>()).Get<String>(), u"a");
    EXPECT_THROW(TValue::From(0.5).Cast(TypeInfoOf<std::int32_t>()), EInvalidCast);
    const TValue largest = TValue::From(std::numeric_limits<unsigned long long>::max());
    EXPECT_EQ(largest.Cast(TypeInfoOf<std::uint64_t>()).ToString(), u"18446744073709551615");
    EXPECT_EQ(TValue::FromText(*largest.TypeInfo(), largest.ToString()).AsExtended(), 18446744073709551615.0);
    EXPECT_THROW(largest.Cast(TypeInfoOf<std::int64_t>()), ERangeError);
    EXPECT_THROW(largest.Cast(TypeInfoOf<std::int32_t>()), ERangeError);
    EXPECT_THROW(largest.AsInteger(), ERangeError);
    EXPECT_THROW(largest.AsInt64(), ERangeError);
    EXPECT_THROW(TValue::From(-1).Cast(TypeInfoOf<std::uint64_t>()), ERangeError);
    TBox box;
    TShape shape;
    EXPECT_EQ(TValue::From(&box).Cast(TypeInfoOf<TShape*>()).AsObject(), &box);
    EXPECT_THROW(TValue::From(&shape).Cast(TypeInfoOf<TBox*>()), EInvalidCast);
}

TEST(value, copies_own_what_they_hold)
{
    TArray<String> words{u"a"_s, String(std::u16string_view(u"bb"))};
    TValue value = TValue::From(words);
    TValue other = value;
    other.SetArrayElement(1, TValue::From(u'c'));
    EXPECT_EQ(value.GetArrayElement(1).AsString(), u"bb");
    EXPECT_EQ(other.GetArrayElement(1).AsString(), u"c");
    EXPECT_THROW(other.GetArrayElement(2), ERangeError);
    EXPECT_THROW(TValue::From(1).GetArrayElement(0), EInvalidCast);
    EXPECT_THROW(TValue::From(TSet<TShade>()).GetArrayLength(), EInvalidCast);
    value = std::move(other);
    EXPECT_EQ(value.GetArrayLength(), 2);
    TValue text = TValue::From(String(std::u16string_view(u"kept")));
    TValue moved = std::move(text);
    EXPECT_EQ(moved.AsString(), u"kept");
}

TEST(reflection, members_are_read_and_written_by_name)
{
    RegisterAll();
    const TRttiType* type = TRttiContext::GetType(u"tshape");
    ASSERT_NE(type, nullptr);
    EXPECT_EQ(TRttiContext::GetType(TShape::kClassInfo), type);
    EXPECT_EQ(TRttiContext::GetType(TypeInfoOf<TShape*>()), type);
    TBox box;
    type->GetProperty(u"name")->SetValue(&box, TValue::From(u"cube"_s));
    EXPECT_EQ(box.Name(), u"cube");
    type->GetProperty(u"Sides")->SetValue(&box, TValue::From(6));
    EXPECT_EQ(type->GetProperty(u"Sides")->GetValue(&box).AsInteger(), 6);
    EXPECT_THROW(type->GetProperty(u"Sides")->SetValue(&box, TValue::From(256)), ERangeError);
    EXPECT_THROW(type->GetProperty(u"Sides")->SetValue(&box, TValue::From(u"6"_s)), EInvalidCast);
    type->GetField(u"Neighbour")->SetValue(&box, TValue::From(&box));
    EXPECT_EQ(box.Neighbour, &box);
    type->GetField(u"Shades")->SetValue(&box, TValue::From(TSet<TShade>{shLight}));
    EXPECT_TRUE(box.Shades.Contains(shLight));
    EXPECT_FALSE(type->GetProperty(u"Lines")->IsWritable());
    EXPECT_EQ(type->GetProperty(u"Lines")->GetValue(&box).AsObject(), &box.Lines());
    EXPECT_EQ(type->GetField(u"Owned")->GetValue(&box).AsObject(), &box.Lines());
    EXPECT_THROW(type->GetField(u"Owned")->SetValue(&box, TValue()), EInvalidCast);
    EXPECT_EQ(type->GetField(u"Made")->FieldType(), TypeInfoOf<TDateTimeType>());
    EXPECT_EQ(type->GetProperty(u"none"), nullptr);
    TStringList stranger;
    EXPECT_THROW(type->GetProperty(u"Name")->GetValue(&stranger), EInvalidCast);
    EXPECT_THROW(type->GetProperty(u"Name")->GetValue(static_cast<TObject*>(nullptr)), EInvalidCast);
}

TEST(reflection, records_travel_as_values)
{
    RegisterAll();
    TShape shape;
    const TRttiField* field = TRttiContext::GetType(TShape::kClassInfo)->GetField(u"Spot");
    TValue spot = field->GetValue(&shape);
    const TRttiType* record = TRttiContext::GetType(*spot.TypeInfo());
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->Name(), u"TSpot");
    record->GetField(u"x")->SetValue(spot, TValue::From(9));
    EXPECT_EQ(shape.Spot.X, 1);
    field->SetValue(&shape, spot);
    EXPECT_EQ(shape.Spot.X, 9);
    EXPECT_THROW(record->GetField(u"x")->GetValue(TValue::From(1)), EInvalidCast);
}

TEST(reflection, classes_know_their_ancestors_and_make_objects)
{
    RegisterAll();
    RegisterAll(); // again, without harm
    const TRttiType* type = TRttiContext::GetType(TBox::kClassInfo);
    EXPECT_EQ(type->BaseType(), TRttiContext::GetType(TShape::kClassInfo));
    EXPECT_EQ(type->GetDeclaredProperties().size(), 1U);
    EXPECT_EQ(type->GetProperties().size(), 4U);
    EXPECT_EQ(type->GetFields().size(), 5U);
    const std::unique_ptr<TObject> made = type->CreateInstance();
    EXPECT_EQ(&made->ClassInfo(), &TBox::kClassInfo);
    EXPECT_EQ(TRttiContext::TypeOf(*made), type);
    EXPECT_EQ(TRttiContext::TypeOf(TStringList()), nullptr);
    type->GetProperty(u"Sold")->SetValue(made.get(), TValue::From(1.5));
    EXPECT_EQ(static_cast<TBox&>(*made).Sold(), 1.5);
}

TEST(reflection, a_description_that_fails_is_not_kept)
{
    struct TBroken {
        std::int32_t A = 0;
    };
    const auto fail = []() -> std::u16string_view { throw EOutOfMemory(); };
    EXPECT_THROW(
        TRttiContext::Register<TBroken>().Field(u"A", &TBroken::A).Field(fail(), &TBroken::A), EOutOfMemory);
    EXPECT_EQ(TRttiContext::GetType(TypeInfoOf<TBroken>()), nullptr);
}

TEST(reflection, threads_may_register_and_ask_at_once)
{
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([] {
            for (int round = 0; round < 50; ++round) {
                RegisterAll();
                EXPECT_EQ(TRttiContext::GetType(u"TBox")->GetProperties().size(), 4U);
            }
        });
    for (std::thread& thread : threads)
        thread.join();
}

}

}
