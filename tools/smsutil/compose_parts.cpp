#include "compose_parts.hpp"

#include <algorithm>
#include <cstring>
#include <memory>
#include <optional>

#include "packs.hpp"
#include "pdu_text.hpp"
#include "smsutil/smsutil.h"

namespace smsutil::cli {
namespace {

// The message record for one pack: 7-bit packs travel as codes, UCS-2
// packs as UTF-8 that the library converts itself.
std::optional<SmsMessage> message_for_pack(const ComposeRequest& request, Coding coding, const std::string& pack,
                                           size_t part, size_t total) {
    SmsMessage message;
    std::memset(&message, 0, sizeof message);
    std::memcpy(message.szAddress, request.to.c_str(), std::min(request.to.size(), sizeof message.szAddress - 1));
    std::memcpy(message.sca, request.smsc.c_str(), std::min(request.smsc.size(), sizeof message.sca - 1));
    if (coding == Coding::Gsm7) {
        const auto codes = utf8_to_gsm7(pack, request.language);
        if (!codes || codes->size() >= sizeof message.content) return std::nullopt;
        std::copy(codes->begin(), codes->end(), message.content);
        message.byContentLen = static_cast<uint8_t>(codes->size());
        message.sms_content_code = SMS_CONTENT_7BIT;
        message.byteCoding = request.language;
    } else {
        if (pack.size() >= sizeof message.content) return std::nullopt;
        std::memcpy(message.content, pack.c_str(), pack.size());
        message.sms_content_code = SMS_CONTENT_UCS2;
    }
    message.mr = static_cast<uint16_t>(request.reference);
    if (total > 1) {
        message.sms_flag_type = 1;
        message.btTotalPack = static_cast<uint8_t>(total);
        message.btPack = static_cast<uint8_t>(part);
    }
    message.dwStatusReportRequest = request.status_report ? 1U : 0U;
    if (request.has_validity) {
        const std::string seconds = std::to_string(request.validity_seconds);
        std::memcpy(message.szValidity, seconds.c_str(), std::min(seconds.size(), sizeof message.szValidity - 1));
    }
    return message;
}

// Why a 7-bit part may not fit: the library cuts 153 codes per part but
// adds a national-language element to the header, and user data holds 160
// septets at most.  Empty when that is not the reason.
std::string septet_overflow(const SmsMessage& message) {
    constexpr size_t kMaxSeptets = 160;
    constexpr size_t kConcatElementOctets = 5;
    constexpr size_t kLanguageElementOctets = 3;
    if (message.sms_content_code != SMS_CONTENT_7BIT) return {};
    size_t header_octets = 0;
    if (message.sms_flag_type == 1) header_octets += kConcatElementOctets;
    if (message.byteCoding != 0) header_octets += kLanguageElementOctets;
    if (header_octets != 0) header_octets += 1;  // the header length octet
    const size_t header_septets = (header_octets * 8 + 6) / 7;
    const size_t needed = header_septets + message.byContentLen;
    if (needed <= kMaxSeptets) return {};
    return ": its " + std::to_string(message.byContentLen) + " codes and its header need " + std::to_string(needed) +
           " septets, more than " + std::to_string(kMaxSeptets);
}

// Empty when the PDU reads back as sent, else what differs.
std::string read_back_problem(const std::string& pdu, const std::string& pack, size_t part, size_t total,
                              uint32_t reference) {
    SmsReadPdu input;
    std::memset(&input, 0, sizeof input);
    input.state = 2;  // a stored outgoing message: the SUBMIT path
    std::memcpy(input.pdu, pdu.c_str(), std::min(pdu.size(), sizeof input.pdu - 1));
    auto message = std::make_unique<SmsMessage>();
    if (pdu.size() >= sizeof input.pdu || ParseSms(&input, message.get()) != SMS_RESULT_OK) {
        return "ParseSms cannot read it back";
    }
    const std::string text(message->content, strnlen(message->content, sizeof message->content));
    if (text != pack) return "it reads back as \"" + text + "\"";
    const bool series = total > 1;
    if (series && (message->sms_flag_type != 1 || message->btPack != part || message->btTotalPack != total ||
                   message->mr != (reference & 0xFFU))) {
        return "its concatenation header does not read back";
    }
    return {};
}

}  // namespace

ComposeOutcome compose_text(const ComposeRequest& request, const std::string& text, Coding coding) {
    ComposeOutcome outcome;
    const Packs packs = split_packs(text, coding, request.language);
    if (!packs.error.empty()) {
        outcome.error = packs.error;
        return outcome;
    }
    const size_t total = packs.texts.size();
    for (size_t i = 0; i < total; ++i) {
        const std::string where = "part " + std::to_string(i + 1) + " of " + std::to_string(total);
        const auto message = message_for_pack(request, coding, packs.texts[i], i + 1, total);
        SmsSendPdu output;
        std::memset(&output, 0, sizeof output);
        if (!message || ComposeSms(&*message, &output) != SMS_RESULT_OK) {
            outcome.error = "ComposeSms refused " + where;
            if (message) outcome.error += septet_overflow(*message);
            outcome.parts.clear();
            return outcome;
        }
        ComposedPart part;
        part.pdu.assign(output.pdu, strnlen(output.pdu, sizeof output.pdu));
        part.tpdu_octets = split_pdu_text(part.pdu).tpdu.size();
        if (auto problem = read_back_problem(part.pdu, packs.texts[i], i + 1, total, request.reference);
            !problem.empty()) {
            outcome.error = "verification failed for " + where + " as " + coding_name(coding) + ": " + problem;
            outcome.parts.clear();
            return outcome;
        }
        outcome.parts.push_back(part);
    }
    return outcome;
}

}  // namespace smsutil::cli
