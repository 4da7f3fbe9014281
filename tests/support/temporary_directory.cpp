#include "temporary_directory.h"

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "test_strings.h"

TemporaryDirectory::TemporaryDirectory() {
  std::string name = std::filesystem::temp_directory_path() / "kvtbase-XXXXXX";
  if (mkdtemp(name.data()) == nullptr) {
    throw std::runtime_error("cannot make a directory like " + name);
  }
  mPath = name;
}

TemporaryDirectory::~TemporaryDirectory() {
  std::error_code ignored;
  std::filesystem::remove_all(mPath, ignored);
}

KVTString TemporaryDirectory::Text() const { return FromUtf8(mPath); }

KVTString TemporaryDirectory::Text(const std::string& name) const {
  return FromUtf8(Path(name));
}

WorkingDirectory::WorkingDirectory(const std::string& path)
    : mPrevious(std::filesystem::current_path()) {
  std::filesystem::current_path(path);
}

WorkingDirectory::~WorkingDirectory() {
  std::error_code ignored;
  std::filesystem::current_path(mPrevious, ignored);
}

void WriteFile(const std::string& path, const std::string& content) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out << content;
  out.close();
  if (!out) throw std::runtime_error("cannot write " + path);
}

std::string ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw std::runtime_error("cannot read " + path);
  std::ostringstream content;
  content << in.rdbuf();
  return content.str();
}
