// Tests of node classes by tag, and of parsing into them.
// SPDX-License-Identifier: MIT
#include <hearth/markup/element_classes.h>
#include <hearth/markup/html_node.h>

#include <gtest/gtest.h>

using namespace ht;

namespace {

class TItem : public THtmlNode {
public:
    static constexpr TClassInfo kClassInfo{u"TItem", &THtmlNode::kClassInfo};
    const TClassInfo& ClassInfo() const override { return kClassInfo; }
    THtNodeClass NodeClass() const override { return THtNodeClass::Of<TItem>(); }
};

/// A root that answers classes by tag and drops elements named "gone".
class TDocumentRoot : public THtmlNode {
public:
    TDocumentRoot()
    {
        FClasses.RegisterElementClass(u"LI"_s, THtNodeClass::Of<TItem>());
        FClasses.RegisterElementClass(u"gone"_s, THtNodeClass{});
    }

    THtNodeClass GetElementClass(const THtTagName& ATag, const THtNode* ARoot) const override
    {
        return ARoot ? THtNode::GetElementClass(ATag, ARoot) : FClasses.GetElementClass(ATag);
    }

private:
    TElementClasses FClasses;
};

}

TEST(element_classes, parser_asks_the_root_and_drops_elements_without_a_class)
{
    TDocumentRoot root;
    root.Parse(u"<ul><LI>one<gone>two<b>three</b></gone></ul>"_s);
    EXPECT_EQ(root.GetOuterHTML(), u"<body><ul><li>onetwo<b>three</b></li></ul></body>"_s);
    EXPECT_NE(As<TItem>(root.THtNode::FindNode(u"li")), nullptr);
    EXPECT_EQ(As<TItem>(root.THtNode::FindNode(u"b")), nullptr);
}

TEST(element_classes, fragments_need_no_class_for_their_wrapper)
{
    class TNoDivRoot : public THtmlNode {
    public:
        THtNodeClass GetElementClass(const THtTagName& ATag, const THtNode* ARoot) const override
        {
            const bool dropped = ATag.IsEmpty() || ATag.Id == tags::kDiv;
            return dropped ? THtNodeClass{} : THtmlNode::GetElementClass(ATag, ARoot);
        }
    };
    TNoDivRoot root;
    root.SetInnerHTML(u"x<p>y<div><b>z"_s);
    EXPECT_EQ(root.GetOuterHTML(), u"<p></p><b></b>"_s);
    root.SetInnerText(u"lost"_s);
    EXPECT_EQ(root.Count(), 0);
}
