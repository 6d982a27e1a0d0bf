// The framework's own refusals: each has its code, its HTTP status and a sentence.
#include "e2e/appliance.h"

#include <filesystem>

namespace e2e {
namespace {

constexpr std::size_t kBodyLimitBytes = 10'000;
constexpr std::size_t kUploadLimitBytes = 20'000;

struct ErrorCase {
    std::string name;
    std::string method;
    std::string path;
    std::string body;
    std::string type;
    int status;
    int code;
};

std::string Nested(int depth) {
    return R"({"value":)" + std::string(static_cast<std::size_t>(depth), '[') +
           std::string(static_cast<std::size_t>(depth), ']') + "}";
}

constexpr char kJson[] = "application/json";
constexpr char kForm[] = "multipart/form-data; boundary=b";
const std::string kModule = "/api/TEST.Module/v1/";
const std::string kEcho = kModule + "Echo";

// A form with one file.
std::string File(const std::string& field, const std::string& name, const std::string& content) {
    return "--b\r\nContent-Disposition: form-data; name=\"" + field + "\"; filename=\"" + name +
           "\"\r\n\r\n" + content + "\r\n--b--\r\n";
}

const std::vector<ErrorCase> kErrorCases = {
    {"unknown_api", "POST", "/api/TEST.None/v1/Echo", "{}", kJson, 404, 1001},
    {"api_in_other_case", "POST", "/api/test.module/v1/Echo", "{}", kJson, 404, 1001},
    {"unknown_version", "POST", "/api/TEST.Module/v3/Echo", "{}", kJson, 404, 1002},
    {"version_with_zero", "POST", "/api/TEST.Module/v01/Echo", "{}", kJson, 404, 1002},
    {"unknown_method", "POST", kModule + "Nothing", "{}", kJson, 404, 1003},
    {"method_of_another_version", "POST", "/api/TEST.Module/v2/Crash", "{}", kJson, 404, 1003},
    {"method_with_nul", "POST", kModule + "Echo%00", "{}", kJson, 404, 1003},
    {"method_with_newline", "POST", kModule + "Echo%0A", "{}", kJson, 404, 1003},
    {"malformed_json", "POST", kEcho, "{", kJson, 400, 1004},
    {"nested_too_deeply", "POST", kEcho, Nested(4000), kJson, 400, 1004},
    {"member_twice", "POST", kEcho, R"({"a":1,"a":2})", kJson, 400, 1004},
    {"not_a_number", "POST", kEcho, R"({"a":NaN})", kJson, 400, 1004},
    {"bytes_after_the_object", "POST", kEcho, "{} {}", kJson, 400, 1004},
    {"text_that_is_not_utf8", "POST", kEcho, "{\"a\":\"\xff\"}", kJson, 400, 1004},
    {"overlong_utf8", "POST", kEcho, "{\"a\":\"\xc0\xaf\"}", kJson, 400, 1004},
    {"half_a_surrogate_pair", "POST", kEcho, R"({"a":"\ud800"})", kJson, 400, 1004},
    {"no_object", "POST", kEcho, "[1]", kJson, 400, 1005},
    {"body_too_large", "POST", kEcho, std::string(kBodyLimitBytes + 1, ' '), kJson, 413, 1006},
    {"path_too_long", "GET", "/" + std::string(9000, 'x'), "", "", 413, 1006},
    {"upload_too_large", "POST", kModule + "Upload", File("f", "x", std::string(kUploadLimitBytes + 1, 'x')),
     kForm, 413, 1006},
    {"upload_too_large_with_its_form", "POST", kModule + "Upload",
     File("f", "x", std::string(kUploadLimitBytes + kBodyLimitBytes, 'x')), kForm, 413, 1006},
    {"upload_cut_short", "POST", kModule + "Upload", File("f", "x", "text").substr(0, 70), kForm, 400, 1018},
    {"upload_with_a_name_that_is_no_text", "POST", kModule + "Upload", File("f", "\xff", "text"), kForm, 400,
     1004},
    {"upload_of_a_field_that_is_no_text", "POST", kModule + "Upload", File("\xff", "x", "text"), kForm, 400,
     1004},
    {"other_multipart", "POST", kEcho, "x", "multipart/mixed; boundary=b", 415, 1007},
    {"damaged_form", "POST", kEcho, "--b\r\nContent-Disposition: form-data; name=\"f\"\r\n\r\nx", kForm, 400,
     1018},
    {"no_answer", "POST", kModule + "StaySilent", "{}", kJson, 500, 1009},
    {"exit", "POST", kModule + "Exit", "{}", kJson, 500, 1009},
    {"crash", "POST", kModule + "Crash", "{}", kJson, 500, 1010},
    {"exception", "POST", kModule + "Throw", "{}", kJson, 500, 1011},
    {"text_for_a_number", "POST", kModule + "Sleep", R"({"ms":"x"})", kJson, 500, 1011},
    {"number_beyond_32_bits", "POST", kModule + "Sleep", R"({"ms":4294967297})", kJson, 500, 1011},
    {"number_beyond_64_bits", "POST", kModule + "Sleep", R"({"ms":99999999999999999999999})", kJson, 500,
     1011},
    {"exception_of_no_class", "POST", kModule + "ThrowNumber", "{}", kJson, 500, 1011},
    {"time_limit", "POST", kModule + "Hang", "{}", kJson, 504, 1012},
    {"time_limit_without_alarm", "POST", kModule + "HangWithoutAlarm", "{}", kJson, 504, 1012},
    {"unknown_page", "GET", "/nothing", "", "", 404, 1016},
    {"page_below_a_page", "GET", "/health/x", "", "", 404, 1016},
    {"page_with_post", "POST", "/health", "{}", kJson, 405, 1017},
    {"method_with_get", "GET", kEcho, "", "", 405, 1017},
    {"method_with_put", "PUT", kEcho, "{}", kJson, 405, 1017},
    {"log_of_no_request", "GET", "/log", "", "", 400, 1018},
};

class FrameworkErrorTest : public ApplianceTest, public testing::WithParamInterface<ErrorCase> {
protected:
    static void SetUpTestSuite() {
        Start(
            Appliance::WithTestModule({"--request-time", "1", "--body-limit", std::to_string(kBodyLimitBytes),
                                       "--upload-limit", std::to_string(kUploadLimitBytes)}));
    }
};

TEST_P(FrameworkErrorTest, HasItsCode) {
    const ErrorCase& c = GetParam();
    httplib::Request request;
    request.method = c.method;
    request.path = c.path;
    request.body = c.body;
    request.set_header("Content-Type", c.type);
    const Answer answer = ToAnswer(owner_.Client().send(request));
    EXPECT_EQ(c.status, answer.status);
    EXPECT_EQ(c.code, answer.Code());
    EXPECT_TRUE(answer.body.isMember("success"));
    EXPECT_FALSE(answer.Succeeded());
    EXPECT_NE("", answer.Text());
    EXPECT_EQ(16U, answer.requestId.size());
    EXPECT_TRUE(owner_.Test("Echo").Succeeded());
    EXPECT_TRUE(std::filesystem::is_empty(appliance_->PackagePath("target/@CVData/upload")));
}

INSTANTIATE_TEST_SUITE_P(All, FrameworkErrorTest, testing::ValuesIn(kErrorCases),
                         [](const auto& c) { return c.param.name; });

}  // namespace
}  // namespace e2e
