// The keywords of text: fonts, lines, letters and their direction.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/enum_names.h>

namespace ht {

enum TCSSFontStyle : std::uint8_t {
    cfsNormal,
    cfsItalic,
    cfsOblique,
};

template <> struct TEnumTraits<TCSSFontStyle> {
    static constexpr int kCount = 3;
    static constexpr const char16_t* kName = u"TCSSFontStyle";
};

enum TCSSFontWeight : std::uint8_t {
    fwNormal,
    fwBold,
    fwLighter,
    fwBolder,
    fw100,
    fw200,
    fw300,
    fw400,
    fw500,
    fw600,
    fw700,
    fw800,
    fw900,
};

template <> struct TEnumTraits<TCSSFontWeight> {
    static constexpr int kCount = 13;
    static constexpr const char16_t* kName = u"TCSSFontWeight";
};

enum TCSSFontKerning : std::uint8_t {
    kmAuto,
    kmNormal,
    kmNone,
};

template <> struct TEnumTraits<TCSSFontKerning> {
    static constexpr int kCount = 3;
    static constexpr const char16_t* kName = u"TCSSFontKerning";
};

enum THAlign : std::uint8_t {
    thStart,
    thLeft,
    thRight,
    thCenter,
    thJustify,
    thEnd,
    thXCenter, // from align="center": blocks inside are centred too
    thMatchParent,
    thJustifyAll,
};

template <> struct TEnumTraits<THAlign> {
    static constexpr int kCount = 9;
    static constexpr const char16_t* kName = u"THAlign";
};

enum TVAlign : std::uint8_t {
    vaBaseline,
    vaSub,
    vaSuper,
    vaTop,
    vaTextTop,
    vaMiddle,
    vaBottom,
    vaTextBottom,
};

template <> struct TEnumTraits<TVAlign> {
    static constexpr int kCount = 8;
    static constexpr const char16_t* kName = u"TVAlign";
};

enum TCSSTextTransform : std::uint8_t {
    cttNone,
    cttCapitalize,
    cttUppercase,
    cttLowercase,
    cttFullWidth,
    cttFullSizeKana,
};

template <> struct TEnumTraits<TCSSTextTransform> {
    static constexpr int kCount = 6;
    static constexpr const char16_t* kName = u"TCSSTextTransform";
};

/// Shares its prefix with TCSSTableLayout.
enum TCSSTextDecorationLine : std::uint8_t {
    tlNone,
    tlUnderline,
    tlOverline,
    tlLineThrough,
    tlBlink,
};

template <> struct TEnumTraits<TCSSTextDecorationLine> {
    static constexpr int kCount = 5;
    static constexpr const char16_t* kName = u"TCSSTextDecorationLine";
};

enum TCSSTextDecorationStyle : std::uint8_t {
    tsSolid,
    tsDouble,
    tsDotted,
    tsDashed,
    tsWavy,
};

template <> struct TEnumTraits<TCSSTextDecorationStyle> {
    static constexpr int kCount = 5;
    static constexpr const char16_t* kName = u"TCSSTextDecorationStyle";
};

enum TCSSTextOverflow : std::uint8_t {
    toClip,
    toEllipsis,
};

template <> struct TEnumTraits<TCSSTextOverflow> {
    static constexpr int kCount = 2;
    static constexpr const char16_t* kName = u"TCSSTextOverflow";
};

enum TWhiteSpace : std::uint8_t {
    wsNormal,
    wsNowrap,
    wsPre,
    wsPreWrap,
    wsPreLine,
    wsBreakSpaces,
};

template <> struct TEnumTraits<TWhiteSpace> {
    static constexpr int kCount = 6;
    static constexpr const char16_t* kName = u"TWhiteSpace";
};

enum TCSSWordWrap : std::uint8_t {
    wwNormal,
    wwBreakWord,
    wwAnywhere,
};

template <> struct TEnumTraits<TCSSWordWrap> {
    static constexpr int kCount = 3;
    static constexpr const char16_t* kName = u"TCSSWordWrap";
};

enum TCSSWordBreak : std::uint8_t {
    wbNormal,
    wbBreakWord,
    wbBreakAll,
    wbKeepAll,
    wbHyphens, // where the property hyphens is auto
};

template <> struct TEnumTraits<TCSSWordBreak> {
    static constexpr int kCount = 5;
    static constexpr const char16_t* kName = u"TCSSWordBreak";
};

enum TCSSHyphens : std::uint8_t {
    chManual,
    chNone,
    chAuto,
};

template <> struct TEnumTraits<TCSSHyphens> {
    static constexpr int kCount = 3;
    static constexpr const char16_t* kName = u"TCSSHyphens";
};

enum TCSSDirection : std::uint8_t {
    cdLTR,
    cdRTL,
};

template <> struct TEnumTraits<TCSSDirection> {
    static constexpr int kCount = 2;
    static constexpr const char16_t* kName = u"TCSSDirection";
};

enum TCSSUnicodeBidi : std::uint8_t {
    ubNormal,
    ubEmbed,
    ubIsolate,
    ubBidiOverride,
    ubIsolateOverride,
    ubPlaintext,
};

template <> struct TEnumTraits<TCSSUnicodeBidi> {
    static constexpr int kCount = 6;
    static constexpr const char16_t* kName = u"TCSSUnicodeBidi";
};

/// The last seven are the older words of SVG.
enum TCSSWritingMode : std::uint8_t {
    wmHorizontalTb,
    wmVerticalRl,
    wmVerticalLr,
    wmSidewaysRl,
    wmSidewaysLr,
    wmLrTb,
    wmRlTb,
    wmTbRl,
    wmTbLr,
    wmLr,
    wmRl,
    wmTb,
};

template <> struct TEnumTraits<TCSSWritingMode> {
    static constexpr int kCount = 12;
    static constexpr const char16_t* kName = u"TCSSWritingMode";
};

}
