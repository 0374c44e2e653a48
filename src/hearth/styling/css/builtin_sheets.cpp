// The texts of the sheets under all others.
// SPDX-License-Identifier: MIT
#include <hearth/styling/css/builtin_sheets.h>

#include <hearth/styling/css/style_sheet.h>

#include <memory>

namespace ht {

namespace {

// The blanks, and the names that nothing knows (_body, xbody, apadding-bottom, datapacket), belong to the
// texts: sheets and documents refer to them. clang-format off keeps one rule a line.
// clang-format off

constexpr std::u16string_view kHtml4Text =
    u":link { color: blue; text-decoration: underline; cursor: pointer }    "
    u"html, address, blockquote,  body, dd, div, dl, dt, fieldset, form, frame, frameset, h1, h2, h3, h4, "
    u"h5, h6, noframes, ol, p, ul, center, dir, hr, menu, pre, datapacket, article, aside, details, "
    u"figcaption, footer, header, main, nav, section, summary { display: block } "
    u"li              { display: list-item; min-height: 1em } "
    u"body {line-height: normal; contenteditable: true}"
    u"head, style, datalist, meta, link            { display: none } "
    u"table           { display: table; text-indent: 0; border-spacing: 2px; box-sizing: border-box; } "
    u"tr              { display: table-row; padding: 0px!important } "
    u"thead           { display: table-row-group } "
    u"tbody           { display: table-row-group } "
    u"tfoot           { display: table-row-group } "
    u"col             { display: table-column } "
    u"colgroup        { display: table-column-group } "
    u"td, th          { display: table-cell; background-color: inherit  } "
    u"caption         { display: block; text-align: center } "
    u"th              { font-weight: bold;  } "
    u"_body            { margin: 8px } "
    u"h1              { font-size: 2em; margin-top: .67em; margin-bottom: .67em } "
    u"h2              { font-size: 1.5em; margin: .75em 0 }  "
    u"h3              { font-size: 1.17em; margin: .83em 0 } "
    u"h4, p, blockquote, ul,  fieldset, form,  ol, dl, dir,  menu            { margin-top: 1em; "
    u"margin-bottom: 1em; } "
    u"blockquote      { padding-left: 40px; margin-right: 40px; }      "
    u"blockquote[type=cite] { padding-left: 16px; padding-right: 16px; border-left:  solid blue thin; "
    u"margin-left: 0; margin-right: 0; }"
    u"h5              { font-size: .83em; margin: 1.5em 0 }          "
    u"h6              { font-size: .75em; margin: 1.67em 0 }         "
    u"h1, h2, h3, h4,  h5, h6, b, strong          { font-weight: bold } "
    u"i, cite, em, var, address    { font-style: italic } "
    u"pre, tt, code, kbd, samp       { font-family: monospace } "
    u"pre             { white-space: pre } "
    u"textarea, input, select   { display: inline; margin: 0 2 0 2; box-sizing: border-box } "
    u"input[type=submit] {padding: 3px 3px;} "
    u"input[type=hidden] {display: none}  "
    u"input[type=radio] {appearance: radio}  "
    u"big             { font-size: 1.17em } "
    u"small, sub, sup { font-size: .83em } "
    u"sub             { vertical-align: sub } "
    u"sup             { vertical-align: super } "
    u"thead, tbody,  tfoot,table     { vertical-align: middle } "
    u"td, th, tr      { vertical-align: inherit } "
    u"s, strike, del  { text-decoration: line-through }  "
    u"hr              { border-top: 1px solid gray; border-bottom: 0.5px solid silver; apadding-bottom: "
    u"-1px; margin-top: 8px; margin-bottom: 8px; } "
    u"ol, ul, dir, menu, dd        { padding-left: 40px } "
    u"ol              { list-style-type: decimal }  "
    u"ol ul, ul ol, ul ul, ol ol    { margin-top: 0; margin-bottom: 0 } "
    u"ul              {list-style-type: disc } "
    u"ul ul           {list-style-type: circle } "
    u"ul ul ul        {list-style-type: square } "
    u"ol[type=a]      {list-style-type: lower-alpha} "
    u"ol[type=A]      {list-style-type: upper-alpha} "
    u"ol[type=i]      {list-style-type: lower-roman} "
    u"ol[type=I]      {list-style-type: upper-roman} "
    u"u, ins          { text-decoration: underline } "
    u"option          {display: none}  "
    u"center          { text-align: center } "
    u"img, image, iframe, svg {display: inline-block}                         "
    u"fieldset        { margin: 10px 2px 5px 2px; padding: 0.55em 0.625em 0.75em; border: solid #aaa 1px; "
    u"position: relative;}"
    u"legend          {display: inline-block; position: absolute; left: 20px; top: 0px; transform: "
    u"translate(0, -60%)}"
    u"legend[align='right'] {left: auto; right: 20px;}"
    u"control, video  {display: inline-block} "
    u"xbody {display: block; }"
    u"foreignobject { display: block; white-space: normal; position: absolute; }"
    u"desc, title     {display: none}"
    u"table[align=left] {float: left}"
    u"table[align=right] {float: right}"
    u"img[align=left] {float: left}"
    u"img[align=right] {float: right}"
    u"nobr {white-space: nowrap} "
    u"mark {background: yellow; color: black}"
    u"button {display: inline-block; background: linear-gradient(to bottom, btnhighlight, btnface); "
    u"color: btntext; border-radius: 2px; padding: 3px 6px 3px 6px; margin: 0px 5px; border: solid "
    u"btnshadow 1px;  }"
    u"button:hover {opacity: 0.7; background: linear-gradient(to bottom, btnhighlight, btnhighlight 10%, "
    u"highlight 60%, btnhighlight 100%); }"
    u"button:active {background: highlight }"
    u"button[disabled]{background: #eee; color: gray;pointer-events: none}"
    u"metadata {display: none}"
    u"xtemplate {word-break: break-all;}"
    u"table[border] {border-color: #808080;}"
    u"table[border=0] {border: none}"
    u"svg {fill-opacity: 1; stroke-opacity: 1; fill: black}"
    u"g, rect, line, path, polygon, polyline, ellipse, circle, text, tspan, image {transform-origin: 0, 0}"
    u".footnote {font-size: 9pt; margin-left: 0.5em;  } "
    u".footnote:before {counter-increment: footnote; content: counters(footnote, ' '); display: none}"
    u".footnote:after {display: inline-block; content: counters(footnote, ' '); vertical-align: super; "
    u"cursor: pointer; padding: 2px; border-radius: 2px} "
    u".footnote:after:hover {background-color: lightblue}"
    u"abbr[title], acronym[title] {text-decoration: underline; text-decoration-style: dotted;}"
    u"summary:before {content:\\25B8;} "
    u"details:checked summary:before {content: \\25BE;}"
    u"noframes {display:none}";

constexpr std::u16string_view kQuirksText =
    u"td > p:first-child, th > p:first-child {margin-top: 0px} "
    u"td > p:last-child, th > p:last-child  {margin-bottom: 0px} "
    u"table {padding:0 !important; text-align: start; line-height: normal; font-size: 16px; font-weight: "
    u"normal;} "
    u"body > p:first-child {margin-top: 0px} ";

// clang-format on

std::unique_ptr<TCSSStyleSheet> MakeSheet(
    std::u16string_view text, std::uint32_t firstOrder, std::int64_t weight)
{
    auto sheet = std::make_unique<TCSSStyleSheet>();
    sheet->SelectorCounter = firstOrder;
    sheet->Parse(String(text), weight);
    return sheet;
}

}

// Orders below those of all other sheets, so that at equal weight the others win.

TCSSStyleSheet& HTML4StyleSheet()
{
    static const std::unique_ptr<TCSSStyleSheet> sheet = MakeSheet(kHtml4Text, 0, 0);
    return *sheet;
}

TCSSStyleSheet& HTML4QuirkStyleSheet()
{
    static const std::unique_ptr<TCSSStyleSheet> sheet = MakeSheet(kQuirksText, 100, kOwnWeight);
    return *sheet;
}

}
