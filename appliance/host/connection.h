// One client's connection, as the HTTP library's stream.
#pragma once

#include "host/options.h"
#include "host/uniquefd.h"

#include <httplib.h>

#include <array>
#include <chrono>
#include <cstdint>
#include <string>

namespace host {

// Waits without polling, sends a reply's head together with what follows it, keeps limits on a request's
// head and body, and knows whether a request was read to its end. Used by one thread.
class Connection final : public httplib::Stream {
public:
    // Owns `socket`.
    //   stopEvent  becomes readable when the server stops, which ends every wait for the client
    //   options    of which the times for idling and reading count
    Connection(int socket, int stopEvent, const Options& options);

    // Waits for the next request. Returns false when there will be none.
    bool WaitForRequest();

    // Called when the request's head has been read.
    //   limitBytes  the size of a body that is taken
    void BeginBody(const httplib::Request& request, std::size_t limitBytes);

    // Sends what is held back. Returns false when the client is gone.
    bool Flush();

    // True when the whole request was read, so that another may follow.
    bool IsAtRequestEnd() const;

    // Ends the connection in such a way that a client that still sends its request can read the reply.
    void Close();

    bool is_readable() const override { return true; }
    bool is_writable() const override { return true; }
    ssize_t read(char* bytes, std::size_t sizeBytes) override;
    ssize_t write(const char* bytes, std::size_t sizeBytes) override;
    void get_remote_ip_and_port(std::string& ip, int& port) const override;
    void get_local_ip_and_port(std::string& ip, int& port) const override;
    socket_t socket() const override { return socket_.Get(); }

private:
    using Clock = std::chrono::steady_clock;

    bool IsStopped() const;
    bool WaitForInput(Clock::duration limit) const;
    bool IsWithinLimits() const;
    Clock::duration TimeLeft() const;
    ssize_t Fill();
    bool Send(const char* bytes, std::size_t sizeBytes);

    UniqueFd socket_;
    int stopEvent_;
    std::chrono::seconds idleTime_;
    std::chrono::seconds readTime_;

    std::array<char, 16384> buffer_;  // of what was received and not yet read
    std::size_t begin_ = 0;
    std::size_t end_ = 0;

    bool inHead_ = true;
    Clock::time_point partBegin_;  // of the head, or of the body
    std::size_t partSizeBytes_ = 0;
    std::uint64_t chunkedLimitBytes_ = 0;  // of a chunked body with all that frames it
    bool isBodySized_ = false;             // otherwise the end of the body is not kept track of
    std::uint64_t bodyLeftBytes_ = 0;

    std::string held_;  // not yet sent
    bool holdsHead_ = true;
};

}  // namespace host
