// `smsutil cdma`: bearer data decoded to JSON and encoded back, and the
// errors for octets and documents that are not bearer data.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <string>

#include "run_tool.hpp"

namespace smsutil::cli::test {
namespace {

using nlohmann::json;

json only_line(const ToolRun& run) {
    const auto lines = lines_of(run.out);
    EXPECT_EQ(lines.size(), 1U) << run.out;
    return lines.empty() ? json() : json::parse(lines[0]);
}

TEST(CdmaEncode, MessageIdentifierAlone) {
    const ToolRun run = run_tool({"cdma", "encode", R"({"message_id":{"type":2,"id":4660}})"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(only_line(run), (json{{"bearer_data", "0003212340"}, {"length", 5}}));
}

struct RoundTripCase {
    const char* name;
    const char* document;
};

class CdmaRoundTrip : public ::testing::TestWithParam<RoundTripCase> {};

TEST_P(CdmaRoundTrip, DecoderPrintsWhatTheEncoderRead) {
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
    [](const auto& info) { return std::string(info.param.name); });

struct BadInputCase {
    const char* name;
    const char* command;
    const char* input;
    const char* error_part;
};

class CdmaBadInput : public ::testing::TestWithParam<BadInputCase> {};

TEST_P(CdmaBadInput, PrintsTheCauseAndExitsWithOne) {
    const auto& c = GetParam();
    const ToolRun run = run_tool({"cdma", c.command, c.input});
    EXPECT_EQ(run.status, 1);
    const json out = only_line(run);
    EXPECT_NE(out["error"].get<std::string>().find(c.error_part), std::string::npos) << out;
}

INSTANTIATE_TEST_SUITE_P(
    Cases, CdmaBadInput,
    ::testing::Values(
        BadInputCase{"NotHex", "decode", "0g", "not a hexadecimal"},
        BadInputCase{"OneOctet", "decode", "00", "returned 100"},
        BadInputCase{"UserResponseOfTwoOctets", "decode", "02020101", "returned 100"},
        BadInputCase{"NotJson", "encode", "{", "not JSON"},
        BadInputCase{"UnknownKey", "encode", R"({"colour":1})", "colour: unknown key"},
        BadInputCase{"UnknownInnerKey", "encode", R"({"message_id":{"type":1,"id":2,"x":3}})", "message_id.x"},
        BadInputCase{"PriorityAboveThree", "encode", R"({"priority":4})", "priority: above 3"},
        BadInputCase{"NegativeLanguage", "encode", R"({"language":-1})", "unsigned"},
        BadInputCase{"DtmfLetter", "encode", R"({"callback":{"digit_mode":0,"digits":"12a"}})", "DTMF"},
        BadInputCase{"BadTime", "encode", R"({"mc_time":"2026-13"})", "mc_time"},
        BadInputCase{"Is91CountsDisagree", "encode",
                     R"({"user_data":{"encoding":1,"is91ep_type":133,"num_fields":3,"data":"4849"}})", "returned 101"},
        BadInputCase{"Is91UnknownType", "encode",
                     R"({"user_data":{"encoding":1,"is91ep_type":129,"num_fields":1,"data":"48"}})", "returned 4"}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(CdmaBadInput, Over255OctetsIsRefusedBeforeTheLibrary) {
    const ToolRun run = run_tool({"cdma", "decode", std::string(512, '0')});
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(only_line(run)["error"].get<std::string>().find("longer than 255"), std::string::npos);
}

}  // namespace
}  // namespace smsutil::cli::test
