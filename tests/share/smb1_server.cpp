#include "smb1_server.h"

#include <memory>

#include "namespaces.h"

namespace {

std::unique_ptr<SambaServer> server;

class ServerEnvironment : public testing::Environment {
 public:
  void SetUp() override {
    EnterPrivateMountsAndNetwork();
    server = std::make_unique<SambaServer>();
  }
  void TearDown() override { server.reset(); }
};

const testing::Environment* const kEnvironment =
    testing::AddGlobalTestEnvironment(new ServerEnvironment);

}  // namespace

SambaServer& Server() { return *server; }
