// NDL_XML_GetNodeOrAttr_Node and its bounded form with the key and the
// tree both taken from the input: "key NUL document".
#include "xml_tree.hpp"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    fuzzin::Input in(data, size);
    const std::size_t out_size = in.byte();
    fuzzin::TwoTexts parts = fuzzin::split_at_nul(in.rest(), in.rest_size());
    fuzzin::TreeOwner tree;
    if (NDL_XML_Parse(parts.second.data(), &tree.root) != XML_OK) tree.root = nullptr;

    // A value never outgrows the document it came from.
    fuzzin::Block whole(parts.second.size());
    const int rc = NDL_XML_GetNodeOrAttr_Node(tree.root, parts.first.data(), whole.text());
    FUZZ_CHECK(rc == 0 || rc == -1);
    FUZZ_CHECK(std::memchr(whole.data(), 0, whole.size()) != nullptr);
    if (rc == -1) FUZZ_CHECK(whole.text()[0] == '\0');

    fuzzin::Block bounded(out_size);
    const int rc_ex = NDL_XML_GetNodeOrAttr_NodeEx(tree.root, parts.first.data(), bounded.text(), out_size);
    FUZZ_CHECK(rc_ex == 0 || rc_ex == -1);
    if (rc_ex == 0) {
        FUZZ_CHECK(rc == 0 && std::strcmp(bounded.text(), whole.text()) == 0);
    } else if (rc == 0) {
        // Refused only when the value and its terminator do not fit.
        FUZZ_CHECK(std::strlen(whole.text()) + 1 > out_size);
    }
    return 0;
}
