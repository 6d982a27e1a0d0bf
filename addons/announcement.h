// How the clients and the operation log are told what was done to a service.
#pragma once

#include "platform/log.h"
#include "platform/notify.h"

inline constexpr CLIENT_NOTIFY_TYPE kNotifyAddOns{24};
inline constexpr CV_LOG_TYPE kLogAddOns{0x133000B5};
