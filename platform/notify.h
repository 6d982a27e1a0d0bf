// Notifications to connected clients.
// Implemented by the package library; called in any process of a request.
#pragma once

#include <string>

// The kind of a notification. The numbers are the package library's.
enum CLIENT_NOTIFY_TYPE : int {};

class CVClientNotify {
public:
    // Sends a notification with three texts to every connected client; does not wait for them.
    static void Notify(CLIENT_NOTIFY_TYPE type, const std::string& text1, const std::string& text2,
                       const std::string& text3);
};
