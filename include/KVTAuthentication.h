/// @file
/// The user, password and domain that go with one network location.

#ifndef KVTAUTHENTICATION_H
#define KVTAUTHENTICATION_H

#include "KVTExport.h"
#include "KVTString.h"

class KVT_EXPORT KVTAuthentication {
 public:
  KVTAuthentication();
  KVTAuthentication(const KVTAuthentication& other);
  KVTAuthentication(KVTString user, KVTString password);
  KVTAuthentication(KVTString user, KVTString password, KVTString domain);
  ~KVTAuthentication();

  int SetUser(KVTString user);
  int SetPassword(KVTString password);
  int SetDomain(KVTString domain);

  KVTString GetUser();
  KVTString GetPassword();
  KVTString GetDomain();

  bool IsUserSet();
  bool IsPasswordSet();
  bool IsDomainSet();

  int ResetUser();
  int ResetPassword();
  int ResetDomain();
  int clear();

  KVTString mUser;
  KVTString mPassword;
  KVTString mDomain;
};

#endif  // KVTAUTHENTICATION_H
