#include "platform/files.h"

std::list<std::string> String2StrList(const std::string& text, const std::string& separator) {
    std::list<std::string> elements;
    std::size_t begin = 0;
    while (begin < text.size()) {
        const std::size_t found = separator.empty() ? std::string::npos : text.find(separator, begin);
        const std::size_t end = found == std::string::npos ? text.size() : found;
        if (end > begin) {
            elements.push_back(text.substr(begin, end - begin));
        }
        begin = end + separator.size();
    }
    return elements;
}
