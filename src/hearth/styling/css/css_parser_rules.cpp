// Rules and at-rules of style sheets.
// SPDX-License-Identifier: MIT
#include <hearth/styling/css/css_parser.h>

#include <hearth/foundation/text_words.h>
#include <hearth/runtime/text_number.h>
#include <hearth/styling/css/selector.h>

#include <limits>

namespace ht {

/// Reads the query behind "@media".
class TCSSParser::TMediaReader {
public:
    TMediaReader(TCSSTokenizer& tokenizer, TCSSMediaSet& media)
        : FTokenizer(tokenizer)
        , FMedia(media)
    {
    }

    /// Up to the "{" or ";", which stays.
    void Read();

private:
    TCSSTokenType Type() const { return FTokenizer.Token.CType; }
    bool AtEnd() const { return FTokenizer.Eof || Type() == ctBlockStart || Type() == ctSemicolon; }
    void Next() { FMedia.AddNextToken(FTokenizer); }
    void SkipSpace()
    {
        while (!AtEnd() && (Type() == ctSpace || Type() == ctComment))
            Next();
    }
    void ReadFeature();
    void ApplyFeature();
    void ReadWord();
    void TakeMedium(std::u16string_view name);

    TCSSTokenizer& FTokenizer;
    TCSSMediaSet& FMedia;
    String FFeature; // in the last parentheses
    std::int64_t FLimit = 0; // and its value
    String FOther; // words that are no media, which together may be one
    bool FHasWords = false;
};

void TCSSParser::TMediaReader::Read()
{
    Next();
    while (!AtEnd()) {
        if (Type() == ctOpenPar) {
            ReadFeature();
            continue; // at the ")"
        }
        if (Type() == ctClosePar)
            ApplyFeature();
        else if (Type() != ctSpace && Type() != ctComment)
            ReadWord();
        Next();
    }
    TakeMedium(FOther);
    if (FMedia.Medias.IsEmpty() && FHasWords)
        FMedia.Medias = {cmUnknown};
    ApplyFeature();
}

void TCSSParser::TMediaReader::ReadFeature()
{
    Next();
    SkipSpace();
    if (AtEnd())
        return;
    FFeature = FTokenizer.Token.Name;
    FLimit = 0;
    while (!AtEnd() && Type() != ctColon && Type() != ctClosePar)
        Next();
    if (Type() == ctColon && !AtEnd()) {
        Next();
        SkipSpace();
        if (Type() == ctNumber || Type() == ctDimension) {
            constexpr double kMost = 9.2e18; // whatever the screen, near enough to the end of the type
            const double value = FTokenizer.Token.AsFloat;
            FLimit = value > kMost ? std::numeric_limits<std::int64_t>::max()
                : value < -kMost   ? std::numeric_limits<std::int64_t>::min()
                                   : BankersRound(value);
        }
    }
    while (!AtEnd() && Type() != ctClosePar)
        Next();
}

void TCSSParser::TMediaReader::ApplyFeature()
{
    struct Limit {
        std::u16string_view Feature;
        std::int64_t TCSSMediaSet::*Field;
    };
    static constexpr Limit kLimits[] = {
        {u"min-width", &TCSSMediaSet::MinWidth},
        {u"max-width", &TCSSMediaSet::MaxWidth},
        {u"min-device-width", &TCSSMediaSet::MinDeviceWidth},
        {u"max-device-width", &TCSSMediaSet::MaxDeviceWidth},
    };
    for (const Limit& limit : kLimits) {
        if (!SameText(FFeature, limit.Feature))
            continue;
        FMedia.*limit.Field = FLimit;
        FMedia.HasSizeQuery |= FLimit != 0;
    }
}

void TCSSParser::TMediaReader::ReadWord()
{
    const String& word = FTokenizer.Token.Name;
    if (SameText(word, u"only") || SameText(word, u"and"))
        return;
    FHasWords = true;
    TCSSMedia medium = cmAll;
    if (Type() == ctColon) {
        TakeMedium(FOther);
        FOther = String();
    } else if (Type() == ctIdent && IsEnum2(u"cm", word, medium)) {
        FMedia.Medias.Include(medium);
    } else {
        AddStr(FOther, word, u" ");
    }
}

void TCSSParser::TMediaReader::TakeMedium(std::u16string_view name)
{
    TCSSMedia medium = cmAll;
    if (IsEnum2(u"cm", name, medium))
        FMedia.Medias.Include(medium);
}

bool TCSSParser::NextSection()
{
    NextToken();
    if (FTokenizer.Eof) {
        EndBlock(); // the end of the text closes what is open
        return false;
    }
    ClearList();
    CurrentSection = std::make_unique<TCSSSection>();
    TCSSSection& section = *CurrentSection;
    section.BlockStartPos = Token().StartPos;
    while (!FTokenizer.Eof && Token().CType != ctBlockStart)
        ReadPrelude();
    TCSSSelectors& selectors = *section.Selectors;
    if (selectors.Count() > 0)
        selectors.EndPos = selectors.GetSelector(selectors.Count() - 1)->EndPos;
    if (IsAt(ctBlockStart))
        ReadSectionValues();
    section.BlockEndPos = Token().EndPos;
    section.MediaSet = FMediaSet ? FMediaSet : &TCSSMediaSet::All();
    section.Compile();
    return !FTokenizer.Eof || selectors.Count() > 0 || !section.Values.IsEmpty();
}

void TCSSParser::ReadPrelude()
{
    switch (Token().CType) {
    case ctIdent:
    case ctHash:
    case ctNumber:
    case ctPercentage:
    case ctDimension:
    case ctFunction:
    case ctColon:
    case ctOpenBr:
    case ctSlash:
        AddSelector();
        break;
    case ctDelimiter:
        if (Token().Name == u"*" || Token().Name == u".")
            AddSelector();
        else
            NextToken();
        break;
    case ctAtKeyword:
        AddAtKeyword();
        break;
    case ctBlockEnd:
        EndBlock();
        NextToken();
        break;
    case ctComment:
    case ctComma:
    case ctSpace:
        NextToken();
        break;
    case ctUnknown:
        throw ECSSParserError(u"Unknown token type"_s);
    default:
        SkipSection();
    }
}

void TCSSParser::SkipSection()
{
    ReadUpTo(ctBlockEnd, [](const TCSSToken&) {});
    NextToken();
}

void TCSSParser::EndBlock()
{
    if (FMediaSet && FMediaSet->Medias.IsEmpty())
        FMediaSet->Medias = {cmAll};
    FMediaSet = nullptr;
    KeyFramesName = String();
}

void TCSSParser::AddAtKeyword()
{
    struct AtRule {
        std::u16string_view Keyword;
        void (TCSSParser::*Read)();
    };
    static constexpr AtRule kAtRules[] = {
        {u"@charset", &TCSSParser::AddCharset},
        {u"@font-face", &TCSSParser::AddSelector},
        {u"@page", &TCSSParser::AddSelector},
        {u"@import", &TCSSParser::AddImport},
        {u"@keyframes", &TCSSParser::AddKeyFrames},
        {u"@media", &TCSSParser::AddMedia},
    };
    CurrentSection->FontFace = SameText(Token().Name, u"@font-face");
    for (const AtRule& rule : kAtRules) {
        if (SameText(Token().Name, rule.Keyword))
            return (this->*rule.Read)();
    }
    SkipSection();
}

void TCSSParser::AddCharset()
{
    ReadUpTo(ctSemicolon, [this](const TCSSToken& token) {
        if (token.CType == ctIdent || token.CType == ctString)
            Charset = token.Name;
    });
    NextToken();
}

void TCSSParser::AddImport()
{
    NextToken();
    if (FTokenizer.Eof || IsAt(ctSemicolon))
        return;
    SkipSpace();
    if (FTokenizer.Eof)
        return;
    TCSSImport import;
    import.Token = Token();
    if (!IsAt(ctSemicolon))
        NextToken();
    ReadUpTo(ctSemicolon, [&import](const TCSSToken& token) {
        if (token.CType == ctIdent || token.CType == ctString || token.CType == ctFunction)
            import.Media.Add(token);
    });
    if (import.Token.CType != ctSemicolon)
        Imports.Add(std::move(import));
    NextToken();
}

void TCSSParser::AddKeyFrames()
{
    ReadUpTo(ctBlockStart, [this](const TCSSToken& token) {
        if (token.CType == ctIdent || token.CType == ctString)
            KeyFramesName = token.Name;
    });
    NextToken();
}

void TCSSParser::AddMedia()
{
    auto media = std::make_unique<TCSSMediaSet>();
    FMediaSet = media.get();
    MediaSets.Add(media.release());
    TMediaReader(FTokenizer, *FMediaSet).Read();
    if (IsAt(ctBlockStart)) {
        NextToken();
        return;
    }
    // No block, so nothing is meant for these media.
    MediaSets.Delete(MediaSets.Count() - 1);
    FMediaSet = nullptr;
}

}
