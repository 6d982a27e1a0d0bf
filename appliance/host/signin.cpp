#include "host/signin.h"

#include "host/frameworkerrors.h"
#include "host/jsonparams.h"
#include "host/requestids.h"

namespace host {

Reply SignIn::MakeCode() {
    Json::Value data(Json::objectValue);
    data["code"] = codes_.Make(NewRequestId());
    data["validS"] = Json::Int64{OneTimeCodes::kValidity.count()};
    return SuccessReply(data);
}

Reply SignIn::Begin(const std::string& body, std::string& cookie) {
    Json::Value params;
    if (auto refusal = ReadParams(body, params)) {
        return *refusal;
    }
    if (!params["code"].isString() || !codes_.Redeem(params["code"].asString())) {
        return ReplyFor(FrameworkError::kWrongSignInCode);
    }
    cookie = sessions_.Begin();
    return SuccessReply(Json::Value());
}

}  // namespace host
