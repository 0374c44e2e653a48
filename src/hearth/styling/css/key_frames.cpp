// Key frames by name and percentage.
// SPDX-License-Identifier: MIT
#include <hearth/styling/css/key_frames.h>

#include <hearth/runtime/text_number.h>
#include <hearth/styling/css/css_section.h>
#include <hearth/styling/css/selector.h>

namespace ht {

namespace {

constexpr double kNoPercentage = -1;

double PercentageOf(std::u16string_view tag)
{
    if (tag == u"from")
        return 0;
    if (tag == u"to")
        return 100;
    return StrToFloatDef(tag.substr(0, tag.empty() ? 0 : tag.size() - 1), kNoPercentage);
}

}

TCSSKeyFrameList::TCSSKeyFrameList(const String& name)
    : Name(name)
{
    SetSorted(true);
}

void TCSSKeyFrameList::AddSection(TCSSSection& Section)
{
    for (std::int32_t i = 0; i < Section.Selectors->Count(); ++i) {
        const double percentage = PercentageOf(Section.Selectors->GetSelector(i)->Tag);
        if (percentage >= 0 && percentage <= 100)
            AddObject(static_cast<std::int32_t>(BankersRound(percentage)), &Section);
    }
}

TCSSSection* TCSSKeyFrameList::FindSection(float Percent) const
{
    if (Count() == 0)
        return nullptr;
    std::int32_t index = 1;
    while (index < Count() && static_cast<float>(Get(index)) < Percent)
        ++index;
    return static_cast<TCSSSection*>(GetObject(std::min(index, Count() - 1)));
}

TCSSKeyFrameMap::TCSSKeyFrameMap()
    : THtObjectDictionary(16, false, HtClassFieldOffset(&TCSSKeyFrameList::Name))
{
}

TCSSKeyFrameMap::~TCSSKeyFrameMap() = default;

void TCSSKeyFrameMap::AddSection(const String& Name, std::unique_ptr<TCSSSection> Section)
{
    TCSSKeyFrameList* list = GetKeyFrameList(Name);
    if (!list) {
        auto made = std::make_unique<TCSSKeyFrameList>(Name);
        list = made.get();
        FOwned.Add(made.get());
        made.release();
        AddObject(list);
    }
    list->AddSection(*Section);
    FOwned.Add(Section.get());
    Section.release();
}

void TCSSKeyFrameMap::AddList(TCSSKeyFrameList& List)
{
    AddObject(&List);
}

TCSSKeyFrameList* TCSSKeyFrameMap::GetKeyFrameList(std::u16string_view Name) const
{
    return static_cast<TCSSKeyFrameList*>(Get(Name));
}

void TCSSKeyFrameMap::Clear()
{
    THtObjectDictionary::Clear();
    FOwned.Clear();
}

}
