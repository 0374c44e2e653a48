// Attributes of a node, as text and as typed values.
// SPDX-License-Identifier: MIT
#include <hearth/markup/node.h>

#include <hearth/foundation/date_text.h>
#include <hearth/foundation/number_text.h>
#include <hearth/runtime/text_number.h>

namespace ht {

namespace {

const String kNoValue;

TDateTime ReadDate(const String& value, const String& mask)
{
    return value.IsEmpty() ? TDateTime{0} : StrtoDateFmt(value, mask);
}

}

THtAttributes& THtNode::NeedAttributes()
{
    if (!FAttributes)
        FAttributes = CreateAttributes().release();
    return *FAttributes;
}

const String& THtNode::GetAttribute(std::u16string_view Name) const
{
    return FAttributes ? FAttributes->GetAttribute(Name) : kNoValue;
}

bool THtNode::HasAttribute(std::u16string_view AttrName) const
{
    return FAttributes && FAttributes->Contains(AttrName);
}

bool THtNode::HasAttributeValue(std::u16string_view AttrName, std::u16string_view AttrValue) const
{
    return GetAttribute(AttrName) == AttrValue;
}

void THtNode::SetAttr(const String& Name, const String& Value)
{
    if (FAttributes || !Value.IsEmpty())
        NeedAttributes().SetAttribute(Name, Value);
}

bool THtNode::SetAttribute(const String& Name, const String& Value)
{
    return (FAttributes || !Value.IsEmpty()) && NeedAttributes().SetAttributeEx(Name, Value);
}

void THtNode::CopyAttributesFrom(const THtNode& Source)
{
    if (!Source.FAttributes || &Source == this)
        return;
    for (const THtAttribute& attribute : *Source.FAttributes)
        SetAttr(attribute.Name, attribute.Value);
}

std::int32_t THtNode::GetAttrI(std::u16string_view AttrName) const
{
    return StrToInt(GetAttribute(AttrName));
}

void THtNode::SetAttrI(const String& AttrName, std::int32_t Value)
{
    SetAttr(AttrName, IntToStr(Value));
}

double THtNode::GetAttrF(std::u16string_view AttrName) const
{
    return iStrtoFloat(GetAttribute(AttrName));
}

void THtNode::SetAttrF(const String& AttrName, double Value)
{
    SetAttr(AttrName, HtFormatFloat(u"0.##"_s, Value));
}

void THtNode::SetFloat(const String& AttrName, double Value)
{
    SetAttr(AttrName, FloatToStr(Value));
}

bool THtNode::GetAttrB(std::u16string_view AttrName) const
{
    const String& value = GetAttribute(AttrName);
    return value == u"1" || value == u"true" || value == u"on";
}

void THtNode::SetAttrB(const String& AttrName, bool Value)
{
    SetAttr(AttrName, Value ? u"1"_s : u"0"_s);
}

TDateTime THtNode::GetDate(std::u16string_view AttrName) const
{
    return ReadDate(GetAttribute(AttrName), u"yyyy-mm-dd"_s);
}

TDateTime THtNode::GetDateTime(std::u16string_view AttrName) const
{
    return ReadDate(GetAttribute(AttrName), u"yyyy-mm-dd hh:nn:ss"_s);
}

TDateTime THtNode::GetTime(std::u16string_view AttrName) const
{
    return ReadDate(GetAttribute(AttrName), u"hh:nn:ss"_s);
}

void THtNode::SetDate(const String& AttrName, TDateTime Value)
{
    SetAttr(AttrName, FormatDateTime(u"yyyy-mm-dd", Value));
}

void THtNode::SetDateTime(const String& AttrName, TDateTime Value)
{
    SetAttr(AttrName, FormatDateTime(u"yyy-mm-dd\"T\"hh:nn:ss", Value));
}

void THtNode::SetTime(const String& AttrName, TDateTime Value)
{
    SetAttr(AttrName, FormatDateTime(u"hh:nn:ss", Value));
}

}
