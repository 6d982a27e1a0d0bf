// Tells how long no whole tree lies at a path: microseconds, a line each time that there is one again. A tree
// is whole from when its folder appears until the first name is taken from it. Looks all the time, until it
// is killed.
//
//   bench_missingtree PATH
#include <sys/stat.h>

#include <chrono>
#include <cstdio>
#include <tuple>

namespace {

// Of a folder, and of its list of names.
struct Version {
    ino_t inode = 0;
    time_t seconds = 0;
    long nanoseconds = 0;
};

// Looks at the folder anew; `whole` is the one that was last seen whole.
bool IsWhole(const char* path, Version& whole) {
    struct stat info {};
    if (lstat(path, &info) != 0) {
        return false;
    }
    const Version seen{info.st_ino, info.st_mtim.tv_sec, info.st_mtim.tv_nsec};
    if (seen.inode != whole.inode) {
        whole = seen;
    }
    return std::tie(seen.seconds, seen.nanoseconds) == std::tie(whole.seconds, whole.nanoseconds);
}

}  // namespace

int main(int argc, char* argv[]) {
    if (argc != 2) {
        (void)std::fputs("usage: bench_missingtree PATH\n", stderr);
        return 2;
    }
    using std::chrono::steady_clock;
    Version version;
    bool wasWhole = true;
    steady_clock::time_point lastWhole;
    for (;;) {
        const bool isWhole = IsWhole(argv[1], version);
        const auto now = steady_clock::now();
        if (isWhole && !wasWhole) {
            const std::chrono::duration<double, std::micro> without = now - lastWhole;
            (void)std::printf("%.1f\n", without.count());
            (void)std::fflush(stdout);
        }
        lastWhole = isWhole ? now : lastWhole;
        wasWhole = isWhole;
    }
}
