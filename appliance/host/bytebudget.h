// Counts bytes up to a limit.
#pragma once

#include <cstddef>

namespace host {

class ByteBudget {
public:
    explicit ByteBudget(std::size_t limitBytes) : left_(limitBytes) {}

    // Returns false, now and ever after, when the limit has been exceeded.
    bool Spend(std::size_t sizeBytes) {
        isExceeded_ = isExceeded_ || sizeBytes > left_;
        left_ -= isExceeded_ ? 0 : sizeBytes;
        return !isExceeded_;
    }
    bool IsExceeded() const { return isExceeded_; }

private:
    std::size_t left_;
    bool isExceeded_ = false;
};

}  // namespace host
