// Fonts, borders, text decorations and backgrounds, taken apart.
// SPDX-License-Identifier: MIT
#include <hearth/styling/css/section_compile_p.h>

#include <hearth/foundation/text_words.h>
#include <hearth/styling/css/style_enums.h>
#include <hearth/styling/css/token_sequence.h>
#include <hearth/styling/css/value_prepare_p.h>

#include <algorithm>
#include <initializer_list>

namespace ht {

namespace {

template <class E> bool IsKeyword(std::u16string_view prefix, const TCSSToken& token)
{
    std::int32_t ordinal = 0;
    return IsEnum2(prefix, token.Name, EnumInfo<E>(), ordinal);
}

bool IsOneOf(const TCSSToken& token, std::initializer_list<std::u16string_view> words)
{
    return std::any_of(words.begin(), words.end(),
        [&token](std::u16string_view word) { return SameText(token.Name, word); });
}

/// Reads the colour of the function at `index` into its token; false where it tells none.
bool ReadColorAt(const TCSSTokens& tokens, std::size_t index)
{
    TCSSTokenSequence sequence;
    sequence.Init(&tokens);
    sequence.Next(static_cast<std::int32_t>(index));
    TCSSToken& token = *sequence.T;
    std::uint32_t color = token.Color;
    const bool isColor = sequence.ReadColor(color);
    if (isColor)
        token.Color = color;
    return isColor;
}

/// Takes the words of a background in turn, and remembers what was set.
class BackgroundWords {
public:
    /// The property that a word sets; cspBackgroundColor for a word that means nothing else.
    TCSSProperty PropertyOf(const TCSSToken& token)
    {
        if (token.Color != 0)
            return cspBackgroundColor;
        if (IsKeyword<TBackgroundRepeat>(u"br", token))
            return cspBackgroundRepeat;
        if (IsKeyword<TBackgroundOrigin>(u"bo", token))
            return cspBackgroundOrigin;
        if (IsKeyword<TBackgroundAttachment>(u"ba", token))
            return cspBackgroundAttachment;
        if (IsOneOf(token, {u"left", u"right"}))
            return SetX();
        if (IsOneOf(token, {u"top", u"bottom", u"middle"}))
            return cspbackgroundPositionY;
        return IsOneOf(token, {u"center"}) ? NextPosition() : cspBackgroundColor;
    }
    TCSSProperty NextPosition() { return FHasX ? cspbackgroundPositionY : SetX(); }

private:
    TCSSProperty SetX()
    {
        FHasX = true;
        return cspBackgroundPositionX;
    }

    bool FHasX = false;
};

}

void detail::SectionCompiler::CompileFont()
{
    const std::span<const TCSSToken> tokens = FValue->Tokens.Span();
    bool hasStyle = false;
    bool hasWeight = false;
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        const TCSSToken& token = tokens[i];
        switch (token.CType) {
        case ctIdent:
            // Behind a style no word is a weight any more.
            if (!hasStyle && IsKeyword<TCSSFontStyle>(u"cfs", token)) {
                Emit(cspFontStyle, token);
                hasStyle = true;
            } else if (!hasStyle && IsKeyword<TCSSFontWeight>(u"fw", token)) {
                Emit(cspFontWeight, token);
                hasWeight = true;
            } else {
                Emit(cspFontFamily, token);
            }
            break;
        case ctString:
            Emit(cspFontFamily, token);
            break;
        case ctNumber:
        case ctPercentage:
        case ctDimension:
            Emit(cspFontSize, token);
            if (i + 2 < tokens.size() && tokens[i + 1].Name == u"/") {
                i += 2;
                Emit(cspLineHeight, tokens[i]);
            }
            break;
        default:
            break;
        }
    }
    if (!hasStyle)
        EmitWord(cspFontStyle, u"normal"_s);
    if (!hasWeight)
        EmitWord(cspFontWeight, u"normal"_s);
}

void detail::SectionCompiler::CompileBorder()
{
    const std::span<const TCSSToken> tokens = FValue->Tokens.Span();
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        const TCSSToken& token = tokens[i];
        switch (token.CType) {
        case ctIdent:
            if (IsKeyword<TCSSLineStyle>(u"ls", token)) {
                const TCSSTokens style({&token, 1});
                for (TCSSProperty side :
                    {cspBorderTopStyle, cspBorderRightStyle, cspBorderBottomStyle, cspBorderLeftStyle})
                    Emit(side, style);
            } else {
                Emit(IsOneOf(token, {u"thin", u"medium", u"thick"}) ? cspBorderWidth : cspBorderColor, token);
            }
            break;
        case ctHash:
            Emit(cspBorderColor, token);
            break;
        case ctNumber:
        case ctDimension:
            Emit(cspBorderWidth, token);
            break;
        case ctFunction:
            // The colour goes with the name alone, the arguments are done with.
            if (ReadColorAt(FValue->Tokens, i))
                Emit(cspBorderColor, token);
            i = IndexBehindFunction(tokens, i) - 1;
            break;
        default:
            break;
        }
    }
}

void detail::SectionCompiler::CompileTextDecoration()
{
    for (TCSSToken& token : FValue->Tokens.Span()) {
        if (token.CType == ctHash) {
            Emit(cspTextDecorationColor, token);
        } else if (token.CType == ctIdent) {
            if (token.Name == u"inherit")
                token.Color = kInheritMark;
            if (token.Name == u"inherit" || IsKeyword<TCSSTextDecorationLine>(u"tl", token))
                Emit(cspTextDecorationLine, token);
            else if (IsKeyword<TCSSTextDecorationStyle>(u"ts", token))
                Emit(cspTextDecorationStyle, token);
        }
    }
}

void detail::SectionCompiler::CompileBackground()
{
    const std::span<const TCSSToken> tokens = FValue->Tokens.Span();
    BackgroundWords words;
    bool hasImage = false;
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        const TCSSToken& token = tokens[i];
        const std::u16string_view name = token.Name;
        switch (token.CType) {
        case ctIdent:
            if (name == u"none") {
                Emit(cspBackgroundColor, token);
                Emit(cspBackgroundImage, token);
                hasImage = true;
            } else {
                Emit(words.PropertyOf(token), token);
            }
            break;
        case ctHash:
            Emit(cspBackgroundColor, token);
            break;
        case ctNumber:
        case ctDimension:
            Emit(words.NextPosition(), token);
            break;
        case ctURI:
            Emit(cspBackgroundImage, token);
            hasImage = true;
            break;
        case ctFunction:
            // A function has all that follows it.
            if (name == u"linear-gradient" || name == u"radial-gradient") {
                Emit(cspBackgroundImage, Slice(i, tokens.size()));
                hasImage = true;
            } else if (name.starts_with(u"rgb") || name == u"var") {
                Emit(cspBackgroundColor, Slice(i, tokens.size()));
            }
            i = tokens.size();
            break;
        default:
            break;
        }
    }
    if (!hasImage)
        EmitWord(cspBackgroundImage, u"none"_s);
}

}
