// Appending a node under a path of an XML file and writing the file again.
#include <cstring>

#include "xml/xml_internal.hpp"

namespace {

constexpr std::size_t kPathMax = 255;
constexpr int kDone = 0;
constexpr int kFailed = -1;

}  // namespace

extern "C" SMSUTIL_API int NDL_XML_AddNodeToFile(const char *file, const char *path, XML_Node **inOutNode,
                                                 const char *outFile)
{
    if (inOutNode == nullptr || *inOutNode == nullptr || path == nullptr || outFile == nullptr || file == nullptr)
        return kFailed;
    const std::size_t path_len = std::strlen(path);
    if (path_len > kPathMax) return kFailed;
    XML_Node *root = nullptr;
    if (NDL_XML_ParseFile(file, &root) != XML_OK) return kFailed;
    XML_Node *parent = smsutil::xml::find_by_path(root, path, path_len);
    int rc = kFailed;
    if (parent != nullptr && NDL_XML_AppendChildNode(parent, *inOutNode) == XML_OK) {
        *inOutNode = nullptr;  // the tree owns it now and releases it below
        // Only the first top-level element's subtree is written; a failed
        // write does not give the node back, so it is no failure here.
        (void)NDL_XML_TransformFile(root, outFile);
        rc = kDone;
    }
    XML_FreeNode(root);
    return rc;
}
