// Whether the rules of a medium apply, and their query as text.
// SPDX-License-Identifier: MIT
#include <hearth/styling/css/media_set.h>

#include <hearth/styling/css/css_tokenizer.h>
#include <hearth/styling/css/token_text_p.h>

namespace ht {

void TCSSMediaSet::AddNextToken(TCSSTokenizer& Tokenizer)
{
    Tokenizer.NextToken();
    const TCSSToken& token = Tokenizer.Token;
    if (!Tokenizer.Eof && token.CType != ctBlockStart && token.CType != ctSemicolon)
        Tokens.Add(token);
}

bool TCSSMediaSet::CheckMedia(TCSSMedia M, std::int64_t Width, std::int64_t DeviceWidth) const
{
    if (Medias != TCSSMedias{cmAll} && !Medias.Contains(M))
        return false;
    if (!HasSizeQuery)
        return true;
    const auto fits = [](std::int64_t width, std::int64_t least, std::int64_t most) {
        return least <= width && (most == 0 || most >= width);
    };
    return fits(Width, MinWidth, MaxWidth)
        && fits(DeviceWidth == 0 ? Width : DeviceWidth, MinDeviceWidth, MaxDeviceWidth);
}

String TCSSMediaSet::AsString() const
{
    constexpr std::int32_t kTextStep = 128;
    TFastString query(kTextStep);
    for (const TCSSToken& token : Tokens)
        detail::WriteToken(query, token);
    return u"@media " + query.GetAsString().Trim();
}

TCSSMediaSet& TCSSMediaSet::All()
{
    static TCSSMediaSet all;
    return all;
}

}
