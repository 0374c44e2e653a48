// Items of the markup parser told as events.
// SPDX-License-Identifier: MIT
#include <hearth/xml/xml_sax.h>

#include "xml_reading_p.h"

#include <hearth/markup/html_parser.h>
#include <hearth/runtime/streams.h>
#include <hearth/xml/xml_node.h>

#include <algorithm>

namespace ht {

/// One reading of a text.
class THtSAXXMLParser::TRun {
public:
    TRun(THtSAXXMLParser& owner, const String& text, THtXMLStrictness strictness)
        : FOwner(owner)
        , FParser(text, true)
    {
        FParser.SetCaseSensitive(true);
        FParser.Tokenizer().SetExactXML(strictness == xsWellFormed);
        FParser.Limits = owner.Limits;
        owner.FRun = this;
    }
    TRun(const TRun&) = delete;
    TRun& operator=(const TRun&) = delete;
    ~TRun()
    {
        FOwner.FLastPlace = Place();
        FOwner.FRun = nullptr;
    }

    void ReadDocument()
    {
        while (NextItem()) {
            if (FParser.TagType == htDirective)
                Tell(FOwner.OnDirective, FParser.Value);
            if (FParser.TagType == htIdent)
                return ReadRoot();
            if (FOwner.FIsStopped)
                return;
        }
    }

    /// Counts the lines in front of the current item that were not counted before.
    TPlace Place()
    {
        const TStringParser& cursor = FParser.Tokenizer().Parser();
        const char16_t* const text = cursor.p - cursor.Offset();
        const char16_t* const item = text + FItemStart;
        for (const char16_t* p = text + FCounted; p < item; ++p) {
            ++FPlace.Column;
            if (*p == u'\n')
                FPlace = {FPlace.Line + 1, 1};
        }
        FCounted = FItemStart;
        return FPlace;
    }

private:
    bool NextItem()
    {
        BeginItem();
        return FParser.NextItem();
    }

    void BeginItem() { FItemStart = FParser.Tokenizer().Parser().Offset(); }

    void ReadRoot()
    {
        Open();
        while (!FOpen.IsEmpty() && !FOwner.FIsStopped) {
            BeginItem();
            if (FParser.SkipCloseTag(FOpen.Last().Name))
                Close();
            else if (!FParser.NextItem())
                break;
            else if (FParser.IsCloseTag)
                CheckAndClose();
            else
                ReadPart();
        }
        // The end of the text ends all elements.
        while (!FOpen.IsEmpty() && !FOwner.FIsStopped)
            Close();
    }

    void Open()
    {
        if (FParser.Limits.XmlDepth != 0 && FOpen.Length() >= FParser.Limits.XmlDepth)
            RaiseTooDeep();
        FOwner.FDepth = FOpen.Length();
        if (FOwner.OnStartElement)
            FOwner.OnStartElement(FParser.Tag.Name, FParser.Attributes() ? *FParser.Attributes() : FNone);
        const bool isComplete = FParser.TagClosed;
        FOpen.Add(FParser.Tag);
        FOwner.FDepth = FOpen.Length();
        if (isComplete && !FOwner.FIsStopped)
            Close();
    }

    void CheckAndClose()
    {
        if (!(FOpen.Last() == FParser.Tag))
            RaiseTagOrder(FOpen.Last().Name, FParser.Tag.Name);
        Close();
    }

    void Close()
    {
        const String tag = FOpen.Last().Name;
        FOpen.Delete(FOpen.Length() - 1);
        FOwner.FDepth = FOpen.Length();
        Tell(FOwner.OnEndElement, tag);
    }

    void ReadPart()
    {
        if (!FParser.Tag.IsEmpty())
            return Open();
        switch (FParser.TagType) {
        case htComment:
            return Tell(FOwner.OnComment, FParser.Value);
        case htCData:
            return Tell(FOwner.OnCData, FParser.Value);
        case htDirective:
            return ReadDirective();
        case htCustom: // a declaration in the wrong place
            return;
        default:
            return Tell(FOwner.OnText, FParser.Value);
        }
    }

    void ReadDirective()
    {
        Tell(FOwner.OnDirective, FParser.Value);
        if (!DeclaresUtf8(FParser.Value))
            return;
        // The rest may become another text, in which lines are counted on.
        BeginItem();
        FPlace = Place();
        FParser.ChangeEncoding(heUTF8, 0);
        BeginItem();
        FCounted = FItemStart;
    }

    static void Tell(const TTextEvent& event, const String& text)
    {
        if (event)
            event(text);
    }

    THtSAXXMLParser& FOwner;
    THtmlParser FParser;
    TArray<THtTagName> FOpen;
    THtAttributes FNone{true};
    std::int32_t FItemStart = 0; // offset of the current item
    std::int32_t FCounted = 0; // offset up to which FPlace has counted
    TPlace FPlace{1, 1};
};

bool THtSAXXMLParser::Parse(const String& XML, THtXMLStrictness Strictness)
{
    if (FRun)
        throw EHtXML(u"The document is being read"_s);
    if (Strictness == xsWellFormed)
        CheckWellFormed(XML, Limits);
    FIsStopped = false;
    FDepth = 0;
    TRun(*this, XML, Strictness).ReadDocument();
    return !FIsStopped;
}

bool THtSAXXMLParser::ParseStream(TStream& Stream, THtXMLStrictness Strictness)
{
    return Parse(THtXMLNode::StreamtoText(Stream), Strictness);
}

bool THtSAXXMLParser::ParseFile(const String& FileName, THtXMLStrictness Strictness)
{
    TFileStream file(FileName, fmOpenRead | fmShareDenyWrite);
    return ParseStream(file, Strictness);
}

std::int32_t THtSAXXMLParser::Line() const
{
    return FRun ? FRun->Place().Line : FLastPlace.Line;
}

std::int32_t THtSAXXMLParser::Column() const
{
    return FRun ? FRun->Place().Column : FLastPlace.Column;
}

}
