#include "modem_json.hpp"

namespace smsutil::cli {

Json with_header(const PduInput &input, const PduText &pdu, Json fields, bool failed)
{
    Json out = Json::object();
    if (input.header) {
        const ModemHeader &header = *input.header;
        if (header.index) out["index"] = *header.index;
        if (header.stat) out["stat"] = {{"code", *header.stat}, {"name", stat_name(*header.stat)}};
        if (!header.alpha.empty()) out["alpha"] = header.alpha;
    }
    if (failed && input.line != 0) out["line"] = input.line;
    out.update(fields);
    // The length is only comparable once the text split into its parts.
    if (pdu.error.empty() && input.error.empty()) {
        if (auto problem = header_length_problem(input, pdu.tpdu.size()); !problem.empty()) {
            if (!out.contains("problems")) out["problems"] = Json::array();
            out["problems"].push_back(problem);
        }
    }
    return out;
}

std::string shown_pdu(std::string_view text)
{
    constexpr size_t kShown = 40;
    if (text.size() <= kMaxPduLineCharacters) return std::string(text);
    return std::string(text.substr(0, kShown)) + "...";
}

}  // namespace smsutil::cli
