// A CGI program that makes the module call of the host: loads the module, has "List" served for an authorised
// caller, prints the reply.
#include "host/module.h"
#include "host/reply.h"
#include "libcamvora/requestcontent.h"

#include <cstdio>
#include <exception>
#include <string>

namespace {

constexpr char kModule[] = "/var/packages/Camvora/target/webapi/ORVA.Camvora.AddOns.so";

std::string List() {
    const host::Module module(kModule);
    ORVA::RequestContent request;
    request.authorized = true;
    request.method = "List";
    ORVA::ResponseContent answer;
    ORVA::APIRequest apiRequest(request);
    ORVA::APIResponse apiResponse(answer);
    module.Rows().front().handler(&apiRequest, &apiResponse);
    return host::SuccessReply(answer.data).body;
}

}  // namespace

int main() {
    try {
        std::printf("Content-Type: application/json\r\n\r\n%s", List().c_str());
        return 0;
    } catch (const std::exception& exception) {
        std::fprintf(stderr, "list.cgi: %s\n", exception.what());
        return 1;
    }
}
