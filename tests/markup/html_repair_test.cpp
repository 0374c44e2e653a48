// Malformed text to repaired trees: each rule of the parser once.
// SPDX-License-Identifier: MIT
#include <markup/trees.h>

namespace {

using namespace ht;
using namespace trees;

TEST(html_repair, the_root_is_a_body_unless_the_text_brings_one)
{
    ExpectTrees({
        {u"", "<body>"},
        {u"a", R"(<body>{"a"})"},
        {u"<html>a", R"(#node{<html>{"a"}})"},
        {u"<body>a", R"(#node{<body>{"a"}})"},
        {u"<head><title>x</title><p>y", R"(<body>{<head>{<title>{"x"}} <p>{"y"}})"},
        {u"<!DOCTYPE html><p>a", R"(<body>{<p>{"a"}})"},
        {u"<!--c--><?d?><![CDATA[e]]>", R"(<body>{#comment "c" #directive "d" #cdata "e"})"},
    });
}

TEST(html_repair, void_and_self_closed_elements_take_no_children)
{
    ExpectTrees({
        {u"<br>a</br>b", R"(<body>{<br> "a" "b"})"},
        {u"<wbr/>a<hr>b<input x>c", R"(<body>{<wbr> "a" <hr> "b" <input x="x"> "c"})"},
        {u"<p/>a<div/>", R"(<body>{<p> "a" <div>})"},
        {u"<head><meta><link><base>", "<body>{<head>{<meta> <link> <base>}}"},
    });
}

TEST(html_repair, raw_bodies_are_the_content_of_their_element)
{
    ExpectTrees({
        {u"<script src=a>b<i></script>c", R"(<body>{<script src="a"> = "b<i>" "c"})"},
        {u"<style a=b>c</style>d", R"(<body>{<style a="b"> = "c" "d"})"},
        {u"<script/>a", R"(<body>{<script> "a"})"},
        {u"<script a=/>x</script>z", R"(<body>{<script> = "x" "z"})"},
        {u"<script a=/>x<![CDATA[y]]><b>w</script>z", R"(<body>{<script> = "xyw" "z"})"},
        {u"<script>script</script>z", R"(<body>{<script> = "script" "z"})"},
        {u"a<script>b", R"(<body>{"a"})"},
        {u"a<style>b</style", R"(<body>{"a"})"},
    });
}

TEST(html_repair, list_items_close_list_items_of_their_list)
{
    ExpectTrees({
        {u"<ul><li>a<li><b>b</ul>c", R"(<body>{<ul>{<li>{"a"} <li>{<b>{"b"}}} <b>{"c"}})"},
        {u"<ol><li><ul><li>a</ul><li>b", R"(<body>{<ol>{<li>{<ul>{<li>{"a"}}} <li>{"b"}}})"},
        {u"<li>a<li>b", R"(<body>{<li>{"a" <li>{"b"}}})"},
        {u"<dl><dt>a<dd>b<dt>c<dd>d</dl>e", R"(<body>{<dl>{<dt>{"a"} <dd>{"b"} <dt>{"c"} <dd>{"d"}} "e"})"},
        {u"<dl><dd><dl><dd>a", R"(<body>{<dl>{<dd>{<dl>{<dd>{"a"}}}}})"},
        {u"<dd>a<dd>b", R"(<body>{<dd>{"a"} <dd>{"b"}})"},
        {u"<dt>a<dt>b", R"(<body>{<dt>{"a" <dt>{"b"}}})"},
        {u"<dd>a<table><dd>b", R"(<body>{<dd>{"a" <table>{<dd>{"b"}}}})"},
    });
}

TEST(html_repair, blocks_close_paragraphs_heads_and_links)
{
    ExpectTrees({
        {u"<p>a<p>b", R"(<body>{<p>{"a"} <p>{"b"}})"},
        {u"<p>a<i>b<div>c</div>d", R"(<body>{<p>{"a" <i>{"b"}} <div>{"c"} "d"})"},
        {u"<h1>a<p>b<h2>c", R"(<body>{<h1>{"a" <p>{"b"} <h2>{"c"}}})"},
        {u"<p>a<table><td><p>b<p>c", R"(<body>{<p>{"a" <table>{<tr>{<td>{<p>{"b"} <p>{"c"}}}}}})"},
        {u"<p>a<title>b<p>c", R"(<body>{<p>{"a" <title>{"b"}} <p>{"c"}})"},
        {u"<head><body>", "#node{<head> <body>}"},
        {u"<head><title>a<body>", R"(#node{<head>{<title>{"a"}} <body>})"},
        {u"<head><noscript></noscript><div>", "<body>{<head>{<noscript>} <div>}"},
        {u"<a>x<b><a>y", R"(<body>{<a>{"x" <b>} <a>{"y"}})"},
        {u"<a><table><td><a>y", R"(<body>{<a>{<table>{<tr>{<td>{<a>{"y"}}}}}})"},
    });
}

TEST(html_repair, tables_get_their_rows)
{
    ExpectTrees({
        {u"<table><td>x", R"(<body>{<table>{<tr>{<td>{"x"}}}})"},
        {u"<thead><th>x", R"(<body>{<thead>{<tr>{<th>{"x"}}}})"},
        {u"<tfoot><td>x", R"(<body>{<tfoot>{<td>{"x"}}})"},
        {u"<table><tr><td>a<tr><td>b", R"(<body>{<table>{<tr>{<td>{"a"}} <tr>{<td>{"b"}}}})"},
        {u"<table><tr><td><i>a<td>b<th>c", R"(<body>{<table>{<tr>{<td>{<i>{"a"}} <td>{"b"} <th>{"c"}}}})"},
        {u"<table><tr><tr><td>a", R"(<body>{<table>{<tr> <tr>{<td>{"a"}}}})"},
        {u"<tr>a<tr>b", R"(<body>{<tr>{"a"} <tr>{"b"}})"},
        {u"<td>a<td>b", R"(<body>{<td>{"a" <td>{"b"}}})"},
        {u"<table><tbody><tr><td>a<tbody><tr><td>b</table>c",
            R"(<body>{<table>{<tbody>{<tr>{<td>{"a"}}} <tbody>{<tr>{<td>{"b"}}}} "c"})"},
        {u"<table><thead><tr><th>a<tbody><tr><td>b",
            R"(<body>{<table>{<thead>{<tr>{<th>{"a"}}} <tbody>{<tr>{<td>{"b"}}}}})"},
        {u"<tbody><tr><td>a<tfoot><tr><td>b", R"(<body>{<tbody>{<tr>{<td>{"a" <tfoot>{<tr>{<td>{"b"}}}}}}})"},
        {u"<table><caption>a</caption><colgroup><col><col></colgroup><tr><td>c",
            R"(<body>{<table>{<caption>{"a"} <colgroup>{<col> <col>} <tr>{<td>{"c"}}}})"},
    });
}

TEST(html_repair, tables_nest_in_cells_and_close_each_other_elsewhere)
{
    ExpectTrees({
        {u"<table><tr><td><table><tr><td>a</table>b<td>c",
            R"(<body>{<table>{<tr>{<td>{<table>{<tr>{<td>{"a"}}} "b"} <td>{"c"}}}})"},
        {u"<table><tr><td><table><tr><td>a<tr><td>b",
            R"(<body>{<table>{<tr>{<td>{<table>{<tr>{<td>{"a"}} <tr>{<td>{"b"}}}}}}})"},
        {u"<table><table>a", R"(<body>{<table> <table>{"a"}})"},
        {u"<table><tr><table>a", R"(<body>{<table>{<tr>} <table>{"a"}})"},
    });
}

TEST(html_repair, a_paragraph_in_a_table_gets_two_rows)
{
    ExpectTrees({
        {u"<table><p>x", R"(<body>{<table>{<tr>{<tr>{<p>{"x"}}}}})"},
        {u"<table><p>x</p></table>y", R"(<body>{<table>{<tr>{<tr>}} <p>{"x"} "y"})"},
        {u"<tbody><p>x<tr><td>z", R"(<body>{<tbody>{<tr>{<tr>{<p>{"x"}}} <tr>{<td>{"z"}}}})"},
        {u"<div><table><p>x<td>z</table>y", R"(<body>{<div>{<table>{<tr>{<tr>{<p>{"x"} <td>{"z"}}}} "y"}})"},
        {u"<div><table><p>x</tr>z<tr><td>w</table>y",
            R"(<body>{<div>{<table>{<tr>{<tr>{<p>{"x"}}} "z" <tr>{<td>{"w"}}} "y"}})"},
    });
}

TEST(html_repair, text_goes_on_behind_a_table_whose_odd_row_was_closed)
{
    ExpectTrees({
        {u"<div><table><p>x</tr></table>y", R"(<body>{<div>{<table>{<tr>{<tr>{<p>{"x"}}}} "y"}})"},
        {u"<div><table><p>x</tr><p>z</tr></table>y",
            R"(<body>{<div>{<table>{<tr>{<tr>{<p>{"x"}}} <tr>{<tr>{<p>{"z"}}}} "y"}})"},
    });
}

TEST(html_repair, rows_put_content_into_their_last_cell)
{
    ExpectTrees({
        {u"<div><table><tr><td>a</td><p>b<span>c</span>d</table>e",
            R"(<body>{<div>{<table>{<tr>{<td>{"a" <p>{"b" <span>{"c"} "d"}}}} "e"}})"},
        {u"<div><table><tr><td>a</td><div>b</div><td>c</table>e",
            R"(<body>{<div>{<table>{<tr>{<td>{"a" <div>{"b"}} <td>{"c"}}} "e"}})"},
        {u"<div><table><tr><th>a</th><ul><li>b</table>c",
            R"(<body>{<div>{<table>{<tr>{<th>{"a" <ul>{<li>{"b"}}}}} "c"}})"},
        {u"<div><table><tr><ul>a", R"(<body>{<div>{<table>{<tr>{<ul>{"a"}}}}})"},
        {u"<div><table><tr><h1>a</h1>e", R"(<body>{<div>{<table>{<tr>} <h1>{"a"} "e"}})"},
    });
}

TEST(html_repair, content_outside_of_cells_leaves_the_table)
{
    ExpectTrees({
        {u"<div><table>t<b>x</b></table>y", R"(<body>{<div>{<table>{"t"} <b>{"x"} "y"}})"},
        {u"<div><table><b>x</b><tr><td>c</table>y",
            R"(<body>{<div>{<table>{<tr>{<td>{"c"}}} <b>{"x"} "y"}})"},
        {u"<div><table><b>x<tr><td>c", R"(<body>{<div>{<table>{<b>{"x"} <tr>{<td>{"c"}}}}})"},
        {u"<table><tr><font>a</font><td>c</table>e", R"(<body>{<table>{<tr>{<td>{"c"}}} <font>{"a"} "e"})"},
        {u"<div><table><tbody><img></table>x", R"(<body>{<div>{<img> <table>{<tbody>} "x"}})"},
        {u"<div>a<table><tbody><br><tr><td>b</table>x",
            R"(<body>{<div>{"a" <br> <table>{<tbody>{<tr>{<td>{"b"}}}} "x"}})"},
        {u"<tbody><img>", "<body>{<tbody>{<img>}}"},
    });
}

TEST(html_repair, formatting_closed_too_early_is_opened_again)
{
    ExpectTrees({
        {u"<b><p>x</b>y", R"(<body>{<b>{<p>{"x"}} "y"})"},
        {u"<p><b>x</p>y", R"(<body>{<p>{<b>{"x"}} <b>{"y"}})"},
        {u"<p><b class=k><i>x</p>y</i>z</b>w",
            R"(<body>{<p>{<b class="k">{<i>{"x"}}} <b class="k">{<i>{"y"} "z"} "w"})"},
        {u"<p><b>x</p></b>y", R"(<body>{<p>{<b>{"x"}} "y"})"},
        {u"<i><b>x</i>y</b>z", R"(<body>{<i>{<b>{"x"}} <b>{"y"} "z"})"},
        {u"<p><b>1<i>2</p><p>3", R"(<body>{<p>{<b>{"1" <i>{"2"}}} <b>{<i>{<p>{"3"}}}})"},
        {u"<nobr><tt>a</nobr>b", R"(<body>{<nobr>{<tt>{"a"}} <tt>{"b"}})"},
        {u"<p><em>a</p><!--c-->", R"(<body>{<p>{<em>{"a"}} <em>{#comment "c"}})"},
        {u"<p><sub>a</p>b", R"(<body>{<p>{<sub>{"a"}} "b"})"},
    });
}

TEST(html_repair, end_tags_stop_at_scopes)
{
    ExpectTrees({
        {u"<div></x>a</div>b", R"(<body>{<div>{"a"} "b"})"},
        {u"<div></>a</div>b", R"(<body>{<div>{"a"} "b"})"},
        {u"</ p>a", R"(<body>{"a"})"},
        {u"<DIV></Div>a", R"(<body>{<div> "a"})"},
        {u"<span><div></span>a", R"(<body>{<span>{<div>{"a"}}})"},
        {u"<span><b></span>a", R"(<body>{<span>{<b>} <b>{"a"}})"},
        {u"<p><table><tr><td></p>a", R"(<body>{<p>{<table>{<tr>{<td>{"a"}}}}})"},
        {u"<tr><td><table></td>a", R"(<body>{<tr>{<td>{<table>{"a"}}}})"},
        {u"<div><table></div>a", R"(<body>{<div>{<table>{"a"}}})"},
        {u"<div><td></div>a", R"(<body>{<div>{<td>{"a"}}})"},
        {u"<table><tr><td><b></tr>a", R"(<body>{<table>{<tr>{<td>{<b>}} <b>{"a"}}})"},
        {u"<table><tbody><tr></table>a", R"(<body>{<table>{<tbody>{<tr>}} "a"})"},
        {u"<table><tbody><tr><td><p></table>a", R"(<body>{<table>{<tbody>{<tr>{<td>{<p>}}}} "a"})"},
        {u"<html><body><p></body></html>a", R"(#node{<html>{<body>{<p>{"a"}}}})"},
        {u"<body></html></body>a", R"(#node{<body> "a"})"},
    });
}

TEST(html_repair, items_are_cut_where_the_text_or_the_tag_breaks_off)
{
    ExpectTrees({
        {u"a<div class=\"b\"", R"(<body>{"a"})"},
        {u"a<b", R"(<body>{"a"})"},
        {u"<a<b>c", R"(<body>{<a>{<b>{"c"}}})"},
        {u"<p a=<c>d", R"(<body>{<p>{<c>{"d"}}})"},
        {u"a<", R"(<body>{"a" "<"})"},
        {u"<></>a", R"(<body>{"<>" "a"})"},
        {u"a < b", R"(<body>{"a " "< b"})"},
    });
}

TEST(html_repair, elements_too_deep_are_placed_higher_up)
{
    for (const std::u16string_view piece : {u"<div>", u"<b>", u"<span><i>", u"<ul><li>", u"<table><tr><td>",
             u"<table><td><p>", u"<dl><dd>", u"<font>a</font><u>"}) {
        THtmlNode root;
        root.Parse(Repeated(piece, 400));
        ExpectLinked(root);
        EXPECT_GT(Depth(root), 250) << String(piece).ToUtf8();
        EXPECT_LE(Depth(root), 260) << String(piece).ToUtf8();
    }
}

}
