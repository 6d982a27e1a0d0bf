#include "interface/methodtable.h"

#include <algorithm>

namespace interface {
namespace {

constexpr Field kService = {"service", Type::kInteger, "Number of the service", "0"};
constexpr Field kAddOn = {"service", Type::kInteger, "Number of the add-on, 1 or 6", "0"};
constexpr Field kServiceName = {"serviceName", Type::kText, "What the operation log calls the service",
                                R"("")"};
constexpr Field kDescription = {"description", Type::kText, "What the operation log says of it", R"("")"};

std::vector<Method> ServiceMethods() {
    return {
        {"List",
         "Describe the services 1 to 6",
         {},
         "The number of each service, and what GetInfo says of it",
         {{"list", Type::kArray, "An object with \"service\" and \"info\" for each service"}},
         Effect::kNone},
        {"GetInfo",
         "Describe one service",
         {kService},
         "Its name, state and version",
         {{"service", Type::kInteger, "Its number"},
          {"name", Type::kText, "What people call it"},
          {"shortName", Type::kText, "What programs call it"},
          {"status", Type::kInteger, "The last recorded state: 0 stopped, 1 started, 4 in progress"},
          {"statusName", Type::kText, "The same in words"},
          {"blRunning", Type::kBoolean, "Whether it runs now"},
          {"version", Type::kText, "Of the installed add-on; empty where there is none"},
          {"blHasPackages", Type::kBoolean, "Whether it is an add-on, which packages bring"},
          {"blFactoryCopy", Type::kBoolean, "Whether the factory's copy is there"},
          {"blAutoUpdate", Type::kBoolean, "Whether it is updated automatically"},
          {"pid", Type::kInteger, "Its process inside the appliance; only while it runs"},
          {"since", Type::kText, "When it came up, in UTC; only while it runs"},
          {"options", Type::kObject, "Only of service 2: the stored options, number to text"}},
         Effect::kNone},
        {"GetAppsStatus",
         "Describe the web applications",
         {{"lang", Type::kText, "Language of the titles, \"en\" or \"de\"; English where it is empty",
           R"("")"}},
         "Title, path and state of each application",
         {{"appsStatus", Type::kObject, "\"blEnabled\", \"path\" and \"title\" by the application's id"}},
         Effect::kNone},
        {"Enable",
         "Order the start of a service",
         {kService, kServiceName, kDescription},
         "Nothing; that it was ordered, not that it is done",
         {},
         Effect::kDetachedOperation},
        {"Disable",
         "Order the stop of a service",
         {kService, kServiceName, kDescription},
         "Nothing; that it was ordered, not that it is done",
         {},
         Effect::kDetachedOperation},
        {"CheckEnableDone",
         "Wait for the end of an action on a service, for about 20 seconds at most",
         {kService},
         "Whether no action is under way any more",
         {{"blDone", Type::kBoolean, "False while one is under way"}},
         Effect::kNone},
        {"Restart",
         "Stop a service and start it again",
         {kService},
         "Nothing, when both are done",
         {},
         Effect::kOperation},
    };
}

std::vector<Method> PackageMethods() {
    return {
        {"Upload",
         "Store a package file",
         {{"addonsSpkFile", Type::kFile, "The package file"}},
         "What GetPkgInfo wants to know of it",
         {{"pkgInfo", Type::kObject, "The texts \"fileName\" and \"filePath\""}},
         Effect::kChange},
        {"GetPkgInfo",
         "Unpack an uploaded package and tell whether it may be installed",
         {{"pkgInfo", Type::kObject, "What Upload answered"},
          kAddOn,
          {"isRedirectCgi", Type::kBoolean, "The request comes from the CMS host, where the file lies",
           "false"}},
         "Version, maintainer and where it is unpacked",
         {{"version", Type::kText, "Of the package"},
          {"maintainer", Type::kText, "Who made it"},
          {"filePath", Type::kText, "Where it is unpacked; Update wants it"},
          {"errinfo", Type::kNull, "Names a reason only in the error that refuses a package"}},
         Effect::kOperation},
        {"LoadFile",
         "Hand out a package file and remove it",
         {{"filePath", Type::kText, "Where it lies", R"("")"}},
         "The whole file",
         {{"fileSize", Type::kInteger, "In bytes; 0 where it cannot be read"},
          {"fileData", Type::kText, "Its bytes in Base64"}},
         Effect::kChange},
        {"Update",
         "Install the add-on that was unpacked, or the last download",
         {kAddOn, {"filePath", Type::kText, "What GetPkgInfo answered; empty for the download", R"("")"}},
         "Nothing, when it is over",
         {},
         Effect::kOperation},
        {"Restore",
         "Put the factory's copy of an add-on in place of the installed one",
         {kAddOn, kServiceName, kDescription},
         "Nothing, when it is over",
         {},
         Effect::kOperation},
    };
}

std::vector<Method> ReleaseMethods() {
    return {
        {"GetUpdateInfo",
         "Count the add-ons with a newer release",
         {},
         "How many there are",
         {{"newUpdateCnt", Type::kInteger, "Add-ons with a newer release"}},
         Effect::kNone},
        {"CheckUpdateInfo",
         "Look for a newer release of an add-on",
         {kService},
         "How its update stands",
         {{"status", Type::kInteger,
           "0 not known, 1 nothing newer, 2 newer, 3 downloaded, 4 downloading, 5 download failed, 6 being "
           "installed, 7 cannot be asked for"}},
         Effect::kNone},
        {"SetAutoUpdate",
         "Switch the automatic update of an add-on",
         {kAddOn, {"blEnable", Type::kBoolean, "Whether it is to be on"}},
         "Nothing",
         {},
         Effect::kChange},
        {"DownloadStart",
         "Start the download of a newer release",
         {kService},
         "Nothing, while the download goes on",
         {},
         Effect::kDetachedOperation},
        {"DownloadProgress",
         "Tell how a download stands",
         {kService},
         "How far it is",
         {{"version", Type::kText, "Short name and version of what is downloaded"},
          {"status", Type::kInteger, "1 under way, 2 ready to be installed, 4 failed"},
          {"percent", Type::kInteger, "How much of it is there"}},
         Effect::kNone},
        {"DownloadCancel",
         "End a download; one that is ready stays",
         {kService},
         "Nothing, also where none was under way",
         {},
         Effect::kOperation},
    };
}

std::vector<Method> AllMethods() {
    std::vector<Method> all;
    for (const auto part : {ServiceMethods, PackageMethods, ReleaseMethods}) {
        const std::vector<Method> methods = part();
        all.insert(all.end(), methods.begin(), methods.end());
    }
    return all;
}

}  // namespace

const std::vector<Method>& Methods() {
    static const std::vector<Method> methods = AllMethods();
    return methods;
}

const Method* FindMethod(const std::string& name) {
    const std::vector<Method>& methods = Methods();
    const auto found = std::find_if(methods.begin(), methods.end(),
                                    [&name](const Method& method) { return name == method.name; });
    return found == methods.end() ? nullptr : &*found;
}

const char* WordFor(Type type) {
    switch (type) {
        case Type::kInteger:
            return "integer";
        case Type::kText:
            return "text";
        case Type::kBoolean:
            return "boolean";
        case Type::kObject:
            return "object";
        case Type::kArray:
            return "array";
        case Type::kNull:
            return "null";
        default:
            return "file";
    }
}

}  // namespace interface
