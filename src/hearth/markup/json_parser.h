// Reads the members of JSON objects, one at a time.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/foundation/limits.h>
#include <hearth/foundation/string_list.h>
#include <hearth/markup/json_tokenizer.h>
#include <hearth/markup/tag_names.h>

#include <optional>

namespace ht {

/// A member name that a parser has met, with what its readers remember of it. Lives as long as the parser.
class HT_API THtMemberName : public THtNameObjectPair {
public:
    explicit THtMemberName(const String& name);

    /// The name with all that a tag needs, looked up on first use.
    const THtTagName& Tag();

    /// Looks in a text as it does here.
    bool IsPlain;
    /// The first four units as one number: names whose numbers differ are in the order of the numbers.
    std::uint64_t Order;
    /// The name that stood behind this one last time, and the first one inside its object. Guesses for the
    /// next time; not owned.
    THtMemberName* Behind = nullptr;
    THtMemberName* Inside = nullptr;

private:
    std::optional<THtTagName> FTag;
};

/// A tokenizer and the names of members that it met: equal names share one string. The caller walks the
/// grammar. Lives for one run over a text and belongs to one thread.
class HT_API THtJSONParser : public TObject {
public:
    static constexpr TClassInfo kClassInfo{u"THtJSONParser", &TObject::kClassInfo};

    /// An empty text has no tokenizer.
    explicit THtJSONParser(const String& s);
    ~THtJSONParser() override;
    const TClassInfo& ClassInfo() const override { return kClassInfo; }

    /// Null for an empty text. Lifetime: that of the parser.
    THtJSONTokenizer* Tokenizer() noexcept { return FTokenizer ? &*FTokenizer : nullptr; }

    /// With the tokenizer on a name, makes it the current one and reads up to the first token of the value:
    /// its type, or jtIdent for a string, a word and a keyword. Throws EHtJSONParserException "Name expected"
    /// where no name with a ":" behind it stands, and "Value expected" where no value follows.
    THtJSONTokenType NextNameValue();

    /// The name of the current member; empty before the first one. Lifetime: that of the parser.
    const String& Name() const noexcept;
    /// The same with what is known of it; null before the first one.
    THtMemberName* Member() const noexcept { return FName; }

    // The steps of NextNameValue, for readers that know the common forms.

    /// Reads a name in quotes and the ":" behind it without making tokens of them. False, with only blanks
    /// read, where something else stands, and for an empty text.
    bool NextQuotedName();
    /// Makes a name the current one whose text and ":" the caller has passed over.
    void TakeName(THtMemberName& name) noexcept { FName = &name; }
    /// NextNameValue from behind the ":" on.
    THtJSONTokenType NextValue();

    /// The bounds of this run, a copy of those of the process.
    THtLimits Limits = HtLimits();

private:
    THtMemberName& Intern(std::u16string_view name);
    THtMemberName& TokenName();

    THtStringList FNames;
    THtMemberName* FName = nullptr; // the current one
    std::optional<THtJSONTokenizer> FTokenizer;
};

}
