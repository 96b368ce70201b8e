// PDUs as people paste them from a modem session: the listing of
// AT+CMGL or AT+CMGR with its header lines, unsolicited +CMT and +CDS
// results, the command echo and OK, in whatever line ends the terminal
// wrote.  The reader hands out each PDU with what its header said, so
// that every command reading PDUs sees a modem block the same way.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <istream>
#include <optional>
#include <string>
#include <string_view>

namespace smsutil::cli {

// The longest line a PDU can make: a service-centre address of 12 octets
// and a TPDU of 164, two characters an octet.
inline constexpr size_t kMaxPduLineCharacters = 2 * (12 + 164);

// Lines of a stream ended by LF, CRLF or CR alone, without a UTF-8
// byte-order mark in front of the first.  A line keeps at most
// max_characters + 1 characters, so an endless line costs no memory and
// still shows that it is too long.
class LineReader {
public:
    struct Line {
        std::string text;
        size_t number = 0;  // 1-based
    };

    LineReader(std::istream &in, size_t max_characters) : in_(in), max_(max_characters) {}
    std::optional<Line> next();

private:
    std::istream &in_;
    size_t max_;
    size_t number_ = 0;
};

// What a header line said about the PDU on the line after it.
struct ModemHeader {
    std::string command;            // "+CMGL", "+CMGR", "+CMT" or "+CDS"
    std::optional<uint32_t> index;  // storage index: +CMGL, or the echo of AT+CMGR=<index>
    std::optional<uint32_t> stat;   // storage status, 0 to 3: +CMGL and +CMGR
    std::string alpha;              // the phone-book name the modem matched, without quotes
    uint32_t length = 0;            // TPDU octets, the service-centre address not counted
};

struct PduInput {
    std::string pdu;  // the PDU text, trimmed; empty when a header lost its PDU
    std::optional<ModemHeader> header;
    size_t line = 0;    // line of the PDU (or of the faulty header); 0 for a command-line argument
    std::string error;  // a header that is not one, or one without a PDU after it
};

class ModemReader {
public:
    explicit ModemReader(std::istream &in) : lines_(in, kMaxPduLineCharacters) {}

    // The next PDU or faulty header; nullopt at the end of the input.
    std::optional<PduInput> next();

private:
    void take(std::string_view text, size_t number);
    void flush_pending();

    LineReader lines_;
    std::deque<PduInput> ready_;
    std::optional<PduInput> pending_;     // a header still waiting for its PDU line
    std::optional<uint32_t> read_index_;  // from the last AT+CMGR=<index> echo
};

// A PDU given on the command line: no header, nothing skipped.
PduInput pdu_argument(std::string_view text);

// The storage state ParseSms takes: the header's status, "received unread"
// for an unsolicited result, else the one the user gave.
uint32_t storage_state(const PduInput &input, uint32_t given);

// "received unread", "received read", "stored unsent", "stored sent".
const char *stat_name(uint32_t stat);

// Empty when the header's <length> matches the PDU's TPDU octets (or
// there is no header), else what differs.
std::string header_length_problem(const PduInput &input, size_t tpdu_octets);

}  // namespace smsutil::cli
