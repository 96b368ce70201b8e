#include "submit_parts.hpp"

#include <array>

#include "concatenation_reference.hpp"

namespace smsutil::cli {

const char *pdu_language_name(uint8_t language)
{
    static constexpr std::array<const char *, 4> kNames{"none", "turkish", "spanish", "portuguese"};
    return language < kNames.size() ? kNames[language] : "unknown";
}

SubmitOutcome encode_submit(const SubmitRequest &request, const std::string &text)
{
    sms_pdu_encode_options options{};
    options.languages = request.languages;
    options.max_parts = request.max_parts;
    options.reference = request.reference.value_or(0);
    options.destination = request.to.c_str();
    options.service_centre = request.smsc.c_str();
    options.status_report_request = request.status_report ? 1 : 0;
    if (request.validity_seconds) {
        options.validity.format = SMS_PDU_VP_RELATIVE;
        options.validity.relative_seconds = *request.validity_seconds;
    }
    SubmitOutcome out;
    out.parts.resize(SMS_PDU_MAX_PARTS);
    size_t count = 0;
    int result = sms_pdu_encode(text.data(), text.size(), &options, out.parts.data(), out.parts.size(), &count);
    // Only a message of several parts needs a reference its parts share.
    if (result == SMS_PDU_OK && count > 1 && !request.reference) {
        options.reference = next_concatenation_reference();
        result = sms_pdu_encode(text.data(), text.size(), &options, out.parts.data(), out.parts.size(), &count);
    }
    if (result == SMS_PDU_ERR_TOO_MANY_PARTS) {
        out.error = "the text needs " + std::to_string(count) + " parts, more than the limit of " +
                    std::to_string(request.max_parts) + " (--max-parts)";
    } else if (result != SMS_PDU_OK) {
        out.error = std::string("the encoder returned ") + std::to_string(result) + ": " + sms_pdu_result_text(result);
    }
    out.parts.resize(result == SMS_PDU_OK ? count : 0);
    return out;
}

}  // namespace smsutil::cli
