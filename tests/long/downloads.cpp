// Downloads that are killed, and that are cancelled, at random moments:
//
//   long_downloads [--count N] [--seed S]
//
// Prints each fault with what repeats it.
#include "e2e/online.h"
#include "e2e/packages.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <random>

namespace {

std::size_t Report(const char* what, unsigned count, const std::vector<std::string>& faults) {
    for (const std::string& fault : faults) {
        std::printf("%s\n", fault.c_str());
    }
    std::printf("%s %u, faults %zu\n", what, count, faults.size());
    return faults.size();
}

int DownloadMany(int argc, char** argv) {
    CLI::App options("Downloads that are killed or cancelled");
    unsigned count = 200;
    unsigned seed = std::random_device()();
    options.add_option("--count", count, "of each");
    options.add_option("--seed", seed, "of the moments; another one each time otherwise");
    CLI11_PARSE(options, argc, argv);

    std::printf("seed %u\n", seed);
    const e2e::Appliance appliance;
    const e2e::FeedFolder folder(appliance);
    e2e::FaultyFeed feed(folder);
    folder.Subscribe(appliance, feed.Url());
    const std::string package = e2e::MakePackage(e2e::kLocalDisplayService, e2e::Content(e2e::kMiB, seed));
    folder.Publish("display.spk", package);
    const std::size_t faults =
        Report("killed", count, e2e::KillDownloads(appliance, feed, package, seed, count)) +
        Report("cancelled", count, e2e::CancelDownloads(appliance, package, seed, count));
    return faults == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return DownloadMany(argc, argv);
    } catch (const std::exception& failure) {
        (void)std::fprintf(stderr, "long_downloads: %s\n", failure.what());
        return EXIT_FAILURE;
    }
}
