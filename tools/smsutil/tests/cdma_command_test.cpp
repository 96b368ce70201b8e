// `smsutil cdma`: bearer data decoded to JSON and encoded back, and the
// errors for octets and documents that are not bearer data.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <string>

#include "run_tool.hpp"

namespace smsutil::cli::test {
namespace {

using nlohmann::json;

json only_line(const ToolRun &run)
{
    const auto lines = lines_of(run.out);
    EXPECT_EQ(lines.size(), 1U) << run.out;
    return lines.empty() ? json() : json::parse(lines[0]);
}

TEST(CdmaEncode, MessageIdentifierAlone)
{
    const ToolRun run = run_tool({"cdma", "encode", R"({"message_id":{"type":2,"id":4660}})"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(only_line(run), (json{{"bearer_data", "0003212340"}, {"length", 5}}));
}

struct RoundTripCase {
    const char *name;
    const char *document;
};

class CdmaRoundTrip : public ::testing::TestWithParam<RoundTripCase> {};

TEST_P(CdmaRoundTrip, DecoderPrintsWhatTheEncoderRead)
{
    const json document = json::parse(GetParam().document);
    const ToolRun encoded = run_tool({"cdma", "encode", document.dump()});
    ASSERT_EQ(encoded.status, 0) << encoded.out;
    const ToolRun decoded = run_tool({"cdma", "decode", only_line(encoded)["bearer_data"]});
    ASSERT_EQ(decoded.status, 0) << decoded.out;
    json back = only_line(decoded);
    // The readable text is printed for people; the encoder ignores it.
    if (back.contains("user_data")) back["user_data"].erase("text");
    EXPECT_EQ(back, document);
}

INSTANTIATE_TEST_SUITE_P(
    Documents, CdmaRoundTrip,
    ::testing::Values(
        RoundTripCase{"Empty", "{}"},
        RoundTripCase{"EverySubparameter",
                      R"({"message_id":{"type":2,"id":65535},"user_response":7,
                          "mc_time":"2026-11-22T23:15:42","validity_absolute":"2026-12-31T00:00:00",
                          "validity_relative":{"code":167,"period":"P1D"},
                          "deferred_absolute":"2027-01-01T08:30:00",
                          "deferred_relative":{"code":0,"period":"PT5M"},"priority":3,"privacy":1,
                          "reply_option":{"user_ack":true,"delivery_ack":false},"num_messages":99,
                          "alert_on_delivery":true,"language":1,
                          "callback":{"digit_mode":0,"digits":"*5551234#"},"display_mode":2})"},
        RoundTripCase{"PackedSevenBitText",
                      R"({"user_data":{"encoding":2,"num_fields":5,"padding_bits":5,"data":"9197b366e0"}})"},
        RoundTripCase{"OctetText", R"({"user_data":{"encoding":0,"num_fields":3,"padding_bits":0,"data":"010203"}})"},
        RoundTripCase{"CallbackAsCharacters",
                      R"({"callback":{"digit_mode":1,"number_type":1,"number_plan":1,"digits":"+8613912345678"}})"},
        RoundTripCase{"TimeThatIsNotBcd", R"({"mc_time":"26112223154f"})"},
        RoundTripCase{"Is91ShortMessage",
                      R"({"user_data":{"encoding":1,"is91ep_type":133,"num_fields":2,"padding_bits":0,
                          "data":"4849"},"alert_on_delivery":true})"}),
    [](const auto &info) { return std::string(info.param.name); });

struct BadInputCase {
    const char *name;
    const char *command;
    const char *input;
    const char *error_part;
};

class CdmaBadInput : public ::testing::TestWithParam<BadInputCase> {};

TEST_P(CdmaBadInput, PrintsTheCauseAndExitsWithOne)
{
    const auto &c = GetParam();
    const ToolRun run = run_tool({"cdma", c.command, c.input});
    EXPECT_EQ(run.status, 1);
    const json out = only_line(run);
    EXPECT_NE(out["error"].get<std::string>().find(c.error_part), std::string::npos) << out;
}

INSTANTIATE_TEST_SUITE_P(
    Cases, CdmaBadInput,
    ::testing::Values(
        BadInputCase{"NotHex", "decode", "0g", "'g' (U+0067) at column 2 is not a hexadecimal digit"},
        BadInputCase{"OddLength", "decode", "000", "odd number"},
        BadInputCase{"OneOctet", "decode", "00", "returned 100"},
        BadInputCase{"UserResponseOfTwoOctets", "decode", "02020101", "returned 100"},
        BadInputCase{"OnlySubparameterCutShort", "decode", "0306261122", "subparameter 3 (mc_time) announces 6"},
        BadInputCase{"Is91CountsDisagree", "encode",
                     R"({"user_data":{"encoding":1,"is91ep_type":133,"num_fields":3,"data":"4849"}})", "returned 101"},
        BadInputCase{"Is91UnknownType", "encode",
                     R"({"user_data":{"encoding":1,"is91ep_type":129,"num_fields":1,"data":"48"}})", "returned 4"}),
    [](const auto &info) { return std::string(info.param.name); });

// What cannot be read as bearer data: one line on standard error naming
// the key, exit status 1, nothing on standard output.
struct JsonErrorCase {
    const char *name;
    const char *document;
    const char *message;
};

class CdmaEncodeJsonError : public ::testing::TestWithParam<JsonErrorCase> {};

TEST_P(CdmaEncodeJsonError, NamesTheKeyOnStandardError)
{
    const ToolRun run = run_in_process({"cdma", "encode", GetParam().document});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, std::string("smsutil: ") + GetParam().message + "\n");
}

INSTANTIATE_TEST_SUITE_P(
    Cases, CdmaEncodeJsonError,
    ::testing::Values(
        JsonErrorCase{"Empty", "",
                      "not JSON: parse error at line 1, column 1: syntax error while parsing value - "
                      "unexpected end of input; expected '[', '{', or a literal"},
        JsonErrorCase{"Unclosed", "{",
                      "not JSON: parse error at line 1, column 2: syntax error while parsing "
                      "object key - unexpected end of input; expected string literal"},
        JsonErrorCase{"NotAnObject", "[]", "the document: expected an object"},
        JsonErrorCase{"UnknownKey", R"({"colour":1})", "colour: unknown key"},
        JsonErrorCase{"UnknownInnerKey", R"({"message_id":{"type":1,"id":2,"x":3}})", "message_id.x: unknown key"},
        // Each key missing where its object needs it.
        JsonErrorCase{"MessageType", R"({"message_id":{"id":4660}})", "message_id.type: missing"},
        JsonErrorCase{"MessageId", R"({"message_id":{"type":2}})", "message_id.id: missing"},
        JsonErrorCase{"Encoding", R"({"user_data":{"num_fields":0,"data":""}})", "user_data.encoding: missing"},
        JsonErrorCase{"NumFields", R"({"user_data":{"encoding":0,"data":""}})", "user_data.num_fields: missing"},
        JsonErrorCase{"Data", R"({"user_data":{"encoding":0,"num_fields":0}})", "user_data.data: missing"},
        JsonErrorCase{"DataWithTextOnly", R"({"user_data":{"encoding":2,"text":"hello"}})",
                      R"(user_data.data: missing (the octets in hex; "text" is not read))"},
        JsonErrorCase{"Is91Type", R"({"user_data":{"encoding":1,"num_fields":0,"data":""}})",
                      "user_data.is91ep_type: missing"},
        JsonErrorCase{"PeriodCode", R"({"validity_relative":{"period":"P1D"}})", "validity_relative.code: missing"},
        JsonErrorCase{"UserAck", R"({"reply_option":{"delivery_ack":true}})", "reply_option.user_ack: missing"},
        JsonErrorCase{"DeliveryAck", R"({"reply_option":{"user_ack":true}})", "reply_option.delivery_ack: missing"},
        JsonErrorCase{"DigitMode", R"({"callback":{"digits":"1"}})", "callback.digit_mode: missing"},
        JsonErrorCase{"NumberType", R"({"callback":{"digit_mode":1,"number_plan":1,"digits":"1"}})",
                      "callback.number_type: missing"},
        JsonErrorCase{"NumberPlan", R"({"callback":{"digit_mode":1,"number_type":1,"digits":"1"}})",
                      "callback.number_plan: missing"},
        JsonErrorCase{"Digits", R"({"callback":{"digit_mode":0}})", "callback.digits: missing"},
        // Each key of the wrong type.
        JsonErrorCase{"MessageIdNumber", R"({"message_id":1})", "message_id: expected an object"},
        JsonErrorCase{"TypeText", R"({"message_id":{"type":"2","id":1}})",
                      "message_id.type: expected an unsigned number"},
        JsonErrorCase{"IdFraction", R"({"message_id":{"type":2,"id":1.5}})",
                      "message_id.id: expected an unsigned number"},
        JsonErrorCase{"UserDataText", R"({"user_data":"hi"})", "user_data: expected an object"},
        JsonErrorCase{"DataNumber", R"({"user_data":{"encoding":0,"num_fields":0,"data":12}})",
                      "user_data.data: expected a string"},
        JsonErrorCase{"PaddingText", R"({"user_data":{"encoding":0,"num_fields":0,"padding_bits":"1","data":""}})",
                      "user_data.padding_bits: expected an unsigned number"},
        JsonErrorCase{"UserResponseText", R"({"user_response":"1"})", "user_response: expected an unsigned number"},
        JsonErrorCase{"TimeNumber", R"({"mc_time":5})", "mc_time: expected a string"},
        JsonErrorCase{"PeriodNumber", R"({"deferred_relative":3})", "deferred_relative: expected an object"},
        JsonErrorCase{"CodeText", R"({"validity_relative":{"code":"x"}})",
                      "validity_relative.code: expected an unsigned number"},
        JsonErrorCase{"PriorityBool", R"({"priority":true})", "priority: expected an unsigned number"},
        JsonErrorCase{"PrivacyNegative", R"({"privacy":-1})", "privacy: expected an unsigned number"},
        JsonErrorCase{"ReplyOptionArray", R"({"reply_option":[]})", "reply_option: expected an object"},
        JsonErrorCase{"UserAckNumber", R"({"reply_option":{"user_ack":1,"delivery_ack":true}})",
                      "reply_option.user_ack: expected true or false"},
        JsonErrorCase{"NumMessagesNull", R"({"num_messages":null})", "num_messages: expected an unsigned number"},
        JsonErrorCase{"AlertNumber", R"({"alert_on_delivery":1})", "alert_on_delivery: expected true or false"},
        JsonErrorCase{"LanguageText", R"({"language":"en"})", "language: expected an unsigned number"},
        JsonErrorCase{"CallbackNull", R"({"callback":null})", "callback: expected an object"},
        JsonErrorCase{"DigitsNumber", R"({"callback":{"digit_mode":0,"digits":5}})",
                      "callback.digits: expected a string"},
        JsonErrorCase{"DisplayModeObject", R"({"display_mode":{}})", "display_mode: expected an unsigned number"},
        // Values of the right type out of range.
        JsonErrorCase{"PriorityAboveThree", R"({"priority":4})", "priority: above 3"},
        JsonErrorCase{"DtmfLetter", R"({"callback":{"digit_mode":0,"digits":"12a"}})",
                      "callback.digits: only 0-9, * and # travel as DTMF digits"},
        JsonErrorCase{"BadTime", R"({"mc_time":"2026-13"})",
                      "mc_time: expected YYYY-MM-DDThh:mm:ss (1996-2095) or 12 hexadecimal digits"}),
    [](const auto &info) { return std::string(info.param.name); });

struct DecodeInputCase {
    const char *name;
    std::vector<std::string> args;
    std::string input;
    int status;
    std::vector<json> lines;
};

class CdmaDecodeInput : public ::testing::TestWithParam<DecodeInputCase> {};

TEST_P(CdmaDecodeInput, PrintsOneLinePerBearerData)
{
    const auto &c = GetParam();
    std::vector<std::string> args{"cdma", "decode"};
    args.insert(args.end(), c.args.begin(), c.args.end());
    const ToolRun run = run_in_process(args, c.input);
    EXPECT_EQ(run.status, c.status);
    EXPECT_EQ(json_lines(run.out), c.lines);
}

const json kMessageId = {{"message_id", {{"type", 2}, {"id", 4660}}}};

INSTANTIATE_TEST_SUITE_P(
    Cases, CdmaDecodeInput,
    ::testing::Values(
        DecodeInputCase{"StandardInput", {}, "# two\r\n0003212340\r\n\r\n0003212340\r\n", 0, {kMessageId, kMessageId}},
        DecodeInputCase{"DashReadsStandardInput", {"-"}, "0003212340", 0, {kMessageId}},
        DecodeInputCase{"BadLineFailsTheRun",
                        {},
                        "0003212340\nzz\n",
                        1,
                        {kMessageId, {{"line", 2}, {"error", "'z' (U+007A) at column 1 is not a hexadecimal digit"}}}},
        DecodeInputCase{"LineLongerThanBearerData",
                        {},
                        std::string(512, '0'),
                        1,
                        {{{"line", 1}, {"error", "bearer data longer than 255 octets"}}}},
        DecodeInputCase{"CutShortAfterTheRest",
                        {"00032123400306261122"},
                        "",
                        0,
                        {{{"message_id", {{"type", 2}, {"id", 4660}}},
                          {"problems", {"subparameter 3 (mc_time) announces 6 octets, 3 remain"}}}}},
        DecodeInputCase{"LoneIdentifierAtTheEnd",
                        {"000321234008"},
                        "",
                        0,
                        {{{"message_id", {{"type", 2}, {"id", 4660}}},
                          {"problems", {"subparameter 8 (priority) has no length octet"}}}}},
        DecodeInputCase{"UnknownSubparameterCutShort",
                        {"0003212340"
                         "1405"},
                        "",
                        0,
                        {{{"message_id", {{"type", 2}, {"id", 4660}}},
                          {"problems", {"subparameter 20 announces 5 octets, 0 remain"}}}}}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(CdmaBadInput, Over255OctetsIsRefusedBeforeTheLibrary)
{
    const ToolRun run = run_tool({"cdma", "decode", std::string(512, '0')});
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(only_line(run)["error"].get<std::string>().find("longer than 255"), std::string::npos);
}

}  // namespace
}  // namespace smsutil::cli::test
