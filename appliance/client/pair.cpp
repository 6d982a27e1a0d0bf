// camvoractl pair code NAME, pair join HOST_URL CODE, pair list, pair remove NAME
#include "client/command.h"
#include "client/commands.h"
#include "client/failure.h"
#include "client/jsontext.h"
#include "client/session.h"
#include "client/table.h"

#include <algorithm>
#include <initializer_list>
#include <memory>

namespace client {
namespace {

constexpr char kPairs[] = "/pairs";
constexpr char kWhat[] = "Pairing";

void MakeCode(Session& session, const std::string& name) {
    Json::Value body(Json::objectValue);
    body["name"] = name;
    const Json::Value data = session.Host().PostPage("/pairing/codes", body, "The pairing code");
    const std::string code = LeafText(Member(data, "code"));
    Table table;
    table.AddRow({code});
    session.Print(data, table);
    session.Say("It can be used once, within " + LeafText(Member(data, "validS")) +
                " seconds. At the recording server:\n  camvoractl pair join " + session.FindLocation().url +
                " " + code);
}

struct JoinArguments {
    std::string hostUrl;
    std::string code;
    std::string hostName = "host";
    std::string ownUrl;
};

bool IsLoopback(const std::string& url) {
    const std::initializer_list<const char*> begins = {"http://127.", "http://localhost:", "http://[::1]:"};
    return std::any_of(begins.begin(), begins.end(),
                       [&url](const char* begin) { return url.rfind(begin, 0) == 0; });
}

// The address at which the host reaches this appliance.
std::string OwnUrl(const Session& session, const JoinArguments& arguments, const std::string& hostUrl) {
    std::string url = arguments.ownUrl.empty() ? session.FindLocation().url : arguments.ownUrl;
    if (IsLoopback(url) && !IsLoopback(hostUrl)) {
        throw Failure(ExitStatus::kUsage,
                      "The host cannot reach " + url + ". Give --own-url http://HOST:PORT");
    }
    return url;
}

// The host. It is not told our token.
Location LocateHost(const JoinArguments& arguments) {
    LocationOptions place;
    place.url = arguments.hostUrl;
    return Locate(place, "");
}

// What the host answers to the code.
Json::Value RedeemCode(const Appliance& host, const JoinArguments& arguments, const std::string& ownUrl) {
    Json::Value body(Json::objectValue);
    body["code"] = arguments.code;
    body["address"] = ownUrl;
    return host.PostPage("/pairing", body, kWhat);
}

void KeepHost(const Appliance& own, const JoinArguments& arguments, const Json::Value& given) {
    Json::Value body(Json::objectValue);
    body["name"] = arguments.hostName;
    body["address"] = arguments.hostUrl.substr(0, arguments.hostUrl.find_last_not_of('/') + 1);
    body["secretIn"] = Member(given, "secretIn");
    body["secretOut"] = Member(given, "secretOut");
    (void)own.PostPage(kPairs, body, kWhat);
}

// The host keeps the pair only now, so that it has none that we have not.
void Confirm(const Appliance& host, const Json::Value& given) {
    Json::Value body(Json::objectValue);
    body["name"] = Member(given, "name");
    body["secretOut"] = Member(given, "secretOut");
    (void)host.PostPage("/pairing/confirmation", body, kWhat);
}

// A code can be used only once, so our own appliance is asked first whether it answers us.
void Join(Session& session, const JoinArguments& arguments) {
    const Location location = LocateHost(arguments);
    const Appliance host(HttpClient(location, session.TimeLimit()));
    (void)session.Host().GetPage(kPairs, "The list of pairs");
    const Json::Value given = RedeemCode(host, arguments, OwnUrl(session, arguments, location.url));
    KeepHost(session.Host(), arguments, given);
    Confirm(host, given);
    Json::Value data(Json::objectValue);
    data["name"] = Member(given, "name");
    data["host"] = arguments.hostName;
    Table table;
    table.AddRow({"Called at the host", LeafText(data["name"])});
    table.AddRow({"The host is called", arguments.hostName});
    session.Print(data, table);
}

void ListPairs(Session& session) {
    const Json::Value data = session.Host().GetPage(kPairs, "The list of pairs");
    Table table({"Name", "Role", "Address"});
    for (const Json::Value& pair : Member(data, "pairs")) {
        table.AddRow({LeafText(Member(pair, "name")), LeafText(Member(pair, "role")),
                      LeafText(Member(pair, "address"))});
    }
    session.Print(data, table);
}

void RemovePair(Session& session, const std::string& name) {
    const Json::Value data = session.Host().DeletePage(kPairs, {{"name", name}}, "The removal");
    session.Print(data, Table());
    session.Say(name + " is no longer paired with this appliance. The other side still keeps the pair.");
}

void AddJoin(Command pair, Session& session) {
    Command command = pair.Add("join", "Pair this recording server with its CMS host");
    const auto arguments = std::make_shared<JoinArguments>();
    command.Argument("HOST_URL", arguments->hostUrl, "Address of the host, http://HOST:PORT");
    command.Argument("CODE", arguments->code, "The code that \"pair code\" printed there");
    command.Option("--as", arguments->hostName, "NAME", "What to call the host. Default: host");
    command.Option("--own-url", arguments->ownUrl, "http://HOST:PORT",
                   "Address at which the host reaches this appliance. Default: the one it serves on");
    command.Run([&session, arguments] { Join(session, *arguments); });
}

// A command with the one argument NAME.
Command AddNamed(Command pair, Session& session, const char* name, const char* help,
                 void (*run)(Session&, const std::string&)) {
    Command command = pair.Add(name, help);
    const auto server = std::make_shared<std::string>();
    command.Argument("NAME", *server, "Name of the server");
    command.Run([&session, server, run] { run(session, *server); });
    return command;
}

}  // namespace

void AddPair(Command program, Session& session) {
    Command pair = program.Add("pair", "Pair recording servers with a CMS host");
    pair.NeedsCommand();
    pair.Explain(
        "On the host, \"pair code\" makes a code; on the recording server, \"pair join\" uses it to pair the "
        "two.");
    AddNamed(pair, session, "code", "On the host: make a one-time code for a recording server", MakeCode)
        .Explain("Give it to \"pair join\" on that server, which can use it once, within ten minutes.");
    AddJoin(pair, session);
    pair.Add("list", "Show the paired servers").Run([&session] { ListPairs(session); });
    AddNamed(pair, session, "remove", "Forget a paired server", RemovePair);
}

}  // namespace client
