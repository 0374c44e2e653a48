// Lists of objects, owned or not, and of plain pointers.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/lists.h>

namespace ht {

/// Objects, owned where the list was made so: they are freed when they are removed, replaced or cleared, and
/// with the list. Extract takes one out alive. Assign copies pointers, of which one list may own the objects.
class HT_API THtObjectList : public TList {
public:
    static constexpr TClassInfo kClassInfo{u"THtObjectList", &TList::kClassInfo};
    const TClassInfo& ClassInfo() const override { return kClassInfo; }

    explicit THtObjectList(bool AOwnsObjects);
    THtObjectList(const THtObjectList&) = delete;
    THtObjectList& operator=(const THtObjectList&) = delete;
    ~THtObjectList() override;

    bool OwnsObjects() const noexcept { return FOwnsObjects; }
    void SetOwnsObjects(bool value) noexcept { FOwnsObjects = value; }

    // The operations of TList for objects: a pointer to another type would lose its way back.

    TObject* Items(std::int32_t index) const { return static_cast<TObject*>(TList::Items(index)); }
    TObject* operator[](std::int32_t index) const { return Items(index); }
    void SetItems(std::int32_t index, TObject* object) { TList::SetItems(index, object); }
    TObject* First() const { return Items(0); }
    TObject* Last() const { return Items(Count() - 1); }
    std::int32_t Add(TObject* object) { return TList::Add(object); }
    void Insert(std::int32_t index, TObject* object) { TList::Insert(index, object); }
    std::int32_t Remove(TObject* object) { return TList::Remove(object); }
    TObject* Extract(TObject* object) { return static_cast<TObject*>(TList::Extract(object)); }
    std::int32_t IndexOf(const TObject* object) const noexcept { return TList::IndexOf(object); }

protected:
    void Notify(void* item, TListNotification action) override;

private:
    bool FOwnsObjects;
};

/// Pointers that nobody owns.
class HT_API THtPointerList : public TList {
public:
    static constexpr TClassInfo kClassInfo{u"THtPointerList", &TList::kClassInfo};
    const TClassInfo& ClassInfo() const override { return kClassInfo; }

    THtPointerList() = default;
    ~THtPointerList() override;
};

}
