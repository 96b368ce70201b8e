#include <cstdio>
#include <cstring>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "commands.hpp"
#include "json_format.hpp"
#include "smsutil/smsutil.h"

namespace smsutil::cli {
namespace {

// Longest value `xml get` prints; the library refuses longer ones rather
// than cut them.
constexpr size_t kMaxValueBytes = 64 * 1024;

const char *xml_code_name(uint32_t code)
{
    switch (code) {
    case XML_ERR_PARAM:
        return "bad parameter";
    case XML_ERR_EXISTS:
        return "already exists";
    case XML_ERR_NOT_FOUND:
        return "not found";
    case XML_ERR_NO_MEMORY:
        return "out of memory";
    case XML_ERR_SYNTAX:
        return "syntax error";
    case XML_ERR_INDEX:
        return "misplaced or zero index";
    case XML_ERR_OPEN:
        return "cannot open the file";
    case XML_ERR_WRITE:
        return "write error";
    case XML_ERR_READ:
        return "read error";
    default:
        return "error";
    }
}

std::string code_text(uint32_t code)
{
    char hex[16];
    std::snprintf(hex, sizeof hex, "0x%08X", code);
    return std::string(hex) + " (" + xml_code_name(code) + ")";
}

struct TreeDeleter {
    void operator()(XML_Node *root) const { NDL_XML_FreeNode(root); }
};
using Tree = std::unique_ptr<XML_Node, TreeDeleter>;

struct TextDeleter {
    void operator()(char *text) const { NDL_XML_FreeMem(text); }
};

// The parsed file, or nullptr after printing why it could not be read.
Tree parse_file(const std::string &path)
{
    XML_Node *root = nullptr;
    const uint32_t code = NDL_XML_ParseFile(path.c_str(), &root);
    if (code != XML_OK) {
        print_error("NDL_XML_ParseFile " + path + ": " + code_text(code));
        return nullptr;
    }
    return Tree(root);
}

// Serialized node; false after printing why it could not be.
bool print_node(XML_Node *node)
{
    char *raw = nullptr;
    const uint32_t code = NDL_XML_Transform(node, &raw);
    const std::unique_ptr<char, TextDeleter> text(raw);
    if (code != XML_OK) {
        print_error("NDL_XML_Transform: " + code_text(code));
        return false;
    }
    std::cout << text.get();
    return true;
}

int run_get(const std::string &path, const std::string &key)
{
    const Tree tree = parse_file(path);
    if (!tree) return 1;
    std::vector<char> value(kMaxValueBytes, '\0');
    if (NDL_XML_GetNodeOrAttr_NodeEx(tree.get(), key.c_str(), value.data(), value.size()) != 0) {
        return print_error("no value for key " + key + " in " + path);
    }
    Json out;
    out["key"] = key;
    out["value"] = std::string(value.data());
    std::cout << to_line(out) << '\n';
    return 0;
}

int run_url(const std::string &path, const std::string &url)
{
    const Tree tree = parse_file(path);
    if (!tree) return 1;
    XML_Node *node = nullptr;
    const uint32_t code = NDL_XML_GetNodeByUrl(tree.get(), url.c_str(), &node);
    if (code != XML_OK) return print_error("NDL_XML_GetNodeByUrl " + url + ": " + code_text(code));
    return print_node(node) ? 0 : 1;
}

int run_fmt(const std::string &path)
{
    const Tree tree = parse_file(path);
    if (!tree) return 1;
    // Further top-level elements follow the first one as its siblings.
    for (XML_Node *node = tree.get(); node != nullptr; node = node->nextSibling) {
        if (!print_node(node)) return 1;
    }
    return 0;
}

}  // namespace

void add_xml_command(CLI::App &app, int &exit_status)
{
    CLI::App *xml = app.add_subcommand("xml", "Read values and nodes out of XML files such as the feature file");
    xml->require_subcommand(1, 1);
    xml->footer("Run 'smsutil xml get --help', 'smsutil xml url --help' or 'smsutil xml fmt --help'.");

    struct Args {
        std::string file;
        std::string path;
    };
    auto args = std::make_shared<Args>();

    CLI::App *get = xml->add_subcommand("get", "The text of an element or the value of an attribute, by key");
    get->add_option("FILE", args->file, "XML file")->required()->check(CLI::ExistingFile);
    get->add_option("KEY", args->path, "Key: a.b.c, a.b[attr], a.b[attr=v], a.b[attr=v].c")->required();
    get->footer(
        "Example:\n"
        "  smsutil xml get examples/optional_feature.xml configuration.FEATURE_SMS.lang_table\n"
        "Prints {\"key\": KEY, \"value\": text}.");
    get->callback([args, &exit_status] { exit_status = run_get(args->file, args->path); });

    CLI::App *url = xml->add_subcommand("url", "The node a URL path names, serialized");
    url->add_option("FILE", args->file, "XML file")->required()->check(CLI::ExistingFile);
    url->add_option("URL", args->path, "URL path: root.child.2.p:name (indexes count from 1)")->required();
    url->footer(
        "Example:\n"
        "  smsutil xml url examples/optional_feature.xml configuration.FEATURE_SMS\n");
    url->callback([args, &exit_status] { exit_status = run_url(args->file, args->path); });

    CLI::App *fmt = xml->add_subcommand("fmt", "The file parsed and written back in the library's compact form");
    fmt->add_option("FILE", args->file, "XML file")->required()->check(CLI::ExistingFile);
    fmt->footer(
        "Example:\n"
        "  smsutil xml fmt examples/optional_feature.xml\n");
    fmt->callback([args, &exit_status] { exit_status = run_fmt(args->file); });
}

}  // namespace smsutil::cli
