/// An FTP server that gives the replies a test wants.

#ifndef KVT_TESTS_NET_SCRIPTED_FTP_H
#define KVT_TESTS_NET_SCRIPTED_FTP_H

#include <map>
#include <string>

#include "scripted_server.h"

/// Lets every user in and answers as RFC 959 would have it, but for the
/// commands named in `replies`, which get that line.  RETR sends `body` over a
/// passive connection and ends with its line.
class ScriptedFtp {
 public:
  /// From the command to the whole line of the reply, without its end.
  using Replies = std::map<std::string, std::string>;

  explicit ScriptedFtp(Replies replies, const std::string& body = "");

  std::string Url(const std::string& path) const;

 private:
  void Talk(ScriptedConnection& connection) const;

  const Replies mReplies;
  const std::string mSize;
  const ScriptedServer mData;
  const ScriptedServer mControl;
};

#endif  // KVT_TESTS_NET_SCRIPTED_FTP_H
