// sms_pdu_encode: checks the caller's options and text, chooses how the
// text is sent, and writes its parts only when all of them fit.
#include "pdu/encode_plan.hpp"
#include "pdu/encode_submit.hpp"
#include "smsutil/sms_pdu.h"

namespace {

using namespace smsutil::pdu;

// Bit 0 (the default alphabet) is always allowed and may be set.
constexpr std::uint32_t kLanguageBits = 1u << kDefaultLanguage | 1u << kTurkish | 1u << kSpanish | 1u << kPortuguese;

bool options_valid(const sms_pdu_encode_options &options)
{
    return (options.languages & ~kLanguageBits) == 0 && options.max_parts <= SMS_PDU_MAX_PARTS &&
           (options.has_message_class == 0 || options.message_class <= 3);
}

}  // namespace

extern "C" {

SMSUTIL_API int sms_pdu_encode(const char *utf8, size_t len, const sms_pdu_encode_options *options, sms_pdu_part *parts,
                               size_t capacity, size_t *count)
{
    if (count != nullptr) *count = 0;
    if (options == nullptr || count == nullptr || (utf8 == nullptr && len != 0) || (parts == nullptr && capacity != 0))
        return SMS_PDU_ERR_NULL;
    if (!options_valid(*options)) return SMS_PDU_ERR_BAD_OPTIONS;
    Envelope envelope;
    if (const int result = make_envelope(*options, envelope); result != SMS_PDU_OK) return result;

    const std::span<const std::uint8_t> text(reinterpret_cast<const std::uint8_t *>(utf8), len);
    Plan plan;
    if (!make_plan(text, options->languages, options->reference_16bit != 0, plan)) return SMS_PDU_ERR_BAD_UTF8;
    *count = plan.parts;
    const std::size_t max_parts = options->max_parts == 0 ? SMS_PDU_MAX_PARTS : options->max_parts;
    if (plan.parts > max_parts) return SMS_PDU_ERR_TOO_MANY_PARTS;
    if (plan.parts > capacity) return SMS_PDU_ERR_NO_ROOM;

    Cutter cutter(text, plan);
    Cutter::Piece piece;
    for (std::size_t i = 0; i < plan.parts && cutter.next(piece); ++i)
        write_part(envelope, plan, text, piece, i + 1, parts[i]);
    return SMS_PDU_OK;
}

}  // extern "C"
