// What is known of the caller of the request that this process serves.
#pragma once

namespace camvora {

// True when the caller has proved to be a paired server. Called by the host in the request process.
bool IsCallerPaired();

}  // namespace camvora
