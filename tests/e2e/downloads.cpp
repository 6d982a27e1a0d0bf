#include "e2e/downloads.h"

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>

#include <filesystem>

namespace e2e {

void PutDownload(const Appliance& appliance, int service, const std::string& package) {
    constexpr char kFile[] = "target/@CVData/download.spk";
    constexpr int kBusyLimitMs = 5000;
    std::filesystem::copy_file(package, appliance.PackagePath(kFile),
                               std::filesystem::copy_options::overwrite_existing);
    SQLite::Database database(appliance.PackagePath("target/@CVData/camvora.db"), SQLite::OPEN_READWRITE,
                              kBusyLimitMs);
    SQLite::Statement record(database,
                             "INSERT OR REPLACE INTO downloads(service, status, version, file, date)"
                             " VALUES(?, 2, '9.0.0-0001', ?, '2026-03-01')");
    record.bind(1, service);
    record.bind(2, std::string("/var/packages/Camvora/") + kFile);
    record.exec();
}

}  // namespace e2e
