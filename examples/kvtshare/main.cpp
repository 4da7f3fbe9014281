/// kvtshare: files to and from Windows-style shares, on the command line.

#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>

#include "KVTString.h"
#include "commands.h"

namespace {

// What the library never returns: the command line or the password is at fault,
// and nothing was done.
constexpr int kMisuse = 2;

void AddPasswordOptions(CLI::App& command, PasswordSource& password) {
  auto* file =
      command.add_option("--password-file", password.file,
                         "Take the first line of this file as password");
  command
      .add_option("--password-env", password.variable,
                  "Take the value of this environment variable as password")
      ->excludes(file);
}

void AddCredentialOptions(CLI::App& command, Credentials& credentials) {
  command.add_option("--user", credentials.user,
                     "User at the share; asks for a password on the terminal "
                     "when no other source of it is named");
  command.add_option("--domain", credentials.domain, "Domain of the user");
  AddPasswordOptions(command, credentials.password);
}

}  // namespace

int main(int argc, char** argv) try {
  CLI::App app(
      "Moves files to and from Windows-style shares.\n"
      "A share location is written \\\\HOST\\SHARE\\PATH, //HOST/SHARE/PATH or "
      "smb://HOST/SHARE/PATH.");
  app.footer(
      "The library's result is printed and is the exit status:\n"
      "0 done, 1 failed, 6 access refused.\n"
      "Exit status 2: the command line or the password is at fault, nothing "
      "was done.");
  app.require_subcommand(1);
  int result = 0;

  SendArguments send;
  CLI::App* command = app.add_subcommand(
      "send",
      "Send a file to a share or fetch one, through a mount (needs root). Up "
      "to five attempts; the share stays mounted.");
  command->add_option("SOURCE", send.source, "Local file or share location")
      ->required();
  command
      ->add_option("DESTINATION", send.destination,
                   "The other of the two: file name included")
      ->required();
  AddCredentialOptions(*command, send.credentials);
  auto* smb1 = command->add_flag("--smb1", send.smb1,
                                 "Transfer with SMB 1 and without a mount, for "
                                 "old servers (needs no root)");
  command
      ->add_flag(
          "--probe", send.probe,
          "With --smb1: connect, log in and ask for the remote file, leaving "
          "DESTINATION alone")
      ->needs(smb1);
  command->callback([&] { result = Send(send); });

  std::string location;
  Credentials credentials;
  command = app.add_subcommand(
      "delete", "Delete a file on a share, through a mount (needs root)");
  command->add_option("LOCATION", location, "Share location of the file")
      ->required();
  AddCredentialOptions(*command, credentials);
  command->callback([&] { result = Delete(location, credentials); });

  command = app.add_subcommand(
      "parse",
      "Show the parts of a location: address of the host, share folder, rest");
  command->add_option("LOCATION", location, "Share location")->required();
  command->callback([&] { result = Parse(location); });

  std::string folder;
  bool all = false;
  command = app.add_subcommand("unmount",
                               "Take a mount down and remove its folder, with "
                               "files that lie in it locally");
  auto* folderOption = command->add_option(
      "FOLDER", folder, "Mount folder, such as /mnt/orbmountZ");
  auto* allOption = command->add_flag(
      "--all", all,
      "Every share that /proc/mounts shows on /mnt/orbmountA to "
      "/mnt/orbmountZ, whichever process mounted it; result 1 if any of them "
      "stays");
  allOption->excludes(folderOption);
  command->callback([&] {
    if (!all && folder.empty()) throw CLI::RequiredError("FOLDER or --all");
    result = all ? UnmountEverything() : Unmount(folder);
  });

  DownloadArguments download;
  command = app.add_subcommand("download", "Download a URL (http, https, ftp)");
  command->add_option("URL", download.url, "What to download")->required();
  command
      ->add_option("TARGET", download.target,
                   "File to write, or a folder to put it into")
      ->required();
  auto* proxyOption = command->add_option("--proxy", download.proxyAddress,
                                          "Address of a proxy");
  auto* proxyUser = command->add_option("--proxy-user", download.proxyUser,
                                        "User at the proxy");
  proxyUser->needs(proxyOption);
  AddPasswordOptions(*command, download.proxyPassword);
  command->get_option("--password-file")->needs(proxyUser);
  command->get_option("--password-env")->needs(proxyUser);
  command->callback([&] { result = Download(download); });

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : kMisuse;
  }
  return result;
} catch (const KVTString& text) {
  // ParseNetworkPath reports this way when memory runs out.
  std::cerr << "kvtshare: " << text.GetUTF8String() << "\n";
  return 1;
} catch (const std::exception& error) {
  std::cerr << "kvtshare: " << error.what() << "\n";
  return kMisuse;
}
