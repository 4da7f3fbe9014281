#include "KVTAuthentication.h"

// None of the members below wipes memory: the characters of a password stay
// wherever their storage was.

KVTAuthentication::KVTAuthentication() = default;

KVTAuthentication::KVTAuthentication(const KVTAuthentication& other) = default;

KVTAuthentication::KVTAuthentication(KVTString user, KVTString password) {
  mUser = user;
  mPassword = password;
}

KVTAuthentication::KVTAuthentication(KVTString user, KVTString password,
                                     KVTString domain) {
  mUser = user;
  mPassword = password;
  mDomain = domain;
}

KVTAuthentication::~KVTAuthentication() = default;

// Callers rely on an empty argument leaving the old value in place.
int KVTAuthentication::SetUser(KVTString user) {
  if (!user.empty()) mUser = user;
  return 0;
}

int KVTAuthentication::SetPassword(KVTString password) {
  if (!password.empty()) mPassword = password;
  return 0;
}

int KVTAuthentication::SetDomain(KVTString domain) {
  if (!domain.empty()) mDomain = domain;
  return 0;
}

KVTString KVTAuthentication::GetUser() { return mUser; }

KVTString KVTAuthentication::GetPassword() { return mPassword; }

KVTString KVTAuthentication::GetDomain() { return mDomain; }

bool KVTAuthentication::IsUserSet() { return !mUser.empty(); }

bool KVTAuthentication::IsPasswordSet() { return !mPassword.empty(); }

bool KVTAuthentication::IsDomainSet() { return !mDomain.empty(); }

int KVTAuthentication::ResetUser() {
  mUser = KVTString();
  return 0;
}

int KVTAuthentication::ResetPassword() {
  mPassword = KVTString();
  return 0;
}

int KVTAuthentication::ResetDomain() {
  mDomain = KVTString();
  return 0;
}

int KVTAuthentication::clear() {
  ResetUser();
  ResetPassword();
  ResetDomain();
  return 0;
}
