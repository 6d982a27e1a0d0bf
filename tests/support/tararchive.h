// Archives of any members, also as only an attacker would make them.
#pragma once

#include <string>
#include <vector>

// One member in the form of ustar.
struct TarMember {
    std::string name;
    std::string content = {};
    char type = '0';  // '0' plain file, '1' hard link, '2' link, '3' device, '5' folder, '6' FIFO
    std::string link = {};
    unsigned mode = 0644;
};

// The archive with these members in this order.
std::string TarOf(const std::vector<TarMember>& members);
