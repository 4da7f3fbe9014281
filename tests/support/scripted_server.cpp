#include "scripted_server.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>
#include <utility>

std::string ScriptedConnection::ReadLine() {
  std::string line;
  char byte;
  while (recv(mDescriptor, &byte, 1, 0) == 1) {
    if (byte == '\n') {
      if (!line.empty() && line.back() == '\r') line.pop_back();
      return line;
    }
    line += byte;
  }
  mAtEnd = true;
  return line;
}

std::string ScriptedConnection::ReadHead() {
  std::string head;
  for (std::string line = ReadLine(); !line.empty(); line = ReadLine()) {
    head += line + "\n";
  }
  return head;
}

void ScriptedConnection::Write(const std::string& bytes) {
  std::size_t sent = 0;
  while (sent < bytes.size()) {
    const ssize_t count = send(mDescriptor, bytes.data() + sent,
                               bytes.size() - sent, MSG_NOSIGNAL);
    if (count <= 0) return;
    sent += static_cast<std::size_t>(count);
  }
}

ScriptedServer::ScriptedServer(std::function<void(ScriptedConnection&)> talk)
    : mTalk(std::move(talk)),
      mListener(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  sockaddr_in address = {};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  const bool listens =
      bind(mListener, reinterpret_cast<sockaddr*>(&address), size) == 0 &&
      listen(mListener, 8) == 0 &&
      getsockname(mListener, reinterpret_cast<sockaddr*>(&address), &size) == 0;
  if (!listens) {
    close(mListener);
    throw std::runtime_error("cannot listen on loopback");
  }
  mPort = ntohs(address.sin_port);
  mThread = std::thread([this] { Serve(); });
}

ScriptedServer::~ScriptedServer() {
  {
    const std::lock_guard<std::mutex> guard(mLock);
    mEnding = true;
    shutdown(mListener, SHUT_RDWR);
    if (mOpen >= 0) shutdown(mOpen, SHUT_RDWR);
  }
  mThread.join();
  close(mListener);
}

void ScriptedServer::Serve() {
  while (true) {
    // Fails once the listener is shut down.
    const int descriptor = accept4(mListener, nullptr, nullptr, SOCK_CLOEXEC);
    if (descriptor < 0) return;
    // Small replies go out at once.
    const int on = 1;
    setsockopt(descriptor, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    if (Open(descriptor)) {
      ScriptedConnection connection(descriptor);
      mTalk(connection);
    }
    Close(descriptor);
  }
}

bool ScriptedServer::Open(int descriptor) {
  const std::lock_guard<std::mutex> guard(mLock);
  if (!mEnding) mOpen = descriptor;
  return !mEnding;
}

void ScriptedServer::Close(int descriptor) {
  const std::lock_guard<std::mutex> guard(mLock);
  mOpen = -1;
  close(descriptor);
}
