// The media that a group of rules is for.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/array.h>
#include <hearth/runtime/object.h>
#include <hearth/runtime/sets.h>
#include <hearth/styling/css/css_token.h>

namespace ht {

class TCSSTokenizer;

enum TCSSMedia : std::uint8_t {
    cmAll,
    cmAural,
    cmBraille,
    cmHandheld,
    cmPrint,
    cmProjection,
    cmScreen,
    cmTV,
    cmUnknown,
};

template <> struct TEnumTraits<TCSSMedia> {
    static constexpr int kCount = 9;
    static constexpr const char16_t* kName = u"TCSSMedia";
};

using TCSSMedias = TSet<TCSSMedia>;

/// A media query: media, limits in pixels (0 for none), and whether the last test let it apply.
class HT_API TCSSMediaSet : public TObject {
public:
    static constexpr TClassInfo kClassInfo{u"TCSSMediaSet", &TObject::kClassInfo};
    const TClassInfo& ClassInfo() const override { return kClassInfo; }

    /// Reads the next token of the query and keeps it; "{" and ";" end the query and are not kept.
    void AddNextToken(TCSSTokenizer& Tokenizer);
    /// True when a medium of these widths is meant; a DeviceWidth of 0 stands for Width.
    bool CheckMedia(TCSSMedia M, std::int64_t Width, std::int64_t DeviceWidth) const;
    /// "@media " and the query.
    String AsString() const;

    /// The set of all rules outside of "@media". It stays out of the lists of sheets, so nobody disables it.
    static TCSSMediaSet& All();

    TCSSMedias Medias;
    std::int64_t MinWidth = 0;
    std::int64_t MaxWidth = 0;
    std::int64_t MinDeviceWidth = 0;
    std::int64_t MaxDeviceWidth = 0;
    bool HasSizeQuery = false;
    bool Disabled = false; // set by TCSSStyleSheet::TestMediaSets: rules of this set are passed over
    TArray<TCSSToken> Tokens; // of the query, for printing
};

}
