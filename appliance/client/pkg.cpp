// camvoractl pkg build DIR -o FILE
#include "client/command.h"
#include "client/commands.h"
#include "client/packagebuild.h"
#include "client/session.h"
#include "client/table.h"

#include <memory>

namespace client {
namespace {

constexpr char kTreeDir[] = "/tree";
constexpr char kSettingsFile[] = "/package.conf";

struct BuildArguments {
    std::string dir;
    std::string settingsFile;  // empty for the one in `dir`
    std::string packageFile;
};

void Build(const Session& session, const BuildArguments& arguments) {
    const std::string settingsFile =
        arguments.settingsFile.empty() ? arguments.dir + kSettingsFile : arguments.settingsFile;
    const BuiltPackage built = BuildPackage(arguments.dir + kTreeDir, settingsFile, arguments.packageFile);
    Json::Value data;
    data["file"] = arguments.packageFile;
    data["package"] = built.package;
    data["version"] = built.version;
    data["files"] = Json::UInt64(built.files);
    Table table;
    table.AddRow({arguments.packageFile + " holds " + built.package + " " + built.version + ", " +
                  std::to_string(built.files) + " files and folders"});
    session.Print(data, table);
}

}  // namespace

void AddPkg(Command program, Session& session) {
    Command pkg = program.Add("pkg", "Make package files");
    pkg.NeedsCommand();
    Command command = pkg.Add("build", "Make a package file from an add-on's tree");
    const auto arguments = std::make_shared<BuildArguments>();
    command.Argument("DIR", arguments->dir, "Folder with the folder \"tree\" and the file \"package.conf\"");
    command.RequiredOption("-o,--output", arguments->packageFile, "FILE", "Package file to write");
    command.Option("--settings", arguments->settingsFile, "FILE", "Settings instead of DIR/package.conf");
    command.Run([&session, arguments] { Build(session, *arguments); });
}

}  // namespace client
