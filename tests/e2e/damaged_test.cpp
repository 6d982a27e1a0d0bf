// Packages that are damaged, or find no room, end in an error or whole.
#include "e2e/mutants.h"
#include "support/packages.h"
#include "support/smalldisk.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <random>
#include <string>

namespace e2e {
namespace {

constexpr int kNoDisk = 2;  // status of a child

class DamagedPackage : public ApplianceTest {
protected:
    static void SetUpTestSuite() { Start(); }

    static MutantFigures Inspect(MakeMutant make, unsigned count) {
        MutantFigures figures = InspectMutants(*appliance_, make, Seed(), count);
        for (const std::string& fault : figures.faults) {
            ADD_FAILURE() << "seed " << Seed() << ": " << fault;
        }
        return figures;
    }
};

TEST_F(DamagedPackage, EndsInAnErrorOrIsUnpackedAsItWasMeant) {
    constexpr unsigned kCount = 1000;
    const unsigned taken = Inspect(MakeAnyMutant, kCount).taken;
    EXPECT_GT(taken, kCount / 10);
    EXPECT_LT(taken, kCount / 2);
}

TEST_F(DamagedPackage, IsNeverTakenWhereItsTreeIsCut) {
    EXPECT_EQ(0U, Inspect(MakeCutTree, 500).taken);
}

// Inspects a package with ever more room in the work directory, until it fits.
void InspectWhileTheDiskGrows(const Appliance& appliance, const std::string& folder) {
    constexpr std::size_t kStepBytes = 65'536;
    constexpr std::size_t kBlobBytes = 10 * kStepBytes;
    std::mt19937 random(Seed());
    std::string blob(kBlobBytes, '\0');
    std::generate(blob.begin(), blob.end(), [&random] { return static_cast<char>(random()); });
    const std::string package = MakeDevicePack({{"device_pack/blob", blob}});
    HttpCalls calls = appliance.Owner();
    std::size_t size = 0;
    bool isTaken = false;
    while (!isTaken && size < 4 * kBlobBytes) {
        size += kStepBytes;
        ASSERT_TRUE(ResizeSmallDisk(folder, size));
        const Answer answer = e2e::Inspect(appliance, calls, kDevicePack, package);
        EXPECT_EQ("", FaultOf(appliance, answer, kDevicePack, package)) << size;
        isTaken = answer.Succeeded();
    }
    EXPECT_TRUE(isTaken);
    EXPECT_GT(size, package.size() + kBlobBytes);
}

void RunOnSmallDisk() {
    Appliance appliance;
    appliance.Stop();
    const std::string folder = WorkDirectory(appliance, kDevicePack);
    std::filesystem::create_directory(folder);
    if (!MountSmallDisk(folder, 65'536)) {
        _exit(kNoDisk);
    }
    appliance.Launch();
    InspectWhileTheDiskGrows(appliance, folder);
}

TEST(FullDisk, LetsNoPackagePassBeforeItFits) {
    const pid_t pid = fork();
    if (pid == 0) {
        RunOnSmallDisk();
        _exit(testing::Test::HasFailure() ? 1 : 0);
    }
    int status = 0;
    ASSERT_EQ(pid, waitpid(pid, &status, 0));
    if (WIFEXITED(status) && WEXITSTATUS(status) == kNoDisk) {
        GTEST_SKIP() << "no small disk can be had here";
    }
    EXPECT_EQ(0, status);
}

}  // namespace
}  // namespace e2e
