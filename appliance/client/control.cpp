// camvoractl start|stop|restart SERVICE [--no-wait]
#include "client/command.h"
#include "client/commands.h"
#include "client/jsontext.h"
#include "client/localtime.h"
#include "client/progress.h"
#include "client/services.h"
#include "client/servicewait.h"
#include "client/session.h"
#include "client/table.h"

#include <memory>

namespace client {
namespace {

struct Control {
    const char* command;
    const char* alias;  // empty for none
    const char* help;
    const char* more;
    const char* method;
    const char* description;  // for the operation log; empty where the answer is the end and is not logged
    const char* ordered;      // what is known when the appliance has answered
    Json::Value (ServiceWait::*wait)();
};

constexpr Control kControls[] = {
    // clang-format off
    {"start", "enable", "Start a service",
     "Waits until the service is seen running, and looks again two seconds later.", "Enable", "started by camvoractl", "is being started",
     &ServiceWait::ForStarted},
    {"stop", "disable", "Stop a service", "Waits until the service is seen stopped.", "Disable", "stopped by camvoractl", "is being stopped",
     &ServiceWait::ForStopped},
    {"restart", "", "Stop a service and start it again",
     "Waits until the service is seen running, and looks again two seconds later.", "Restart", "", "was restarted",
     &ServiceWait::ForStarted},
    // clang-format on
};

struct ControlArguments {
    std::string service;
    bool isWaiting = true;
};

Json::Value Params(const Control& control, const Service& service) {
    Json::Value params;
    params["service"] = service.number;
    if (*control.description != '\0') {
        params["serviceName"] = service.name;
        params["description"] = control.description;
    }
    return params;
}

Table Sentence(const std::string& text) {
    Table table;
    table.AddRow({text});
    return table;
}

void PrintOrdered(const Session& session, const std::string& text, const std::string& requestId) {
    Json::Value data;
    data["request"] = requestId;
    session.Print(data, Sentence(text + " (request " + requestId + ")"));
}

std::string WhatWasSeen(const Service& service, const Json::Value& info) {
    const std::string since = LeafText(Member(info, "since"));
    const std::string pid = LeafText(Member(info, "pid"));
    return service.name + (Member(info, "blRunning") == Json::Value(true) ? " is running" : " is stopped") +
           (since.empty() ? "" : " since " + LocalTime(since, "%H:%M:%S")) +
           (pid.empty() ? "" : ", pid " + pid);
}

void Run(Session& session, const Control& control, const ControlArguments& arguments) {
    const Appliance& host = session.Host();
    const Service service = ResolveListedService(host, arguments.service);
    auto progress = std::make_unique<Progress>(session.ShowsProgress());
    progress->Step("Asking the appliance to " + std::string(control.command) + " " + service.name);
    const std::string requestId = host.Ask(control.method, Params(control, service)).requestId;
    if (!arguments.isWaiting) {
        progress.reset();
        PrintOrdered(session, service.name + " " + control.ordered, requestId);
        return;
    }
    const bool isOver = *control.description == '\0' || !host.HasRecords();  // its state has to do
    ServiceWait wait(host, *progress, service, requestId, isOver, session.TimeLimit());
    const Json::Value info = (wait.*control.wait)();
    progress.reset();
    session.Print(info, Sentence(WhatWasSeen(service, info)));
}

void AddOne(Command program, Session& session, const Control& control) {
    Command command = program.Add(control.command, control.help);
    if (*control.alias != '\0') {
        command.Alias(control.alias);
    }
    command.Explain(control.more);
    const auto arguments = std::make_shared<ControlArguments>();
    command.Argument("SERVICE", arguments->service, "Number or short name of the service");
    command.Flag("!--no-wait", arguments->isWaiting, "Do not wait to see what becomes of the service");
    command.Run([&session, &control, arguments] { Run(session, control, *arguments); });
}

}  // namespace

void AddControl(Command program, Session& session) {
    for (const Control& control : kControls) {
        AddOne(program, session, control);
    }
}

}  // namespace client
