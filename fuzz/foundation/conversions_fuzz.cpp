// Any text through the readers that never fail, and through encoders and back.
// SPDX-License-Identifier: MIT
#include "../require.h"

#include <hearth/foundation/base64.h>
#include <hearth/foundation/number_text.h>
#include <hearth/foundation/text_words.h>
#include <hearth/foundation/url_text.h>
#include <hearth/runtime/exceptions.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string_view>

namespace {

using ht::String;

bool IsSurrogate(char16_t c)
{
    return ht::IsHighSurrogate(c) || ht::IsLowSurrogate(c);
}

void CheckAddresses(const String& text)
{
    ht::HTTPDecode(text);
    const String encoded = ht::HtEncodeUrl(text);
    if (std::none_of(text.begin(), text.end(), IsSurrogate))
        fuzz::Require(ht::HTTPDecode(encoded) == text, "an encoded text comes back");
    fuzz::Require(
        std::all_of(encoded.begin(), encoded.end(), [](char16_t c) { return c > u' ' && c < 0x7F; }),
        "an encoded text is plain");
    String name;
    String address;
    ht::SplitEmailAdress(text, name, address);
    fuzz::Require(name.Length() + address.Length() <= text.Length(), "parts are no longer than the whole");
    const std::size_t half = text.size() / 2;
    ht::CombineUrl(text.View().substr(0, half), text.View().substr(half));
}

void CheckBase64(const String& text)
{
    fuzz::Require(ht::Base64DecodeString(ht::Base64EncodeString(text)) == text, "text comes back");
    const ht::TBytes bytes = ht::Base64DecodetoBytes(text);
    fuzz::Require(ht::Base64DecodetoBytes(ht::Base64EncodeBytes(bytes)) == bytes, "broken lines come back");
    fuzz::Require(ht::Base64DecodetoBytes(ht::Base64EncodeNoLF(bytes)) == bytes, "one line comes back");
}

void CheckNumbers(const String& text)
{
    fuzz::Require(!std::isnan(ht::iStrtoFloat(text)), "the tolerant reader gives a number");
    ht::iStrtoInt(text);
    ht::HexToDec(text);
    for (const double value : {0.0, -0.004, 12345.678, 5e-324})
        ht::HtFormatFloat(text, value);
    try {
        ht::StrtoFloatCheck(text, u',', u'.');
    } catch (const ht::Exception& error) {
        fuzz::Require(error.Message == ht::Concat({u"Invalid number ", text}), "the refusal names the text");
    }
}

void CheckWords(const String& text)
{
    std::u16string_view rest = text;
    std::size_t units = 0;
    while (!rest.empty())
        units += ht::Q_StrTok(rest, u" ,;", false).size();
    fuzz::Require(units == text.size(), "words and what is between them are the text");
    const String doubled = ht::ReplaceStr(text, u"a", u"aa");
    fuzz::Require(ht::ReplaceStr(doubled, u"aa", u"a") == text, "replacing leads back");
}

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const String text = String::FromUtf8({reinterpret_cast<const char*>(data), size});
    CheckAddresses(text);
    CheckBase64(text);
    CheckNumbers(text);
    CheckWords(text);
    return 0;
}
