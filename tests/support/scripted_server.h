/// A TCP server on loopback whose side of the talk a test writes itself, for
/// what no real server can be made to say.

#ifndef KVT_TESTS_SCRIPTED_SERVER_H
#define KVT_TESTS_SCRIPTED_SERVER_H

#include <functional>
#include <mutex>
#include <string>
#include <thread>

/// One accepted connection.
class ScriptedConnection {
 public:
  explicit ScriptedConnection(int descriptor) : mDescriptor(descriptor) {}

  /// The next line without its end (CR LF or LF); empty at the end of the
  /// input too, where `AtEnd` then holds.
  std::string ReadLine();
  bool AtEnd() const { return mAtEnd; }

  /// Lines up to and without the empty one, as HTTP sends its head.
  std::string ReadHead();

  void Write(const std::string& bytes);

 private:
  int mDescriptor;
  bool mAtEnd = false;
};

/// Accepts one connection after the other on a thread of its own and closes
/// each when `talk` returns.
class ScriptedServer {
 public:
  explicit ScriptedServer(std::function<void(ScriptedConnection&)> talk);
  /// Cuts the connection that is open, if any, and ends the thread.
  ~ScriptedServer();
  ScriptedServer(const ScriptedServer&) = delete;
  ScriptedServer& operator=(const ScriptedServer&) = delete;

  int Port() const { return mPort; }

 private:
  void Serve();
  bool Open(int descriptor);
  void Close(int descriptor);

  const std::function<void(ScriptedConnection&)> mTalk;
  int mListener;
  int mPort;
  std::mutex mLock;
  bool mEnding = false;  // guarded by mLock
  int mOpen = -1;        // guarded by mLock; the connection in talk
  std::thread mThread;
};

#endif  // KVT_TESTS_SCRIPTED_SERVER_H
