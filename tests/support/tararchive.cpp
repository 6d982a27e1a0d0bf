#include "support/tararchive.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <numeric>

namespace {

constexpr std::size_t kBlock = 512;

using Header = std::array<char, kBlock>;

void Put(Header& header, std::size_t offset, const std::string& text) {
    std::copy(text.begin(), text.end(), header.begin() + static_cast<std::ptrdiff_t>(offset));
}

std::string Octal(unsigned long number, std::size_t digits) {
    std::array<char, 32> text{};
    (void)std::snprintf(text.data(), text.size(), "%0*lo", static_cast<int>(digits), number);
    return text.data();
}

std::string HeaderOf(const TarMember& member) {
    Header header{};
    Put(header, 0, member.name);
    Put(header, 100, Octal(member.mode, 7));
    Put(header, 108, Octal(0, 7));
    Put(header, 116, Octal(0, 7));
    Put(header, 124, Octal(member.content.size(), 11));
    Put(header, 136, Octal(0, 11));
    Put(header, 148, "        ");
    Put(header, 156, std::string(1, member.type));
    Put(header, 157, member.link);
    Put(header, 257, std::string("ustar\00000", 8));
    Put(header, 329, Octal(1, 7));
    Put(header, 337, Octal(3, 7));
    const unsigned long sum = std::accumulate(header.begin(), header.end(), 0UL, [](unsigned long s, char c) {
        return s + static_cast<unsigned char>(c);
    });
    Put(header, 148, Octal(sum, 6) + '\0');
    return {header.begin(), header.end()};
}

}  // namespace

std::string TarOf(const std::vector<TarMember>& members) {
    std::string archive;
    for (const TarMember& member : members) {
        archive += HeaderOf(member) + member.content;
        archive.resize((archive.size() + kBlock - 1) / kBlock * kBlock);
    }
    return archive + std::string(2 * kBlock, '\0');
}
