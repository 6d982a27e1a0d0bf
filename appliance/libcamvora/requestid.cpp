#include "libcamvora/requestid.h"

#include <cstdlib>

namespace camvora {

namespace {

std::string IdFromEnvironment() {
    const char* id = std::getenv(kRequestIdVariable);
    return id != nullptr ? id : "";
}

std::string& StoredId() {
    thread_local std::string id = IdFromEnvironment();
    return id;
}

}  // namespace

void SetRequestId(const std::string& id) {
    StoredId() = id;
}

const std::string& RequestId() {
    return StoredId();
}

}  // namespace camvora
