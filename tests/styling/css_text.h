// How tests write and read style sheets.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/array.h>
#include <hearth/styling/css/css_tokenizer.h>
#include <hearth/styling/css/token_sequence.h>

#include <string>
#include <string_view>

namespace ht::test {

/// All tokens of a text.
inline TArray<TCSSToken> Tokenize(std::string_view css)
{
    TCSSTokenizer tokenizer(String::FromUtf8(css));
    TArray<TCSSToken> tokens;
    for (bool goesOn = true; goesOn;) {
        goesOn = tokenizer.NextToken();
        if (!tokenizer.Eof)
            tokens.Add(tokenizer.Token);
    }
    return tokens;
}

/// All tokens but blanks, as a value keeps them.
inline TCSSTokens ValueTokens(std::string_view css)
{
    TArray<TCSSToken> tokens;
    for (const TCSSToken& token : Tokenize(css)) {
        if (token.CType != ctSpace && token.CType != ctComment)
            tokens.Add(token);
    }
    return TCSSTokens(tokens);
}

/// "Ident a|Space  |Number 12": the types without their prefix, and the names.
inline std::string TokensAsText(std::string_view css)
{
    std::string text;
    for (const TCSSToken& token : Tokenize(css)) {
        if (!text.empty())
            text += '|';
        text += String(EnumName(token.CType).substr(2)).ToUtf8() + ' ' + token.Name.ToUtf8();
    }
    return text;
}

}
