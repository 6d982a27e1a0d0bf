#include "libcamvora/rememberstate.h"

#include "libcamvora/store.h"

namespace camvora {

void RememberState() {
    TheStore().Remember();
}

}  // namespace camvora
