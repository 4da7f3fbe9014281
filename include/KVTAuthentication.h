/// @file
/// The user, password and domain that go with one network location.
///
/// Callers build one and hand a pointer to the share operations, which read it
/// during the call and keep nothing of it; a null pointer there means no
/// credentials at all.  Objects are values without a lock.

#ifndef KVTAUTHENTICATION_H
#define KVTAUTHENTICATION_H

#include "KVTExport.h"
#include "KVTString.h"

/// Credentials for one network location.
///
/// A field counts as set when its text is not empty: an empty password cannot
/// be told from none.  The password is ordinary text and nothing here
/// overwrites memory: neither ResetPassword() nor clear() nor the destructor
/// erases the characters, and GetPassword() and copying spread further copies.
///
/// There is no assignment operator of the class's own; assigning assigns the
/// three texts.
class KVT_EXPORT KVTAuthentication {
 public:
  /// @name Construction, destruction
  /// @{

  /// Makes credentials with nothing set.
  KVTAuthentication();

  /// Copies all three fields, empty ones too.
  KVTAuthentication(const KVTAuthentication& other);

  /// Stores user and password; an empty argument leaves its field unset.
  KVTAuthentication(KVTString user, KVTString password);

  /// Stores all three; an empty argument leaves its field unset.
  KVTAuthentication(KVTString user, KVTString password, KVTString domain);

  /// Erases nothing: the password stays in memory that was released.
  ~KVTAuthentication();

  /// @}
  /// @name Setting
  /// An empty argument changes nothing, and callers rely on that: it takes a
  /// Reset call, or clear(), to empty a field.  The result is always 0.
  /// @{

  /// Stores the user name.
  int SetUser(KVTString user);
  /// Stores the password.
  int SetPassword(KVTString password);
  /// Stores the domain.
  int SetDomain(KVTString domain);
  /// @}

  /// @name Reading
  /// @{

  /// Returns the user name.
  KVTString GetUser();
  /// Returns the password in clear.
  KVTString GetPassword();
  /// Returns the domain.
  KVTString GetDomain();

  /// Tells whether the user name is not empty.
  bool IsUserSet();
  /// Tells whether the password is not empty.
  bool IsPasswordSet();
  /// Tells whether the domain is not empty.
  bool IsDomainSet();
  /// @}

  /// @name Emptying
  /// The result is always 0.
  /// @{

  /// Empties the user name.
  int ResetUser();
  /// Empties the password; its old text stays in memory that was released.
  int ResetPassword();
  /// Empties the domain.
  int ResetDomain();
  /// Empties user, password and domain.
  int clear();
  /// @}

  /// The user name.
  KVTString mUser;
  /// The password, in clear.
  KVTString mPassword;
  /// The domain or workgroup.
  KVTString mDomain;
};

#endif  // KVTAUTHENTICATION_H
