// Classes and records that tests write and read through reflection.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/date_time.h>
#include <hearth/runtime/reflection.h>
#include <hearth/runtime/strings.h>

#include <memory>
#include <utility>

namespace ht {

enum TMood : std::uint8_t { mdCalm, mdGlad, mdCross };
template <> struct TEnumTraits<TMood> {
    static constexpr int kCount = 3;
    static constexpr const char16_t* kName = u"TMood";
};

}

namespace ht::people {

enum TBareNumber : std::int16_t { bnSome = 300 };

struct TPlace {
    std::int32_t Zip = 0;
    String Town;
    TArray<double> Position;
};

class TPerson : public TObject {
public:
    static constexpr TClassInfo kClassInfo{u"TPerson", &TObject::kClassInfo};
    const TClassInfo& ClassInfo() const override { return kClassInfo; }
    TPerson() { ++Alive; }
    ~TPerson() override { --Alive; }

    const String& Name() const { return FName; }
    void SetName(const String& value)
    {
        if (value == u"nobody")
            throw EConvertError(u"Nobody is not a name"_s);
        FName = value;
    }
    TPerson* Boss() const { return FBoss.get(); }
    void SetBoss(TPerson* value) { FBoss.reset(value); }
    std::int32_t Letters() const { return FName.Length(); }
    TStringList& Notes() const { return *FNotes; }

    static inline int Alive = 0;

    double Weight = 0;
    float Height = 0;
    std::uint64_t Id = 0;
    std::int8_t Age = 0;
    bool IsHere = false;
    char16_t Initial = u'?';
    TMood Mood = mdCalm;
    TSet<TMood> Moods;
    TBareNumber Bare = bnSome;
    TDateTime Born = 0;
    TPlace Home;
    TArray<TPlace> Places;
    TArray<TArray<String>> Words;
    TArray<TPerson*> Friends; // owned by the test
    std::int32_t Secret = 7;
    std::unique_ptr<TPerson> Shadow; // without a setter

private:
    String FName;
    std::unique_ptr<TPerson> FBoss;
    std::unique_ptr<TStringList> FNotes = std::make_unique<TStringList>();
};

inline void RegisterPeople()
{
    TRttiContext::Register<TPlace>()
        .Field(u"Zip", &TPlace::Zip)
        .Field(u"Town", &TPlace::Town)
        .Field(u"Position", &TPlace::Position);
    TRttiContext::Register<TPerson>()
        .Property(u"Name", &TPerson::Name, &TPerson::SetName)
        .Property(u"Boss", &TPerson::Boss, &TPerson::SetBoss)
        .Property(u"Letters", &TPerson::Letters)
        .Property(u"Notes", &TPerson::Notes)
        .Field(u"Weight", &TPerson::Weight, mvPublished)
        .Field(u"Height", &TPerson::Height, mvPublished)
        .Field(u"Id", &TPerson::Id, mvPublished)
        .Field(u"Age", &TPerson::Age, mvPublished)
        .Field(u"IsHere", &TPerson::IsHere, mvPublished)
        .Field(u"Initial", &TPerson::Initial, mvPublished)
        .Field(u"Mood", &TPerson::Mood, mvPublished)
        .Field(u"Moods", &TPerson::Moods, mvPublished)
        .Field(u"Bare", &TPerson::Bare, mvPublished)
        .DateField(u"Born", &TPerson::Born, mvPublished)
        .Field(u"Home", &TPerson::Home, mvPublished)
        .Field(u"Places", &TPerson::Places, mvPublished)
        .Field(u"Words", &TPerson::Words, mvPublished)
        .Field(u"Friends", &TPerson::Friends, mvPublished)
        .Field(u"Secret", &TPerson::Secret)
        .Field(u"Shadow", &TPerson::Shadow, mvPublished);
}

inline TPlace MakePlace(std::int32_t zip, const String& town)
{
    return {zip, town, {0.1 + 0.2, -1e-300}};
}

/// A person with something in every member.
inline std::unique_ptr<TPerson> MakePerson()
{
    auto person = std::make_unique<TPerson>();
    person->SetName(u"\"Ann\" <\u00E9>\n\u0001"_s);
    person->SetBoss(new TPerson);
    person->Boss()->SetName(u"Bob"_s);
    person->Boss()->Age = -128;
    person->Notes().Add(u"one"_s);
    person->Notes().Add(u""_s);
    person->Notes().Add(u" two & three "_s);
    person->Weight = 61.300000000000004;
    person->Height = 1.7F;
    person->Id = 18446744073709551615U;
    person->Age = 42;
    person->IsHere = true;
    person->Initial = u'A';
    person->Mood = mdCross;
    person->Moods = {mdCalm, mdGlad};
    person->Born = EncodeDate(1985, 2, 28) + EncodeTime(13, 5, 9, 0);
    person->Home = MakePlace(12345, u"Ulm"_s);
    person->Places = {MakePlace(1, u""_s), MakePlace(2, u"B"_s)};
    person->Words = {{u"a"_s, u""_s}, {}, {u"]]>"_s}};
    return person;
}

}
