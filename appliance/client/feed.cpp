// camvoractl feed key FILE, feed build DIR --key KEY
#include "client/command.h"
#include "client/commands.h"
#include "client/feedbuild.h"
#include "client/feedkey.h"
#include "client/plainwords.h"
#include "client/session.h"
#include "client/table.h"

#include <memory>

namespace client {
namespace {

struct BuildArguments {
    std::string dir;
    std::string keyFile;
};

void MakeKey(const Session& session, const std::string& file) {
    MakeFeedKey(file);
    Json::Value data;
    data["privateKey"] = file;
    data["publicKey"] = file + ".pub";
    Table table;
    table.AddRow({"Private key, to be kept secret", file});
    table.AddRow({"Public key, for the appliances", file + ".pub"});
    session.Print(data, table);
}

void Build(const Session& session, const BuildArguments& arguments) {
    const FeedKey key(arguments.keyFile);
    Json::Value data;
    data["indexes"] = Json::Value(Json::arrayValue);
    Table table({"Add-on", "Version", "Date", "Size", "File", "Notes"});
    for (const FeedIndex& index : BuildFeed(arguments.dir, key)) {
        data["indexes"].append(FeedIndexDocument(index));
        if (index.releases.empty()) {
            table.AddRow({index.service, "no release any more", "", "", "", ""});
        }
        for (const FeedRelease& release : index.releases) {
            table.AddRow({index.service, release.version, release.date, SizeWords(release.sizeBytes),
                          release.file, FirstLine(release.notes)});
        }
    }
    session.Print(data, table);
}

void AddKey(Command feed, Session& session) {
    Command command = feed.Add("key", "Make the key pair that signs a feed");
    command.Explain(
        "The private key signs the feed and stays secret; appliances verify with the public one.");
    const auto file = std::make_shared<std::string>();
    command.Argument("FILE", *file, "File for the private key; the public one becomes FILE.pub");
    command.Run([&session, file] { MakeKey(session, *file); });
}

void AddBuild(Command feed, Session& session) {
    Command command = feed.Add("build", "Publish the packages in a folder, and their NAME.notes");
    command.Explain(
        "Writes and signs an index for each add-on that has packages there. The text in NAME.notes is "
        "published with NAME.spk.");
    const auto arguments = std::make_shared<BuildArguments>();
    command.Argument("DIR", arguments->dir, "Folder of the feed");
    command.RequiredOption("--key", arguments->keyFile, "FILE", "Private key of the feed");
    command.Run([&session, arguments] { Build(session, *arguments); });
}

}  // namespace

void AddFeed(Command program, Session& session) {
    Command feed = program.Add("feed", "Publish releases for appliances to download");
    feed.NeedsCommand();
    AddKey(feed, session);
    AddBuild(feed, session);
}

}  // namespace client
