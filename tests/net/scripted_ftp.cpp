#include "scripted_ftp.h"

#include <utility>

ScriptedFtp::ScriptedFtp(Replies replies, const std::string& body)
    : mReplies(std::move(replies)),
      mSize(std::to_string(body.size())),
      mData([body](ScriptedConnection& connection) { connection.Write(body); }),
      mControl([this](ScriptedConnection& connection) { Talk(connection); }) {}

std::string ScriptedFtp::Url(const std::string& path) const {
  return "ftp://127.0.0.1:" + std::to_string(mControl.Port()) + "/" + path;
}

void ScriptedFtp::Talk(ScriptedConnection& connection) const {
  const Replies usual = {
      {"USER", "331 password please"},
      {"PASS", "230 welcome"},
      {"PWD", "257 \"/\" is the folder"},
      {"CWD", "250 changed"},
      {"TYPE", "200 as you say"},
      {"SIZE", "213 " + mSize},
      {"REST", "350 go on"},
      {"EPSV", "229 here (|||" + std::to_string(mData.Port()) + "|)"},
      {"RETR", "226 sent"},
      {"QUIT", "221 bye"},
  };
  connection.Write("220 ready\r\n");
  while (true) {
    const std::string line = connection.ReadLine();
    if (connection.AtEnd()) return;
    const std::string command = line.substr(0, line.find(' '));
    if (command == "RETR") connection.Write("150 it comes\r\n");
    std::string reply = "502 what?";
    if (usual.count(command) != 0) reply = usual.at(command);
    if (mReplies.count(command) != 0) reply = mReplies.at(command);
    connection.Write(reply + "\r\n");
  }
}
