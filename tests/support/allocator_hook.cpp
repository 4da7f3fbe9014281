#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>
#include <vector>

#include "hooks.h"

namespace {

bool active = false;
std::size_t granted;
std::size_t smallest;
std::size_t limit;
std::size_t refused;
std::size_t lastRefused;

// Set while a WatchedArrays lives.
bool watching = false;
std::size_t watchedSlack;
// Their own memory comes from operator new, which is not watched.
std::vector<hooks::WatchedArrays::Block> watchedBlocks;
std::vector<void*> watchedReleases;

bool Refuse(std::size_t size) {
  // malloc refuses this as well, but a sanitizer's ends the process.
  if (size > PTRDIFF_MAX) return true;
  if (!active || size < smallest || refused == limit) return false;
  if (granted > 0) {
    --granted;
    return false;
  }
  ++refused;
  lastRefused = size;
  return true;
}

void* Allocate(std::size_t size) {
  void* const block =
      Refuse(size) ? nullptr : std::malloc(size == 0 ? 1 : size);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

void* AllocateArray(std::size_t size) {
  if (!watching) return Allocate(size);
  void* const block = Allocate(size + watchedSlack);
  std::memset(block, 0xA5, size);
  std::memset(static_cast<unsigned char*>(block) + size, 0, watchedSlack);
  watchedBlocks.push_back({static_cast<unsigned char*>(block), size});
  return block;
}

void ReleaseArray(void* block) {
  if (!watching) {
    std::free(block);
  } else if (block != nullptr) {
    watchedReleases.push_back(block);
  }
}

}  // namespace

namespace hooks {

FailingAllocator::FailingAllocator(std::size_t count, std::size_t size,
                                   std::size_t times) {
  granted = count;
  smallest = size;
  limit = times;
  refused = 0;
  lastRefused = 0;
  active = true;
}

FailingAllocator::~FailingAllocator() { active = false; }

std::size_t FailingAllocator::Refused() const { return refused; }

std::size_t FailingAllocator::LastRefused() const { return lastRefused; }

WatchedArrays::WatchedArrays(std::size_t slack) {
  watchedSlack = slack;
  watching = true;
}

WatchedArrays::~WatchedArrays() {
  watching = false;
  for (const Block& block : watchedBlocks) std::free(block.start);
  watchedBlocks.clear();
  watchedReleases.clear();
}

const std::vector<WatchedArrays::Block>& WatchedArrays::Blocks() const {
  return watchedBlocks;
}

const std::vector<void*>& WatchedArrays::Released() const {
  return watchedReleases;
}

}  // namespace hooks

void* operator new(std::size_t size) { return Allocate(size); }
void* operator new[](std::size_t size) { return AllocateArray(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  try {
    return Allocate(size);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  try {
    return AllocateArray(size);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}
void operator delete(void* block) noexcept { std::free(block); }
void operator delete[](void* block) noexcept { ReleaseArray(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
void operator delete[](void* block, std::size_t) noexcept {
  ReleaseArray(block);
}
void operator delete(void* block, const std::nothrow_t&) noexcept {
  std::free(block);
}
void operator delete[](void* block, const std::nothrow_t&) noexcept {
  ReleaseArray(block);
}
