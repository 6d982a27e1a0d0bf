// A connection to the host that keeps to no protocol.
#pragma once

#include <string>

namespace e2e {

class RawConnection {
public:
    // Connects to the host at `url`. Throws std::runtime_error when that fails.
    explicit RawConnection(const std::string& url);
    ~RawConnection();
    RawConnection(RawConnection&& other) noexcept;
    RawConnection& operator=(RawConnection&&) = delete;

    // Returns false when the host takes no more.
    bool Send(const std::string& bytes) const;

    // What the host has sent until `mark` has come, the connection has ended or nothing came for a while.
    std::string ReceiveUntil(const std::string& mark);

    // The same with no mark.
    std::string ReceiveAll();

    // True when the host has ended the connection.
    bool IsAtEnd() const { return isAtEnd_; }

private:
    bool Receive(std::string& text);

    int socket_;
    bool isAtEnd_ = false;
};

// Opens a stream of events with the token; `headers` has the line ends in it.
RawConnection OpenStream(const std::string& url, const std::string& token, const std::string& headers = "");

// A POST of the test module's method with `body`, as text.
std::string PostText(const std::string& method, const std::string& body);

}  // namespace e2e
