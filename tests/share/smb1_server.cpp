#include "smb1_server.h"

#include <memory>
#include <random>

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

std::string Bytes(std::size_t size) {
  std::mt19937_64 random(size);
  std::string bytes(size + 8, '\0');
  for (std::size_t i = 0; i < size; i += 8) {
    const std::uint64_t word = random();
    bytes.replace(i, 8, reinterpret_cast<const char*>(&word), 8);
  }
  bytes.resize(size);
  return bytes;
}
