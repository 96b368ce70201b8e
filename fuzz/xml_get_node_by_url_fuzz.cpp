// NDL_XML_GetNodeByUrl with the URL and the tree from the input:
// "url NUL document".  A node found belongs to the tree.
#include "xml_tree.hpp"

namespace {

bool in_tree(const XML_Node *root, const XML_Node *node)
{
    for (const XML_Node *n = root; n != nullptr; n = NDL_XML_Iterator(n)) {
        if (n == node) return true;
        for (const XML_Node *a = n->firstAttr; a != nullptr; a = a->nextSibling) {
            if (a == node) return true;
        }
    }
    return false;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    fuzzin::TwoTexts parts = fuzzin::split_at_nul(data, size);
    fuzzin::TreeOwner tree;
    if (NDL_XML_Parse(parts.second.data(), &tree.root) != XML_OK) tree.root = nullptr;
    XML_Node *found = nullptr;
    const uint32_t rc = NDL_XML_GetNodeByUrl(tree.root, parts.first.data(), &found);
    FUZZ_CHECK(rc == XML_OK || rc == XML_ERR_PARAM || rc == XML_ERR_NOT_FOUND || rc == XML_ERR_INDEX);
    if (rc == XML_OK) FUZZ_CHECK(found != nullptr && in_tree(tree.root, found));
    return 0;
}
