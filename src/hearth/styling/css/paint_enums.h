// The keywords of what is painted, pointed at and moved.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/enum_names.h>

namespace ht {

enum TBackgroundRepeat : std::uint8_t {
    brRepeat,
    brRepeatX,
    brRepeatY,
    brNoRepeat,
    brSpace,
    brRound,
};

template <> struct TEnumTraits<TBackgroundRepeat> {
    static constexpr int kCount = 6;
    static constexpr const char16_t* kName = u"TBackgroundRepeat";
};

enum TBackgroundOrigin : std::uint8_t {
    boPaddingBox,
    boBorderBox,
    boContentBox,
};

template <> struct TEnumTraits<TBackgroundOrigin> {
    static constexpr int kCount = 3;
    static constexpr const char16_t* kName = u"TBackgroundOrigin";
};

enum TBackgroundAttachment : std::uint8_t {
    baScroll,
    baFixed,
    baLocal,
};

template <> struct TEnumTraits<TBackgroundAttachment> {
    static constexpr int kCount = 3;
    static constexpr const char16_t* kName = u"TBackgroundAttachment";
};

enum TBackgroundSize : std::uint8_t {
    bsAuto,
    bsSize, // two lengths
    bsCover,
    bsContain,
};

template <> struct TEnumTraits<TBackgroundSize> {
    static constexpr int kCount = 4;
    static constexpr const char16_t* kName = u"TBackgroundSize";
};

/// Where the mirror image of a box stands.
enum TCSSBoxReflect : std::uint8_t {
    brNone,
    brBelow,
    brAbove,
    brLeft,
    brRight,
};

template <> struct TEnumTraits<TCSSBoxReflect> {
    static constexpr int kCount = 5;
    static constexpr const char16_t* kName = u"TCSSBoxReflect";
};

enum TCSSAppearance : std::uint8_t {
    caNone,
    caAuto,
    caButton,
    caCheckbox,
    caListbox,
    caMenulist,
    caMenulistButton,
    caMeter,
    caProgressBar,
    caPushButton,
    caRadio,
    caSearchfield,
    caSliderHorizontal,
    caSquareButton,
    caTextarea,
    caTextfield,
};

template <> struct TEnumTraits<TCSSAppearance> {
    static constexpr int kCount = 16;
    static constexpr const char16_t* kName = u"TCSSAppearance";
};

enum TCSSPointerEvents : std::uint8_t {
    peAuto,
    peNone,
    peVisiblePainted,
    peVisibleFill,
    peVisibleStroke,
    peVisible,
    pePainted,
    peFill,
    peStroke,
    peAll,
    peBoundingBox,
};

template <> struct TEnumTraits<TCSSPointerEvents> {
    static constexpr int kCount = 11;
    static constexpr const char16_t* kName = u"TCSSPointerEvents";
};

enum TCSSDraggable : std::uint8_t {
    dgAuto,
    dgTrue,
    dgFalse,
};

template <> struct TEnumTraits<TCSSDraggable> {
    static constexpr int kCount = 3;
    static constexpr const char16_t* kName = u"TCSSDraggable";
};

enum TCSSCursor : std::uint8_t {
    ecAuto,
    ecDefault,
    ecNone,
    ecContextMenu,
    ecHelp,
    ecPointer,
    ecProgress,
    ecWait,
    ecCell,
    ecCrosshair,
    ecText,
    ecVerticalText,
    ecAlias,
    ecCopy,
    ecMove,
    ecNoDrop,
    ecNotAllowed,
    ecGrab,
    ecGrabbing,
    ecEResize,
    ecNResize,
    ecNeResize,
    ecNwResize,
    ecSResize,
    ecSeResize,
    ecSwResize,
    ecWResize,
    ecEwResize,
    ecNsResize,
    ecNeswResize,
    ecNwseResize,
    ecColResize,
    ecRowResize,
    ecAllScroll,
    ecZoomIn,
    ecZoomOut,
    ecHand, // the pointer of older pages
};

template <> struct TEnumTraits<TCSSCursor> {
    static constexpr int kCount = 37;
    static constexpr const char16_t* kName = u"TCSSCursor";
};

/// How an animation moves on.
enum TCSSTiming : std::uint8_t {
    tmEase,
    tmEaseIn,
    tmEaseOut,
    tmEaseInOut,
    tmLinear,
    tmStepStart,
    tmStepEnd,
};

template <> struct TEnumTraits<TCSSTiming> {
    static constexpr int kCount = 7;
    static constexpr const char16_t* kName = u"TCSSTiming";
};

}
