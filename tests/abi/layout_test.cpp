// Where the fields of the exported classes stand, how large the objects are and
// which of them have a table of virtual operations.  Programs that are built
// already have these numbers compiled in.

#include <gtest/gtest.h>
#include <stddef.h>
#include <stdlib.h>
#include <string.h>

#include <map>
#include <sstream>
#include <type_traits>
#include <vector>

#include "KVTAuthentication.h"
#include "KVTCommandUtil.h"
#include "KVTConfigReader.h"
#include "KVTErrorCode.h"
#include "KVTFile.h"
#include "KVTFileUtil.h"
#include "KVTGUID.h"
#include "KVTLock.h"
#include "KVTLogger.h"
#include "KVTShareFile.h"
#include "KVTStream.h"
#include "KVTString.h"
#include "KVTTime.h"
#include "KVTTransferBytes.h"
#include "temporary_directory.h"
#include "test_strings.h"

// The classes are not of standard layout; both compilers support offsetof on
// them all the same.
#pragma GCC diagnostic ignored "-Winvalid-offsetof"

namespace {

using BaseString =
    std::basic_string<unsigned short, std::char_traits<unsigned short>,
                      std::allocator<unsigned short>>;

// The field of type T that stands `offset` bytes into `object`.
template <class T, class Object>
T FieldAt(const Object& object, size_t offset) {
  static_assert(std::is_trivially_copyable_v<T>);
  T value;
  memcpy(&value, reinterpret_cast<const char*>(&object) + offset, sizeof value);
  return value;
}

template <class T, class Object>
const T& PartAt(const Object& object, size_t offset) {
  return *reinterpret_cast<const T*>(reinterpret_cast<const char*>(&object) +
                                     offset);
}

TEST(Layout, StringIsTheBaseStringBehindTheTable) {
  static_assert(std::is_base_of_v<BaseString, KVTString>);
  EXPECT_EQ(sizeof(BaseString), 32u);
  EXPECT_EQ(sizeof(KVTString), 40u);
  const KVTString text("abc");
  const BaseString* const base = &text;
  EXPECT_EQ(reinterpret_cast<const char*>(base) -
                reinterpret_cast<const char*>(&text),
            8);
}

TEST(Layout, Time) {
  EXPECT_EQ(sizeof(KVTTime), 16u);
  EXPECT_EQ(offsetof(KVTTime, mTime), 8u);
}

TEST(Layout, Guid) {
  EXPECT_EQ(sizeof(KVTGUID), 24u);
  EXPECT_EQ(offsetof(KVTGUID, mData1), 8u);
  EXPECT_EQ(offsetof(KVTGUID, mData2), 12u);
  EXPECT_EQ(offsetof(KVTGUID, mData3), 14u);
  EXPECT_EQ(offsetof(KVTGUID, mData4), 16u);
  EXPECT_EQ(sizeof(KVTGUID::mData4), 8u);
}

TEST(Layout, Lock) {
  EXPECT_EQ(sizeof(KVTLock), sizeof(pthread_mutex_t));
  EXPECT_EQ(offsetof(KVTLock, mMutex), 0u);
}

TEST(Layout, LoggingOptions) {
  EXPECT_EQ(sizeof(KVTLoggingOptions), 144u);
  KVTLoggingOptions options;
  options.SetApplicationName("name");
  options.SetNumberOfSupportedLevels(11);
  options.SetNumberOfLevelsToShowInUserLog(12);
  options.SetUserLogFile(KVTFile("user"));
  options.SetInternalLogFile(KVTFile("internal"));
  EXPECT_EQ(PartAt<KVTString>(options, 0), KVTString("name"));
  EXPECT_EQ(FieldAt<int>(options, 40), 11);
  EXPECT_EQ(FieldAt<int>(options, 44), 12);
  EXPECT_EQ(PartAt<KVTFile>(options, 48).GetPath(), KVTString("user"));
  EXPECT_EQ(PartAt<KVTFile>(options, 96).GetPath(), KVTString("internal"));
}

TEST(Layout, File) {
  EXPECT_EQ(sizeof(KVTFile), 48u);
  EXPECT_EQ(offsetof(KVTFile, mPath), 8u);
}

TEST(Layout, Proxy) {
  EXPECT_EQ(sizeof(proxy), 24u);
  EXPECT_EQ(offsetof(proxy, enabled), 0u);
  EXPECT_EQ(offsetof(proxy, address), 8u);
  EXPECT_EQ(offsetof(proxy, credentials), 16u);
  EXPECT_TRUE(std::is_trivial_v<proxy>);
  EXPECT_TRUE(std::is_standard_layout_v<proxy>);
}

TEST(Layout, FileTransferBytes) {
  EXPECT_EQ(sizeof(KVTFileTransferBytes), 104u);
  const TemporaryDirectory directory;
  WriteFile(directory.Path("a"), "x");
  const KVTFileTransferBytes transport(directory.File("a"), "rb");
  EXPECT_EQ(PartAt<KVTFile>(transport, 8).GetPath(), directory.Text("a"));
  EXPECT_EQ(PartAt<KVTString>(transport, 56), KVTString("rb"));
  FILE* const stream = FieldAt<FILE*>(transport, 96);
  ASSERT_NE(stream, nullptr);
  EXPECT_EQ(getc(stream), 'x');
}

TEST(Layout, MemoryTransferBytes) {
  EXPECT_EQ(sizeof(KVTMemoryTransferBytes), 40u);
  KVTMemoryTransferBytes transport(nullptr, 16);
  unsigned char* const start = FieldAt<unsigned char*>(transport, 32);
  ASSERT_NE(start, nullptr);
  EXPECT_EQ(FieldAt<unsigned char*>(transport, 8), start);
  EXPECT_EQ(FieldAt<unsigned long long>(transport, 16), 16u);
  EXPECT_EQ(FieldAt<bool>(transport, 24), true);

  char text[] = "text";
  transport.Write(text, 4);
  EXPECT_EQ(memcmp(start, "text", 5), 0);
  char room[2] = "";  // a zero byte follows what is read
  transport.Read(room, 1);
  EXPECT_EQ(FieldAt<bool>(transport, 24), false);
}

template <class Stream>
class Whole : public Stream {
 public:
  using Stream::Stream;
  bool Open() override { return true; }
};

TEST(Layout, ReadStream) {
  EXPECT_EQ(sizeof(KVTReadStream), 24u);
  auto* const transport = new KVTMemoryTransferBytes(nullptr, 1);
  Whole<KVTReadStream> stream(transport);
  EXPECT_EQ(FieldAt<IKVTTransferBytes*>(stream, 8), transport);
  EXPECT_EQ(FieldAt<bool>(stream, 16), false);
  stream.SetSwapping(true);
  EXPECT_EQ(FieldAt<bool>(stream, 16), true);
}

TEST(Layout, WriteStream) {
  EXPECT_EQ(sizeof(KVTWriteStream), 16u);
  KVTMemoryTransferBytes transport(nullptr, 1);
  const Whole<KVTWriteStream> stream(&transport);
  EXPECT_EQ(FieldAt<IKVTTransferBytes*>(stream, 8), &transport);
}

TEST(Layout, ReadWriteStream) {
  EXPECT_EQ(sizeof(KVTReadWriteStream), 16u);
  KVTMemoryTransferBytes transport(nullptr, 1);
  const Whole<KVTReadWriteStream> stream(&transport);
  EXPECT_EQ(FieldAt<IKVTTransferBytes*>(stream, 8), &transport);
}

TEST(Layout, ConfigSection) {
  static_assert(std::is_same_v<decltype(KVTConfigSection::mEntries),
                               std::multimap<KVTString, KVTString>>);
  EXPECT_EQ(sizeof(KVTConfigSection), 88u);
  EXPECT_EQ(offsetof(KVTConfigSection, mEntries), 0u);
  EXPECT_EQ(offsetof(KVTConfigSection, mName), 48u);
}

TEST(Layout, ConfigReaderIsItsVector) {
  EXPECT_EQ(sizeof(KVTConfigReader), 24u);
  std::istringstream in("[a]\n");
  KVTConfigReader reader(in);
  const std::vector<KVTConfigSection>& sections = reader.GetConfiguration();
  EXPECT_EQ(static_cast<const void*>(&sections),
            static_cast<const void*>(&reader));
  EXPECT_EQ(sections.size(), 1u);
}

TEST(Layout, Authentication) {
  EXPECT_EQ(sizeof(KVTAuthentication), 120u);
  EXPECT_EQ(offsetof(KVTAuthentication, mUser), 0u);
  EXPECT_EQ(offsetof(KVTAuthentication, mPassword), 40u);
  EXPECT_EQ(offsetof(KVTAuthentication, mDomain), 80u);
}

TEST(Layout, ShareClassesAreOneLineOfInheritanceAroundOneTable) {
  static_assert(std::is_base_of_v<KVTShareFileInternal, MountManager>);
  static_assert(std::is_base_of_v<MountManager, KVTShareFile>);
  static_assert(std::is_same_v<decltype(MountManager::mMountedShares),
                               std::map<KVTString, KVTString>>);
  EXPECT_TRUE(std::is_empty_v<KVTShareFileInternal>);
  EXPECT_EQ(sizeof(MountManager), 48u);
  EXPECT_EQ(offsetof(MountManager, mMountedShares), 0u);
  EXPECT_EQ(sizeof(KVTShareFile), 48u);
}

TEST(Layout, ClassesWithoutFields) {
  EXPECT_TRUE(std::is_empty_v<KVTFileUtil>);
  EXPECT_TRUE(std::is_empty_v<KVTLogger>);
  EXPECT_TRUE(std::is_empty_v<KVTCommandUtil>);
  EXPECT_TRUE(std::is_empty_v<KVTStreamUtil>);
  EXPECT_EQ(sizeof(IKVTTransferBytes), 8u);
  EXPECT_EQ(sizeof(IKVTStream), 8u);
}

template <class... Classes>
constexpr bool AllPolymorphic() {
  return (std::is_polymorphic_v<Classes> && ...) &&
         (std::has_virtual_destructor_v<Classes> && ...);
}

template <class... Classes>
constexpr bool NonePolymorphic() {
  return !(std::is_polymorphic_v<Classes> || ...);
}

TEST(Polymorphism, ClassesWithVirtualDestructor) {
  EXPECT_TRUE(
      (AllPolymorphic<KVTString, KVTTime, KVTGUID, KVTFile, IKVTTransferBytes,
                      KVTFileTransferBytes, KVTMemoryTransferBytes, IKVTStream,
                      KVTReadStream, KVTWriteStream, KVTReadWriteStream>()));
}

TEST(Polymorphism, ClassesWithout) {
  EXPECT_TRUE(
      (NonePolymorphic<KVTLock, KVTLogger, KVTLoggingOptions, KVTFileUtil,
                       proxy, KVTStreamUtil, KVTConfigReader, KVTConfigSection,
                       KVTCommandUtil, KVTAuthentication, KVTShareFileInternal,
                       MountManager, KVTShareFile>()));
}

TEST(Polymorphism, InterfacesAndTypedStreamsAreAbstract) {
  EXPECT_TRUE(std::is_abstract_v<IKVTTransferBytes>);
  EXPECT_TRUE(std::is_abstract_v<IKVTStream>);
  EXPECT_TRUE(std::is_abstract_v<KVTReadStream>);
  EXPECT_TRUE(std::is_abstract_v<KVTWriteStream>);
  EXPECT_TRUE(std::is_abstract_v<KVTReadWriteStream>);
  EXPECT_FALSE(std::is_abstract_v<KVTFileTransferBytes>);
  EXPECT_FALSE(std::is_abstract_v<KVTMemoryTransferBytes>);
}

TEST(Enumerators, KeepTheirValues) {
  EXPECT_EQ(KVTString::KVTCharEncodingNarrow, 0);
  EXPECT_EQ(KVTString::KVTCharEncodingUTF8, 1);
  EXPECT_EQ(KVTFile::KVTFileBoolSettable, 8);
  EXPECT_EQ(KVTSeekFromBeginning, 1);
  EXPECT_EQ(KVTSeekFromCurrent, 2);
  EXPECT_EQ(KVTSeekFromEnd, 4);
  EXPECT_EQ(KVTStreamGood, 0);
  EXPECT_EQ(KVTStreamAtEnd, 1);
  EXPECT_EQ(KVTStreamNoStorage, 2);
  EXPECT_EQ(KVTStreamFailed, 3);
  EXPECT_EQ(KVTErrorCodeSuccess, 0);
  EXPECT_EQ(KVTErrorCodeFailure, 1);
  EXPECT_EQ(KVTErrorCodeAlreadyMounted, 4);
  EXPECT_EQ(KVTErrorCodeMountFailed, 5);
  EXPECT_EQ(KVTErrorCodeAccessDenied, 6);
}

TEST(Enumerators, TakeFourBytes) {
  EXPECT_EQ(sizeof(KVTString::KVTCharEncodingType), 4u);
  EXPECT_EQ(sizeof(KVTSeekFromWhere), 4u);
  EXPECT_EQ(sizeof(KVTStreamState), 4u);
  EXPECT_EQ(sizeof(KVTErrorCodeEnum), 4u);
}

}  // namespace
