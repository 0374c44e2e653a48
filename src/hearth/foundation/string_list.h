// Small dictionaries by name that make their own value objects.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/foundation/object_dictionary.h>

namespace ht {

/// An interned name: the value object of name tables.
class HT_API THtStringRec : public TObject {
public:
    explicit THtStringRec(const String& value = {}, std::uint32_t hash = 0);

    String Value;
    std::uint32_t Hash; // the hash of Value where the maker keeps it; the tables do not read it
};

/// A name and an object, which is freed with the pair where it is owned.
class HT_API THtNameObjectPair : public TObject {
public:
    THtNameObjectPair(const String& name, TObject* object, bool ownsObject);
    THtNameObjectPair(const THtNameObjectPair&) = delete;
    THtNameObjectPair& operator=(const THtNameObjectPair&) = delete;
    ~THtNameObjectPair() override;

    bool OwnsObject;
    String Name;
    TObject* Object;
};

/// Objects by names that are not theirs. The table owns its pairs, the flag is for the objects.
class HT_API THtStringList : public THtObjectDictionary {
public:
    explicit THtStringList(std::int32_t capacity = 0, bool ownsObjects = false);
    ~THtStringList() override;

    /// Adds, or replaces the object of an equal name, freeing an owned one; the same object again
    /// changes nothing.
    void Add(const String& name, TObject* value);
    /// Makes sure that the name is present; an object that it has stays.
    void AddKey(const String& name);
    /// Null for an absent name.
    TObject* GetObject(std::u16string_view name) const;
    bool HasKey(std::u16string_view name) const { return ContainsKey(name); }

private:
    bool FOwnsPairObjects;
};

/// A name and a number.
class HT_API THtSingleRec : public TObject {
public:
    THtSingleRec(const String& name, float value);

    String Name;
    float Value;
};

/// Text widths by text.
class HT_API THtSingleList : public THtObjectDictionary {
public:
    THtSingleList();
    ~THtSingleList() override;

    void AddWidth(const String& name, float value);
    /// -1.0 for an unknown name.
    float GetWidth(std::u16string_view name) const;
};

}
