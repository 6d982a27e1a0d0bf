// Every fixed path of the module and the rules by which its file names are built.
#pragma once

// Lock and pid files of a service: kProcessFilePrefix, the service's short name, a suffix. The update lock
// has kUpdateLockName and "_" before the short name.
inline constexpr char kProcessFilePrefix[] = "/tmp/cv_";
inline constexpr char kPidSuffix[] = ".pid";
inline constexpr char kLockSuffix[] = ".lock";
inline constexpr char kUpdateLockName[] = "AddOns_Update";

// Tells that somebody is logged in at the Local Display.
inline constexpr char kLocalDisplayLoginStatus[] =
    "/var/packages/Camvora/target/@CVData/preference/local_display_login/status";
