// Which paths of package files are taken.
#include "addons/uploadarea.h"

#include "fake/script.h"
#include "support/temporaryfolder.h"

#include "cases.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <string>

namespace {

using namespace std::string_literals;

// "%" stands for a temporary folder in which "area" holds the file "pkg", a link to it, a FIFO, and a folder
// with a file; beside it lie "pkg" and "area2/pkg".
struct AreaCase {
    const char* name;
    std::optional<std::string> area;
    std::string path;
    bool isFile;  // taken as a file
    bool isPath;  // taken as a place for one
};

const AreaCase kAreaCases[] = {
    {"file", "%/area", "%/area/pkg", true, true},
    {"area_with_final_slash", "%/area/", "%/area/pkg", true, true},
    {"nothing_there", "%/area", "%/area/other", false, true},
    {"link", "%/area", "%/area/link", false, true},
    {"fifo", "%/area", "%/area/fifo", false, true},
    {"folder", "%/area", "%/area/sub", false, true},
    {"file_in_a_folder", "%/area", "%/area/sub/pkg", false, false},
    {"two_slashes", "%/area", "%/area//pkg", false, false},
    {"area_itself", "%/area", "%/area", false, false},
    {"area_with_slash", "%/area", "%/area/", false, false},
    {"dot", "%/area", "%/area/.", false, false},
    {"dot_on_the_way", "%/area", "%/area/./pkg", false, false},
    {"up", "%/area", "%/area/..", false, false},
    {"up_on_the_way", "%/area", "%/area/../pkg", false, false},
    {"up_and_down", "%/area", "%/area/../area/pkg", false, false},
    {"elsewhere", "%/area", "%/pkg", false, false},
    {"longer_name_of_the_area", "%/area", "%/area2/pkg", false, false},
    {"relative", "%/area", "pkg", false, false},
    {"option", "%/area", "-rf", false, false},
    {"remote", "%/area", "host:%/area/pkg", false, false},
    {"empty", "%/area", "", false, false},
    {"nul_behind", "%/area", "%/area/pkg\0"s, false, false},
    {"nul_and_more", "%/area", "%/area/pkg\0/../x"s, false, false},
    {"area_empty", "", "%/area/pkg", false, false},
    {"area_empty_and_top", "", "/pkg", false, false},
    {"area_relative", "area", "area/pkg", false, false},
    {"no_area", std::nullopt, "%/pkg", true, true},
    {"no_area_relative", std::nullopt, "../pkg", true, true},
    {"no_area_nothing_there", std::nullopt, "%/other", true, true},
    {"no_area_nul", std::nullopt, "%/pkg\0"s, false, false},
};

class Area : public testing::TestWithParam<AreaCase> {
protected:
    Area() {
        for (const char* file : {"area/pkg", "area/sub/pkg", "area2/pkg", "pkg"}) {
            folder_.Write(file, "x");
        }
        EXPECT_EQ(
            0, std::system(("cd '" + folder_.PathOf("area") + "' && ln -s pkg link && mkfifo fifo").c_str()));
        if (GetParam().area) {
            fake::Answer("PLIBCFileGetKeyValue /var/packages/Camvora/target/etc/cv.conf addons_upload_dir",
                         Path(*GetParam().area));
        }
    }

    std::string Path(std::string text) const {
        const std::size_t mark = text.find('%');
        return mark == std::string::npos ? text : text.replace(mark, 1, folder_.Path());
    }

private:
    TemporaryFolder folder_;
    fake::Session session_;
};

TEST_P(Area, TakesPlainFilesDirectlyInIt) {
    EXPECT_EQ(GetParam().isFile, IsUploadedFile(Path(GetParam().path)));
    EXPECT_EQ(GetParam().isPath, IsUploadPath(Path(GetParam().path)));
}

INSTANTIATE_TEST_SUITE_P(, Area, testing::ValuesIn(kAreaCases), CaseName<AreaCase>);

}  // namespace
