#include "libcamvora/requestid.h"

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

const std::string& RequestId() {
    return StoredId();
}

}  // namespace camvora
