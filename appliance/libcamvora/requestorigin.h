// Who has made the request that this process works for. It stands in the operation log.
#pragma once

#include <string>

namespace camvora {

inline constexpr char kClientOrigin[] = "client";
inline constexpr char kConsoleOrigin[] = "console";
inline constexpr char kScheduleOrigin[] = "schedule";
inline constexpr char kPairedHostOrigin[] = "paired host";
inline constexpr char kPairedServerOrigin[] = "paired server";

// Sets it for this process and all that it forks from now on; empty for nobody. Called before it has threads.
void SetRequestOrigin(const std::string& origin);

// One of the above; empty where no request is worked for, or nobody known has made it.
const std::string& RequestOrigin();

}  // namespace camvora
