// Values written as JSON, and read from the nodes of a JSON tree.
// SPDX-License-Identifier: MIT
#include <hearth/xml/json_serializer.h>

#include "iso_date_p.h"
#include "json_printer_p.h"
#include "object_loader_p.h"

#include <hearth/runtime/strings.h>
#include <hearth/runtime/text_number.h>
#include <hearth/xml/xml_node.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace ht {

namespace {

constexpr std::int32_t kDocumentDelta = 4096;
constexpr std::int32_t kMaxSetElements = 256;

class TJSONObjectWriter {
public:
    TJSONObjectWriter(TFastString& buffer, std::int32_t spaces, std::int32_t maxDepth)
        : FPrinter(buffer, spaces)
        , FMaxDepth(maxDepth)
    {
    }

    void Write(const TValue& value)
    {
        switch (value.Kind()) {
        case tkUnknown:
            return FPrinter.WriteWord(u"null");
        case tkUString:
        case tkWChar:
            return FPrinter.WriteString(value.AsString());
        case tkFloat:
            return WriteFloat(value);
        case tkEnumeration:
            return WriteEnumeration(value);
        case tkSet:
            return WriteSet(value);
        case tkClass:
            return WriteObject(value.AsObject());
        case tkRecord:
            return WriteMembers(TRttiContext::GetType(*value.TypeInfo()), value.TypeInfo()->Name(), value);
        case tkDynArray:
            return WriteArray(value);
        default:
            return FPrinter.WriteWord(value.ToString());
        }
    }

private:
    void Open(TJSONPrinter::TContainer container)
    {
        if (IsTooDeep(FPrinter.Depth(), FMaxDepth))
            throw EHtJSONParserException(u"JSON contains too many nested nodes"_s);
        FPrinter.Open(container);
    }

    void WriteFloat(const TValue& value)
    {
        const double number = value.AsExtended();
        if (value.IsType<TDateTimeType>() && HasIsoDate(number))
            FPrinter.WriteString(ToIsoDate(number));
        else if (value.IsType<TDateTimeType>() || !std::isfinite(number))
            FPrinter.WriteWord(u"null");
        else
            FPrinter.WriteWord(ExactText(value));
    }

    void WriteEnumeration(const TValue& value)
    {
        if (value.IsType<bool>())
            return FPrinter.WriteWord(value.AsBoolean() ? u"true" : u"false");
        WriteOrdinal(*value.TypeInfo(), value.AsOrdinal());
    }

    void WriteOrdinal(const TTypeInfo& type, std::int64_t ordinal)
    {
        const TEnumInfo* names = type.Enumeration();
        const bool isNamed = names && ordinal >= 0 && ordinal < names->Count();
        if (isNamed)
            FPrinter.WriteString(names->ValueName(static_cast<std::int32_t>(ordinal)));
        else
            FPrinter.WriteWord(IntToStr(ordinal));
    }

    void WriteSet(const TValue& value)
    {
        Open(TJSONPrinter::pcArray);
        for (std::int32_t i = 0; i < kMaxSetElements; ++i) {
            if (!value.TypeInfo()->Contains(value.Data(), i))
                continue;
            FPrinter.BeginPart();
            WriteOrdinal(*value.TypeInfo()->Element(), i);
        }
        FPrinter.Close();
    }

    void WriteArray(const TValue& value)
    {
        Open(TJSONPrinter::pcArray);
        for (std::int32_t i = 0; i < value.GetArrayLength(); ++i) {
            FPrinter.BeginPart();
            Write(value.GetArrayElement(i));
        }
        FPrinter.Close();
    }

    void WriteObject(const TObject* object)
    {
        if (!object)
            return FPrinter.WriteWord(u"null");
        const TRttiType* type = TRttiContext::TypeOf(*object);
        if (const auto* strings = As<TStrings>(object); strings && !type)
            return WriteStrings(*strings);
        if (std::find(FObjects.begin(), FObjects.end(), object) != FObjects.end())
            throw EHtJSONParserException(
                Concat({u"An object of class ", object->ClassInfo().Name, u" holds itself"}));
        FObjects.push_back(object);
        WriteMembers(type, object->ClassInfo().Name, object);
        FObjects.pop_back();
    }

    void WriteStrings(const TStrings& strings)
    {
        Open(TJSONPrinter::pcArray);
        for (std::int32_t i = 0; i < strings.Count(); ++i) {
            FPrinter.BeginPart();
            FPrinter.WriteString(strings.Strings(i));
        }
        FPrinter.Close();
    }

    /// `instance` is an object or a record in a value.
    template <class Instance>
    void WriteMembers(const TRttiType* type, std::u16string_view name, const Instance& instance)
    {
        if (!type)
            throw EHtJSONParserException(Concat({u"Type ", name, u" is not registered"}));
        Open(TJSONPrinter::pcObject);
        for (const TObjectMember& member : FMembers.Of(*type)) {
            FPrinter.BeginPart(member.Member->Name());
            Write(member.Member->GetValue(instance));
        }
        FPrinter.Close();
    }

    TJSONPrinter FPrinter;
    std::int32_t FMaxDepth;
    TObjectMembers FMembers;
    std::vector<const TObject*> FObjects; // those around what is written
};

class TJSONObjectLoader final : public TObjectLoader {
public:
    explicit TJSONObjectLoader(THtJSONUnknown unknown)
        : FUnknown(unknown)
    {
    }

protected:
    void ReadMembers(
        const TInstance& instance, const std::vector<TObjectMember>& members, const THtXMLNode& node) override
    {
        for (std::int32_t i = 0; i < node.GetCount(); ++i) {
            const THtXMLNode& part = *node.GetNode(i);
            if (const TObjectMember* member = TObjectMembers::Find(members, part.Tag()))
                ReadMember(instance, *member, part);
            else if (FUnknown == juRefuse)
                Within(part.Tag(), [this] { Raise(u"unknown member"); });
        }
    }

    TValue ReadPlain(const TTypeInfo& type, const THtXMLNode& node) override
    {
        switch (type.Kind()) {
        case tkUString:
        case tkWChar:
            return ReadText(type, node);
        case tkFloat:
            return type == TypeInfoOf<TDateTimeType>() ? ReadDate(node) : ReadFloat(type, node);
        case tkEnumeration:
            return type == TypeInfoOf<bool>() ? ReadBoolean(node) : ReadEnumeration(type, node);
        case tkSet:
            return ReadSet(type, node);
        default:
            Require(node, jkNumber, u"integer expected");
            return FromText(type, node, u"integer expected");
        }
    }

    void CheckShape(TTypeKind kind, const THtXMLNode& node) override
    {
        if (kind == tkDynArray)
            Require(node, jkArray, u"array expected");
        else
            Require(node, jkObject, u"object expected");
    }

    bool IsNull(const THtXMLNode& node) const override { return node.JSONKind() == jkNull; }

    [[noreturn]] void Raise(std::u16string_view what) const override
    {
        const String path = PathText();
        if (path.IsEmpty())
            throw EHtJSONParserException(Concat({u"Value: ", what}));
        throw EHtJSONParserException(Concat({u"Member ", path, u": ", what}));
    }

private:
    void Require(const THtXMLNode& node, THtJSONKind kind, std::u16string_view message) const
    {
        if (node.JSONKind() != kind)
            Raise(message);
    }

    TValue FromText(const TTypeInfo& type, const THtXMLNode& node, std::u16string_view message) const
    {
        try {
            return TValue::FromText(type, node.Content());
        } catch (const EConvertError&) {
            Raise(message);
        } catch (const ERangeError&) {
            Raise(u"out of range");
        }
    }

    TValue ReadText(const TTypeInfo& type, const THtXMLNode& node) const
    {
        if (IsNull(node))
            return TValue::Initial(type);
        Require(node, jkString, u"string expected");
        return FromText(type, node, u"one character expected");
    }

    TValue ReadFloat(const TTypeInfo& type, const THtXMLNode& node) const
    {
        if (!IsNull(node)) {
            Require(node, jkNumber, u"number expected");
            return FromText(type, node, u"number expected");
        }
        TValue value = TValue::Initial(type);
        type.SetFloat(value.Data(), std::nan(""));
        return value;
    }

    TValue ReadDate(const THtXMLNode& node) const
    {
        TDateTime date = std::nan("");
        if (!IsNull(node)) {
            Require(node, jkString, u"date expected");
            if (!TryIsoDate(node.Content(), date))
                Raise(u"date expected");
        }
        return TValue::OfType(TypeInfoOf<TDateTimeType>(), &date);
    }

    TValue ReadBoolean(const THtXMLNode& node) const
    {
        Require(node, jkBoolean, u"true or false expected");
        return TValue::From(node.Content() == u"true");
    }

    TValue ReadEnumeration(const TTypeInfo& type, const THtXMLNode& node) const
    {
        return TValue::FromOrdinal(type, ReadOrdinal(type, node));
    }

    /// A name, or a number that the type has.
    std::int64_t ReadOrdinal(const TTypeInfo& type, const THtXMLNode& node) const
    {
        const String expected = Concat({type.Name(), u" expected"});
        if (node.JSONKind() != jkNumber)
            Require(node, jkString, expected);
        const TEnumInfo* names = type.Enumeration();
        const std::int32_t found = names ? names->Find(node.Content()) : -1;
        if (found < 0 && node.JSONKind() == jkString)
            Raise(expected);
        return found < 0 ? FromText(type, node, expected).AsOrdinal() : found;
    }

    TValue ReadSet(const TTypeInfo& type, const THtXMLNode& node)
    {
        Require(node, jkArray, u"array expected");
        TValue value = TValue::Initial(type);
        for (std::int32_t i = 0; i < node.GetCount(); ++i) {
            Within(Concat({u"[", IntToStr(i), u"]"}), [&] {
                const std::int64_t ordinal = ReadOrdinal(*type.Element(), *node.GetNode(i));
                if (ordinal < 0 || ordinal >= kMaxSetElements)
                    Raise(u"out of range");
                type.Include(value.Data(), static_cast<std::int32_t>(ordinal));
            });
        }
        return value;
    }

    THtJSONUnknown FUnknown;
};

}

String THtJSONSerializer::SerializeValue(const TValue& Value) const
{
    TFastString buffer(kDocumentDelta);
    Write(buffer, Value);
    return buffer.GetAsString();
}

void THtJSONSerializer::Write(TFastString& FS, const TValue& Value) const
{
    TJSONObjectWriter(FS, Spaces, Limits.JsonDepth).Write(Value);
}

void THtJSONSerializer::Deserialize(const String& JSON, TObject& Object) const
{
    TJSONObjectLoader(UnknownMembers).Fill(Object, *THtXMLNode::CreateFromLosslessJSON(JSON, Limits));
}

TValue THtJSONSerializer::DeserializeValue(const String& JSON, const TTypeInfo& Type) const
{
    return TJSONObjectLoader(UnknownMembers).Read(Type, *THtXMLNode::CreateFromLosslessJSON(JSON, Limits));
}

std::unique_ptr<TObject> THtJSONSerializer::CreateObject(const String& JSON, const TRttiType& Type) const
{
    return TJSONObjectLoader(UnknownMembers).Create(Type, *THtXMLNode::CreateFromLosslessJSON(JSON, Limits));
}

}
