#include "platform/notify.h"

#include "fake/journal.h"

void CVClientNotify::Notify(CLIENT_NOTIFY_TYPE type, const std::string& text1, const std::string& text2,
                            const std::string& text3) {
    fake::Record("CVClientNotify::Notify", type, text1, text2, text3);
}
