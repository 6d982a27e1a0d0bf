// What the host can be told on its command line or in its configuration file.
#pragma once

#include <cstddef>
#include <string>

namespace host {

struct Options {
    std::string listenAddress = "127.0.0.1";
    int port = 8417;  // 0 picks a free one
    std::string modulePath = "/var/packages/Camvora/target/webapi/ORVA.Camvora.AddOns.so";
    std::string consoleFolder = "/var/packages/Camvora/target/console";
    std::string addressFile = "/var/packages/Camvora/target/@CVData/run/address";
    std::string scheduleTokenFile = "/var/packages/Camvora/target/@CVData/run/schedule-token";
    int tokenFd = -1;
    bool stopOnEof = false;

    std::size_t bodyLimitBytes = std::size_t{2} << 20;
    std::size_t strangerBodyLimitBytes = std::size_t{64} << 10;
    std::size_t uploadLimitBytes = std::size_t{1} << 30;
    int requestLimit = 64;
    int requestTimeS = 7200;
    int connectionLimit = 256;
    int streamLimit = 128;
    int idleTimeS = 5;
    int readTimeS = 10;
    int drainTimeS = 30;
    int heartbeatS = 10;
};

// Reads the command line and the configuration file into `options`. Returns true when the host shall
// start; otherwise `exitStatus` tells how to end, after the help or a message has been printed.
bool ParseOptions(int argc, const char* const* argv, Options& options, int& exitStatus);

}  // namespace host
