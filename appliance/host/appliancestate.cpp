#include "host/appliancestate.h"

#include "host/downloads.h"
#include "host/operations.h"
#include "host/pairing.h"
#include "host/releases.h"

#include "libcamvora/operations.h"
#include "platform/cms.h"
#include "platform/plibc.h"
#include "platform/services.h"
#include "platform/settings.h"

#include <unistd.h>

#include <array>
#include <utility>

namespace host {

namespace {

// A service and the operation on it are to be of one moment, or an operation looks as if it had been cut.
constexpr int kAttempts = 3;

constexpr char kPackageFile[] = "/var/packages/Camvora/INFO";

std::string HostName() {
    std::array<char, 256> name{};
    return gethostname(name.data(), name.size() - 1) == 0 ? name.data() : "";
}

std::string PackageVersion() {
    std::array<char, 256> version{};
    (void)PLIBCFileGetKeyValue(kPackageFile, "version", version.data(), static_cast<int>(version.size()), 0);
    return version.data();
}

Json::Value Appliance() {
    Json::Value appliance(Json::objectValue);
    appliance["name"] = HostName();
    appliance["model"] = GetHxModelName("");
    appliance["version"] = PackageVersion();
    appliance["blCmsHost"] = IsCmsHost();
    appliance["blStarted"] = IsCVRunning();
    return appliance;
}

Json::Value Services() {
    Json::Value services(Json::arrayValue);
    for (int service = ADDON_SERVICE_DEVICE_PACK; service <= ADDON_SERVICE_LOCAL_DISPLAY; ++service) {
        services.append(GetServiceInfo(static_cast<ADDON_SERVICE>(service)));
    }
    return services;
}

}  // namespace

Json::Value ApplianceState() {
    Json::Value state(Json::objectValue);
    state["appliance"] = Appliance();
    state["pairs"] = Pairing::Pairs();
    state["operations"] = RunningOperations();
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        state["services"] = Services();
        Json::Value operations = RunningOperations();
        if (operations == state["operations"]) {
            break;
        }
        state["operations"] = std::move(operations);
    }
    state["downloads"] = Downloads();
    state["releases"] = Releases();
    state["lastOperation"] = Json::Int64{camvora::LastOperationId()};
    return state;
}

Reply ReplyWithAppliance() {
    return SuccessReply(Appliance());
}

}  // namespace host
