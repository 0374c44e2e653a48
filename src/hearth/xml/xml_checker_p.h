// The grammar of XML documents, walked without making anything of them.
// SPDX-License-Identifier: MIT
#pragma once

#include "xml_scanner_p.h"

#include <hearth/foundation/limits.h>
#include <hearth/runtime/array.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace ht {

/// Checks one document. xml_well_formed.cpp walks elements and references, xml_doctype.cpp the document type.
class TXMLChecker {
public:
    /// Entities nest no deeper than this, whatever the limits allow: each level costs stack.
    static constexpr std::int32_t kMaxEntityDepth = 1024;

    TXMLChecker(std::u16string_view document, const THtLimits& limits)
        : FDocument(document)
        , FMaxDepth(limits.XmlDepth > 0 ? std::min(limits.XmlDepth, kMaxEntityDepth) : kMaxEntityDepth)
    {
    }

    void CheckDocument();

private:
    enum TProgress : std::uint8_t { prUnseen, prOpen, prDone };

    /// An entity and how far its text was looked into, as content and as part of an attribute value.
    struct TEntity {
        std::u16string Text; // with character references replaced
        bool IsExternal = false;
        bool IsUnparsed = false;
        TProgress Content = prUnseen;
        TProgress Value = prUnseen;
    };
    using TEntities = std::unordered_map<std::u16string_view, TEntity>;

    /// Looks into an entity within its lifetime, unless that was done before.
    class TVisit {
    public:
        TVisit(TXMLChecker& checker, TProgress& progress, const TXMLScanner& referrer);
        TVisit(const TVisit&) = delete;
        TVisit& operator=(const TVisit&) = delete;
        ~TVisit();
        bool IsNeeded() const noexcept { return FIsNeeded; }

    private:
        TXMLChecker& FChecker;
        TProgress& FProgress;
        bool FIsNeeded;
    };

    // Elements and what stands in and around them.

    enum TContentKind : std::uint8_t { ckRoot, ckEntity };

    void CheckMisc(TXMLScanner& scanner);
    void CheckDeclaration(TXMLScanner& scanner);
    void CheckComment(TXMLScanner& scanner);
    void CheckInstruction(TXMLScanner& scanner);
    void CheckContent(TXMLScanner& scanner, TContentKind kind);
    void CheckMarkup(TXMLScanner& scanner, TArray<std::u16string_view>& open);
    bool CheckStartTag(TXMLScanner& scanner, std::u16string_view& name);
    void CheckUnique(TXMLScanner& scanner);
    void CheckAttributeValue(TXMLScanner& scanner);
    void CheckValueText(TXMLScanner& scanner);
    void CheckContentReference(TXMLScanner& scanner);
    void CheckValueReference(TXMLScanner& scanner);
    /// Null where a character, one of XML's own entities or what may be declared elsewhere stands.
    TEntity* ReadReference(TXMLScanner& scanner);

    // The document type.

    void CheckDoctype(TXMLScanner& scanner);
    void CheckSubset(TXMLScanner& scanner);
    void CheckMarkupDeclaration(TXMLScanner& scanner);
    void CheckParameterReference(TXMLScanner& scanner);
    bool CheckExternalId(TXMLScanner& scanner);
    void CheckPublicLiteral(TXMLScanner& scanner);
    void CheckElementType(TXMLScanner& scanner);
    void CheckMixed(TXMLScanner& scanner);
    void CheckChildren(TXMLScanner& scanner);
    void CheckAttributeList(TXMLScanner& scanner);
    void CheckAttributeType(TXMLScanner& scanner);
    void CheckDefault(TXMLScanner& scanner);
    void CheckEntity(TXMLScanner& scanner);
    std::u16string ReadEntityValue(TXMLScanner& scanner);
    void CheckNotation(TXMLScanner& scanner);
    void CheckEnumerated(TXMLScanner& scanner, std::u16string_view (TXMLScanner::*item)());

    std::u16string_view FDocument;
    std::int32_t FMaxDepth; // of entities in entities
    std::int32_t FDepth = 0;
    TEntities FEntities;
    TEntities FParameters;
    std::vector<std::u16string_view> FAttributes; // of the tag being read
    bool FIsStandalone = false;
    bool FHasMoreElsewhere = false; // declarations that are not in this text
};

}
