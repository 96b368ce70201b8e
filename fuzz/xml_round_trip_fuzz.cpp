// A tree parsed from any text, serialized and parsed again is the same
// tree, and serializing that gives the same text.  Left out, as documented:
// an element still open at the end of the text keeps its whole name, colon
// and all, where a closed one has its prefix split off; and names have
// their references decoded but are written unescaped, so a name that came
// to hold markup characters or a colon cannot be read back; text values are
// written with their whitespace as it is, and the parser drops text that is
// only whitespace and line feeds, tabs and carriage returns at its start, so
// such a value that came from references cannot be read back either.
#include <string>
#include <string_view>

#include "xml_tree.hpp"

namespace {

bool has_any(const char *text, const char *set) { return text != nullptr && std::strpbrk(text, set) != nullptr; }

// A name the serializer cannot write so that it reads back the same.
bool unreadable(const XML_Node *node)
{
    static const char kSpecial[] = "<>&=\"' \t\r\n";
    if (has_any(node->name, kSpecial) || has_any(node->prefix, kSpecial) || has_any(node->prefix, ":")) return true;
    // The serializer puts ">" or "/>" right after a name: one that ends in
    // "/", "--" or "]]" would then end in a delimiter of its own.
    if (node->name != nullptr) {
        const std::string_view n(node->name);
        if (n.ends_with("/") || n.ends_with("--") || n.ends_with("]]")) return true;
    }
    // "<!" and "<?" open markup that is not an element, whether the "!" or
    // "?" begins the name or the prefix.
    const char *written_first = node->prefix != nullptr ? node->prefix : node->name;
    if (node->kind == XML_NODE_ELEMENT && written_first != nullptr &&
        (written_first[0] == '!' || written_first[0] == '?'))
        return true;
    return node->prefix == nullptr && has_any(node->name, ":");
}

// Spaces before the text are kept; whitespace-only text and any other
// leading whitespace are not.
bool unreadable_text(const XML_Node *node)
{
    if (node->kind != XML_NODE_ELEMENT || node->value == nullptr || node->firstChild != nullptr) return false;
    const char first = node->value[std::strspn(node->value, " ")];
    return first == '\0' || first == '\n' || first == '\t' || first == '\r';
}

bool has_unreadable_part(const XML_Node *node)
{
    for (; node != nullptr; node = node->nextSibling) {
        if (unreadable(node) || unreadable_text(node)) return true;
        for (const XML_Node *a = node->firstAttr; a != nullptr; a = a->nextSibling) {
            if (unreadable(a)) return true;
        }
        if (has_unreadable_part(node->firstChild)) return true;
    }
    return false;
}

struct Text {
    char *data = nullptr;
    ~Text() { NDL_XML_FreeMem(data); }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    fuzzin::Block text = fuzzin::terminated(data, size);
    fuzzin::TreeOwner first;
    if (NDL_XML_Parse(text.text(), &first.root) != XML_OK) return 0;
    if (has_unreadable_part(first.root)) return 0;

    Text once;
    FUZZ_CHECK(NDL_XML_Transform(first.root, &once.data) == XML_OK && once.data != nullptr);
    const std::string kept(once.data);  // the parser works in place
    fuzzin::TreeOwner second;
    FUZZ_CHECK(NDL_XML_Parse(once.data, &second.root) == XML_OK);
    FUZZ_CHECK(fuzzin::same_tree(first.root, second.root));

    Text twice;
    FUZZ_CHECK(NDL_XML_Transform(second.root, &twice.data) == XML_OK && twice.data != nullptr);
    FUZZ_CHECK(kept == twice.data);
    return 0;
}
