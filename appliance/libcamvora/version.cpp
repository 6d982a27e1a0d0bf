// The order of versions such as "2.1.0-0153".
#include "platform/releases.h"

#include <algorithm>
#include <string_view>

namespace {

constexpr std::string_view kMissingPiece = "0";

// Cuts the first piece off `version`; a version that has no more stands for zeros.
std::string_view TakePiece(std::string_view& version, bool& isAtEnd) {
    if (isAtEnd) {
        return kMissingPiece;
    }
    const std::size_t end = version.find_first_of(".-");
    const std::string_view piece = version.substr(0, end);
    isAtEnd = end == std::string_view::npos;
    version.remove_prefix(isAtEnd ? version.size() : end + 1);
    return piece;
}

bool IsNumber(std::string_view piece) {
    return !piece.empty() && piece.find_first_not_of("0123456789") == std::string_view::npos;
}

std::string_view WithoutZeros(std::string_view number) {
    return number.substr(std::min(number.find_first_not_of('0'), number.size()));
}

// Below, equal to or above 0 as the one is below, equal to or above the other.
int ComparePieces(std::string_view one, std::string_view other) {
    if (IsNumber(one) != IsNumber(other)) {
        return IsNumber(one) ? 1 : -1;
    }
    if (IsNumber(one)) {
        one = WithoutZeros(one);
        other = WithoutZeros(other);
        if (one.size() != other.size()) {
            return one.size() < other.size() ? -1 : 1;
        }
    }
    return one.compare(other);
}

}  // namespace

bool AddonsUpdate::IsVersionNewer(const std::string& version, const std::string& than, bool allowEqual) {
    std::string_view left = version;
    std::string_view right = than;
    bool isLeftAtEnd = false;
    bool isRightAtEnd = false;
    while (!isLeftAtEnd || !isRightAtEnd) {
        const std::string_view piece = TakePiece(left, isLeftAtEnd);
        const int order = ComparePieces(piece, TakePiece(right, isRightAtEnd));
        if (order != 0) {
            return order > 0;
        }
    }
    return allowEqual;
}
