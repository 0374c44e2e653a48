// Objects and records written into XML trees and read back.
// SPDX-License-Identifier: MIT
#include <hearth/xml/xml_node.h>

#include "object_loader_p.h"

#include <hearth/runtime/strings.h>

#include <algorithm>
#include <vector>

namespace ht {

namespace {

constexpr std::u16string_view kDateMask = u"yyyy-mm-dd hh:nn:ss";

const THtTagName& ItemTag()
{
    static const THtTagName name(u"item"_s);
    return name;
}

const THtTagName& NullTag()
{
    static const THtTagName name(u"null"_s);
    return name;
}

/// True for what becomes an element of its own.
bool IsCompound(TTypeKind kind)
{
    return kind == tkClass || kind == tkRecord || kind == tkDynArray;
}

/// A plain value as the text of an attribute, Booleans and dates as nodes read them. No date at all is empty.
String PlainText(const TValue& value)
{
    if (value.IsType<bool>())
        return value.AsBoolean() ? u"true"_s : u"false"_s;
    if (!value.IsType<TDateTimeType>())
        return ExactText(value);
    try {
        return FormatDateTime(kDateMask, value.AsExtended());
    } catch (const ERangeError&) {
        return String();
    }
}

}

class THtXMLNode::TObjectWriter {
public:
    TObjectWriter()
        : FMaxDepth(HtLimits().XmlDepth)
    {
    }

    void WriteObject(const TObject& object, THtXMLNode& node)
    {
        const TRttiType* type = TRttiContext::TypeOf(object);
        if (const auto* strings = As<TStrings>(&object); strings && !type)
            return WriteStrings(*strings, node);
        if (std::find(FObjects.begin(), FObjects.end(), &object) != FObjects.end())
            throw EHtXML(Concat({u"An object of class ", object.ClassInfo().Name, u" holds itself"}));
        FObjects.push_back(&object);
        WriteMembers(type, object.ClassInfo().Name, &object, node);
        FObjects.pop_back();
    }

    void WriteRecord(const TValue& record, THtXMLNode& node)
    {
        if (record.Kind() != tkRecord)
            throw EInvalidCast();
        WriteMembers(TRttiContext::GetType(*record.TypeInfo()), record.TypeInfo()->Name(), record, node);
    }

private:
    /// `instance` is an object or a record in a value.
    template <class Instance>
    void WriteMembers(
        const TRttiType* type, std::u16string_view name, const Instance& instance, THtXMLNode& node)
    {
        if (!type)
            throw EHtXML(Concat({u"Type ", name, u" is not registered"}));
        for (const TObjectMember& member : FMembers.Of(*type)) {
            const TValue value = member.Member->GetValue(instance);
            if (!IsCompound(value.Kind()))
                node.NeedAttributes().SetAttribute(member.Member->Name(), PlainText(value));
            else if (value.Kind() != tkClass || value.AsObject())
                WriteCompound(value, node, member.Member->Name());
        }
    }

    void WriteCompound(const TValue& value, THtXMLNode& parent, const THtTagName& tag)
    {
        if (IsTooDeep(FDepth, FMaxDepth))
            throw EHtXML(u"XML contains too many nested nodes"_s);
        ++FDepth;
        THtXMLNode& node = parent.NewElement(tag);
        if (value.Kind() == tkClass)
            WriteObject(*value.AsObject(), node);
        else if (value.Kind() == tkRecord)
            WriteRecord(value, node);
        else
            WriteArray(value, node);
        --FDepth;
    }

    void WriteArray(const TValue& value, THtXMLNode& node)
    {
        for (std::int32_t i = 0; i < value.GetArrayLength(); ++i) {
            const TValue element = value.GetArrayElement(i);
            if (!IsCompound(element.Kind()))
                node.NewElement(ItemTag()).SetContent(PlainText(element));
            else if (element.Kind() == tkClass && !element.AsObject())
                node.NewElement(NullTag());
            else
                WriteCompound(element, node, ItemTag());
        }
    }

    static void WriteStrings(const TStrings& strings, THtXMLNode& node)
    {
        for (std::int32_t i = 0; i < strings.Count(); ++i)
            node.NewElement(ItemTag()).SetContent(strings.Strings(i));
    }

    TObjectMembers FMembers;
    std::vector<const TObject*> FObjects; // those around what is written
    std::int32_t FDepth = 0;
    std::int32_t FMaxDepth;
};

namespace {

class TXMLObjectLoader final : public TObjectLoader {
protected:
    void ReadMembers(
        const TInstance& instance, const std::vector<TObjectMember>& members, const THtXMLNode& node) override
    {
        for (const TObjectMember& member : members) {
            const String& name = member.Member->Name();
            if (IsCompound(member.Type->Kind())) {
                if (const THtNode* child = node.NodebyName(name))
                    ReadMember(instance, member, static_cast<const THtXMLNode&>(*child));
            } else if (member.Member->IsWritable() && node.HasAttribute(name)) {
                Within(name,
                    [&] { instance.Set(*member.Member, FromText(*member.Type, node.GetAttribute(name))); });
            }
        }
    }

    TValue ReadPlain(const TTypeInfo& type, const THtXMLNode& node) override
    {
        return FromText(type, node.GetValue());
    }

    void CheckShape(TTypeKind /*kind*/, const THtXMLNode& /*node*/) override { }

    bool IsNull(const THtXMLNode& node) const override { return node.HasTag(NullTag()); }

    [[noreturn]] void Raise(std::u16string_view what) const override
    {
        throw EHtXML(Concat({u"Member ", PathText(), u": ", what}));
    }

private:
    TValue FromText(const TTypeInfo& type, const String& text) const
    {
        try {
            if (!(type == TypeInfoOf<TDateTimeType>()))
                return TValue::FromText(type, text);
            THtXMLNode reader;
            reader.SetAttr(u"date"_s, text);
            const TDateTime date = reader.GetDateTime(u"date");
            return TValue::OfType(type, &date);
        } catch (const Exception& error) {
            Raise(error.Message);
        }
    }
};

}

/// A new last child.
THtXMLNode& THtXMLNode::NewElement(const THtTagName& tag)
{
    THtXMLNode& child = NewChild(tag);
    child.SetTag(tag);
    child.TagType = htIdent;
    return child;
}

THtXMLNode* THtXMLNode::AddObject(const TObject& Object, const String& TagName)
{
    return AddWritten(TagName.IsEmpty() ? String(std::u16string_view(Object.ClassInfo().Name)) : TagName,
        [&Object](THtXMLNode& node) { TObjectWriter().WriteObject(Object, node); });
}

THtXMLNode* THtXMLNode::AddRecord(const TValue& Record, const String& TagName)
{
    return AddWritten(TagName.IsEmpty() && Record.TypeInfo() ? Record.TypeInfo()->Name() : TagName,
        [&Record](THtXMLNode& node) { TObjectWriter().WriteRecord(Record, node); });
}

/// A new child that `write` fills; when that fails, none.
template <class Write> THtXMLNode* THtXMLNode::AddWritten(const String& tag, Write write)
{
    THtXMLNode& child = NewElement(tag);
    try {
        write(child);
    } catch (...) {
        DeleteChild(&child);
        throw;
    }
    return &child;
}

void THtXMLNode::LoadObject(TObject& Object) const
{
    TXMLObjectLoader().Fill(Object, *this);
}

void THtXMLNode::LoadRecord(TValue& Record) const
{
    if (Record.Kind() != tkRecord)
        throw EInvalidCast();
    TXMLObjectLoader().Update(Record, *this);
}

std::unique_ptr<TObject> THtXMLNode::CreateObject(const TRttiType& Type) const
{
    return TXMLObjectLoader().Create(Type, *this);
}

}
