// Every fixed path of the module, the rules by which its file names are built, and the keys it reads.
#pragma once

// Lock and pid files of a service: kProcessFilePrefix, the service's short name, a suffix. The locks of an
// update and of an inspection have their name and "_" before the short name.
inline constexpr char kProcessFilePrefix[] = "/tmp/cv_";
inline constexpr char kPidSuffix[] = ".pid";
inline constexpr char kLockSuffix[] = ".lock";
inline constexpr char kUpdateLockName[] = "AddOns_Update";
inline constexpr char kPackageLockName[] = "AddOns_Package";

// Held while the release service is asked.
inline constexpr char kAddOnsLock[] = "/tmp/cv_addons_lock";

// Tells that somebody is logged in at the Local Display.
inline constexpr char kLocalDisplayLoginStatus[] =
    "/var/packages/Camvora/target/@CVData/preference/local_display_login/status";

// Where packages are unpacked: kWorkDirPrefix, "_", the service's short name, and kFromHostSuffix for a
// package file that was fetched from the CMS host.
inline constexpr char kWorkDirPrefix[] = "/var/packages/Camvora/target/cv_addOns";
inline constexpr char kFromHostSuffix[] = "_host";

// In a work directory: the description, the inner archive, and the add-on's tree with its settings.
inline constexpr char kInfoName[] = "INFO";
inline constexpr char kInnerArchiveName[] = "package.tgz";
inline constexpr char kDevicePackTree[] = "device_pack";
inline constexpr char kLocalDisplayTree[] = "local_display";
inline constexpr char kConfName[] = "conf";
inline constexpr char kScriptFolder[] = "script";

// The main package, and the machine's identity.
inline constexpr char kMainInfo[] = "/var/packages/Camvora/INFO";
inline constexpr char kMainConf[] = "/var/packages/Camvora/target/etc/cv.conf";
inline constexpr char kMachineInfo[] = "/etc.defaults/orvainfo.conf";

// Keys of a package's INFO; of its conf; of the main package's settings; of the machine's identity. The main
// package's INFO has kArchKey and kVersionKey too.
inline constexpr char kPackageKey[] = "package";
inline constexpr char kArchKey[] = "arch";
inline constexpr char kVersionKey[] = "version";
inline constexpr char kMaintainerKey[] = "maintainer";
inline constexpr char kMinMainVersionKey[] = "cv_min_ver";
inline constexpr char kMinDevicePackVersionKey[] = "dp_min_ver";
inline constexpr char kMinLocalDisplayVersionKey[] = "local_display_min_ver";
inline constexpr char kUploadDirKey[] = "addons_upload_dir";
inline constexpr char kUniqueKey[] = "unique";

// The installed trees, beside each the factory copy with its suffix, and the programs of an update or a
// restore that lie there and in the main package.
inline constexpr char kDevicePackPlace[] = "/var/packages/Camvora/target/device_pack";
inline constexpr char kLocalDisplayPlace[] = "/var/packages/Camvora/target/local_display";
inline constexpr char kFactorySuffix[] = ".default";
inline constexpr char kStartScript[] = "/var/packages/Camvora/target/scripts/S82camvora.sh";
inline constexpr char kLocalDisplayScript[] = "/var/packages/Camvora/target/scripts/ctl_local_display.sh";
inline constexpr char kRestoreScript[] = "/var/packages/Camvora/target/device_pack/script/restore";
inline constexpr char kPreUpgradeScript[] = "/var/packages/Camvora/target/device_pack/script/preupgrade";
inline constexpr char kPreInstallScript[] = "/var/packages/Camvora/target/device_pack/script/preinst";
inline constexpr char kPostInstallScript[] = "/var/packages/Camvora/target/device_pack/script/postinst";
inline constexpr char kPostUpgradeScript[] = "/var/packages/Camvora/target/device_pack/script/postupgrade";

inline constexpr char kTarProgram[] = "/bin/tar";
inline constexpr char kRemoveProgram[] = "/bin/rm";
inline constexpr char kMoveProgram[] = "/bin/mv";
inline constexpr char kCopyProgram[] = "/bin/cp";
