// What a caller's program was built against and a symbol's name does not show:
// the results, and which calls need an object.

#include <gtest/gtest.h>

#include <type_traits>

#include "KVTAuthentication.h"
#include "KVTShareFile.h"

namespace {

template <class Expected, class Actual>
void ExpectSame(Actual) {
  EXPECT_TRUE((std::is_same_v<Expected, Actual>));
}

TEST(ShareSignatures, OfCredentials) {
  using Class = KVTAuthentication;
  using Set = int (Class::*)(KVTString);
  using Get = KVTString (Class::*)();
  using IsSet = bool (Class::*)();
  using Reset = int (Class::*)();
  ExpectSame<Set>(&Class::SetUser);
  ExpectSame<Set>(&Class::SetPassword);
  ExpectSame<Set>(&Class::SetDomain);
  ExpectSame<Get>(&Class::GetUser);
  ExpectSame<Get>(&Class::GetPassword);
  ExpectSame<Get>(&Class::GetDomain);
  ExpectSame<IsSet>(&Class::IsUserSet);
  ExpectSame<IsSet>(&Class::IsPasswordSet);
  ExpectSame<IsSet>(&Class::IsDomainSet);
  ExpectSame<Reset>(&Class::ResetUser);
  ExpectSame<Reset>(&Class::ResetPassword);
  ExpectSame<Reset>(&Class::ResetDomain);
  ExpectSame<Reset>(&Class::clear);
}

TEST(ShareSignatures, OfOperationsOnLocations) {
  using Class = KVTShareFileInternal;
  ExpectSame<bool (Class::*)(KVTString)>(&Class::isMaliciousNetworkShare);
  ExpectSame<int (Class::*)(KVTString, KVTString&)>(&Class::GetParentPath);
  ExpectSame<int (Class::*)(const KVTString&, KVTString&)>(&Class::GetFileName);
  ExpectSame<bool (Class::*)(KVTString)>(
      &Class::CreateParentDirectoryIfDoesntExist);
  ExpectSame<int (Class::*)(KVTString, KVTString&, KVTString&, KVTString&)>(
      &Class::ParseNetworkPath);
  ExpectSame<int (Class::*)(KVTString, KVTString&)>(&Class::ResolveHostAddress);
  ExpectSame<KVTString (Class::*)(KVTString)>(&Class::RefactorIPv6ForMounting);
  ExpectSame<KVTString (Class::*)(KVTString)>(
      &Class::RefactorIPv6ForWindowSMB1);
  // libcurl calls these two without an object.
  ExpectSame<size_t (*)(void*, unsigned long, unsigned long, void*)>(
      &Class::HandleWindowSMB1Read_CallBack);
  ExpectSame<size_t (*)(void*, unsigned long, unsigned long, FILE*)>(
      &Class::HandleWindowSMB1Write_CallBack);
}

TEST(ShareSignatures, OfMounts) {
  using Class = MountManager;
  using Find = int (Class::*)(KVTString, KVTString&, KVTString&);
  ExpectSame<Find>(&Class::GetMountPoint);
  ExpectSame<Find>(&Class::GetMountPointForMountedNetwork);
  ExpectSame<int (Class::*)(KVTString, KVTAuthentication*, KVTString&,
                            KVTString&)>(&Class::MountNetworkShare);
  ExpectSame<int (Class::*)(const KVTString&)>(&Class::UnMountShare);
  ExpectSame<int (Class::*)()>(&Class::UnmountAll);
}

TEST(ShareSignatures, OfTransfers) {
  using Class = KVTShareFile;
  using Send = int (Class::*)(const KVTString&, KVTAuthentication*,
                              const KVTString&, KVTAuthentication*, KVTString&);
  using Delete =
      int (Class::*)(const KVTString&, KVTAuthentication*, KVTString&);
  ExpectSame<KVTShareFile* (*)()>(&Class::Instance);
  ExpectSame<KVTShareFile**>(&Class::mInstance);
  ExpectSame<bool (Class::*)(const KVTString&)>(&Class::IsSharePath);
  ExpectSame<Send>(&Class::SendFile);
  ExpectSame<Send>(&Class::SendFileUsingMount);
  ExpectSame<Delete>(&Class::DeleteFileUsingMount);
  ExpectSame<Delete>(&Class::DeleteShareFile);
  ExpectSame<int (Class::*)(const KVTString&, KVTAuthentication*, bool,
                            const KVTString&, KVTAuthentication*, KVTString&)>(
      &Class::SendFileOnWindowSMB1);
  ExpectSame<int (Class::*)(const KVTString&, KVTAuthentication*)>(
      &Class::DeleteFileOnWindowSMB1);
}

}  // namespace
