#include "client/versionorder.h"

#include <algorithm>
#include <tuple>
#include <vector>

namespace client {
namespace {

// In the order of versions: whether it is a number at all, its number of digits, what it says.
using Piece = std::tuple<bool, std::size_t, std::string_view>;

constexpr Piece kZero{true, 0, ""};

Piece MakePiece(std::string_view text) {
    if (text.empty() || text.find_first_not_of("0123456789") != std::string_view::npos) {
        return {false, 0, text};
    }
    const std::string_view digits = text.substr(std::min(text.find_first_not_of('0'), text.size()));
    return {true, digits.size(), digits};
}

std::vector<Piece> Split(std::string_view version) {
    std::vector<Piece> pieces;
    std::size_t end = 0;
    while (end != std::string_view::npos) {
        end = version.find_first_of(".-");
        pieces.push_back(MakePiece(version.substr(0, end)));
        version.remove_prefix(end == std::string_view::npos ? version.size() : end + 1);
    }
    return pieces;
}

}  // namespace

bool IsAtLeast(std::string_view version, std::string_view minimum) {
    std::vector<Piece> pieces = Split(version);
    std::vector<Piece> wanted = Split(minimum);
    const std::size_t count = std::max(pieces.size(), wanted.size());
    pieces.resize(count, kZero);
    wanted.resize(count, kZero);
    return pieces >= wanted;
}

}  // namespace client
