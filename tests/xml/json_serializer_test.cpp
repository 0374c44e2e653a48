// Objects and records as JSON and back, who owns what was made, and what is refused.
// SPDX-License-Identifier: MIT
#include <hearth/xml/htxml.h>
#include <markup/hostile.h>
#include <runtime/messages.h>
#include <xml/people.h>

#include <cmath>
#include <limits>

namespace {

using namespace ht;
using namespace hostile;
using namespace ht::people;

TEST(json_serializer, objects_are_written_by_type)
{
    RegisterPeople();
    const auto person = MakePerson();
    person->SetBoss(nullptr);
    person->Places.SetLength(1);
    EXPECT_EQ(THtJSONSerializer().Serialize(*person),
        u"{\"Name\":\"\\\"Ann\\\" <\u00E9>\\n\\u0001\",\"Boss\":null,\"Letters\":11,"
        u"\"Notes\":[\"one\",\"\",\" two & three \"],\"Weight\":61.300000000000004,\"Height\":1.7,"
        u"\"Id\":18446744073709551615,\"Age\":42,\"IsHere\":true,\"Initial\":\"A\",\"Mood\":\"mdCross\","
        u"\"Moods\":[\"mdCalm\",\"mdGlad\"],\"Bare\":300,\"Born\":\"1985-02-28T13:05:09\","
        u"\"Home\":{\"Zip\":12345,\"Town\":\"Ulm\",\"Position\":[0.30000000000000004,-1e-300]},"
        u"\"Places\":[{\"Zip\":1,\"Town\":\"\",\"Position\":[0.30000000000000004,-1e-300]}],"
        u"\"Words\":[[\"a\",\"\"],[],[\"]]>\"]],\"Friends\":[],\"Shadow\":null}");
    THtJSONSerializer lines;
    lines.Spaces = 1;
    EXPECT_EQ(lines.SerializeRecord(TArray<char16_t>{u'a', u'b'}), u"[\r\n \"a\",\r\n \"b\"\r\n]");
    EXPECT_EQ(lines.SerializeRecord(std::numeric_limits<double>::infinity()), u"null");
    EXPECT_EQ(lines.SerializeValue(TValue()), u"null");
}

TEST(json_serializer, objects_come_back)
{
    RegisterPeople();
    const THtJSONSerializer serializer;
    const auto person = MakePerson();
    TPerson friendly;
    friendly.SetName(u"Friend"_s);
    person->Friends = {&friendly, nullptr};
    const String json = serializer.Serialize(*person);
    {
        const auto made = serializer.CreateObject(json, *TRttiContext::GetType(TPerson::kClassInfo));
        auto& copy = static_cast<TPerson&>(*made);
        EXPECT_EQ(serializer.Serialize(copy), json);
        EXPECT_EQ(copy.Boss()->Name(), u"Bob");
        ASSERT_EQ(copy.Friends.Length(), 2);
        EXPECT_NE(copy.Friends[0], &friendly);
        delete copy.Friends[0]; // whom the array does not own
    }
    EXPECT_EQ(TPerson::Alive, 3);
    TPerson* const boss = person->Boss();
    serializer.Deserialize(
        u"{\"boss\":{\"AGE\":5},\"home\":{\"Zip\":9},\"notes\":[],\"letters\":1}"_s, *person);
    EXPECT_EQ(person->Boss(), boss);
    EXPECT_EQ(boss->Age, 5);
    EXPECT_EQ(boss->Name(), u"Bob");
    EXPECT_EQ(person->Home.Zip, 9);
    EXPECT_EQ(person->Home.Town, u"Ulm");
    EXPECT_EQ(person->Notes().Count(), 0);
    serializer.Deserialize(u"{\"Boss\":null,\"Weight\":null,\"Name\":null}"_s, *person);
    EXPECT_EQ(person->Boss(), nullptr);
    EXPECT_TRUE(std::isnan(person->Weight));
    EXPECT_EQ(person->Name(), u"");
    const TPlace place = serializer.DeserializeRecord<TPlace>(u"{\"Town\":\"Rome\",\"Position\":[1,2.5]}"_s);
    EXPECT_EQ(place.Town, u"Rome");
    EXPECT_EQ(place.Position[1], 2.5);
    EXPECT_EQ(serializer.DeserializeRecord<TArray<std::uint8_t>>(u"[1,255]"_s)[1], 255);
}

TEST(json_serializer, wrong_values_name_their_member)
{
    RegisterPeople();
    const std::pair<std::u16string_view, std::u16string_view> rows[] = {
        {u"[]", u"Value: object expected"},
        {u"{\"Age\":\"5\"}", u"Member Age: integer expected"},
        {u"{\"Age\":1.5}", u"Member Age: integer expected"},
        {u"{\"Age\":128}", u"Member Age: out of range"},
        {u"{\"Id\":-1}", u"Member Id: integer expected"},
        {u"{\"Weight\":true}", u"Member Weight: number expected"},
        {u"{\"Name\":1}", u"Member Name: string expected"},
        {u"{\"Initial\":\"ab\"}", u"Member Initial: one character expected"},
        {u"{\"IsHere\":1}", u"Member IsHere: true or false expected"},
        {u"{\"Mood\":\"mdSad\"}", u"Member Mood: TMood expected"},
        {u"{\"Mood\":3}", u"Member Mood: out of range"},
        {u"{\"Moods\":[\"mdCalm\",null]}", u"Member Moods[1]: TMood expected"},
        {u"{\"Moods\":\"mdCalm\"}", u"Member Moods: array expected"},
        {u"{\"Born\":\"yesterday\"}", u"Member Born: date expected"},
        {u"{\"Home\":{\"Position\":[1,\"2\"]}}", u"Member Home.Position[1]: number expected"},
        {u"{\"Home\":null}", u"Member Home: object expected"},
        {u"{\"Places\":[{},{\"Zip\":[]}]}", u"Member Places[1].Zip: integer expected"},
        {u"{\"Boss\":{\"Boss\":{\"Age\":null}}}", u"Member Boss.Boss.Age: integer expected"},
        {u"{\"Friends\":[{\"Name\":\"x\"},{\"Boss\":[]}]}", u"Member Friends[1].Boss: object expected"},
        {u"{\"Notes\":[1]}", u"Member Notes[0]: string expected"},
        {u"{\"Notes\":null}", u"Member Notes: object expected"},
        {u"{\"Shadow\":{}}", u"Member Shadow: there is no object to fill"},
        {u"{\"Age\":1,}", u"Name/Value expected after comma"},
    };
    const THtJSONSerializer serializer;
    for (const auto& row : rows) {
        TPerson person;
        EXPECT_EQ(
            MessageOf<EHtJSONParserException>([&] { serializer.Deserialize(String(row.first), person); }),
            row.second)
            << String(row.first);
    }
    EXPECT_EQ(TPerson::Alive, 0); // whatever was made on the way
    TPerson person;
    EXPECT_THROW(serializer.Deserialize(u"{\"Friends\":[{\"Name\":\"nobody\"}]}"_s, person), EConvertError);
    EXPECT_EQ(TPerson::Alive, 1);
}

TEST(json_serializer, unknown_members_are_passed_over_or_refused)
{
    RegisterPeople();
    TPerson person;
    THtJSONSerializer serializer;
    const String json = u"{\"x\":[{}],\"Home\":{\"y\":1},\"Secret\":1,\"Age\":2}"_s;
    serializer.Deserialize(json, person);
    EXPECT_EQ(person.Age, 2);
    EXPECT_EQ(person.Secret, 7); // not published
    serializer.UnknownMembers = juRefuse;
    const auto message = [&](const String& text) {
        return MessageOf<EHtJSONParserException>([&] { serializer.Deserialize(text, person); });
    };
    EXPECT_EQ(message(json), u"Member x: unknown member");
    EXPECT_EQ(message(u"{\"Home\":{\"y\":1}}"_s), u"Member Home.y: unknown member");
    EXPECT_EQ(message(u"{\"Secret\":1}"_s), u"Member Secret: unknown member");
}

TEST(json_serializer, dates)
{
    const std::pair<std::u16string_view, std::u16string_view> rows[] = {
        {u"2024-02-29", u"2024-02-29T00:00:00"},
        {u"2024-02-29T13:05", u"2024-02-29T13:05:00"},
        {u"2024-02-29 13:05:09.25", u"2024-02-29T13:05:09.250"},
        {u"2024-02-29T23:30:00Z", u"2024-02-29T23:30:00"},
        {u"2024-02-29T23:30:00-01:00", u"2024-03-01T00:30:00"},
        {u"1899-12-29T06:00:00+0700", u"1899-12-28T23:00:00"},
        {u"0001-01-01", u"0001-01-01T00:00:00"},
        {u"9999-12-31T23:59:59.999", u"9999-12-31T23:59:59.999"},
        {u"2023-02-29", u""},
        {u"2024-2-29", u""},
        {u"2024-02-29T24:00", u""},
        {u"2024-02-29T13", u""},
        {u"2024-02-29T13:05:09.", u""},
        {u"2024-02-29T13:05Zx", u""},
        {u"2024-02-29T13:05+1", u""},
    };
    const THtJSONSerializer serializer;
    for (const auto& [text, expected] : rows) {
        const String json = Concat({u"\"", text, u"\""});
        String back;
        try {
            back = serializer.SerializeValue(serializer.DeserializeValue(json, TypeInfoOf<TDateTimeType>()));
        } catch (const EHtJSONParserException& error) {
            EXPECT_EQ(error.Message, u"Value: date expected");
        }
        EXPECT_EQ(back, expected.empty() ? String() : Concat({u"\"", expected, u"\""})) << String(text);
    }
    for (const double none : {std::nan(""), 1e300, -1e7, 2958466.0}) {
        EXPECT_EQ(serializer.SerializeValue(TValue::OfType(TypeInfoOf<TDateTimeType>(), &none)), u"null");
    }
}

class TStranger : public TObject {
public:
    static constexpr TClassInfo kClassInfo{u"TStranger", &TObject::kClassInfo};
    const TClassInfo& ClassInfo() const override { return kClassInfo; }
};

TEST(json_serializer, circles_depth_and_strangers_are_refused)
{
    RegisterPeople();
    const auto message = [](const TObject& object, std::int32_t depth = 0) {
        THtJSONSerializer serializer;
        serializer.Limits.JsonDepth = depth;
        return MessageOf<EHtJSONParserException>([&] { serializer.Serialize(object); });
    };
    OnSmallStack([&message] {
        TPerson one;
        TPerson two;
        one.Friends = {&two, &two};
        EXPECT_EQ(message(one), u"nothing was raised"); // twice, but not in itself
        two.Friends = {&one};
        EXPECT_EQ(message(one), u"An object of class TPerson holds itself");
        TPerson top;
        TPerson* last = &top;
        for (int i = 0; i < 2'000; ++i) {
            last->SetBoss(new TPerson);
            last = last->Boss();
        }
        EXPECT_EQ(message(top), u"JSON contains too many nested nodes");
        EXPECT_EQ(message(top, 5), u"JSON contains too many nested nodes");
        THtJSONSerializer serializer;
        String json = u"{}"_s;
        std::u16string deep;
        for (int i = 0; i < 1023; ++i)
            deep += u"{\"Boss\":";
        deep += u"{}" + std::u16string(1023, u'}');
        TPerson read;
        serializer.Deserialize(String(deep), read);
        EXPECT_EQ(MessageOf<EHtJSONParserException>(
                      [&] { serializer.Deserialize(String(u"{\"Boss\":" + deep + u"}"), read); }),
            u"JSON contains too many nested nodes");
        serializer.Limits.JsonDepth = 0;
        EXPECT_TRUE(MessageOf<EHtJSONParserException>(
            [&] { serializer.Deserialize(String(u"{\"Boss\":{\"Boss\":" + deep + u"}}"), read); })
                        .View()
                        .ends_with(u".Boss: too many nested values"));
    });
    EXPECT_EQ(message(TStranger()), u"Type TStranger is not registered");
    TStranger stranger;
    EXPECT_EQ(MessageOf<EHtJSONParserException>([&] { THtJSONSerializer().Deserialize(u"{}"_s, stranger); }),
        u"Value: type TStranger is not registered");
}

TEST(json_serializer, cost_grows_with_the_text)
{
    RegisterPeople();
    ExpectLinear(10'000 / kScale, [](std::size_t size) {
        TArray<TPlace> places(static_cast<std::int32_t>(size));
        const THtJSONSerializer serializer;
        const String json = serializer.SerializeRecord(places);
        EXPECT_EQ(serializer.DeserializeRecord<TArray<TPlace>>(json).Length(), places.Length());
    });
}

}
