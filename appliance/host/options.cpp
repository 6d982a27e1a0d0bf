#include "host/options.h"

#include <CLI/CLI.hpp>

namespace host {

namespace {

constexpr char kConfigFile[] = "/var/packages/Camvora/target/etc/host.conf";
constexpr int kDayS = 86400;

void AddPlaces(CLI::App& app, Options& options) {
    app.add_option("--listen", options.listenAddress,
                   "Address to listen on; any but a loopback address needs TLS in front");
    app.add_option("--port", options.port, "Port to listen on, 0 for a free one")
        ->check(CLI::Range(0, 65535));
    app.add_option("--module", options.modulePath, "The web API module to serve");
    app.add_option("--console-folder", options.consoleFolder, "The files of the web console");
    app.add_option("--address-file", options.addressFile,
                   "File that holds the address while the host serves");
    app.add_option("--schedule-token-file", options.scheduleTokenFile,
                   "File that holds the token of the appliance's own programs while the host serves");
    app.add_option("--token-fd", options.tokenFd, "Descriptor from which the access token is read")
        ->required()
        ->check(CLI::NonNegativeNumber);
    app.add_flag("--stop-on-eof", options.stopOnEof, "Stop when standard input ends");
}

void AddLimits(CLI::App& app, Options& options) {
    const auto seconds = CLI::Range(1, kDayS);
    app.add_option("--body-limit", options.bodyLimitBytes, "Bytes of a request body")
        ->check(CLI::Range(1, 1 << 30));
    app.add_option("--stranger-body-limit", options.strangerBodyLimitBytes,
                   "Bytes of a request body without the access token")
        ->check(CLI::Range(1, 1 << 30));
    app.add_option("--upload-limit", options.uploadLimitBytes, "Bytes of all files of a form together")
        ->check(CLI::Range(1LL, 1LL << 50));
    app.add_option("--request-limit", options.requestLimit, "Requests at a time")->check(CLI::Range(1, 200));
    app.add_option("--request-time", options.requestTimeS, "Seconds that a request may take")->check(seconds);
    app.add_option("--connection-limit", options.connectionLimit,
                   "Connections at a time, besides event streams")
        ->check(CLI::Range(1, 500));
    app.add_option("--stream-limit", options.streamLimit, "Event streams at a time")
        ->check(CLI::Range(1, 500));
    app.add_option("--idle-time", options.idleTimeS, "Seconds that a connection may be idle")->check(seconds);
    app.add_option("--read-time", options.readTimeS, "Seconds that a client may be silent within a request")
        ->check(seconds);
    app.add_option("--drain-time", options.drainTimeS,
                   "Seconds that running requests get when the host stops")
        ->check(seconds);
    app.add_option("--heartbeat", options.heartbeatS, "Seconds between heartbeats of an event stream")
        ->check(seconds);
}

}  // namespace

bool ParseOptions(int argc, const char* const* argv, Options& options, int& exitStatus) {
    CLI::App app("The web framework of the stand-in appliance: serves a web API module over HTTP.");
    app.option_defaults()->always_capture_default();
    app.set_config("--config", kConfigFile, "Configuration file with lines option=value");
    AddPlaces(app, options);
    AddLimits(app, options);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        exitStatus = app.exit(error);
        return false;
    }
    return true;
}

}  // namespace host
