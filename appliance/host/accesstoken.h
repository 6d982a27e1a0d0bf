// The access token: who shows it is authorised.
#pragma once

#include <string>
#include <utility>

namespace host {

class AccessToken {
public:
    // Reads the token from the descriptor, without the line's end, and closes it.
    // Throws std::runtime_error when there is none to be read.
    static AccessToken ReadFrom(int fd);

    // A new one, which nobody can guess.
    static AccessToken Draw();

    const std::string& Text() const { return expected_; }

    // True when `authorization`, the value of that HTTP header, carries this token as a bearer token.
    // Takes the same time wherever the texts differ.
    bool IsCarriedBy(const std::string& authorization) const;

private:
    explicit AccessToken(std::string expected) : expected_(std::move(expected)) {}

    std::string expected_;  // the token
};

}  // namespace host
