// Sending and receiving meet: a text cut into packs, each pack composed into
// a SUBMIT PDU and read back as a stored outgoing message, gives back every
// pack's text, part number and total.
#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "smsutil/sms_api.h"
#include "smsutil/sms_charset.h"

namespace {

// UTF-8 characters, one string each.
std::vector<std::string> chars_of(const std::string &utf8)
{
    std::vector<std::string> out;
    for (std::size_t i = 0; i < utf8.size();) {
        const unsigned char b = static_cast<unsigned char>(utf8[i]);
        const std::size_t n = b < 0x80 ? 1 : b < 0xE0 ? 2 : 3;
        out.push_back(utf8.substr(i, n));
        i += n;
    }
    return out;
}

const std::string kCommon =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789.,;:!?'\"()*+-/<=>%&#@$_"
    "\xC2\xA3\xC2\xA5\xC3\xA9\xC3\xB9\xC3\xB2\xC3\x85\xC3\xA5\xCE\x94\xCE\xA6\xCE\x93\xCE\x9B\xCE\xA9"
    "\xC3\x84\xC3\x96\xC3\x91\xC3\x9C\xC2\xA7\xC3\xA4\xC3\xB6\xC3\xB1\xC3\xBC\xC3\xA0\xC3\x89"
    "{}[]~^\\|";

struct Language {
    const char *name;
    uint32_t coding;
    std::string alphabet;
};

// Characters that survive the 7-bit round trip under each language.  The
// national rows put the space at the escape position, and the Turkish row's
// own letters sit where the receiver reads the default row, so neither is
// drawn here.
std::vector<Language> languages()
{
    return {
        {"default", 0, kCommon + " \xC3\xA8\xC3\xAC\xC3\x87\xC3\x98\xC3\xB8\xC3\x86\xC3\xA6\xC2\xA1\xC2\xBF\xE2\x82\xAC"},
        {"turkish", 1, kCommon},
        {"spanish", 2, kCommon + "\xC3\xA1\xC3\xAD\xC3\xB3\xC3\xBA\xC3\x81\xC3\x8D\xC3\x93\xC3\x9A\xC3\xA7\xE2\x82\xAC"},
    };
}

std::string random_text(std::mt19937 &rng, const std::vector<std::string> &alphabet, std::size_t n)
{
    std::string text;
    for (std::size_t i = 0; i < n; ++i) text += alphabet[rng() % alphabet.size()];
    return text;
}

// Septets that the user data header and its fill take in front of the text.
uint32_t header_septets(bool concatenated, bool national)
{
    const uint32_t udhl = (concatenated ? 5u : 0u) + (national ? 3u : 0u);
    return udhl == 0 ? 0 : (8 * (udhl + 1) + 6) / 7;
}

struct Sent {
    int32_t ret;
    std::string text;
    SmsMessage parsed;
};

Sent send_and_read(const SmsPack &pack, uint32_t content_code, uint32_t coding, int32_t total, int32_t part,
                   uint16_t mr)
{
    SmsMessage msg{};
    std::strcpy(msg.szAddress, "+491701234567");
    std::strcpy(msg.sca, "+8613800100500");
    msg.sms_content_code = content_code;
    msg.byteCoding = coding;
    msg.mr = mr;
    if (total > 1) {
        msg.sms_flag_type = 1;
        msg.btTotalPack = static_cast<uint8_t>(total);
        msg.btPack = static_cast<uint8_t>(part);
    }
    if (content_code == SMS_CONTENT_7BIT) {
        uint32_t n = 0;
        EXPECT_EQ(UTF8_TO_7BIT(pack.content, reinterpret_cast<uint8_t *>(msg.content), 512, &n, coding), 0);
        msg.byContentLen = static_cast<uint8_t>(n);
    } else {
        std::strcpy(msg.content, pack.content);
    }
    SmsSendPdu pdu{};
    Sent sent{ComposeSms(&msg, &pdu), pack.content, {}};
    if (sent.ret != 0) return sent;
    SmsReadPdu in{};
    in.state = 2;
    std::strcpy(in.pdu, pdu.pdu);
    EXPECT_EQ(ParseSms(&in, &sent.parsed), 0) << pdu.pdu;
    EXPECT_STREQ(sent.parsed.szAddress, "+491701234567");
    return sent;
}

TEST(MessageRoundTrip, SevenBitTextsInEveryLanguage)
{
    std::mt19937 rng(5150);
    for (const Language &lang : languages()) {
        const auto alphabet = chars_of(lang.alphabet);
        for (int round = 0; round < 60; ++round) {
            const std::size_t n = 1 + rng() % 400;
            const std::string text = random_text(rng, alphabet, n);
            SmsPack packs[SMS_MAX_PACKS]{};
            const int32_t total =
                sms_util_split_pack(text.c_str(), static_cast<int32_t>(text.size()), 1, lang.coding, packs);
            if (total < 0) continue;  // more than four packs of escape-heavy text
            std::string joined;
            for (int32_t k = 0; k < total; ++k) {
                uint8_t codes[1024];
                uint32_t ncodes = 0;
                ASSERT_EQ(UTF8_TO_7BIT(packs[k].content, codes, sizeof codes, &ncodes, lang.coding), 0);
                const bool fits = ncodes + header_septets(total > 1, lang.coding != 0) <= 160;
                const Sent sent = send_and_read(packs[k], SMS_CONTENT_7BIT, lang.coding, total, k + 1,
                                                static_cast<uint16_t>(round));
                // A full pack plus a national-language header is more than one
                // message holds: the encoder refuses it rather than cut it.
                ASSERT_EQ(sent.ret, fits ? 0 : -1) << lang.name << " pack " << k << " codes " << ncodes;
                if (sent.ret != 0) continue;
                EXPECT_EQ(std::string(sent.parsed.content), sent.text) << lang.name;
                if (total > 1) {
                    EXPECT_EQ(sent.parsed.sms_flag_type, 1u);
                    EXPECT_EQ(sent.parsed.btTotalPack, total);
                    EXPECT_EQ(sent.parsed.btPack, k + 1);
                    EXPECT_EQ(sent.parsed.mr, round & 0xFF);
                }
                joined += packs[k].content;
            }
            if (lang.coding == 0) {
                EXPECT_EQ(joined, text);
            }
        }
    }
}

TEST(MessageRoundTrip, Ucs2Texts)
{
    std::mt19937 rng(4242);
    for (int round = 0; round < 80; ++round) {
        const std::size_t n = 1 + rng() % 268;
        std::string text;
        for (std::size_t i = 0; i < n; ++i) {
            // Basic Multilingual Plane, no surrogates, no U+0000.
            uint32_t u;
            do u = 1 + rng() % 0xFFFE; while (u >= 0xD800 && u <= 0xDFFF);
            if (u < 0x80) {
                text += static_cast<char>(u);
            } else if (u < 0x800) {
                text += static_cast<char>(0xC0 | (u >> 6));
                text += static_cast<char>(0x80 | (u & 0x3F));
            } else {
                text += static_cast<char>(0xE0 | (u >> 12));
                text += static_cast<char>(0x80 | ((u >> 6) & 0x3F));
                text += static_cast<char>(0x80 | (u & 0x3F));
            }
        }
        SmsPack packs[SMS_MAX_PACKS]{};
        const int32_t total = sms_util_split_pack(text.c_str(), static_cast<int32_t>(text.size()), 0, 0, packs);
        ASSERT_GE(total, 1);
        std::string joined;
        for (int32_t k = 0; k < total; ++k) {
            const Sent sent = send_and_read(packs[k], SMS_CONTENT_UCS2, 0, total, k + 1, 0x77);
            ASSERT_EQ(sent.ret, 0);
            EXPECT_EQ(std::string(sent.parsed.content), sent.text);
            if (total > 1) {
                EXPECT_EQ(sent.parsed.btPack, k + 1);
            }
            joined += sent.parsed.content;
        }
        EXPECT_EQ(joined, text);
    }
}

}  // namespace
