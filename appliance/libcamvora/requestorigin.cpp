#include "libcamvora/requestorigin.h"

namespace camvora {

namespace {

std::string& StoredOrigin() {
    static std::string origin;
    return origin;
}

}  // namespace

void SetRequestOrigin(const std::string& origin) {
    StoredOrigin() = origin;
}

const std::string& RequestOrigin() {
    return StoredOrigin();
}

}  // namespace camvora
