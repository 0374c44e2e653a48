// The registered types and their members.
// SPDX-License-Identifier: MIT
#include <hearth/runtime/reflection.h>

#include <algorithm>
#include <mutex>
#include <shared_mutex>
#include <string>
#include <unordered_map>

namespace ht {

namespace {

/// Every known type; FLock guards the maps and nothing else.
class TRegistry {
public:
    static TRegistry& Get()
    {
        static TRegistry registry;
        return registry;
    }

    void Add(std::unique_ptr<TRttiType> type)
    {
        const std::unique_lock lock(FLock);
        const auto [place, isNew] = FTypes.try_emplace(type->Handle().Id());
        if (!isNew)
            return;
        place->second = std::move(type);
        const TRttiType* added = place->second.get();
        FByName.emplace(KeyOf(added->Name()), added);
        if (added->Class())
            FByClass.emplace(added->Class(), added);
    }

    const TRttiType* Find(const TTypeInfo& type) const
    {
        const std::shared_lock lock(FLock);
        const auto found = FTypes.find(type.Id());
        return found == FTypes.end() ? nullptr : found->second.get();
    }
    const TRttiType* Find(const TClassInfo& info) const
    {
        const std::shared_lock lock(FLock);
        const auto found = FByClass.find(&info);
        return found == FByClass.end() ? nullptr : found->second;
    }
    const TRttiType* Find(std::u16string_view name) const
    {
        const std::shared_lock lock(FLock);
        const auto found = FByName.find(KeyOf(name));
        return found == FByName.end() ? nullptr : found->second;
    }

private:
    static std::u16string KeyOf(std::u16string_view name)
    {
        std::u16string key(name);
        std::transform(key.begin(), key.end(), key.begin(), FoldAscii);
        return key;
    }

    mutable std::shared_mutex FLock;
    std::unordered_map<std::type_index, std::unique_ptr<TRttiType>> FTypes;
    std::unordered_map<std::u16string, const TRttiType*> FByName;
    std::unordered_map<const TClassInfo*, const TRttiType*> FByClass;
};

template <class Member> const Member* FindMember(std::span<const Member> members, std::u16string_view name)
{
    const auto found = std::find_if(members.begin(), members.end(),
        [name](const Member& member) { return SameText(member.Name(), name); });
    return found == members.end() ? nullptr : &*found;
}

}

// --- members

TRttiMember::TRttiMember(
    const String& name, const TTypeInfo& type, TMemberVisibility visibility, TGetter get, TSetter set)
    : FName(name)
    , FType(&type)
    , FVisibility(visibility)
    , FGet(std::move(get))
    , FSet(std::move(set))
{
}

const void* TRttiMember::Checked(const TObject* object) const
{
    const TClassInfo* declared = FParent->Class();
    if (!object || !declared || !object->ClassInfo().InheritsFrom(*declared))
        throw EInvalidCast();
    return object;
}

const void* TRttiMember::Checked(const TValue& record) const
{
    if (!record.TypeInfo() || record.Kind() != tkRecord || !(*record.TypeInfo() == FParent->Handle()))
        throw EInvalidCast();
    return record.Data();
}

TValue TRttiMember::Get(const void* instance) const
{
    if (!FGet)
        throw EInvalidCast();
    return FGet(instance);
}

void TRttiMember::Set(void* instance, const TValue& value) const
{
    if (!FSet)
        throw EInvalidCast();
    FSet(instance, value.Cast(*FType));
}

TValue TRttiMember::GetValue(const TObject* object) const
{
    return Get(Checked(object));
}

void TRttiMember::SetValue(TObject* object, const TValue& value) const
{
    Checked(object);
    Set(object, value);
}

TValue TRttiMember::GetValue(const TValue& record) const
{
    return Get(Checked(record));
}

void TRttiMember::SetValue(TValue& record, const TValue& value) const
{
    Checked(record);
    Set(record.Data(), value);
}

// --- types

TRttiType::TRttiType(const TTypeInfo& handle, std::unique_ptr<TObject> (*create)())
    : FHandle(&handle)
    , FCreate(create)
{
}

void TRttiType::Adopt() noexcept
{
    for (TRttiProperty& property : FProperties)
        property.FParent = this;
    for (TRttiField& field : FFields)
        field.FParent = this;
}

const TRttiType* TRttiType::BaseType() const
{
    for (const TClassInfo* info = Class() ? Class()->Parent : nullptr; info; info = info->Parent) {
        if (const TRttiType* type = TRttiContext::GetType(*info))
            return type;
    }
    return nullptr;
}

std::vector<const TRttiProperty*> TRttiType::GetProperties() const
{
    std::vector<const TRttiProperty*> all;
    for (const TRttiType* type = this; type; type = type->BaseType()) {
        for (const TRttiProperty& property : type->FProperties)
            all.push_back(&property);
    }
    return all;
}

std::vector<const TRttiField*> TRttiType::GetFields() const
{
    std::vector<const TRttiField*> all;
    for (const TRttiType* type = this; type; type = type->BaseType()) {
        for (const TRttiField& field : type->FFields)
            all.push_back(&field);
    }
    return all;
}

const TRttiProperty* TRttiType::GetProperty(std::u16string_view name) const
{
    for (const TRttiType* type = this; type; type = type->BaseType()) {
        if (const TRttiProperty* property = FindMember(type->GetDeclaredProperties(), name))
            return property;
    }
    return nullptr;
}

const TRttiField* TRttiType::GetField(std::u16string_view name) const
{
    for (const TRttiType* type = this; type; type = type->BaseType()) {
        if (const TRttiField* field = FindMember(type->GetDeclaredFields(), name))
            return field;
    }
    return nullptr;
}

// --- the table

const TRttiType* TRttiContext::GetType(const TTypeInfo& type)
{
    return TRegistry::Get().Find(type);
}

const TRttiType* TRttiContext::GetType(const TClassInfo& info)
{
    return TRegistry::Get().Find(info);
}

const TRttiType* TRttiContext::GetType(std::u16string_view name)
{
    return TRegistry::Get().Find(name);
}

const TRttiType* TRttiContext::TypeOf(const TObject& object)
{
    for (const TClassInfo* info = &object.ClassInfo(); info; info = info->Parent) {
        if (const TRttiType* type = GetType(*info))
            return type;
    }
    return nullptr;
}

void TRttiContext::Add(std::unique_ptr<TRttiType> type)
{
    type->Adopt();
    TRegistry::Get().Add(std::move(type));
}

}
