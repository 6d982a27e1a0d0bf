#include "e2e/online.h"

#include "e2e/processes.h"

namespace e2e {

namespace {

constexpr int kRuns = 1;

Answer Call(const Appliance& appliance, const char* method, int service) {
    return appliance.Owner().AddOns(method, Param("service", service));
}

}  // namespace

int UpdateStateOf(const Appliance& appliance, int service) {
    return Call(appliance, "CheckUpdateInfo", service).Data()["status"].asInt();
}

int DownloadStateOf(const Appliance& appliance, int service) {
    return Call(appliance, "DownloadProgress", service).Data()["status"].asInt();
}

// While no process works on a request, or on what it has ordered, what is on record is the end. One of them
// can be overseen while it moves to another parent.
int Download(const Appliance& appliance, int service) {
    EXPECT_TRUE(Call(appliance, "DownloadStart", service).Succeeded());
    EXPECT_TRUE(WaitUntil(
        [&] { return appliance.Workers().empty() && DownloadStateOf(appliance, service) != kRuns; }));
    return DownloadStateOf(appliance, service);
}

}  // namespace e2e
