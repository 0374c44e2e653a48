// Whether tags nest, attributes differ and references lead somewhere.
// SPDX-License-Identifier: MIT
#include <hearth/xml/xml_well_formed.h>

#include "xml_checker_p.h"

#include <algorithm>

namespace ht {

namespace {

constexpr std::u16string_view kOwnEntities[] = {u"lt", u"gt", u"amp", u"apos", u"quot"};

bool IsOneOf(std::u16string_view text, std::u16string_view allowed)
{
    return text.find_first_not_of(allowed) == std::u16string_view::npos;
}

constexpr std::u16string_view kDigits = u"0123456789";
constexpr std::u16string_view kLetters = u"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";

bool IsEncodingName(std::u16string_view text)
{
    return !text.empty() && IsOneOf(text.substr(0, 1), kLetters)
        && IsOneOf(text, u"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789._-");
}

/// ` name = "value"` of the declaration, if it stands; the space in front is required.
bool ReadPseudoAttribute(TXMLScanner& scanner, std::u16string_view name, std::u16string_view& value)
{
    TXMLScanner ahead = scanner;
    const bool hasSpace = ahead.SkipSpace();
    if (!ahead.Accept(name))
        return false;
    if (!hasSpace)
        scanner.Fail(u"white space expected");
    ahead.SkipSpace();
    ahead.Expect(u"=");
    ahead.SkipSpace();
    value = ahead.Quoted(name);
    scanner = ahead;
    return true;
}

}

void CheckWellFormed(std::u16string_view XML, const THtLimits& limits)
{
    TXMLChecker(XML, limits).CheckDocument();
}

TXMLChecker::TVisit::TVisit(TXMLChecker& checker, TProgress& progress, const TXMLScanner& referrer)
    : FChecker(checker)
    , FProgress(progress)
    , FIsNeeded(progress == prUnseen)
{
    if (progress == prOpen)
        referrer.Fail(u"entity refers to itself");
    if (!FIsNeeded)
        return;
    if (checker.FDepth >= checker.FMaxDepth)
        referrer.Fail(u"too many nested entities");
    ++checker.FDepth;
    progress = prOpen;
}

TXMLChecker::TVisit::~TVisit()
{
    if (!FIsNeeded)
        return;
    --FChecker.FDepth;
    FProgress = prDone;
}

void TXMLChecker::CheckDocument()
{
    TXMLScanner scanner(FDocument);
    scanner.Accept(u"\uFEFF");
    TXMLScanner ahead = scanner;
    if (ahead.Accept(u"<?xml") && ahead.SkipSpace())
        CheckDeclaration(scanner);
    CheckMisc(scanner);
    if (scanner.Accept(u"<!DOCTYPE")) {
        CheckDoctype(scanner);
        CheckMisc(scanner);
    }
    CheckContent(scanner, ckRoot);
    CheckMisc(scanner);
    if (!scanner.AtEnd())
        scanner.Fail(u"nothing expected behind the root element");
}

void TXMLChecker::CheckDeclaration(TXMLScanner& scanner)
{
    scanner.Expect(u"<?xml");
    std::u16string_view value;
    if (!ReadPseudoAttribute(scanner, u"version", value))
        scanner.Fail(u"version expected");
    if (value.size() < 3 || !value.starts_with(u"1.") || !IsOneOf(value.substr(2), kDigits))
        scanner.Fail(u"version 1.0 expected");
    if (ReadPseudoAttribute(scanner, u"encoding", value) && !IsEncodingName(value))
        scanner.Fail(u"name of an encoding expected");
    if (ReadPseudoAttribute(scanner, u"standalone", value)) {
        FIsStandalone = value == u"yes";
        if (!FIsStandalone && value != u"no")
            scanner.Fail(u"yes or no expected");
    }
    scanner.SkipSpace();
    scanner.Expect(u"?>");
}

void TXMLChecker::CheckMisc(TXMLScanner& scanner)
{
    while (true) {
        scanner.SkipSpace();
        if (scanner.Accept(u"<!--"))
            CheckComment(scanner);
        else if (scanner.Accept(u"<?"))
            CheckInstruction(scanner);
        else
            return;
    }
}

void TXMLChecker::CheckComment(TXMLScanner& scanner)
{
    scanner.Until(u"--", u"comment");
    if (!scanner.Accept(u">"))
        scanner.Fail(u"-- in a comment");
}

void TXMLChecker::CheckInstruction(TXMLScanner& scanner)
{
    if (SameText(scanner.Name(), u"xml"))
        scanner.Fail(u"the declaration stands at the start alone");
    if (scanner.Accept(u"?>"))
        return;
    scanner.RequireSpace();
    scanner.Until(u"?>", u"processing instruction");
}

void TXMLChecker::CheckContent(TXMLScanner& scanner, TContentKind kind)
{
    TArray<std::u16string_view> open;
    if (kind == ckRoot) {
        std::u16string_view root;
        if (scanner.Peek() != u'<')
            scanner.Fail(u"root element expected");
        if (!CheckStartTag(scanner, root))
            return;
        open.Add(root);
    }
    while (kind == ckEntity || !open.IsEmpty()) {
        if (scanner.AtEnd() && open.IsEmpty())
            return;
        if (scanner.AtEnd())
            scanner.Fail(u"element %s is not closed", open.Last());
        if (scanner.Peek() == u'<')
            CheckMarkup(scanner, open);
        else if (scanner.Accept(u"&"))
            CheckContentReference(scanner);
        else
            scanner.CharData();
    }
}

void TXMLChecker::CheckMarkup(TXMLScanner& scanner, TArray<std::u16string_view>& open)
{
    if (scanner.Accept(u"<!--"))
        return CheckComment(scanner);
    if (scanner.Accept(u"<![CDATA[")) {
        scanner.Until(u"]]>", u"CDATA section");
        return;
    }
    if (scanner.Accept(u"<?"))
        return CheckInstruction(scanner);
    if (scanner.Accept(u"</")) {
        if (open.IsEmpty() || scanner.Name() != open.Last())
            scanner.Fail(u"end tag without its start tag");
        scanner.SkipSpace();
        scanner.Expect(u">");
        open.Delete(open.Length() - 1);
        return;
    }
    std::u16string_view name;
    if (CheckStartTag(scanner, name))
        open.Add(name);
}

/// False for an element that its start tag closes.
bool TXMLChecker::CheckStartTag(TXMLScanner& scanner, std::u16string_view& name)
{
    scanner.Expect(u"<");
    name = scanner.Name();
    FAttributes.clear();
    while (true) {
        const bool hasSpace = scanner.SkipSpace();
        if (scanner.Peek() == u'>' || scanner.Peek() == u'/')
            break;
        if (!hasSpace)
            scanner.Fail(u"white space expected");
        FAttributes.push_back(scanner.Name());
        scanner.SkipSpace();
        scanner.Expect(u"=");
        scanner.SkipSpace();
        CheckAttributeValue(scanner);
    }
    CheckUnique(scanner);
    if (scanner.Accept(u"/>"))
        return false;
    scanner.Expect(u">");
    return true;
}

void TXMLChecker::CheckUnique(TXMLScanner& scanner)
{
    std::sort(FAttributes.begin(), FAttributes.end());
    const auto twin = std::adjacent_find(FAttributes.begin(), FAttributes.end());
    if (twin != FAttributes.end())
        scanner.Fail(u"attribute %s stands twice", *twin);
}

void TXMLChecker::CheckAttributeValue(TXMLScanner& scanner)
{
    const TXMLScanner start = scanner; // messages point to the value
    TXMLScanner value(scanner.Quoted(u"the value of an attribute"), start);
    CheckValueText(value);
}

void TXMLChecker::CheckValueText(TXMLScanner& scanner)
{
    while (!scanner.AtEnd()) {
        if (scanner.Peek() == u'<')
            scanner.Fail(u"< in the value of an attribute");
        if (scanner.Accept(u"&"))
            CheckValueReference(scanner);
        else
            scanner.Char();
    }
}

TXMLChecker::TEntity* TXMLChecker::ReadReference(TXMLScanner& scanner)
{
    if (scanner.Accept(u"#")) {
        scanner.CharReference();
        return nullptr;
    }
    const std::u16string_view name = scanner.Name();
    scanner.Expect(u";");
    const auto found = FEntities.find(name);
    if (found != FEntities.end())
        return &found->second;
    const bool isOwn =
        std::find(std::begin(kOwnEntities), std::end(kOwnEntities), name) != std::end(kOwnEntities);
    if (!isOwn && (FIsStandalone || !FHasMoreElsewhere))
        scanner.Fail(u"entity %s is not declared", name);
    return nullptr;
}

void TXMLChecker::CheckContentReference(TXMLScanner& scanner)
{
    TEntity* entity = ReadReference(scanner);
    if (!entity)
        return;
    if (entity->IsUnparsed)
        scanner.Fail(u"reference to an entity that is not text");
    if (entity->IsExternal)
        return;
    const TVisit visit(*this, entity->Content, scanner);
    if (!visit.IsNeeded())
        return;
    TXMLScanner text(entity->Text, scanner);
    CheckContent(text, ckEntity);
}

void TXMLChecker::CheckValueReference(TXMLScanner& scanner)
{
    TEntity* entity = ReadReference(scanner);
    if (!entity)
        return;
    if (entity->IsExternal)
        scanner.Fail(u"external entity in the value of an attribute");
    const TVisit visit(*this, entity->Value, scanner);
    if (!visit.IsNeeded())
        return;
    TXMLScanner text(entity->Text, scanner);
    CheckValueText(text);
}

}
