#include "modem_input.hpp"

#include <array>
#include <vector>

#include "hex.hpp"

namespace smsutil::cli {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

struct HeaderForm {
    std::string_view command;
    bool has_index;
    bool has_stat;
    const char *layout;  // for the message when a header does not read
};

// PDU-mode result lines that announce a PDU on the next line.  The modem
// may leave out the empty <alpha> field altogether.
constexpr std::array<HeaderForm, 4> kHeaderForms{{
    {"+CMGL", true, true, "+CMGL: <index>,<stat>,[<alpha>],<length>"},
    {"+CMGR", false, true, "+CMGR: <stat>,[<alpha>],<length>"},
    {"+CMT", false, false, "+CMT: [<alpha>],<length>"},
    {"+CDS", false, false, "+CDS: <length>"},
}};

constexpr uint32_t kMaxStat = 3;

bool starts_with_ignoring_case(std::string_view text, std::string_view prefix)
{
    if (text.size() < prefix.size()) return false;
    for (size_t i = 0; i < prefix.size(); ++i) {
        const char c = text[i] >= 'a' && text[i] <= 'z' ? static_cast<char>(text[i] - 'a' + 'A') : text[i];
        if (c != prefix[i]) return false;
    }
    return true;
}

std::optional<uint32_t> number_of(std::string_view text)
{
    text = trim(text);
    if (text.empty() || text.size() > 9) return std::nullopt;
    uint32_t value = 0;
    for (char c : text) {
        if (c < '0' || c > '9') return std::nullopt;
        value = value * 10 + static_cast<uint32_t>(c - '0');
    }
    return value;
}

// Comma-separated fields; a quoted field may hold commas.  nullopt for a
// quote that is never closed.
std::optional<std::vector<std::string_view>> fields_of(std::string_view text)
{
    std::vector<std::string_view> fields;
    size_t start = 0;
    bool quoted = false;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '"') quoted = !quoted;
        if (text[i] == ',' && !quoted) {
            fields.push_back(text.substr(start, i - start));
            start = i + 1;
        }
    }
    if (quoted) return std::nullopt;
    fields.push_back(text.substr(start));
    return fields;
}

const HeaderForm *header_form(std::string_view text)
{
    for (const auto &form : kHeaderForms) {
        if (text.size() > form.command.size() && text.substr(0, form.command.size()) == form.command &&
            text[form.command.size()] == ':') {
            return &form;
        }
    }
    return nullptr;
}

// The header, or the reason it is not one in error.
PduInput read_header(const HeaderForm &form, std::string_view text, std::optional<uint32_t> read_index)
{
    PduInput out;
    ModemHeader header;
    header.command = std::string(form.command);
    const auto fields = fields_of(text.substr(form.command.size() + 1));
    const size_t numbers_before = (form.has_index ? 1U : 0U) + (form.has_stat ? 1U : 0U);
    const size_t stat_at = form.has_index ? 1 : 0;
    if (form.has_stat && fields && fields->size() > stat_at && trim((*fields)[stat_at]).starts_with('"')) {
        out.error = header.command + " of a text-mode listing (AT+CMGF=1); PDU mode (AT+CMGF=0) lists the PDUs";
        return out;
    }
    if (!fields || fields->size() < numbers_before + 1 || fields->size() > numbers_before + 2) {
        out.error = std::string("not a header of the form ") + form.layout;
        return out;
    }
    size_t at = 0;
    if (form.has_index) header.index = number_of((*fields)[at++]);
    if (form.has_stat) {
        header.stat = number_of((*fields)[at++]);
        if (header.stat && *header.stat > kMaxStat) {
            out.error = header.command + " status " + std::to_string(*header.stat) + " is not one of 0 to 3";
            return out;
        }
    }
    if (!form.has_index) header.index = read_index;
    if (fields->size() == numbers_before + 2) {
        std::string_view alpha = trim((*fields)[at++]);
        if (alpha.size() >= 2 && alpha.front() == '"' && alpha.back() == '"') alpha = alpha.substr(1, alpha.size() - 2);
        header.alpha = std::string(alpha);
    }
    const auto length = number_of((*fields)[at]);
    if ((form.has_index && !header.index) || (form.has_stat && !header.stat) || !length) {
        out.error = std::string("not a header of the form ") + form.layout;
        return out;
    }
    header.length = *length;
    out.header = header;
    return out;
}

// The echo of AT+CMGR=<index> names the index its answer leaves out.
std::optional<uint32_t> read_command_index(std::string_view echo)
{
    constexpr std::string_view kRead = "AT+CMGR=";
    if (!starts_with_ignoring_case(echo, kRead)) return std::nullopt;
    return number_of(echo.substr(kRead.size()));
}

}  // namespace

std::optional<LineReader::Line> LineReader::next()
{
    Line line;
    bool any = false;
    for (int c = in_.get(); c != std::char_traits<char>::eof(); c = in_.get()) {
        any = true;
        if (c == '\n') break;
        if (c == '\r') {
            if (in_.peek() == '\n') in_.get();
            break;
        }
        if (line.text.size() <= max_) line.text.push_back(static_cast<char>(c));
    }
    if (!any) return std::nullopt;
    line.number = ++number_;
    if (line.number == 1 && std::string_view(line.text).substr(0, kByteOrderMark.size()) == kByteOrderMark) {
        line.text.erase(0, kByteOrderMark.size());
    }
    return line;
}

std::optional<PduInput> ModemReader::next()
{
    while (ready_.empty()) {
        auto line = lines_.next();
        if (!line) {
            flush_pending();
            break;
        }
        take(trim(line->text), line->number);
    }
    if (ready_.empty()) return std::nullopt;
    PduInput input = std::move(ready_.front());
    ready_.pop_front();
    return input;
}

void ModemReader::take(std::string_view text, size_t number)
{
    if (text.empty() || text.front() == '#') return;
    const bool echo = starts_with_ignoring_case(text, "AT");
    const HeaderForm *form = echo ? nullptr : header_form(text);
    if (!echo && !form && text != "OK") {
        PduInput pdu = pending_ ? std::move(*pending_) : PduInput{};
        pending_.reset();
        pdu.pdu = std::string(text);
        pdu.line = number;
        ready_.push_back(std::move(pdu));
        return;
    }
    // Anything but a PDU line ends the wait of the header before it.
    flush_pending();
    if (echo) read_index_ = read_command_index(text);
    if (!form) return;
    PduInput header = read_header(*form, text, form->command == "+CMGR" ? read_index_ : std::nullopt);
    if (form->command == "+CMGR") read_index_.reset();
    header.line = number;
    if (header.error.empty()) {
        pending_ = std::move(header);
    } else {
        header.pdu = std::string(text);
        ready_.push_back(std::move(header));
    }
}

void ModemReader::flush_pending()
{
    if (!pending_) return;
    pending_->error = pending_->header->command + " header without a PDU line after it";
    ready_.push_back(std::move(*pending_));
    pending_.reset();
}

PduInput pdu_argument(std::string_view text)
{
    PduInput input;
    input.pdu = std::string(trim(text));
    return input;
}

uint32_t storage_state(const PduInput &input, uint32_t given)
{
    if (!input.header) return given;
    if (input.header->stat) return *input.header->stat;
    return 0;
}

const char *stat_name(uint32_t stat)
{
    static constexpr std::array<const char *, 4> kNames{"received unread", "received read", "stored unsent",
                                                        "stored sent"};
    return stat < kNames.size() ? kNames[stat] : "unknown";
}

std::string header_length_problem(const PduInput &input, size_t tpdu_octets)
{
    if (!input.header || input.header->length == tpdu_octets) return {};
    return input.header->command + " gives a length of " + std::to_string(input.header->length) +
           " TPDU octets, the PDU holds " + std::to_string(tpdu_octets);
}

}  // namespace smsutil::cli
