// Hostile packages, unpacked into a real folder. Each row's shell commands, run in the work directory, make
// what a package may bring; "../outside" is a folder with the file "kept" that nothing may touch.
#include "addons/pkgtree.h"

#include "support/temporaryfolder.h"

#include "cases.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

class Unpacked {
public:
    explicit Unpacked(const std::string& commands) {
        folder_.Write("outside/kept", "kept");
        const std::string shell = "mkdir '" + WorkDir() + "' && cd '" + WorkDir() + "' && ";
        EXPECT_EQ(0, std::system((shell + commands).c_str())) << commands;
    }

    ~Unpacked() { EXPECT_EQ("kept", folder_.Read("outside/kept")); }
    Unpacked(const Unpacked&) = delete;
    Unpacked& operator=(const Unpacked&) = delete;

    std::string WorkDir() const { return folder_.PathOf("work"); }

    // What is in the folder, sorted, each set off by a blank; "!" marks set-id bits, "*" a file that
    // everybody may run.
    std::string List() const {
        std::vector<std::string> names;
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder_.Path())) {
            const fs::perms mode = entry.symlink_status().permissions();
            const bool hasSetId = (mode & (fs::perms::set_uid | fs::perms::set_gid)) != fs::perms::none;
            const bool runs = entry.symlink_status().type() == fs::file_type::regular &&
                              (mode & fs::perms::others_exec) != fs::perms::none;
            names.push_back(entry.path().lexically_relative(folder_.Path()).string() + (runs ? "*" : "") +
                            (hasSetId ? "! " : " "));
        }
        std::sort(names.begin(), names.end());
        std::string list;
        for (const std::string& name : names) {
            list += name;
        }
        return list;
    }

private:
    TemporaryFolder folder_;
};

struct CleaningCase {
    const char* name;
    const char* commands;
    const char* left;  // besides "../outside"
};

const CleaningCase kCleaningCases[] = {
    {"plain_package", "touch INFO package.tgz && mkdir more && touch more/README",
     "work work/INFO work/more work/more/README work/package.tgz "},
    {"link_to_a_file", "ln -s ../outside/kept INFO", "work "},
    {"link_to_a_folder", "ln -s ../outside device_pack && ln -s ../outside local_display", "work "},
    {"link_to_nothing", "ln -s nothing package.tgz && touch INFO", "work work/INFO "},
    {"link_inside", "touch INFO && ln -s INFO other", "work work/INFO "},
    {"fifo", "mkfifo package.tgz INFO", "work "},
    {"deep_down", "mkdir -p a/b/c && mkfifo a/b/c/fifo && ln -s ../../../outside a/b/link && touch a/b/file",
     "work work/a work/a/b work/a/b/c work/a/b/file "},
    {"set_id_bits", "mkdir a && touch a/f a/g a/h && chmod 6755 a a/f && chmod 2711 a/g && chmod 4700 a/h",
     "work work/a work/a/f* work/a/g* work/a/h "},
    {"link_in_place_of_the_folder", "cd .. && rmdir work && ln -s outside work", ""},
    {"no_folder", "cd .. && rmdir work", ""},
};

class Cleaning : public testing::TestWithParam<CleaningCase> {};

TEST_P(Cleaning, LeavesPlainFilesAndFolders) {
    const Unpacked package(GetParam().commands);
    EXPECT_TRUE(RemoveSpecialFiles(package.WorkDir()));
    EXPECT_EQ(std::string("outside outside/kept ") + GetParam().left, package.List());
}

INSTANTIATE_TEST_SUITE_P(, Cleaning, testing::ValuesIn(kCleaningCases), CaseName<CleaningCase>);

// Deeper than a path can say: what lies there cannot be removed, and must not be left unsaid.
TEST(CleaningOfAPit, Fails) {
    const Unpacked package(
        "for i in $(seq 50); do d=$(printf 'd%.0s' $(seq 200)); mkdir $d && cd -P $d || exit; done && "
        "mkfifo fifo");
    EXPECT_FALSE(RemoveSpecialFiles(package.WorkDir()));
}

struct SoundCase {
    const char* name;
    const char* commands;  // in a package that is sound
    bool sound;
};

const SoundCase kSoundCases[] = {
    {"sound", "true", true},
    {"nothing_there", "rm -r ./*", true},
    {"links_inside", "ln -s conf tree/alias && ln -s ../conf tree/script/helper", true},
    {"info_is_link", "ln -sf ../outside/kept INFO", false},
    {"info_is_fifo", "rm INFO && mkfifo INFO", false},
    {"top_is_link", "mv tree other && ln -s other tree", false},
    {"top_is_file", "rm -r tree && touch tree", false},
    {"conf_is_link", "mv tree/conf tree/c && ln -s c tree/conf", false},
    {"conf_is_link_to_nothing", "ln -sf nothing tree/conf", false},
    {"conf_is_fifo", "rm tree/conf && mkfifo tree/conf", false},
    {"conf_is_folder", "rm tree/conf && mkdir tree/conf", false},
    {"script_folder_is_link", "mv tree/script tree/s && ln -s s tree/script", false},
    {"preupgrade_is_link", "ln -sf postinst tree/script/preupgrade", false},
    {"preinst_is_link", "ln -sf ../../../outside/kept tree/script/preinst", false},
    {"postinst_is_fifo", "rm tree/script/postinst && mkfifo tree/script/postinst", false},
    {"postupgrade_is_folder", "mkdir tree/script/postupgrade", false},
    {"restore_is_link", "ln -s postinst tree/script/restore", false},
    {"work_dir_is_link", "mv ../work ../other && ln -s other ../work", false},
};

class Sound : public testing::TestWithParam<SoundCase> {};

TEST_P(Sound, IsATreeWhoseFilesAreFiles) {
    const Unpacked package(
        std::string(
            "mkdir -p tree/script && touch INFO tree/conf tree/script/preinst tree/script/postinst && ") +
        GetParam().commands);
    EXPECT_EQ(GetParam().sound, IsTreeSound(package.WorkDir(), "tree"));
}

INSTANTIATE_TEST_SUITE_P(, Sound, testing::ValuesIn(kSoundCases), CaseName<SoundCase>);

}  // namespace
