// Parsed values share storage with the nodes around them: documents long
// enough to span many storage blocks, with values and texts that fit,
// that do not fit and that follow an element whose attributes moved on to
// a new block, keep every remaining value intact while other subtrees are
// freed, values replaced or cleared; nothing is left allocated afterwards
// (the suite's hook listener checks that).
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "smsutil/ndl_xml.h"
#include "support/support.hpp"

namespace {

struct Feature {
    std::string head;         // Fi{attributes}
    std::string child_attrs;  // the child's attributes after k
    std::string text;         // the child's text as stored
    // As describe() shows the feature with the child's k and text given.
    std::string shown(const std::string &k, const std::string &value, bool with_child_attrs = true) const
    {
        return head + "[t{k" + k + (with_child_attrs ? child_attrs : "") + "}" + value + "]";
    }
};

struct Document {
    std::string text;
    std::vector<Feature> features;
};

// Feature i: element Fi with `attrs` attributes and one child with the
// attribute k, `child_attrs` more and a text; every `long_every`-th
// feature has a long first value and a long text (0: none).  Values start
// with `mark`.
Document make_document(int count, int attrs, int child_attrs, int long_every, const std::string &mark = "v")
{
    Document doc{"<r>\n", {}};
    for (int i = 0; i < count; ++i) {
        const bool is_long = long_every != 0 && i % long_every == 0;
        const std::string n = std::to_string(i);
        Feature f{"F" + n, "", is_long ? std::string(9000, 't') : "text & " + n};
        std::string xml = "  <F" + n;
        for (int a = 0; a < attrs; ++a) {
            const std::string value =
                is_long && a == 0 ? std::string(1500, mark[0]) : mark + n + "_" + std::to_string(a);
            xml += " a" + std::to_string(a) + "=\"" + value + "\"";
            f.head += (a == 0 ? "{a" : ",a") + std::to_string(a) + "=" + value;
        }
        if (attrs > 0) f.head += "}";
        xml += ">\n    <t k='" + n + "'";
        for (int b = 0; b < child_attrs; ++b) {
            const std::string value = mark + "child" + std::to_string(b) + std::string(400, 'c');
            xml += "\n       b" + std::to_string(b) + "='" + value + "'";
            f.child_attrs += ",b" + std::to_string(b) + "=" + value;
        }
        xml += ">" + (is_long ? f.text : "text &amp; " + n) + "</t>\n  </F" + n + ">\n";
        doc.text += xml;
        doc.features.push_back(f);
    }
    doc.text += "</r>\n";
    return doc;
}

std::string join(const std::vector<std::string> &features)
{
    std::string out = "r";
    for (std::size_t i = 0; i < features.size(); ++i) out += (i == 0 ? "[" : ",") + features[i];
    return features.empty() ? out : out + "]";
}

enum class Edit { kFreeOdd, kFreeFromBack, kReplaceThenFreeEven, kClearThenFreeFront, kRemoveChildAttrsThenFreeOdd };

struct StorageCase {
    const char *name;
    int count;
    int attrs;
    int child_attrs;
    int long_every;
    Edit edit;
};

class ParsedValueStorage : public ::testing::TestWithParam<StorageCase> {};

// The children of root as a vector, so that freeing one does not disturb
// the walk.
std::vector<XML_Node *> children(XML_Node *root)
{
    std::vector<XML_Node *> out;
    for (XML_Node *c = NDL_XML_GetNodeFirstChild(root); c != nullptr; c = NDL_XML_GetNodeNextSibling(c))
        out.push_back(c);
    return out;
}

TEST_P(ParsedValueStorage, RemainingValuesSurviveEdits)
{
    const StorageCase &c = GetParam();
    const Document doc = make_document(c.count, c.attrs, c.child_attrs, c.long_every);
    xmltest::Tree tree = xmltest::parse(doc.text.c_str());
    ASSERT_NE(tree, nullptr);
    std::vector<std::string> all;
    for (int i = 0; i < c.count; ++i)
        all.push_back(doc.features[i].shown("=" + std::to_string(i), "(" + doc.features[i].text + ")"));
    ASSERT_EQ(xmltest::describe(tree.get()), join(all));
    std::vector<XML_Node *> nodes = children(tree.get());
    std::vector<std::string> kept;
    for (int i = 0; i < c.count; ++i) {
        const std::size_t at = c.edit == Edit::kFreeFromBack ? static_cast<std::size_t>(c.count - 1 - i) : i;
        XML_Node *feature = nodes[at];
        XML_Node *child = NDL_XML_GetNodeFirstChild(feature);
        std::string described = all[at];
        if (c.edit == Edit::kReplaceThenFreeEven) {
            const uint32_t number = static_cast<uint32_t>(i);
            ASSERT_EQ(NDL_XML_SetAttr(child, nullptr, "k", "new"), XML_OK);
            ASSERT_EQ(NDL_XML_SetNodeValueEx(child, XML_VAL_UINT32, &number), XML_OK);
            described = doc.features[at].shown("=new", "(" + std::to_string(i) + ")");
        } else if (c.edit == Edit::kClearThenFreeFront) {
            ASSERT_EQ(NDL_XML_SetNode(child, nullptr, nullptr, ""), XML_OK);
            ASSERT_EQ(NDL_XML_SetAttr(child, nullptr, "k", nullptr), XML_OK);
            described = doc.features[at].shown("", "");
        } else if (c.edit == Edit::kRemoveChildAttrsThenFreeOdd) {
            for (int b = 0; b < c.child_attrs; ++b)
                ASSERT_EQ(NDL_XML_RemoveAttr(child, nullptr, ("b" + std::to_string(b)).c_str()), XML_OK);
            described = doc.features[at].shown("=" + std::to_string(at), "(" + doc.features[at].text + ")", false);
        }
        const bool drop = c.edit == Edit::kFreeOdd || c.edit == Edit::kRemoveChildAttrsThenFreeOdd ? i % 2 == 1
                          : c.edit == Edit::kReplaceThenFreeEven                                   ? i % 2 == 0
                          : c.edit == Edit::kClearThenFreeFront                                    ? i < c.count / 2
                                                                                                   : i % 3 != 0;
        if (drop)
            NDL_XML_FreeNode(feature);
        else
            kept.insert(c.edit == Edit::kFreeFromBack ? kept.begin() : kept.end(), described);
    }
    // A second document takes up whatever the edits gave back: a value
    // left in storage that went with a freed node would now read wrong.
    const Document other = make_document(c.count, c.attrs + 1, c.child_attrs, c.long_every, "scribbled");
    xmltest::Tree scribble = xmltest::parse(other.text.c_str());
    ASSERT_NE(scribble, nullptr);
    EXPECT_EQ(xmltest::describe(tree.get()), join(kept));
}

const StorageCase kStorageCases[] = {
    {"ShortValuesFreeOdd", 60, 2, 0, 0, Edit::kFreeOdd},
    {"ManyAttributesFreeFromBack", 40, 7, 1, 0, Edit::kFreeFromBack},
    {"LongValuesFreeOdd", 30, 3, 0, 4, Edit::kFreeOdd},
    {"NoAttributesReplaceThenFreeEven", 80, 0, 0, 0, Edit::kReplaceThenFreeEven},
    {"MixedReplaceThenFreeEven", 50, 4, 2, 7, Edit::kReplaceThenFreeEven},
    {"ClearThenFreeFront", 50, 5, 0, 9, Edit::kClearThenFreeFront},
    // The child's attributes fill more than one block before its text.
    {"TextAfterManyBlocksFreeOdd", 12, 1, 20, 0, Edit::kFreeOdd},
    {"TextAfterManyBlocksReplaceThenFreeEven", 12, 0, 15, 3, Edit::kReplaceThenFreeEven},
    {"TextAfterManyBlocksRemoveChildAttrs", 12, 2, 20, 0, Edit::kRemoveChildAttrsThenFreeOdd},
    {"ShortValuesRemoveChildAttrs", 40, 1, 3, 0, Edit::kRemoveChildAttrsThenFreeOdd},
};

INSTANTIATE_TEST_SUITE_P(Documents, ParsedValueStorage, ::testing::ValuesIn(kStorageCases),
                         [](const ::testing::TestParamInfo<StorageCase> &info) { return info.param.name; });

}  // namespace
