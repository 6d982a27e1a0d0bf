// Admission and dispatch of a request.
#include "fake/script.h"

#include "cases.h"

#include <gtest/gtest.h>
#include <json/value.h>

#include <map>
#include <string>
#include <vector>

namespace {

// What every request does first: the handler's constructor, then the question who calls.
const Steps kBegin = {"GetParam relayedCmd false", "IsCmsHost", "IsAuthorized"};

const Steps kReadCaller = {"IsCVRunning", "GetParam isCrossSite 0", R"(GetParam client "")"};
const Steps kReadProof = {R"(GetParam cookie "cookie")", "GetCookie timestamp ''"};
const Steps kRefused = {"SetError 105 null"};
const Steps kAdmitted = {"GetAPIMethod"};

Steps Unchecked() {
    return kReadCaller + kRefused;
}

Steps Checked(const std::string& check, const Steps& outcome) {
    return kReadCaller + kReadProof + Steps{check} + outcome;
}

// The method is none of the table's, so an admitted request ends with the question for it.
ORVA::RequestContent Authorized(const char* params) {
    return fake::Authorized("NotServed", params);
}

ORVA::RequestContent Paired(const char* params, const std::map<std::string, std::string>& cookies = {}) {
    return fake::Unauthorized("NotServed", params, cookies);
}

const char kNoAnswers[] = "{}";
const char kPairMatches[] = R"({"IsAuthPairMatch":true})";
const char kHostMatches[] = R"({"SlaveHXAuthentication::IsAuthByPairMatch":true})";
const char kStopped[] = R"({"IsAuthPairMatch":true,"IsCVRunning":false})";

const char kProof[] = R"({"client":"NVR","cookie":"c"})";
const char kHostProof[] = R"({"client":"NVR","cookie":"c","isCrossSite":1})";

struct AdmissionCase {
    const char* name;
    ORVA::RequestContent request;
    const char* answers;
    Steps steps;  // after kBegin
};

const AdmissionCase kAdmissionCases[] = {
    {"authorized", Authorized("{}"), kNoAnswers, kAdmitted},
    {"authorized_while_stopped", Authorized("{}"), kStopped, kAdmitted},

    {"client_missing", Paired("{}"), kPairMatches, Unchecked()},
    {"client_unknown", Paired(R"({"client":"CAMERA"})"), kPairMatches, Unchecked()},
    {"client_in_lower_case", Paired(R"({"client":"nvr"})"), kPairMatches, Unchecked()},
    {"client_with_more_text", Paired(R"({"client":"NVR2"})"), kPairMatches, Unchecked()},
    {"client_with_less_text", Paired(R"({"client":"REC"})"), kPairMatches, Unchecked()},
    {"client_with_nul", Paired(R"({"client":"NVR\u0000"})"), kPairMatches, Unchecked()},
    {"package_stopped", Paired(kProof), kStopped, Unchecked()},

    {"mv180rx", Paired(R"({"client":"MV180RX","cookie":"c"})"), kPairMatches,
     Checked("IsAuthPairMatch c ''", kAdmitted)},
    {"nvr", Paired(R"({"client":"NVR","cookie":"c"})"), kPairMatches,
     Checked("IsAuthPairMatch c ''", kAdmitted)},
    {"rec_server", Paired(R"({"client":"REC_SERVER","cookie":"c"})"), kPairMatches,
     Checked("IsAuthPairMatch c ''", kAdmitted)},

    {"proof_missing", Paired(R"({"client":"NVR"})"), kPairMatches,
     Checked("IsAuthPairMatch cookie ''", kAdmitted)},
    {"proof_empty", Paired(R"({"client":"NVR","cookie":""})"), kPairMatches,
     Checked("IsAuthPairMatch '' ''", kAdmitted)},
    {"proof_with_timestamp", Paired(kProof, {{"timestamp", "170"}}), kPairMatches,
     Checked("IsAuthPairMatch c 170", kAdmitted)},
    {"proof_does_not_match", Paired(kProof), kHostMatches, Checked("IsAuthPairMatch c ''", kRefused)},

    {"cross_site_2", Paired(R"({"client":"NVR","isCrossSite":2})"), kPairMatches,
     Checked("IsAuthPairMatch cookie ''", kAdmitted)},
    {"cross_site_1", Paired(kHostProof, {{"timestamp", "170"}}), kHostMatches,
     Checked("SlaveHXAuthentication::IsAuthByPairMatch c 170", kAdmitted)},
    {"cross_site_1_does_not_match", Paired(kHostProof), kPairMatches,
     Checked("SlaveHXAuthentication::IsAuthByPairMatch c ''", kRefused)},
};

using Admission = TableTest<AdmissionCase>;

TEST_P(Admission, AsksInOrder) {
    fake::AnswerEach(GetParam().answers);
    fake::Serve(Process, GetParam().request);
    EXPECT_EQ(fake::Lines(kBegin + GetParam().steps), fake::Journal());
}

INSTANTIATE_TEST_SUITE_P(, Admission, testing::ValuesIn(kAdmissionCases), CaseName<AdmissionCase>);

struct DispatchCase {
    const char* name;
    std::string method;
    const char* answer;
};

const DispatchCase kDispatchCases[] = {
    {"method_empty", "", "SetError 401 null"},
    {"method_unknown", "Uninstall", ""},
    {"method_in_lower_case", "list", ""},
    {"method_with_more_text", "ListAll", ""},
    {"method_with_less_text", "Lis", ""},
    {"method_with_text_behind_a_nul", std::string("List\0All", 8), ""},
};

using Dispatch = TableTest<DispatchCase>;

TEST_P(Dispatch, Answers) {
    EXPECT_EQ(GetParam().answer, fake::Serve(Process, fake::Authorized(GetParam().method)));
}

INSTANTIATE_TEST_SUITE_P(, Dispatch, testing::ValuesIn(kDispatchCases), CaseName<DispatchCase>);

struct WrongTypeCase {
    const char* name;
    ORVA::RequestContent request;
};

const WrongTypeCase kWrongTypeCases[] = {
    {"relayed_command_is_text", fake::Authorized("List", R"({"relayedCmd":"yes"})")},
    {"cross_site_is_text", fake::Unauthorized("List", R"({"isCrossSite":"1"})")},
    {"client_is_object", fake::Unauthorized("List", R"({"client":{}})")},
    {"cookie_is_array", fake::Unauthorized("List", R"({"client":"NVR","cookie":[]})")},
    {"service_is_text", fake::Authorized("GetInfo", R"({"service":"x"})")},
    {"service_is_beyond_32_bits", fake::Authorized("GetInfo", R"({"service":3000000000})")},
    {"redirection_is_text", fake::Authorized("GetPkgInfo", R"({"isRedirectCgi":"yes"})")},
    {"path_is_object", fake::Authorized("LoadFile", R"({"filePath":{}})")},
    {"switch_is_missing", fake::Authorized("SetAutoUpdate", R"({"service":1})")},
    {"switch_is_text", fake::Authorized("SetAutoUpdate", R"({"service":1,"blEnable":"true"})")},
    {"language_is_array", fake::Authorized("GetAppsStatus", R"({"lang":["de"]})")},
};

using WrongType = TableTest<WrongTypeCase>;

TEST_P(WrongType, ThrowsWithoutAnAnswer) {
    EXPECT_THROW(fake::Serve(Process, GetParam().request), Json::LogicError);
    EXPECT_EQ(std::string::npos, fake::Journal().find("\nSet"));
}

INSTANTIATE_TEST_SUITE_P(, WrongType, testing::ValuesIn(kWrongTypeCases), CaseName<WrongTypeCase>);

}  // namespace
