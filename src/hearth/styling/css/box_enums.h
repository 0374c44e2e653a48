// The keywords of boxes: what kind of box, where it stands, how it is laid out.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/enum_names.h>

namespace ht {

/// Grids are missing, as their properties are: a sheet that names a grid behind another display keeps
/// that one.
enum TDisplayStyle : std::uint8_t {
    dsInline,
    dsBlock,
    dsInlineBlock,
    dsListItem,
    dsNone,
    dsTable,
    dsInlineTable,
    dsTableRow,
    dsTableRowGroup,
    dsTableHeaderGroup,
    dsTableFooterGroup,
    dsTableColumn,
    dsTableColumnGroup,
    dsTableCell,
    dsTableCaption,
    dsFlex,
    dsInlineFlex,
    dsRunIn,
    dsCompact,
    dsMarker,
    dsContents,
    dsFlowRoot,
    dsRuby,
    dsRubyBase,
    dsRubyText,
    dsRubyBaseContainer,
    dsRubyTextContainer,
};

template <> struct TEnumTraits<TDisplayStyle> {
    static constexpr int kCount = 27;
    static constexpr const char16_t* kName = u"TDisplayStyle";
};

enum TElementPosition : std::uint8_t {
    epStatic,
    epRelative,
    epAbsolute,
    epFixed,
    epRunning, // a function, running(name)
    epSticky,
};

template <> struct TEnumTraits<TElementPosition> {
    static constexpr int kCount = 6;
    static constexpr const char16_t* kName = u"TElementPosition";
};

enum TCSSFloat : std::uint8_t {
    fNone,
    fLeft,
    fRight,
};

template <> struct TEnumTraits<TCSSFloat> {
    static constexpr int kCount = 3;
    static constexpr const char16_t* kName = u"TCSSFloat";
};

enum TCSSVisibility : std::uint8_t {
    cvVisible,
    cvHidden,
    cvCollapse,
};

template <> struct TEnumTraits<TCSSVisibility> {
    static constexpr int kCount = 3;
    static constexpr const char16_t* kName = u"TCSSVisibility";
};

enum TCSSBoxSizing : std::uint8_t {
    bsContentBox,
    bsBorderBox,
    bsPaddingBox,
};

template <> struct TEnumTraits<TCSSBoxSizing> {
    static constexpr int kCount = 3;
    static constexpr const char16_t* kName = u"TCSSBoxSizing";
};

enum TCSSOverflow : std::uint8_t {
    eoVisible,
    eoHidden,
    eoScroll,
    eoAuto,
    eoClip,
};

template <> struct TEnumTraits<TCSSOverflow> {
    static constexpr int kCount = 5;
    static constexpr const char16_t* kName = u"TCSSOverflow";
};

enum TCSSResize : std::uint8_t {
    erNone,
    erBoth,
    erHorizontal,
    erVertical,
};

template <> struct TEnumTraits<TCSSResize> {
    static constexpr int kCount = 4;
    static constexpr const char16_t* kName = u"TCSSResize";
};

enum TCSSTableLayout : std::uint8_t {
    tlAuto,
    tlFixed,
};

template <> struct TEnumTraits<TCSSTableLayout> {
    static constexpr int kCount = 2;
    static constexpr const char16_t* kName = u"TCSSTableLayout";
};

enum TCSSBorderCollapse : std::uint8_t {
    bcSeparate,
    bcCollapse,
};

template <> struct TEnumTraits<TCSSBorderCollapse> {
    static constexpr int kCount = 2;
    static constexpr const char16_t* kName = u"TCSSBorderCollapse";
};

/// The lines of borders and outlines.
enum TCSSLineStyle : std::uint8_t {
    lsNone,
    lsHidden,
    lsDotted,
    lsDashed,
    lsSolid,
    lsDouble,
    lsGroove,
    lsRidge,
    lsInset,
    lsOutset,
    lsAuto, // of outlines
};

template <> struct TEnumTraits<TCSSLineStyle> {
    static constexpr int kCount = 11;
    static constexpr const char16_t* kName = u"TCSSLineStyle";
};

enum TCSSFlexDirection : std::uint8_t {
    fdRow,
    fdRowReverse,
    fdColumn,
    fdColumnReverse,
};

template <> struct TEnumTraits<TCSSFlexDirection> {
    static constexpr int kCount = 4;
    static constexpr const char16_t* kName = u"TCSSFlexDirection";
};

/// Shares its prefix with TCSSFontWeight.
enum TCSSFlexWrap : std::uint8_t {
    fwNowrap,
    fwWrap,
    fwWrapReverse,
};

template <> struct TEnumTraits<TCSSFlexWrap> {
    static constexpr int kCount = 3;
    static constexpr const char16_t* kName = u"TCSSFlexWrap";
};

enum TCSSJustifyContent : std::uint8_t {
    jcFlexStart,
    jcFlexEnd,
    jcCenter,
    jcSpaceBetween,
    jcSpaceAround,
    jcSpaceEvenly,
    jcStart,
    jcEnd,
    jcLeft,
    jcRight,
    jcStretch,
    jcNormal,
};

template <> struct TEnumTraits<TCSSJustifyContent> {
    static constexpr int kCount = 12;
    static constexpr const char16_t* kName = u"TCSSJustifyContent";
};

/// For a container and for its items: auto means stretch for the one, what the container says for the
/// other.
enum TCSSAlignItems : std::uint8_t {
    aiAuto,
    aiStretch,
    aiFlexStart,
    aiFlexEnd,
    aiCenter,
    aiBaseline,
    aiStart,
    aiEnd,
    aiSelfStart,
    aiSelfEnd,
    aiNormal,
};

template <> struct TEnumTraits<TCSSAlignItems> {
    static constexpr int kCount = 11;
    static constexpr const char16_t* kName = u"TCSSAlignItems";
};

enum TCSSPageBreak : std::uint8_t {
    pbAuto,
    pbAlways,
    pbAvoid,
    pbLeft,
    pbRight,
};

template <> struct TEnumTraits<TCSSPageBreak> {
    static constexpr int kCount = 5;
    static constexpr const char16_t* kName = u"TCSSPageBreak";
};

enum TCSSBreakAfter : std::uint8_t {
    cbaAuto,
    cbaAlways,
    cbaAvoid,
    cbaLeft,
    cbaRight,
    cbaPage,
    cbaColumn,
    cbaRegion,
    cbaAvoidPage,
    cbaAvoidColumn,
    cbaAvoidRegion,
    cbaRecto,
    cbaVerso,
    cbaAll,
};

template <> struct TEnumTraits<TCSSBreakAfter> {
    static constexpr int kCount = 14;
    static constexpr const char16_t* kName = u"TCSSBreakAfter";
};

}
