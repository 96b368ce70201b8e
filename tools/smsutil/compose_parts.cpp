#include "compose_parts.hpp"

#include <algorithm>
#include <cstring>
#include <memory>
#include <optional>

#include "concatenation_reference.hpp"
#include "lost_character.hpp"
#include "packs.hpp"
#include "pdu_text.hpp"
#include "smsutil/smsutil.h"
#include "surrogate_text.hpp"

namespace smsutil::cli {
namespace {

// The message record for one pack: 7-bit packs travel as codes, UCS-2
// packs as UTF-8 that the library converts itself, emoji as the surrogate
// pairs it understands.
std::optional<SmsMessage> message_for_pack(const ComposeRequest &request, Coding coding, const std::string &pack,
                                           size_t part, size_t total)
{
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
        const std::string units = to_library_utf8(pack);
        if (units.size() >= sizeof message.content) return std::nullopt;
        std::memcpy(message.content, units.c_str(), units.size());
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
std::string septet_overflow(const SmsMessage &message)
{
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

std::optional<std::string> compose_pdu(const SmsMessage &message)
{
    SmsSendPdu output;
    std::memset(&output, 0, sizeof output);
    if (ComposeSms(&message, &output) != SMS_RESULT_OK) return std::nullopt;
    return std::string(output.pdu, strnlen(output.pdu, sizeof output.pdu));
}

// What ParseSms makes of a composed PDU; null when it refuses it.
std::unique_ptr<SmsMessage> parse_back(const std::string &pdu)
{
    SmsReadPdu input;
    std::memset(&input, 0, sizeof input);
    input.state = 2;  // a stored outgoing message: the SUBMIT path
    if (pdu.size() >= sizeof input.pdu) return nullptr;
    std::memcpy(input.pdu, pdu.c_str(), pdu.size());
    auto message = std::make_unique<SmsMessage>();
    if (ParseSms(&input, message.get()) != SMS_RESULT_OK) return nullptr;
    return message;
}

std::string text_read_back(const SmsMessage &message)
{
    return from_library_utf8(std::string_view(message.content, strnlen(message.content, sizeof message.content)));
}

// When the PDU does not read back at all there is no text to compare: the
// character lost is the one whose prefix of the pack first fails to come
// back, composed the same way.
std::optional<LostCharacter> first_character_breaking(const ComposeRequest &request, Coding coding,
                                                      const std::string &pack, size_t part, size_t total)
{
    size_t position = 1;
    for (size_t pos = 0; pos < pack.size(); ++position) {
        const Utf8Character c = utf8_character_at(pack, pos);
        pos += c.length;
        const std::string prefix = pack.substr(0, pos);
        const auto message = message_for_pack(request, coding, prefix, part, total);
        const auto pdu = message ? compose_pdu(*message) : std::nullopt;
        const auto back = pdu ? parse_back(*pdu) : nullptr;
        if (!back || text_read_back(*back) != prefix) return LostCharacter{position, c.code_point};
    }
    return std::nullopt;
}

// Empty when the PDU reads back as sent, else what differs.  first is the
// position in the whole text of the pack's first character.
std::string read_back_problem(const ComposeRequest &request, Coding coding, const std::string &pdu,
                              const std::string &pack, size_t first, size_t part, size_t total)
{
    const auto message = parse_back(pdu);
    std::optional<LostCharacter> lost;
    std::string problem;
    if (!message) {
        lost = first_character_breaking(request, coding, pack, part, total);
        problem = "ParseSms cannot read it back";
    } else if (const std::string text = text_read_back(*message); text != pack) {
        lost = first_lost_character(pack, text);
        problem = "it reads back as \"" + text + "\"";
    } else if (total > 1 && (message->sms_flag_type != 1 || message->btPack != part || message->btTotalPack != total ||
                             message->mr != (request.reference & 0xFFU))) {
        return "its concatenation header does not read back";
    } else {
        return {};
    }
    if (!lost) return problem;
    lost->position += first - 1;
    return describe(*lost) + ", would be lost: " + problem;
}

}  // namespace

ComposeOutcome compose_text(const ComposeRequest &given, const std::string &text, Coding coding)
{
    ComposeOutcome outcome;
    const Packs packs = split_packs(text, coding, given.language);
    if (!packs.error.empty()) {
        outcome.error = packs.error;
        outcome.over_limit = packs.over_limit;
        return outcome;
    }
    const size_t total = packs.texts.size();
    ComposeRequest request = given;
    if (!request.reference_given && total > 1) request.reference = next_concatenation_reference();
    size_t first = 1;
    for (size_t i = 0; i < total; ++i) {
        const std::string where = "part " + std::to_string(i + 1) + " of " + std::to_string(total);
        const auto message = message_for_pack(request, coding, packs.texts[i], i + 1, total);
        const auto pdu = message ? compose_pdu(*message) : std::nullopt;
        if (!pdu) {
            outcome.error = "ComposeSms refused " + where;
            if (message) outcome.error += septet_overflow(*message);
            outcome.parts.clear();
            return outcome;
        }
        ComposedPart part;
        part.pdu = *pdu;
        part.tpdu_octets = split_pdu_text(part.pdu).tpdu.size();
        if (auto problem = read_back_problem(request, coding, part.pdu, packs.texts[i], first, i + 1, total);
            !problem.empty()) {
            outcome.error = "verification failed for " + where + " as " + coding_name(coding) + ": " + problem;
            outcome.parts.clear();
            return outcome;
        }
        outcome.parts.push_back(part);
        first += utf8_character_count(packs.texts[i]);
    }
    return outcome;
}

}  // namespace smsutil::cli
