// The declarations of a document type.
// SPDX-License-Identifier: MIT
#include "xml_checker_p.h"

#include <algorithm>
#include <iterator>

namespace ht {

namespace {

constexpr std::u16string_view kAttributeTypes[] = {
    u"CDATA", u"IDREFS", u"IDREF", u"ID", u"ENTITIES", u"ENTITY", u"NMTOKENS", u"NMTOKEN"};

void AppendChar(std::u16string& text, char32_t c)
{
    if (c < 0x10000) {
        text += static_cast<char16_t>(c);
        return;
    }
    text += static_cast<char16_t>(0xD7C0 + (c >> 10U));
    text += static_cast<char16_t>(0xDC00 + (c & 0x3FFU));
}

/// Behind a name or a group: how often it stands.
void AcceptOccurrence(TXMLScanner& scanner)
{
    if (!scanner.Accept(u"?") && !scanner.Accept(u"*"))
        scanner.Accept(u"+");
}

}

/// Behind "<!DOCTYPE".
void TXMLChecker::CheckDoctype(TXMLScanner& scanner)
{
    scanner.RequireSpace();
    scanner.Name();
    if (scanner.SkipSpace() && CheckExternalId(scanner)) {
        FHasMoreElsewhere = true;
        scanner.SkipSpace();
    }
    if (scanner.Accept(u"[")) {
        CheckSubset(scanner);
        scanner.Expect(u"]");
        scanner.SkipSpace();
    }
    scanner.Expect(u">");
}

/// Up to "]", or to the end of the text of a parameter entity.
void TXMLChecker::CheckSubset(TXMLScanner& scanner)
{
    while (true) {
        scanner.SkipSpace();
        if (scanner.AtEnd() || scanner.Peek() == u']')
            return;
        if (scanner.Accept(u"%"))
            CheckParameterReference(scanner);
        else if (scanner.Accept(u"<!--"))
            CheckComment(scanner);
        else if (scanner.Accept(u"<?"))
            CheckInstruction(scanner);
        else
            CheckMarkupDeclaration(scanner);
    }
}

void TXMLChecker::CheckMarkupDeclaration(TXMLScanner& scanner)
{
    if (scanner.Accept(u"<!ELEMENT"))
        CheckElementType(scanner);
    else if (scanner.Accept(u"<!ATTLIST"))
        CheckAttributeList(scanner);
    else if (scanner.Accept(u"<!ENTITY"))
        CheckEntity(scanner);
    else if (scanner.Accept(u"<!NOTATION"))
        CheckNotation(scanner);
    else
        scanner.Fail(u"declaration expected");
    scanner.SkipSpace();
    scanner.Expect(u">");
}

void TXMLChecker::CheckParameterReference(TXMLScanner& scanner)
{
    const std::u16string_view name = scanner.Name();
    scanner.Expect(u";");
    const auto found = FParameters.find(name);
    const bool isKnown = found != FParameters.end();
    if (!isKnown && (FIsStandalone || !FHasMoreElsewhere))
        scanner.Fail(u"parameter entity %s is not declared", name);
    FHasMoreElsewhere = true;
    if (!isKnown || found->second.IsExternal)
        return;
    const TVisit visit(*this, found->second.Content, scanner);
    if (!visit.IsNeeded())
        return;
    TXMLScanner text(found->second.Text, scanner);
    CheckSubset(text);
    if (!text.AtEnd())
        text.Fail(u"] in a parameter entity");
}

/// False where neither SYSTEM nor PUBLIC stands.
bool TXMLChecker::CheckExternalId(TXMLScanner& scanner)
{
    if (scanner.Accept(u"PUBLIC")) {
        scanner.RequireSpace();
        CheckPublicLiteral(scanner);
    } else if (!scanner.Accept(u"SYSTEM")) {
        return false;
    }
    scanner.RequireSpace();
    scanner.Quoted(u"a system identifier");
    return true;
}

void TXMLChecker::CheckPublicLiteral(TXMLScanner& scanner)
{
    constexpr std::u16string_view kAllowed = u" \r\nabcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ"
                                             u"0123456789-'()+,./:=?;!*#@$_%";
    const std::u16string_view literal = scanner.Quoted(u"a public identifier");
    if (literal.find_first_not_of(kAllowed) != std::u16string_view::npos)
        scanner.Fail(u"character that a public identifier does not allow");
}

void TXMLChecker::CheckElementType(TXMLScanner& scanner)
{
    scanner.RequireSpace();
    scanner.Name();
    scanner.RequireSpace();
    if (scanner.Accept(u"EMPTY") || scanner.Accept(u"ANY"))
        return;
    TXMLScanner ahead = scanner;
    ahead.Expect(u"(");
    ahead.SkipSpace();
    if (!ahead.Accept(u"#PCDATA"))
        return CheckChildren(scanner);
    scanner = ahead;
    CheckMixed(scanner);
}

/// Behind "(#PCDATA".
void TXMLChecker::CheckMixed(TXMLScanner& scanner)
{
    bool hasNames = false;
    scanner.SkipSpace();
    while (scanner.Accept(u"|")) {
        scanner.SkipSpace();
        scanner.Name();
        scanner.SkipSpace();
        hasNames = true;
    }
    scanner.Expect(u")");
    if (!scanner.Accept(u"*") && hasNames)
        scanner.Fail(u"* expected");
}

/// Groups in groups, each with one kind of separator.
void TXMLChecker::CheckChildren(TXMLScanner& scanner)
{
    constexpr char16_t kNone = u'\0';
    TArray<char16_t> separators; // of the open groups
    while (true) {
        scanner.SkipSpace();
        if (scanner.Accept(u"(")) {
            separators.Add(kNone);
            continue;
        }
        scanner.Name();
        AcceptOccurrence(scanner);
        scanner.SkipSpace();
        while (scanner.Accept(u")")) {
            AcceptOccurrence(scanner);
            separators.Delete(separators.Length() - 1);
            if (separators.IsEmpty())
                return;
            scanner.SkipSpace();
        }
        const char16_t separator = scanner.Peek();
        if (!scanner.Accept(u",") && !scanner.Accept(u"|"))
            scanner.Fail(u"separator expected");
        if (separators.Last() != kNone && separators.Last() != separator)
            scanner.Fail(u"both | and , in one group");
        separators.Last() = separator;
    }
}

void TXMLChecker::CheckAttributeList(TXMLScanner& scanner)
{
    scanner.RequireSpace();
    scanner.Name();
    while (scanner.SkipSpace() && scanner.Peek() != u'>') {
        scanner.Name();
        scanner.RequireSpace();
        CheckAttributeType(scanner);
        scanner.RequireSpace();
        CheckDefault(scanner);
    }
}

void TXMLChecker::CheckAttributeType(TXMLScanner& scanner)
{
    if (scanner.Peek() == u'(')
        return CheckEnumerated(scanner, &TXMLScanner::Nmtoken);
    if (scanner.Accept(u"NOTATION")) {
        scanner.RequireSpace();
        return CheckEnumerated(scanner, &TXMLScanner::Name);
    }
    const bool isKnown = std::any_of(std::begin(kAttributeTypes), std::end(kAttributeTypes),
        [&scanner](std::u16string_view type) { return scanner.Accept(type); });
    if (!isKnown)
        scanner.Fail(u"type of an attribute expected");
}

/// "(a | b)".
void TXMLChecker::CheckEnumerated(TXMLScanner& scanner, std::u16string_view (TXMLScanner::*item)())
{
    scanner.Expect(u"(");
    do {
        scanner.SkipSpace();
        (scanner.*item)();
        scanner.SkipSpace();
    } while (scanner.Accept(u"|"));
    scanner.Expect(u")");
}

void TXMLChecker::CheckDefault(TXMLScanner& scanner)
{
    if (scanner.Accept(u"#REQUIRED") || scanner.Accept(u"#IMPLIED"))
        return;
    if (scanner.Accept(u"#FIXED"))
        scanner.RequireSpace();
    CheckAttributeValue(scanner);
}

void TXMLChecker::CheckEntity(TXMLScanner& scanner)
{
    scanner.RequireSpace();
    const bool isParameter = scanner.Accept(u"%");
    if (isParameter)
        scanner.RequireSpace();
    const std::u16string_view name = scanner.Name();
    scanner.RequireSpace();
    TEntity entity;
    if (CheckExternalId(scanner)) {
        entity.IsExternal = true;
        const bool hasSpace = scanner.SkipSpace();
        if (!isParameter && hasSpace && scanner.Accept(u"NDATA")) {
            scanner.RequireSpace();
            scanner.Name();
            entity.IsUnparsed = true;
        }
    } else {
        entity.Text = ReadEntityValue(scanner);
    }
    (isParameter ? FParameters : FEntities).try_emplace(name, std::move(entity)); // the first one counts
}

std::u16string TXMLChecker::ReadEntityValue(TXMLScanner& scanner)
{
    std::u16string text;
    TXMLScanner value(scanner.Quoted(u"the value of an entity"), scanner);
    while (!value.AtEnd()) {
        if (value.Accept(u"&#")) {
            AppendChar(text, value.CharReference());
        } else if (value.Accept(u"&")) {
            const std::u16string_view name = value.Name();
            value.Expect(u";");
            text.append(u"&").append(name).append(u";");
        } else if (value.Peek() == u'%') {
            value.Fail(u"parameter entity within a declaration");
        } else {
            AppendChar(text, value.Char());
        }
    }
    return text;
}

void TXMLChecker::CheckNotation(TXMLScanner& scanner)
{
    scanner.RequireSpace();
    scanner.Name();
    scanner.RequireSpace();
    if (!scanner.Accept(u"PUBLIC")) {
        if (!CheckExternalId(scanner))
            scanner.Fail(u"identifier expected");
        return;
    }
    scanner.RequireSpace();
    CheckPublicLiteral(scanner);
    const bool hasSpace = scanner.SkipSpace();
    if (scanner.Peek() == u'>')
        return;
    if (!hasSpace)
        scanner.Fail(u"white space expected");
    scanner.Quoted(u"a system identifier");
}

}
