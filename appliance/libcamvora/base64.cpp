#include "libcamvora/base64.h"

#include <openssl/evp.h>

#include <algorithm>
#include <array>

namespace camvora {

namespace {

constexpr std::size_t kGroupBytes = 3;  // become a group of text
constexpr std::size_t kGroupChars = 4;
constexpr std::size_t kPieceGroups = 4096;
constexpr char kPadding = '=';

const unsigned char* Unsigned(const char* text) {
    return reinterpret_cast<const unsigned char*>(text);
}

std::size_t PaddingOf(const std::string& text) {
    const std::size_t last = text.find_last_not_of(kPadding);
    return text.size() - (last == std::string::npos ? 0 : last + 1);
}

// Decodes whole groups, at most a piece of them, into `bytes`. The library skips blanks at both ends, which
// shows in the size.
bool DecodePiece(const char* text, std::size_t groups, unsigned char* bytes) {
    const int size = EVP_DecodeBlock(bytes, Unsigned(text), static_cast<int>(groups * kGroupChars));
    return size == static_cast<int>(groups * kGroupBytes);
}

// The library gives the padding as zeros, which have no place in the caller's bytes.
bool DecodeLastGroup(const char* text, std::size_t padding, unsigned char* bytes) {
    std::array<unsigned char, kGroupBytes> group{};
    if (!DecodePiece(text, 1, group.data())) {
        return false;
    }
    std::copy_n(group.begin(), kGroupBytes - padding, bytes);
    return true;
}

}  // namespace

std::string EncodeBase64(const unsigned char* bytes, std::size_t sizeBytes) {
    std::string text((sizeBytes + kGroupBytes - 1) / kGroupBytes * kGroupChars, '\0');
    char* end = text.data();
    while (sizeBytes > 0) {
        const std::size_t size = std::min(sizeBytes, kPieceGroups * kGroupBytes);
        end += EVP_EncodeBlock(reinterpret_cast<unsigned char*>(end), bytes, static_cast<int>(size));
        bytes += size;
        sizeBytes -= size;
    }
    return text;
}

std::optional<std::size_t> DecodedSize(const std::string& text) {
    const std::size_t padding = PaddingOf(text);
    if (text.size() % kGroupChars != 0 || padding >= kGroupBytes) {
        return std::nullopt;
    }
    return text.size() / kGroupChars * kGroupBytes - padding;
}

bool DecodeBase64(const std::string& text, unsigned char* bytes) {
    if (text.empty()) {
        return true;
    }
    const std::size_t padding = PaddingOf(text);
    if (!DecodedSize(text) || text.find(kPadding) < text.size() - padding) {
        return false;
    }
    const char* from = text.data();
    std::size_t left = text.size() / kGroupChars - 1;
    while (left > 0) {
        const std::size_t groups = std::min(left, kPieceGroups);
        if (!DecodePiece(from, groups, bytes)) {
            return false;
        }
        from += groups * kGroupChars;
        bytes += groups * kGroupBytes;
        left -= groups;
    }
    return DecodeLastGroup(from, padding, bytes);
}

}  // namespace camvora
