// Every path of the stand-in, as seen inside its private file system.
#pragma once

namespace camvora {

// Installed add-ons; the factory copy of each lies beside it.
inline constexpr char kDevicePackFolder[] = "/var/packages/Camvora/target/device_pack";
inline constexpr char kLocalDisplayFolder[] = "/var/packages/Camvora/target/local_display";
inline constexpr char kFactoryCopySuffix[] = ".default";
inline constexpr char kAddOnConfName[] = "/conf";

// The machine's identity.
inline constexpr char kMachineInfo[] = "/etc.defaults/orvainfo.conf";

// The main package's settings.
inline constexpr char kPackageConf[] = "/var/packages/Camvora/target/etc/cv.conf";

inline constexpr char kPackageInfo[] = "/var/packages/Camvora/INFO";

// The web applications' configuration and texts.
inline constexpr char kUiFolder[] = "/var/packages/Camvora/target/ui";

// What the stand-in keeps.
inline constexpr char kDatabaseFile[] = "/var/packages/Camvora/target/@CVData/camvora.db";
inline constexpr char kLogFile[] = "/var/packages/Camvora/target/@CVData/log/camvora.log";

inline constexpr char kProgramLogFile[] = "/var/packages/Camvora/target/@CVData/log/programs.log";
inline constexpr char kDefaultUploadFolder[] = "/var/packages/Camvora/target/@CVData/upload";

// Limits of the programs that are run for requests.
inline constexpr char kProgramsConf[] = "/var/packages/Camvora/target/etc/programs.conf";

// The schedule: a file for each rule. What the automatic updates run.
inline constexpr char kScheduleFolder[] = "/var/packages/Camvora/target/etc/cron.d";
inline constexpr char kAutoUpdateProgram[] = "/var/packages/Camvora/target/bin/auto-update";

// Online releases: where they come from, the key of those who publish them, and what was downloaded.
inline constexpr char kReleasesConf[] = "/var/packages/Camvora/target/etc/releases.conf";
inline constexpr char kDefaultFeedKey[] = "/var/packages/Camvora/target/etc/feed.pem";
inline constexpr char kDownloadFolder[] = "/var/packages/Camvora/target/@CVData/download";

// What is true only while the appliance runs. The package is started while kStartedFile exists. Locks are
// guarded in kGuardFolder. While the web framework serves, kAddressFile says where, and kScheduleTokenFile
// has what the appliance's own programs show there.
inline constexpr char kRunFolder[] = "/var/packages/Camvora/target/@CVData/run";
inline constexpr char kStartedFile[] = "/var/packages/Camvora/target/@CVData/run/started";
inline constexpr char kAddressFile[] = "/var/packages/Camvora/target/@CVData/run/address";
inline constexpr char kScheduleTokenFile[] = "/var/packages/Camvora/target/@CVData/run/schedule-token";
inline constexpr char kGuardFolder[] = "/var/packages/Camvora/target/@CVData/run/locks";

inline constexpr char kDaemonProgram[] = "/var/packages/Camvora/target/bin/camvora-daemon";

}  // namespace camvora
