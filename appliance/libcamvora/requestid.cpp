#include "libcamvora/requestid.h"

#include <cstdlib>

namespace camvora {

namespace {

std::string& StoredId() {
    thread_local std::string id;
    return id;
}

}  // namespace

void SetRequestId(const std::string& id) {
    StoredId() = id;
}

void SetRequestIdFromEnvironment() {
    const char* id = std::getenv(kRequestIdVariable);
    SetRequestId(id != nullptr ? id : "");
}

const std::string& RequestId() {
    return StoredId();
}

}  // namespace camvora
