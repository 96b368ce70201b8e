// NDL_XML_Parse on any text, with an allocation failure injected at any
// request when the control octet asks for one: every outcome releases
// what it built (the leak checker runs after each input).
#include "xml_tree.hpp"

namespace {

long g_fail_at = 0;
long g_requests = 0;
bool fail_now() { return g_fail_at != 0 && ++g_requests == g_fail_at; }
void *fuzz_malloc(size_t n) { return fail_now() ? nullptr : std::malloc(n); }
void *fuzz_calloc(size_t c, size_t n) { return fail_now() ? nullptr : std::calloc(c, n); }
void *fuzz_realloc(void *p, size_t n) { return fail_now() ? nullptr : std::realloc(p, n); }

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    static const bool hooked = NDL_XML_RegMemFunc(fuzz_malloc, fuzz_calloc, std::free, fuzz_realloc) == XML_OK;
    FUZZ_CHECK(hooked);
    fuzzin::Input in(data, size);
    const uint8_t control = in.byte();
    g_fail_at = (control & 0x80) != 0 ? (control & 0x7F) + 1 : 0;
    g_requests = 0;
    fuzzin::Block text = fuzzin::terminated(in.rest(), in.rest_size());

    fuzzin::TreeOwner tree;
    const uint32_t rc = NDL_XML_Parse(text.text(), &tree.root);
    FUZZ_CHECK(rc == XML_OK || rc == XML_ERR_PARAM || rc == XML_ERR_SYNTAX || rc == XML_ERR_NO_MEMORY);
    FUZZ_CHECK((rc == XML_OK) == (tree.root != nullptr));
    if (g_fail_at == 0 && rc == XML_OK) {
        char *out = nullptr;
        FUZZ_CHECK(NDL_XML_Transform(tree.root, &out) == XML_OK && out != nullptr);
        NDL_XML_FreeMem(out);
    }
    g_fail_at = 0;
    return 0;
}
