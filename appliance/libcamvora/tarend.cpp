#include "libcamvora/tarend.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <numeric>
#include <optional>
#include <string>
#include <string_view>

namespace camvora {

namespace {

constexpr off_t kBlockBytes = 512;
constexpr char kWithoutContent[] = "123456V";  // links, devices, folders, pipes, the name of a volume
constexpr char kSparse = 'S';

// Of a header.
struct Field {
    std::size_t offset;
    std::size_t length;
};
constexpr Field kSize{124, 12};
constexpr Field kChecksum{148, 8};
constexpr std::size_t kTypeOffset = 156;

// Not zero where another block with pieces of a sparse file follows: in its header, and in such a block.
constexpr std::size_t kMoreInHeaderOffset = 482;
constexpr std::size_t kMoreInBlockOffset = 504;

using Block = std::array<char, static_cast<std::size_t>(kBlockBytes)>;

bool ReadBlock(int file, off_t offset, Block& block) {
    return pread(file, block.data(), block.size(), offset) == kBlockBytes;
}

bool IsZero(const Block& block) {
    return std::all_of(block.begin(), block.end(), [](char byte) { return byte == 0; });
}

// Octal digits between blanks and NULs.
std::optional<off_t> NumberIn(const Block& block, const Field& field) {
    const std::string text(block.data() + field.offset, field.length);
    const std::size_t begin = text.find_first_not_of(' ');
    const std::size_t end = std::min(text.find_first_of(std::string(" \0", 2), begin), text.size());
    if (begin == std::string::npos || begin == end) {
        return std::nullopt;
    }
    off_t number = 0;
    for (std::size_t i = begin; i < end; ++i) {
        if (text[i] < '0' || text[i] > '7') {
            return std::nullopt;
        }
        number = number * 8 + (text[i] - '0');
    }
    return number;
}

// The sum of its bytes, with blanks for the sum itself.
bool IsHeader(const Block& block) {
    Block summed = block;
    std::fill_n(summed.begin() + kChecksum.offset, kChecksum.length, ' ');
    const off_t sum = std::accumulate(summed.begin(), summed.end(), off_t{0}, [](off_t before, char byte) {
        return before + static_cast<unsigned char>(byte);
    });
    return NumberIn(block, kChecksum) == sum;
}

// Of the header at `offset`, with the blocks that list the pieces of a sparse file.
off_t LengthOfHeader(int file, off_t offset, const Block& header) {
    off_t length = kBlockBytes;
    bool hasMore = header[kTypeOffset] == kSparse && header[kMoreInHeaderOffset] != 0;
    while (hasMore) {
        Block pieces{};
        hasMore = ReadBlock(file, offset + length, pieces) && pieces[kMoreInBlockOffset] != 0;
        length += kBlockBytes;
    }
    return length;
}

// From the begin of the header at `offset` to that of the next member; nothing where there is no such header.
std::optional<off_t> LengthOfMember(int file, off_t offset, const Block& header) {
    if (!IsHeader(header)) {
        return std::nullopt;
    }
    const bool hasContent =
        std::string_view(kWithoutContent).find(header[kTypeOffset]) == std::string_view::npos;
    const std::optional<off_t> size = hasContent ? NumberIn(header, kSize) : 0;
    if (!size) {
        return std::nullopt;
    }
    return LengthOfHeader(file, offset, header) + (*size + kBlockBytes - 1) / kBlockBytes * kBlockBytes;
}

}  // namespace

bool HasTarEnd(int file, off_t sizeBytes) {
    Block block{};
    if (!ReadBlock(file, 0, block) || !(IsHeader(block) || IsZero(block))) {
        return true;
    }
    off_t offset = 0;
    while (offset < sizeBytes && ReadBlock(file, offset, block) && !IsZero(block)) {
        const std::optional<off_t> length = LengthOfMember(file, offset, block);
        if (!length) {
            return false;
        }
        offset += *length;
    }
    return ReadBlock(file, offset, block) && IsZero(block) && ReadBlock(file, offset + kBlockBytes, block) &&
           IsZero(block);
}

}  // namespace camvora
