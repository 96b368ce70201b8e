// Tags in their usual form are read in place, others through the
// tokenizer: both readings must give the same tree or the same refusal.
// Each case pairs a usual form with the near misses that must not be
// taken for it (names whose last bytes could start "-->", "]]>" or "/>",
// names with references, spacing and comments inside end tags).
#include <gtest/gtest.h>

#include <string>

#include "smsutil/ndl_xml.h"
#include "support/support.hpp"

namespace {

struct TagCase {
    const char *text;
    const char *tree;  // the whole top-level chain, or "SYNTAX"
};

const TagCase kCases[] = {
    {"<a->x</a->", "a-(x)"},
    {"<a-- x='1'>t</a-->", "SYNTAX"},
    {"<b]]>t</b]]>", "SYNTAX"},
    {"<c/>t</c/>", "SYNTAX"},
    {"<a&amp;b>t</a&amp;b>", "SYNTAX"},
    {"<a&amp;b>t</a&b>", "a&b(t)"},
    {"<p&#58;r>t</p&#58;r>", "SYNTAX"},
    {"<p&#58;r>t</p:r>", "p:r(t)"},
    {"<p:r q:a='1'>t</p:r >", "p:r{q:a=1}(t)"},
    {"<r>t</r\n>", "r(t)"},
    {"<r>t</ r>", "r(t)"},
    {"<r><a></a ></r>", "r[a]"},
    {"<abcdefghijk>t</abcdefghijk>", "abcdefghijk(t)"},
    {"<abcdefghijk>t</abcdefghijx>", "SYNTAX"},
    {"<abcdefghijk><a/></abcdefghij>", "SYNTAX"},
    {"<r>t</r", "SYNTAX"},
    {"<r><a/></r", "SYNTAX"},
    {"<r x='1'y='2'/>", "SYNTAX"},
    {"<r x = '1' y=\"a&lt;b\"/>", "r{x=1,y=a<b}"},
    {"<r p:a='1' q:a='2' a='3'/>", "r{p:a=1,q:a=2,a=3}"},
    {"<r a='x:'/>", "r{a=x:}"},
    {"<r>t<!--c--></r>", "r(t)"},
    {"<r><a x='1'\n/><b\ty=\"2\">u</b></r>", "r[a{x=1},b{y=2}(u)]"},
};

TEST(TagForms, InPlaceAndTokenizedReadingsAgree)
{
    for (const TagCase &c : kCases) {
        XML_Node *root = nullptr;
        const uint32_t rc = NDL_XML_Parse(c.text, &root);
        const std::string got = rc == XML_OK           ? xmltest::describe_chain(root)
                                : rc == XML_ERR_SYNTAX ? "SYNTAX"
                                                       : std::to_string(rc);
        XML_FreeNode(root);
        EXPECT_EQ(got, c.tree) << c.text;
    }
}

}  // namespace
