// Reads the members of JSON objects, one at a time.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/foundation/limits.h>
#include <hearth/foundation/string_list.h>
#include <hearth/markup/json_tokenizer.h>
#include <hearth/markup/tag_names.h>

#include <optional>

namespace ht {

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

    /// With the tokenizer on a name, sets Name and reads up to the first token of the value: its type, or
    /// jtIdent for a string, a word and a keyword. Throws EHtJSONParserException "Name expected" where no
    /// name with a ":" behind it stands, and "Value expected" where no value follows.
    THtJSONTokenType NextNameValue();
    /// NextNSToken of the tokenizer, for a place where a name is expected: one that was met before costs no
    /// string. False for an empty text.
    bool NextName();

    /// The name of the current member.
    String Name;
    /// The name that NextNameValue has found last, with all that a tag needs, which is looked up once a name.
    /// Lifetime: that of the parser.
    const THtTagName& TagName();

    /// The bounds of this run, a copy of those of the process.
    THtLimits Limits = HtLimits();

private:
    THtNameObjectPair& Intern(std::u16string_view name);
    THtNameObjectPair& TokenName();

    THtStringList FNames; // the objects are the names as tags, made on first use
    THtNameObjectPair* FName = nullptr; // entry of Name
    THtNameObjectPair* FFoundName = nullptr; // entry that NextName has found last
    std::optional<THtJSONTokenizer> FTokenizer;
};

}
