// Members, records, arrays and new objects read from the nodes of a tree.
// SPDX-License-Identifier: MIT
#include "object_loader_p.h"

#include <hearth/runtime/checked.h>
#include <hearth/runtime/strings.h>
#include <hearth/runtime/text_number.h>

#include <algorithm>
#include <charconv>
#include <iterator>

namespace ht {

namespace {

/// The nodes that stand for elements of an array. What people write between them, comments and texts, does
/// not.
std::vector<const THtXMLNode*> ElementsOf(const THtXMLNode& node)
{
    std::vector<const THtXMLNode*> elements;
    for (std::int32_t i = 0; i < node.GetCount(); ++i) {
        if (!node.GetNode(i)->Tag().IsEmpty())
            elements.push_back(node.GetNode(i));
    }
    return elements;
}

String IndexName(std::size_t index)
{
    return Concat({u"[", IntToStr(static_cast<std::int64_t>(index)), u"]"});
}

}

const std::vector<TObjectMember>& TObjectMembers::Of(const TRttiType& type)
{
    const auto [found, isNew] = FMembers.try_emplace(&type);
    std::vector<TObjectMember>& members = found->second;
    if (!isNew)
        return members;
    const TMemberVisibility least = type.Class() ? mvPublished : mvPrivate;
    const auto add = [&members, least](const TRttiMember& member, const TTypeInfo& memberType) {
        if (member.Visibility() >= least && member.IsReadable() && !Find(members, member.Name()))
            members.push_back({&member, &memberType});
    };
    if (type.Class()) {
        for (const TRttiProperty* property : type.GetProperties())
            add(*property, property->PropertyType());
    }
    for (const TRttiField* field : type.GetFields())
        add(*field, field->FieldType());
    return members;
}

const TObjectMember* TObjectMembers::Find(const std::vector<TObjectMember>& members, std::u16string_view name)
{
    const auto found = std::find_if(members.begin(), members.end(),
        [name](const TObjectMember& member) { return SameText(member.Member->Name(), name); });
    return found == members.end() ? nullptr : &*found;
}

String ExactText(const TValue& value)
{
    if (value.Kind() != tkFloat)
        return value.ToString();
    char text[32];
    const double number = value.AsExtended();
    // A single has fewer digits than the double that it becomes.
    const char* const end = value.IsType<float>()
        ? std::to_chars(text, std::end(text), static_cast<float>(number)).ptr
        : std::to_chars(text, std::end(text), number).ptr;
    return String::FromLatin1({text, static_cast<std::size_t>(end - text)});
}

void TObjectLoader::Fill(TObject& object, const THtXMLNode& node)
{
    const TRttiType* type = TRttiContext::TypeOf(object);
    if (!type && As<TStrings>(&object))
        return FillStrings(object, node);
    CheckShape(tkClass, node);
    const TRttiType& registered = Registered(type, object.ClassInfo().Name);
    ReadMembers({&object, nullptr}, FMembers.Of(registered), node);
}

std::unique_ptr<TObject> TObjectLoader::Create(const TRttiType& type, const THtXMLNode& node)
{
    std::unique_ptr<TObject> object = type.CreateInstance();
    if (!object)
        Raise(u"an object of this class cannot be created");
    Fill(*object, node);
    return object;
}

TValue TObjectLoader::Read(const TTypeInfo& type, const THtXMLNode& node)
{
    TValue value = ReadValue(type, node);
    ReleaseFrom(0);
    return value;
}

void TObjectLoader::Update(TValue& record, const THtXMLNode& node)
{
    TValue updated = record;
    FillRecord(updated, node);
    record = std::move(updated);
    ReleaseFrom(0);
}

void TObjectLoader::ReadMember(const TInstance& instance, const TObjectMember& member, const THtXMLNode& node)
{
    Within(member.Member->Name(), [&] {
        if (member.Type->Kind() == tkClass)
            return ReadObjectMember(instance, member, node);
        if (!member.Member->IsWritable())
            return; // computed, and written for other readers
        const std::size_t mark = FCreated.size();
        TValue value;
        if (member.Type->Kind() == tkRecord) {
            value = instance.Get(*member.Member); // fields that the node lacks stay
            FillRecord(value, node);
        } else {
            value = ReadValue(*member.Type, node);
        }
        instance.Set(*member.Member, value);
        if (instance.Object)
            ReleaseFrom(mark);
    });
}

void TObjectLoader::ReadObjectMember(
    const TInstance& instance, const TObjectMember& member, const THtXMLNode& node)
{
    TObject* const current = instance.Get(*member.Member).AsObject();
    const bool isNull = IsNull(node);
    if (current && !isNull)
        return Fill(*current, node);
    if (!member.Member->IsWritable()) {
        if (current || !isNull)
            Raise(isNull ? u"object expected" : u"there is no object to fill");
        return;
    }
    const std::size_t mark = FCreated.size();
    instance.Set(*member.Member, ReadObject(*member.Type, node));
    if (instance.Object)
        ReleaseFrom(mark);
}

TValue TObjectLoader::ReadValue(const TTypeInfo& type, const THtXMLNode& node)
{
    switch (type.Kind()) {
    case tkClass:
        return ReadObject(type, node);
    case tkRecord: {
        TValue record = TValue::Initial(type);
        FillRecord(record, node);
        return record;
    }
    case tkDynArray:
        return ReadArray(type, node);
    default:
        return ReadPlain(type, node);
    }
}

/// A new object, or null.
TValue TObjectLoader::ReadObject(const TTypeInfo& type, const THtXMLNode& node)
{
    TValue value = TValue::Initial(type);
    if (IsNull(node))
        return value;
    std::unique_ptr<TObject> object = Create(Registered(TRttiContext::GetType(type), type.Name()), node);
    type.SetObject(value.Data(), object.get());
    FCreated.push_back(std::move(object));
    return value;
}

TValue TObjectLoader::ReadArray(const TTypeInfo& type, const THtXMLNode& node)
{
    CheckShape(tkDynArray, node);
    const std::vector<const THtXMLNode*> elements = ElementsOf(node);
    TValue array = TValue::Initial(type);
    type.SetLength(array.Data(), CheckedLength(elements.size()));
    for (std::size_t i = 0; i < elements.size(); ++i) {
        Within(IndexName(i), [&] {
            array.SetArrayElement(static_cast<std::int32_t>(i), ReadValue(*type.Element(), *elements[i]));
        });
    }
    return array;
}

void TObjectLoader::FillRecord(TValue& record, const THtXMLNode& node)
{
    CheckShape(tkRecord, node);
    const TTypeInfo& type = *record.TypeInfo();
    const TRttiType& registered = Registered(TRttiContext::GetType(type), type.Name());
    ReadMembers({nullptr, &record}, FMembers.Of(registered), node);
}

void TObjectLoader::FillStrings(TObject& object, const THtXMLNode& node)
{
    CheckShape(tkDynArray, node);
    auto& strings = static_cast<TStrings&>(object);
    strings.BeginUpdate();
    try {
        strings.Clear();
        const std::vector<const THtXMLNode*> elements = ElementsOf(node);
        for (std::size_t i = 0; i < elements.size(); ++i) {
            Within(
                IndexName(i), [&] { strings.Add(ReadPlain(TypeInfoOf<String>(), *elements[i]).AsString()); });
        }
    } catch (...) {
        strings.EndUpdate();
        throw;
    }
    strings.EndUpdate();
}

/// What was created since then is somebody else's now.
void TObjectLoader::ReleaseFrom(std::size_t mark) noexcept
{
    for (std::size_t i = mark; i < FCreated.size(); ++i)
        static_cast<void>(FCreated[i].release());
    FCreated.resize(mark);
}

const TRttiType& TObjectLoader::Registered(const TRttiType* type, std::u16string_view name) const
{
    if (!type)
        Raise(Concat({u"type ", name, u" is not registered"}));
    return *type;
}

void TObjectLoader::Enter(const String& name)
{
    if (IsTooDeep(static_cast<std::int32_t>(FPath.size()), 0))
        Raise(u"too many nested values");
    FPath.push_back(name);
}

String TObjectLoader::PathText() const
{
    std::u16string path;
    for (const String& name : FPath) {
        if (!path.empty() && !name.View().starts_with(u"["))
            path += u'.';
        path += name.View();
    }
    return String(path);
}

}
