#include <gtest/gtest.h>

#include <string>

#include "xml_test_support.hpp"

namespace {

constexpr const char *kInput = "<?xml version='1.0'?>\n<!-- kept out -->\n<cfg><list><item>1</item></list></cfg>\n<second/>\n";

XML_Node *new_item(const char *value)
{
    XML_Node *node = nullptr;
    EXPECT_EQ(NDL_XML_CreateNode(0, nullptr, "item", value, &node), XML_OK);
    EXPECT_EQ(NDL_XML_AddAttr(node, nullptr, "id", "2"), XML_OK);
    return node;
}

TEST(AddNodeToFile, AppendsAndWritesTheFirstElement)
{
    const std::string in = xmltest::write_work_file("update_in.xml", kInput);
    const std::string out = xmltest::work_path("update_out.xml");
    XML_Node *node = new_item("2");
    ASSERT_EQ(NDL_XML_AddNodeToFile(in.c_str(), "cfg.list", &node, out.c_str()), 0);
    EXPECT_EQ(node, nullptr);
    EXPECT_EQ(xmltest::read_work_file(out), "<cfg>\n<list>\n<item>1</item>\n<item id=\"2\">2</item>\n</list>\n</cfg>\n");
}

TEST(AddNodeToFile, OutputMayBeTheInput)
{
    const std::string path = xmltest::write_work_file("update_same.xml", kInput);
    XML_Node *node = new_item("2");
    ASSERT_EQ(NDL_XML_AddNodeToFile(path.c_str(), "cfg", &node, path.c_str()), 0);
    EXPECT_EQ(xmltest::read_work_file(path),
              "<cfg>\n<list>\n<item>1</item>\n</list>\n<item id=\"2\">2</item>\n</cfg>\n");
}

TEST(AddNodeToFile, FailuresLeaveTheNodeWithTheCaller)
{
    const std::string in = xmltest::write_work_file("update_fail.xml", kInput);
    const std::string out = xmltest::work_path("update_fail_out.xml");
    std::remove(out.c_str());
    XML_Node *node = new_item("2");
    XML_Node *const held = node;
    XML_Node *null_node = nullptr;
    EXPECT_EQ(NDL_XML_AddNodeToFile(in.c_str(), "cfg.none", &node, out.c_str()), -1);
    EXPECT_EQ(NDL_XML_AddNodeToFile(xmltest::work_path("absent.xml").c_str(), "cfg", &node, out.c_str()), -1);
    EXPECT_EQ(NDL_XML_AddNodeToFile(in.c_str(), ("cfg" + std::string(253, '.')).c_str(), &node, out.c_str()), -1);
    EXPECT_EQ(NDL_XML_AddNodeToFile(in.c_str(), "cfg", &null_node, out.c_str()), -1);
    EXPECT_EQ(NDL_XML_AddNodeToFile(in.c_str(), "cfg", nullptr, out.c_str()), -1);
    EXPECT_EQ(NDL_XML_AddNodeToFile(nullptr, "cfg", &node, out.c_str()), -1);
    EXPECT_EQ(NDL_XML_AddNodeToFile(in.c_str(), nullptr, &node, out.c_str()), -1);
    EXPECT_EQ(NDL_XML_AddNodeToFile(in.c_str(), "cfg", &node, nullptr), -1);
    EXPECT_EQ(node, held);
    EXPECT_EQ(xmltest::read_work_file(out), "<missing>");
    // A node still linked elsewhere is refused as well.
    xmltest::Tree tree = xmltest::parse("<a><b/><c/></a>");
    XML_Node *linked = tree->firstChild;
    EXPECT_EQ(NDL_XML_AddNodeToFile(in.c_str(), "cfg", &linked, out.c_str()), -1);
    EXPECT_EQ(linked, tree->firstChild);
    // 255 bytes of path are read whole.
    EXPECT_EQ(NDL_XML_AddNodeToFile(in.c_str(), ("cfg" + std::string(252, '.')).c_str(), &node, out.c_str()), 0);
    EXPECT_EQ(node, nullptr);
}

// Failures while parsing give -1 and leave the node with the caller;
// failures while writing come after the node was taken: 0, and the file is
// either complete or not written.
TEST(AddNodeToFile, AllocationFailureSweep)
{
    const std::string in = xmltest::write_work_file("update_sweep.xml", kInput);
    const std::string out = xmltest::work_path("update_sweep_out.xml");
    const std::string expected = "<cfg>\n<list>\n<item>1</item>\n<item id=\"2\">2</item>\n</list>\n</cfg>\n";
    for (long k = 1;; ++k) {
        std::remove(out.c_str());
        XML_Node *node = nullptr;
        long node_blocks = 0;
        {
            xmltest::HookScope count;
            node = new_item("2");
            node_blocks = count.live();
        }
        const std::string node_before = xmltest::describe(node);
        xmltest::HookScope hooks(k);
        const int rc = NDL_XML_AddNodeToFile(in.c_str(), "cfg.list", &node, out.c_str());
        if (rc == -1) {
            ASSERT_NE(node, nullptr) << "k=" << k;
            EXPECT_EQ(xmltest::describe(node), node_before);
            EXPECT_EQ(node->parent, nullptr);
            EXPECT_EQ(xmltest::read_work_file(out), "<missing>");
            XML_FreeNode(node);
        } else {
            EXPECT_EQ(rc, 0);
            EXPECT_EQ(node, nullptr);
            const std::string written = xmltest::read_work_file(out);
            if (written != expected) {
                EXPECT_TRUE(hooks.failure_hit());
                EXPECT_EQ(written, "<missing>") << "k=" << k;
            }
        }
        // The caller's node was made before the scope and is released in
        // it (by the tree or above), so that many more releases show.
        EXPECT_EQ(hooks.live(), -node_blocks) << "k=" << k;
        if (!hooks.failure_hit()) {
            EXPECT_EQ(rc, 0);
            break;
        }
    }
}

}  // namespace
