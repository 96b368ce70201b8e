// The XML parser and the key lookup that reads the feature file.
#include "bench_inputs.hpp"
#include "bench_loop.hpp"

namespace {

using namespace smsutil::bench;

void xml_parse(benchmark::State &state)
{
    const std::string doc = xml_document(static_cast<std::size_t>(state.range(0)));
    measure(state, "NDL_XML_Parse refused its input", [&] {
        XML_Node *root = nullptr;
        if (NDL_XML_Parse(doc.c_str(), &root) != 0 || root == nullptr) return false;
        NDL_XML_FreeNode(root);
        return true;
    });
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * doc.size()));
}
BENCHMARK(xml_parse)->Arg(4 << 10)->Arg(1 << 20)->Unit(benchmark::kMicrosecond);

void xml_get_node_or_attr(benchmark::State &state)
{
    const std::string path = write_feature_file();
    char value[64];
    measure(state, "NDL_XML_GetNodeOrAttr did not find the setting",
            [&] { return NDL_XML_GetNodeOrAttr(path.c_str(), kFeatureKey, value) == 0 && value[0] == '1'; });
}
BENCHMARK(xml_get_node_or_attr)->Unit(benchmark::kMicrosecond);

}  // namespace
