// Objects and records in XML trees, there and back.
// SPDX-License-Identifier: MIT
#include <hearth/xml/htxml.h>
#include <markup/hostile.h>
#include <markup/trees.h>
#include <runtime/messages.h>
#include <xml/people.h>

namespace {

using namespace ht;
using namespace hostile;
using namespace ht::people;
using namespace trees;

TEST(xml_node_objects, plain_values_are_attributes_and_others_elements)
{
    RegisterPeople();
    THtXMLNode root(u"<root/>"_s);
    const auto person = MakePerson();
    person->SetName(u"Ann"_s);
    person->SetBoss(nullptr);
    const THtXMLNode* node = root.AddObject(*person);
    EXPECT_EQ(node->FormattedCode(),
        u"<TPerson Age=\"42\" Bare=\"300\" Born=\"1985-02-28 13:05:09\" Height=\"1.7\" "
        u"Id=\"18446744073709551615\""
        u" Initial=\"A\" IsHere=\"true\" Letters=\"3\" Mood=\"mdCross\" Moods=\"[mdCalm,mdGlad]\" "
        u"Name=\"Ann\""
        u" Weight=\"61.300000000000004\">\r\n"
        u"  <Notes>\r\n    <item>one</item>\r\n    <item/>\r\n    <item> two &amp; three </item>\r\n  "
        u"</Notes>\r\n"
        u"  <Home Town=\"Ulm\" Zip=\"12345\">\r\n    <Position>\r\n      <item>0.30000000000000004</item>\r\n"
        u"      <item>-1e-300</item>\r\n    </Position>\r\n  </Home>\r\n"
        u"  <Places>\r\n    <item Town=\"\" Zip=\"1\">\r\n      <Position>\r\n"
        u"        <item>0.30000000000000004</item>\r\n        <item>-1e-300</item>\r\n      </Position>\r\n"
        u"    </item>\r\n    <item Town=\"B\" Zip=\"2\">\r\n      <Position>\r\n"
        u"        <item>0.30000000000000004</item>\r\n        <item>-1e-300</item>\r\n      </Position>\r\n"
        u"    </item>\r\n  </Places>\r\n"
        u"  <Words>\r\n    <item>\r\n      <item>a</item>\r\n      <item/>\r\n    </item>\r\n    <item/>\r\n"
        u"    <item>\r\n      <item>]]&gt;</item>\r\n    </item>\r\n  </Words>\r\n  "
        u"<Friends/>\r\n</TPerson>");
    EXPECT_EQ(node->GetDateTime(u"Born"), person->Born);
    EXPECT_TRUE(node->GetAttrB(u"IsHere"));
    EXPECT_EQ(root.AddRecord(TValue::From(person->Home), u"home"_s)->Attr(u"Town"), u"Ulm");
    EXPECT_EQ(root.AddRecord(TValue::From(TPlace()))->Tag(), u"TPlace");
    EXPECT_EQ(root.GetCount(), 3);
    ExpectLinked(root);
}

TEST(xml_node_objects, printed_objects_come_back)
{
    RegisterPeople();
    const auto person = MakePerson();
    TPerson friendly;
    friendly.Age = 3;
    person->Friends = {nullptr, &friendly};
    THtXMLNode root(u"<root/>"_s);
    root.AddObject(*person);
    for (const String& print : {root.Code(), root.FormattedCode()}) {
        const THtXMLNode read(print);
        const auto made = read.GetNode(0)->CreateObject(*TRttiContext::GetType(TPerson::kClassInfo));
        auto& copy = static_cast<TPerson&>(*made);
        EXPECT_EQ(copy.Name(), person->Name());
        THtXMLNode again(u"<root/>"_s);
        again.AddObject(copy);
        EXPECT_EQ(again.Code(), root.Code());
        ASSERT_EQ(copy.Friends.Length(), 2);
        delete copy.Friends[1]; // whom the array does not own
    }
    EXPECT_EQ(TPerson::Alive, 3);
    TPerson* const boss = person->Boss();
    THtXMLNode(u"<p Age='5' Secret='1' Name=''><Boss Age='6'/><Home Zip='7'/><Notes/><x/></p>"_s)
        .LoadObject(*person);
    EXPECT_EQ(person->Age, 5);
    EXPECT_EQ(person->Name(), u"");
    EXPECT_EQ(person->Secret, 7); // not published
    EXPECT_EQ(person->Boss(), boss);
    EXPECT_EQ(boss->Age, 6);
    EXPECT_EQ(boss->Name(), u"Bob");
    EXPECT_EQ(person->Home.Zip, 7);
    EXPECT_EQ(person->Home.Town, u"Ulm");
    EXPECT_EQ(person->Notes().Count(), 0);
    EXPECT_EQ(person->Words.Length(), 3);
    TValue place = TValue::From(MakePlace(1, u"x"_s));
    THtXMLNode(u"<p Zip='2'><Position><item>5</item></Position></p>"_s).LoadRecord(place);
    EXPECT_EQ(place.Get<TPlace>().Zip, 2);
    EXPECT_EQ(place.Get<TPlace>().Town, u"x");
    EXPECT_EQ(place.Get<TPlace>().Position, (TArray<double>{5}));
    // What people write between elements is none.
    THtXMLNode(u"<p><Notes>x<item>a</item><!--b--><item>c</item>d</Notes><Words><!--e--></Words></p>"_s)
        .LoadObject(*person);
    EXPECT_EQ(person->Notes().Text(), u"a\r\nc\r\n");
    EXPECT_EQ(person->Words.Length(), 0);
}

TEST(xml_node_objects, what_does_not_fit_names_its_member)
{
    RegisterPeople();
    const std::pair<std::u16string_view, std::u16string_view> rows[] = {
        {u"<p Age='x'/>", u"Member Age: "},
        {u"<p Age='128'/>", u"Member Age: "},
        {u"<p Mood='mdSad'/>", u"Member Mood: "},
        {u"<p Born='x'/>", u"Member Born: "},
        {u"<p><Places><item/><item Zip=''/></Places></p>", u"Member Places[1].Zip: "},
        {u"<p><Boss><Boss Initial='ab'/></Boss></p>", u"Member Boss.Boss.Initial: "},
        {u"<p><Friends><item/><item Age=''/></Friends></p>", u"Member Friends[1].Age: "},
        {u"<p><Shadow/></p>", u"Member Shadow: there is no object to fill"},
    };
    for (const auto& row : rows) {
        TPerson person;
        const String said = MessageOf<EHtXML>([&] { THtXMLNode(String(row.first)).LoadObject(person); });
        EXPECT_TRUE(said.View().starts_with(row.second)) << said;
    }
    EXPECT_EQ(TPerson::Alive, 0); // whatever was made on the way
    TValue number = TValue::From(1);
    EXPECT_THROW(THtXMLNode().LoadRecord(number), EInvalidCast);
}

TEST(xml_node_objects, circles_depth_and_strangers_leave_the_tree_alone)
{
    RegisterPeople();
    OnSmallStack([] {
        THtXMLNode root(u"<root/>"_s);
        const auto message = [&root](const TObject& object) {
            return MessageOf<EHtXML>([&] { root.AddObject(object); });
        };
        TPerson one;
        TPerson two;
        one.Friends = {&two};
        two.Friends = {&one};
        EXPECT_EQ(message(one), u"An object of class TPerson holds itself");
        TPerson top;
        TPerson* last = &top;
        for (int i = 0; i < 2'000; ++i) {
            last->SetBoss(new TPerson);
            last = last->Boss();
        }
        EXPECT_EQ(message(top), u"XML contains too many nested nodes");
        EXPECT_EQ(message(TObject()), u"Type TObject is not registered");
        EXPECT_THROW(root.AddRecord(TValue::From(1)), EInvalidCast);
        EXPECT_EQ(root.GetCount(), 0);
        THtXMLNode* deepest = &root;
        for (int i = 0; i < 5'000; ++i) {
            auto boss = std::make_unique<THtXMLNode>();
            boss->SetTag(u"Boss"_s);
            deepest = static_cast<THtXMLNode*>(deepest->AddNode(std::move(boss)));
        }
        TPerson read;
        EXPECT_TRUE(
            MessageOf<EHtXML>([&] { root.LoadObject(read); }).View().ends_with(u": too many nested values"));
    });
}

}
