// The HTTP library's server on a socket that others opened, with connections of our own.
#pragma once

#include "host/options.h"
#include "host/uniquefd.h"

#include <httplib.h>

namespace host {

class EventHub;

class HttpServer final : public httplib::Server {
public:
    // Owns `listener`; options and events stay the caller's. Throws std::system_error.
    HttpServer(UniqueFd listener, const host::Options& options, const EventHub& events);

    // Serves until Stop; returns when the last connection has ended, true when that was due to Stop.
    bool Serve();

    // Takes no further connection and no further request; requests that run are answered. Called by any
    // thread.
    void Stop();

private:
    bool process_and_close_socket(socket_t socket) override;

    const host::Options& options_;
    UniqueFd listener_;
    UniqueFd stopEvent_;
};

}  // namespace host
