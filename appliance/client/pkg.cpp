// camvoractl pkg build DIR -o FILE
#include "client/commands.h"
#include "client/packagebuild.h"
#include "client/session.h"
#include "client/table.h"

#include <CLI/App.hpp>

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

void AddPkg(CLI::App& program, Session& session) {
    CLI::App* pkg = program.add_subcommand("pkg", "Make package files")->require_subcommand(1);
    CLI::App* command = pkg->add_subcommand("build", "Make a package file from an add-on's tree");
    const auto arguments = std::make_shared<BuildArguments>();
    command
        ->add_option("DIR", arguments->dir, "Folder with the folder \"tree\" and the file \"package.conf\"")
        ->required();
    command->add_option("-o,--output", arguments->packageFile, "Package file to write")
        ->required()
        ->option_text("FILE");
    command->add_option("--settings", arguments->settingsFile, "Settings instead of DIR/package.conf")
        ->option_text("FILE");
    command->callback([&session, arguments] { Build(session, *arguments); });
}

}  // namespace client
