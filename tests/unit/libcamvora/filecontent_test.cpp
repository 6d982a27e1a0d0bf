// Whole files to and from memory, and base64.
#include "platform/files.h"
#include "support/temporaryfolder.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

namespace fs = std::filesystem;

std::string Encode(const std::string& bytes) {
    return HttpBase64EncodeUnsigned(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
}

std::string EveryByte(std::size_t size) {
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; ++i) {
        bytes[i] = static_cast<char>(i * 7 % 256);
    }
    return bytes;
}

class FileContent : public testing::Test {
protected:
    // A guard byte behind the buffer shows whether it is overrun.
    int WriteDecoded(const std::string& text, int sizeBytes) const {
        std::vector<unsigned char> buffer(static_cast<std::size_t>(std::max(sizeBytes, 0)) + 1, '#');
        const int result = WriteFileByBase64String(folder_.PathOf("file"), text, buffer.data(), sizeBytes);
        EXPECT_EQ('#', buffer.back());
        return result;
    }

    std::string Read(bool wholeFile) const {
        unsigned char* buffer = nullptr;
        std::size_t size = 0;
        EXPECT_EQ(0, ReadContentFromFileToBuf(folder_.PathOf("file"), wholeFile, buffer, size));
        const std::unique_ptr<unsigned char, void (*)(void*)> owner(buffer, &std::free);
        return {buffer, buffer + size};
    }

    std::ptrdiff_t FileCount() const {
        return std::distance(fs::directory_iterator(folder_.Path()), fs::directory_iterator());
    }

    const TemporaryFolder folder_;
};

TEST_F(FileContent, IsTheSameAfterBothWays) {
    EXPECT_EQ("AP8=", Encode(std::string("\0\xff", 2)));
    for (const std::size_t size : {0UL, 1UL, 2UL, 3UL, 4UL, 12'287UL, 12'288UL, 12'289UL, 1'000'000UL}) {
        const std::string bytes = EveryByte(size);
        EXPECT_EQ(0, WriteDecoded(Encode(bytes), static_cast<int>(size))) << size;
        EXPECT_TRUE(bytes == folder_.Read("file")) << size;
        EXPECT_TRUE(bytes == Read(true)) << size;
    }
    EXPECT_EQ(4096U, Read(false).size());
    EXPECT_EQ(fs::perms(0600), fs::status(folder_.PathOf("file")).permissions());
}

TEST_F(FileContent, OfNoPlainFileIsNone) {
    folder_.Write("plain", "text");
    fs::create_symlink("plain", folder_.PathOf("link"));
    ASSERT_EQ(0, mkfifo(folder_.PathOf("fifo").c_str(), 0600));
    for (const char* name : {"missing", "", "link", "fifo"}) {
        unsigned char other = 0;
        unsigned char* buffer = &other;
        std::size_t size = 1;
        EXPECT_EQ(-1, ReadContentFromFileToBuf(folder_.PathOf(name), true, buffer, size)) << name;
        EXPECT_EQ(nullptr, buffer);
        EXPECT_EQ(0U, size);
    }
}

TEST_F(FileContent, OfAWrongTextIsNotWritten) {
    const std::vector<std::pair<std::string, int>> kTexts = {
        {"YWJj", 4},  // another size than announced
        {"YWJj", 2},
        {"YWJj", -1},
        {"YWJjZ", 3},
        {"YW_-", 3},
        {"YW==YWJj", 6},
        {"====", 0},
        {"    YWJj", 6},
        {std::string(20'000, 'A') + "!AAA", 15'003},  // the fault is in a later piece
        {std::string("YW\0j", 4), 3},
    };
    for (const auto& [text, sizeBytes] : kTexts) {
        EXPECT_EQ(-1, WriteDecoded(text, sizeBytes)) << text << " " << sizeBytes;
        EXPECT_EQ(0, FileCount());
    }
}

TEST_F(FileContent, IsWrittenWholeOrNotAtAll) {
    folder_.Write("aim", "untouched");
    fs::create_symlink("aim", folder_.PathOf("file"));
    EXPECT_EQ(0, WriteDecoded("YWJj", 3));
    EXPECT_EQ("untouched", folder_.Read("aim"));
    EXPECT_EQ(2, FileCount());
    (void)std::signal(SIGXFSZ, SIG_IGN);
    rlimit before{};
    ASSERT_EQ(0, getrlimit(RLIMIT_FSIZE, &before));
    const rlimit small{100'000, before.rlim_max};
    ASSERT_EQ(0, setrlimit(RLIMIT_FSIZE, &small));
    EXPECT_EQ(-1, WriteDecoded(Encode(EveryByte(300'000)), 300'000));
    ASSERT_EQ(0, setrlimit(RLIMIT_FSIZE, &before));
    EXPECT_EQ("abc", folder_.Read("file"));
    EXPECT_EQ(2, FileCount());
}

}  // namespace
