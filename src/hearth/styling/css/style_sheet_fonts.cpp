// Style sheets: the fonts that they bring along.
// SPDX-License-Identifier: MIT
#include <hearth/styling/css/style_sheet.h>

#include <hearth/foundation/text_words.h>
#include <hearth/styling/css/custom_font.h>
#include <hearth/styling/css/token_sequence.h>

namespace ht {

namespace {

/// What "src" tells: where the file is and what the font may be called on this machine.
struct FontSource {
    String Address;
    String LocalNames;
};

/// An address counts once a format behind it says that it can be read.
bool IsKnownFormat(const TCSSToken& token)
{
    return StrIn(token.Name, {u"truetype", u"opentype", u"woff"});
}

FontSource ReadSource(const TCSSTokens& tokens)
{
    FontSource source;
    String address;
    TCSSTokenSequence sequence;
    for (sequence.Init(&tokens); sequence.T; sequence.Next()) {
        if (sequence.T->CType == ctURI) {
            address = sequence.T->Name;
        } else if (sequence.T->CType == ctFunction && sequence.T->Name == u"local") {
            while (sequence.Next() && sequence.T->CType != ctString && sequence.T->CType != ctClosePar) { }
            if (sequence.T && sequence.T->CType == ctString)
                AddStr(source.LocalNames, sequence.T->Name, u";");
        } else if (IsKnownFormat(*sequence.T) && !address.IsEmpty()) {
            source.Address = address;
        }
    }
    return source;
}

/// The last word, or number where those count, of a value.
String LastWord(const TCSSTokens& tokens, bool (*counts)(TCSSTokenType))
{
    String word;
    for (const TCSSToken& token : tokens) {
        if (counts(token.CType))
            word = token.Name;
    }
    return word;
}

String FamilyName(const TCSSTokens& tokens)
{
    return tokens.IsEmpty() || tokens[0].Name == u"inherit" ? String() : tokens[0].Name;
}

}

void TCSSStyleSheet::AddCustomFont(const TCSSSection& section)
{
    const String family = FamilyName(section.ValuebyName(u"font-family"));
    const FontSource source = ReadSource(section.ValuebyName(u"src"));
    if (family.IsEmpty() || source.Address.IsEmpty())
        return;
    const String style =
        LastWord(section.ValuebyName(u"font-style"), [](TCSSTokenType type) { return type == ctIdent; });
    const String weight = LastWord(section.ValuebyName(u"font-weight"),
        [](TCSSTokenType type) { return type == ctIdent || type == ctNumber; });
    NeedFamily(family).AddFont(TCSSCustomFont(family, source.Address, style, weight, source.LocalNames));
}

TCSSCustomFontFamily& TCSSStyleSheet::NeedFamily(const String& name)
{
    if (!CustomFonts) {
        CustomFonts =
            std::make_unique<THtObjectDictionary>(0, true, HtClassFieldOffset(&TCSSCustomFontFamily::Name));
    }
    if (TObject* known = CustomFonts->Get(name.ToLowerAscii()))
        return static_cast<TCSSCustomFontFamily&>(*known);
    auto family = std::make_unique<TCSSCustomFontFamily>(name);
    CustomFonts->AddObject(family.get());
    return *family.release();
}

/// Faces of a family that is here already come behind its own.
void TCSSStyleSheet::AssignFonts(const TCSSStyleSheet& source)
{
    if (!source.CustomFonts)
        return;
    source.CustomFonts->Traverse(nullptr, [this](TObject*, TObject* object) {
        const auto& family = static_cast<const TCSSCustomFontFamily&>(*object);
        NeedFamily(family.Name).Assign(family);
    });
}

}
