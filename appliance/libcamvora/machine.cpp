// What machine this is. A recorder's model is named so: "NVR", then whatever sets it apart from the others.
#include "libcamvora/keyvalue.h"
#include "libcamvora/paths.h"
#include "platform/settings.h"

#include <string>

// No recording server tells its model to others, so that of a named one is not known.
std::string GetHxModelName(const std::string& hxName) {
    return hxName.empty() ? camvora::TextOfKey(camvora::kMachineInfo, "model", "") : "";
}

bool IsNVRModel(const std::string& modelName) {
    return modelName.rfind("NVR", 0) == 0;
}
