#include <gtest/gtest.h>

#include <algorithm>

#include "KVTAuthentication.h"
#include "test_strings.h"

namespace {

TEST(Authentication, StartsWithNothingSet) {
  KVTAuthentication auth;
  EXPECT_FALSE(auth.IsUserSet());
  EXPECT_FALSE(auth.IsPasswordSet());
  EXPECT_FALSE(auth.IsDomainSet());
  EXPECT_EQ(auth.GetUser(), "");
  EXPECT_EQ(auth.GetPassword(), "");
  EXPECT_EQ(auth.GetDomain(), "");
}

TEST(Authentication, TakesUserAndPasswordWithoutDomain) {
  KVTAuthentication auth("backup", "secret");
  EXPECT_EQ(auth.GetUser(), "backup");
  EXPECT_EQ(auth.GetPassword(), "secret");
  EXPECT_FALSE(auth.IsDomainSet());
}

TEST(Authentication, TakesAllThree) {
  KVTAuthentication auth("backup", "secret", "CORP");
  EXPECT_TRUE(auth.IsUserSet());
  EXPECT_TRUE(auth.IsPasswordSet());
  EXPECT_TRUE(auth.IsDomainSet());
  EXPECT_EQ(auth.mUser, "backup");
  EXPECT_EQ(auth.mPassword, "secret");
  EXPECT_EQ(auth.mDomain, "CORP");
}

TEST(Authentication, CountsAnEmptyConstructorArgumentAsNotSet) {
  KVTAuthentication noUser("", "secret");
  EXPECT_FALSE(noUser.IsUserSet());
  EXPECT_TRUE(noUser.IsPasswordSet());
  KVTAuthentication onlyDomain("", "", "CORP");
  EXPECT_FALSE(onlyDomain.IsUserSet());
  EXPECT_FALSE(onlyDomain.IsPasswordSet());
  EXPECT_TRUE(onlyDomain.IsDomainSet());
}

TEST(Authentication, CopiesAllFieldsEmptyOnesToo) {
  const KVTAuthentication original("backup", "", "CORP");
  KVTAuthentication copy(original);
  EXPECT_EQ(copy.GetUser(), "backup");
  EXPECT_FALSE(copy.IsPasswordSet());
  EXPECT_EQ(copy.GetDomain(), "CORP");

  const KVTAuthentication full("backup", "secret", "CORP");
  KVTAuthentication copyOfFull(full);
  EXPECT_EQ(copyOfFull.GetUser(), "backup");
  EXPECT_EQ(copyOfFull.GetPassword(), "secret");
  EXPECT_EQ(copyOfFull.GetDomain(), "CORP");
}

TEST(Authentication, SettersAssignAndReturnZero) {
  KVTAuthentication auth;
  EXPECT_EQ(auth.SetUser("backup"), 0);
  EXPECT_EQ(auth.SetPassword("secret"), 0);
  EXPECT_EQ(auth.SetDomain("CORP"), 0);
  EXPECT_EQ(auth.GetUser(), "backup");
  EXPECT_EQ(auth.GetPassword(), "secret");
  EXPECT_EQ(auth.GetDomain(), "CORP");
}

TEST(Authentication, SettersIgnoreAnEmptyArgumentAndReturnZero) {
  KVTAuthentication auth("backup", "secret", "CORP");
  EXPECT_EQ(auth.SetUser(""), 0);
  EXPECT_EQ(auth.SetPassword(""), 0);
  EXPECT_EQ(auth.SetDomain(""), 0);
  EXPECT_TRUE(auth.IsUserSet());
  EXPECT_EQ(auth.GetUser(), "backup");
  EXPECT_EQ(auth.GetPassword(), "secret");
  EXPECT_EQ(auth.GetDomain(), "CORP");
}

TEST(Authentication, ResetEmptiesItsOneField) {
  KVTAuthentication user("backup", "secret", "CORP");
  EXPECT_EQ(user.ResetUser(), 0);
  EXPECT_FALSE(user.IsUserSet());
  EXPECT_TRUE(user.IsPasswordSet());
  EXPECT_TRUE(user.IsDomainSet());

  KVTAuthentication password("backup", "secret", "CORP");
  EXPECT_EQ(password.ResetPassword(), 0);
  EXPECT_TRUE(password.IsUserSet());
  EXPECT_FALSE(password.IsPasswordSet());
  EXPECT_TRUE(password.IsDomainSet());

  KVTAuthentication domain("backup", "secret", "CORP");
  EXPECT_EQ(domain.ResetDomain(), 0);
  EXPECT_TRUE(domain.IsUserSet());
  EXPECT_TRUE(domain.IsPasswordSet());
  EXPECT_FALSE(domain.IsDomainSet());
}

TEST(Authentication, ResetOfNothingReturnsZero) {
  KVTAuthentication auth;
  EXPECT_EQ(auth.ResetUser(), 0);
  EXPECT_EQ(auth.ResetPassword(), 0);
  EXPECT_EQ(auth.ResetDomain(), 0);
  EXPECT_EQ(auth.clear(), 0);
}

TEST(Authentication, CanBeSetAgainAfterClear) {
  KVTAuthentication auth("backup", "secret", "CORP");
  EXPECT_EQ(auth.clear(), 0);
  EXPECT_FALSE(auth.IsUserSet());
  EXPECT_FALSE(auth.IsPasswordSet());
  EXPECT_FALSE(auth.IsDomainSet());
  EXPECT_EQ(auth.SetPassword("other"), 0);
  EXPECT_EQ(auth.GetPassword(), "other");
}

TEST(Authentication, EmptyingAFieldOverwritesNothing) {
  // The characters stay where they were, behind the terminator.
  for (const char* password : {"secret", "correct-horse-battery"}) {
    const KVTString all(password);
    KVTAuthentication reset("backup", password);
    const unsigned short* storage = reset.mPassword.data();
    EXPECT_EQ(reset.ResetPassword(), 0);
    EXPECT_TRUE(std::equal(all.begin() + 1, all.end(), storage + 1));

    KVTAuthentication cleared("backup", password);
    storage = cleared.mPassword.data();
    EXPECT_EQ(cleared.clear(), 0);
    EXPECT_TRUE(std::equal(all.begin() + 1, all.end(), storage + 1));
  }
}

TEST(Authentication, ReturnsCopies) {
  KVTAuthentication auth("backup", "secret");
  KVTString user = auth.GetUser();
  user += "x";
  EXPECT_EQ(auth.GetUser(), "backup");
}

}  // namespace
