#include "client/terminaltext.h"

#include <clocale>
#include <cwchar>

#include <algorithm>
#include <cstdio>
#include <iterator>

namespace client {
namespace {

struct CodePoint {
    char32_t value;
    std::size_t sizeBytes;  // 0: the text does not begin with valid UTF-8
};

struct SequenceForm {
    std::size_t sizeBytes;
    char32_t lowest;  // a smaller value in this form is overlong
    unsigned char leadMask;
    unsigned char lead;
};

constexpr SequenceForm kSequenceForms[] = {
    {1, 0x0, 0x80, 0x00},
    {2, 0x80, 0xE0, 0xC0},
    {3, 0x800, 0xF0, 0xE0},
    {4, 0x10000, 0xF8, 0xF0},
};

struct Range {
    char32_t first;
    char32_t last;
};

constexpr Range kUnprintable[] = {
    {0x00, 0x1F},      // C0
    {0x7F, 0x9F},      // DEL and C1
    {0x061C, 0x061C},  // Arabic letter mark
    {0x200E, 0x200F},  // marks of direction
    {0x2028, 0x202E},  // separators of lines and paragraphs, embeddings of direction
    {0x2066, 0x2069},  // isolates of direction
};

bool Contains(const Range& range, char32_t value) {
    return range.first <= value && value <= range.last;
}

bool IsContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

bool IsScalarValue(char32_t value) {
    return value <= 0x10FFFF && !Contains({0xD800, 0xDFFF}, value);
}

CodePoint Decode(std::string_view text, const SequenceForm& form) {
    const auto lead = static_cast<unsigned char>(text.front());
    char32_t value = lead & static_cast<unsigned char>(~form.leadMask);
    for (const char byte : text.substr(1, form.sizeBytes - 1)) {
        if (!IsContinuation(byte)) {
            return {0, 0};
        }
        value = (value << 6U) | (static_cast<unsigned char>(byte) & 0x3FU);
    }
    const bool isValid = text.size() >= form.sizeBytes && value >= form.lowest && IsScalarValue(value);
    return {value, isValid ? form.sizeBytes : 0};
}

CodePoint FirstCodePoint(std::string_view text) {
    const auto lead = static_cast<unsigned char>(text.front());
    for (const SequenceForm& form : kSequenceForms) {
        if ((lead & form.leadMask) == form.lead) {
            return Decode(text, form);
        }
    }
    return {0, 0};
}

bool IsPrintable(char32_t value) {
    return std::none_of(std::begin(kUnprintable), std::end(kUnprintable),
                        [value](const Range& range) { return Contains(range, value); });
}

std::string Escape(const char* format, char32_t value) {
    char escape[16];
    std::snprintf(escape, sizeof(escape), format, static_cast<unsigned int>(value));
    return escape;
}

std::string EscapeControl(char32_t value) {
    switch (value) {
        case '\n':
            return "\\n";
        case '\r':
            return "\\r";
        case '\t':
            return "\\t";
        default:
            return Escape(value < 0x80 ? "\\x%02X" : "\\u%04X", value);
    }
}

// Lets the C library know of all characters while it lives, on this thread.
class UnicodeLocale {
public:
    UnicodeLocale() : before_(uselocale(Unicode())) {}
    ~UnicodeLocale() { uselocale(before_); }
    UnicodeLocale(const UnicodeLocale&) = delete;
    UnicodeLocale& operator=(const UnicodeLocale&) = delete;

private:
    // Null, for no change, where the system has none.
    static locale_t Unicode() {
        static const locale_t locale = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
        return locale;
    }

    const locale_t before_;
};

// Takes the first code point off `text`, which is not empty, and returns its columns.
std::size_t TakeColumns(std::string_view& text) {
    const CodePoint point = FirstCodePoint(text);
    text.remove_prefix(std::max<std::size_t>(point.sizeBytes, 1));
    const int columns = wcwidth(static_cast<wchar_t>(point.value));
    return columns < 0 ? 1 : static_cast<std::size_t>(columns);
}

}  // namespace

std::string Printable(std::string_view text) {
    std::string printable;
    while (!text.empty()) {
        const CodePoint point = FirstCodePoint(text);
        if (point.sizeBytes == 0) {
            printable += Escape("\\x%02X", static_cast<unsigned char>(text.front()));
            text.remove_prefix(1);
            continue;
        }
        printable += IsPrintable(point.value) ? std::string(text.substr(0, point.sizeBytes))
                                              : EscapeControl(point.value);
        text.remove_prefix(point.sizeBytes);
    }
    return printable;
}

std::size_t WidthOf(std::string_view text) {
    const UnicodeLocale locale;
    std::size_t width = 0;
    while (!text.empty()) {
        width += TakeColumns(text);
    }
    return width;
}

std::string Shortened(std::string_view text, std::size_t columns) {
    constexpr char kEllipsis[] = "\u2026";
    if (WidthOf(text) <= columns) {
        return std::string(text);
    }
    const UnicodeLocale locale;
    std::size_t left = columns;
    std::string_view rest = text;
    std::string_view kept = rest;
    for (std::size_t width = TakeColumns(rest); width < left; width = TakeColumns(rest)) {
        left -= width;
        kept = rest;
    }
    return std::string(text.substr(0, text.size() - kept.size())) + kEllipsis;
}

bool IsUtf8(std::string_view text) {
    while (!text.empty()) {
        const CodePoint point = FirstCodePoint(text);
        if (point.sizeBytes == 0) {
            return false;
        }
        text.remove_prefix(point.sizeBytes);
    }
    return true;
}

}  // namespace client
