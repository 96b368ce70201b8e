// The DOM parse of the side-by-side driver, away from the library's headers.
#include <libxml/parser.h>

#include <string>

bool libxml2_parse(const std::string &doc)
{
    xmlDocPtr tree = xmlReadMemory(doc.data(), static_cast<int>(doc.size()), nullptr, nullptr, XML_PARSE_NONET);
    if (tree == nullptr) return false;
    xmlFreeDoc(tree);
    return true;
}
