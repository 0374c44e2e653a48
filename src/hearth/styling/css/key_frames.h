// The steps of the animations that a sheet names.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/foundation/id_list.h>
#include <hearth/foundation/object_dictionary.h>
#include <hearth/foundation/object_list.h>

#include <memory>

namespace ht {

class TCSSSection;

/// The rules of one animation by percentage, 0 to 100.
class HT_API TCSSKeyFrameList : public TIDList {
public:
    static constexpr TClassInfo kClassInfo{u"TCSSKeyFrameList", &TIDList::kClassInfo};
    const TClassInfo& ClassInfo() const override { return kClassInfo; }

    explicit TCSSKeyFrameList(const String& name);

    /// Files a rule under each percentage that its selectors name: "from", "to", "50%".
    void AddSection(TCSSSection& Section);
    /// The rule that holds at a percentage, null in an empty list.
    TCSSSection* FindSection(float Percent) const;

    String Name;
};

/// All animations of a sheet by name, with the rules, which it owns.
class HT_API TCSSKeyFrameMap : public THtObjectDictionary {
public:
    TCSSKeyFrameMap();
    ~TCSSKeyFrameMap() override;

    void AddSection(const String& Name, std::unique_ptr<TCSSSection> Section);
    /// Files a list of another map, which stays its owner.
    void AddList(TCSSKeyFrameList& List);
    /// Null when there is none.
    TCSSKeyFrameList* GetKeyFrameList(std::u16string_view Name) const;
    void Clear();

private:
    THtObjectList FOwned{true}; // sections and lists
};

}
