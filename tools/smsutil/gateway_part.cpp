#include "gateway_part.hpp"

#include <cstring>
#include <variant>

#include "hex.hpp"
#include "parse_diagnosis.hpp"
#include "pdu_text.hpp"
#include "tpdu_decode.hpp"

namespace smsutil::cli {
namespace {

uint8_t content_code(uint8_t alphabet)
{
    switch (alphabet) {
    case WMS_ALPHABET_GSM7:
        return SMS_CONTENT_7BIT;
    case WMS_ALPHABET_8BIT:
        return SMS_CONTENT_8BIT;
    case WMS_ALPHABET_UCS2:
        return SMS_CONTENT_UCS2;
    default:
        return SMS_CONTENT_OTHER;
    }
}

// The alphabet of the TPDU, or the record's coding when no decoder applies.
uint8_t announced_coding(const DecodedTpdu &tpdu, const SmsMessage &message)
{
    if (const auto *deliver = std::get_if<wms_gw_deliver>(&tpdu.record)) return content_code(deliver->dcs.alphabet);
    if (const auto *submit = std::get_if<wms_gw_submit>(&tpdu.record)) return content_code(submit->dcs.alphabet);
    return static_cast<uint8_t>(message.sms_content_code);
}

}  // namespace

const char *content_coding_name(uint32_t coding)
{
    switch (coding) {
    case SMS_CONTENT_UCS2:
        return "ucs2";
    case SMS_CONTENT_7BIT:
        return "gsm7";
    case SMS_CONTENT_8BIT:
        return "8bit";
    default:
        return "other";
    }
}

JoinPart read_decoder_part(std::string_view text)
{
    JoinPart out;
    if (auto stray = non_hex_character(text)) {
        out.error = *stray;
        return out;
    }
    out.record = std::make_unique<sms_pdu_record>();
    const int result = sms_pdu_decode_hex(text.data(), text.size(), 0, out.record.get());
    if (result != SMS_PDU_OK) {
        out.error = std::string("the decoder returned ") + std::to_string(result) + ": " + sms_pdu_result_text(result);
        return out;
    }
    sms_reasm_part_from_record(out.record.get(), &out.part);
    return out;
}

JoinPart read_gateway_part(std::string_view text, uint32_t state)
{
    JoinPart out;
    const PduText pdu = split_pdu_text(text);
    const DecodedTpdu tpdu = pdu.error.empty() ? decode_tpdu(pdu.tpdu, state) : DecodedTpdu{};
    // The library reads any character as a nibble and stops at 512.
    const bool readable = hex_to_octets(text) && text.size() < sizeof(SmsReadPdu::pdu);
    SmsReadPdu input;
    std::memset(&input, 0, sizeof input);
    input.state = state;
    auto message = std::make_unique<SmsMessage>();
    if (readable) std::memcpy(input.pdu, text.data(), text.size());
    if (!readable || ParseSms(&input, message.get()) != SMS_RESULT_OK) {
        out.error = diagnose_parse_failure(pdu, state, tpdu).cause;
        return out;
    }
    sms_reasm_part_from_message(message.get(), &out.part);
    out.part.coding = announced_coding(tpdu, *message);
    out.message = std::move(message);
    return out;
}

}  // namespace smsutil::cli
