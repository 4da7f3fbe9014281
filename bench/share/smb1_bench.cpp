// 64 MB to and from a Samba on loopback over SMB 1: the library, the curl
// command, which has its smb:// from libcurl as well, and smbclient.  The times
// of the commands hold their start too; the one-byte rows show it.
//
// libcurl 7.88 moves 32 kB with one request and waits for each answer, asking
// the socket for it without a pause (strace shows it).

#include <benchmark/benchmark.h>
#include <stdlib.h>

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "KVTShareFile.h"
#include "namespaces.h"
#include "samba_server.h"
#include "sized_bytes.h"
#include "temporary_directory.h"
#include "test_strings.h"

namespace {

constexpr std::size_t kSize = 64 << 20;
constexpr char kInMemory[] = "/srv";

// The server and the two files of each transfer, of which the remote one and
// the local one take turns as the source.
class Transfers {
 public:
  static Transfers& Instance() {
    static Transfers transfers;
    return transfers;
  }

  // Gives the source its content and takes the target away.
  void PrepareUpload(std::size_t size) { Prepare(mLocal, mRemote, size); }
  void PrepareDownload(std::size_t size) { Prepare(mRemote, mLocal, size); }

  void ExpectEqual() const {
    if (ReadFile(mLocal) != ReadFile(mRemote)) {
      throw std::runtime_error("the bytes differ");
    }
  }

  const std::string& Local() const { return mLocal; }

 private:
  Transfers() {
    // All files lie in memory, so that no disk has a part in it.
    EnterPrivateMountsAndNetwork();
    CoverWithEmptyDirectory(kInMemory);
    setenv("TMPDIR", kInMemory, 1);
    mDirectory.emplace();
    mServer.emplace();
    mLocal = mDirectory->Path("a");
    mRemote = mServer->Docs("a");
  }

  static void Prepare(const std::string& source, const std::string& target,
                      std::size_t size) {
    WriteBytes(source, size);
    WriteFile(target, "");
  }

  std::optional<TemporaryDirectory> mDirectory;
  std::optional<SambaServer> mServer;
  std::string mLocal;
  std::string mRemote;
};

using Transfer = void (*)(const std::string& local);

void Check(bool done, const char* what) {
  if (!done) throw std::runtime_error(std::string(what) + " failed");
}

void Send(const KVTString& source, const KVTString& destination) {
  KVTShareFile share;
  KVTAuthentication auth(SambaServer::kUser, SambaServer::kPassword);
  KVTString error;
  Check(share.SendFileOnWindowSMB1(source, &auth, true, destination, &auth,
                                   error) == 0,
        "the library");
}

void LibraryUpload(const std::string& local) {
  Send(FromUtf8(local), "//127.0.0.1/docs/a");
}

void LibraryDownload(const std::string& local) {
  Send("//127.0.0.1/docs/a", FromUtf8(local));
}

void Curl(const std::string& option, const std::string& local) {
  Check(Run({"curl", "--silent", "--show-error", "--user",
             std::string(SambaServer::kUser) + ":" + SambaServer::kPassword,
             option, local, "smb://127.0.0.1/docs/a"}) == 0,
        "curl");
}

void CurlUpload(const std::string& local) { Curl("--upload-file", local); }

void CurlDownload(const std::string& local) { Curl("--output", local); }

void Smbclient(const std::string& command) {
  Check(Run({"smbclient", "//127.0.0.1/docs", "--configfile=/dev/null",
             "--debuglevel=0", "--option=client min protocol=NT1",
             "--max-protocol=NT1", "--user",
             std::string(SambaServer::kUser) + "%" + SambaServer::kPassword,
             "--command", command}) == 0,
        "smbclient");
}

void SmbclientUpload(const std::string& local) {
  Smbclient("put " + local + " a");
}

void SmbclientDownload(const std::string& local) {
  Smbclient("get a " + local);
}

void Measure(benchmark::State& state, Transfer transfer) {
  const Transfers& transfers = Transfers::Instance();
  transfer(transfers.Local());
  transfers.ExpectEqual();
  for (auto _ : state) transfer(transfers.Local());
  transfers.ExpectEqual();
  state.SetBytesProcessed(state.iterations() * state.range(0));
}

void BM_Upload(benchmark::State& state, Transfer transfer) {
  Transfers::Instance().PrepareUpload(state.range(0));
  Measure(state, transfer);
}

void BM_Download(benchmark::State& state, Transfer transfer) {
  Transfers::Instance().PrepareDownload(state.range(0));
  Measure(state, transfer);
}

void Sizes(benchmark::internal::Benchmark* benchmark) {
  benchmark->Arg(kSize)->Arg(1)->UseRealTime()->Unit(benchmark::kMillisecond);
}

BENCHMARK_CAPTURE(BM_Upload, Library, LibraryUpload)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_Upload, Curl, CurlUpload)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_Upload, Smbclient, SmbclientUpload)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_Download, Library, LibraryDownload)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_Download, Curl, CurlDownload)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_Download, Smbclient, SmbclientDownload)->Apply(Sizes);

}  // namespace
