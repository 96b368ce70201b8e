// Loading XML files: the whole file is read into one buffer and parsed
// from there.
#include <cstdio>

#include "xml/xml_internal.hpp"

namespace {

// Closes the file on every path out of read_file.
struct FileCloser {
    std::FILE *file;
    ~FileCloser() { std::fclose(file); }
};

}  // namespace

namespace smsutil::xml {

uint32_t read_file(const char *path, char **out_text)
{
    std::FILE *file = std::fopen(path, "rb");
    if (file == nullptr) return XML_ERR_OPEN;
    const FileCloser closer{file};
    // A first byte tells an unreadable file (a directory, say) from an empty
    // one before its size is trusted.
    if (std::fgetc(file) == EOF) return std::ferror(file) != 0 ? XML_ERR_READ : XML_ERR_SYNTAX;
    if (std::fseek(file, 0, SEEK_END) != 0) return XML_ERR_READ;
    const long size = std::ftell(file);
    if (size < 0) return XML_ERR_READ;
    if (size == 0) return XML_ERR_SYNTAX;
    auto *text = static_cast<char *>(XML_Malloc(static_cast<std::size_t>(size) + 1));
    if (text == nullptr) return XML_ERR_NO_MEMORY;
    if (std::fseek(file, 0, SEEK_SET) != 0 ||
        std::fread(text, 1, static_cast<std::size_t>(size), file) != static_cast<std::size_t>(size)) {
        XML_Free(text);
        return XML_ERR_READ;
    }
    // A NUL inside the file ends the text there.
    text[size] = '\0';
    *out_text = text;
    return XML_OK;
}

}  // namespace smsutil::xml

extern "C" SMSUTIL_API uint32_t NDL_XML_ParseFile(const char *path, XML_Node **outRoot)
{
    if (path == nullptr || outRoot == nullptr) return XML_ERR_PARAM;
    char *text = nullptr;
    uint32_t rc = smsutil::xml::read_file(path, &text);
    if (rc != XML_OK) return rc;
    rc = smsutil::xml::parse_document(text, false, outRoot);
    XML_Free(text);
    return rc;
}
