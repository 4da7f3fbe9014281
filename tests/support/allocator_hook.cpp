#include <cstdlib>
#include <new>

#include "hooks.h"

namespace {

bool active = false;
std::size_t granted;
std::size_t smallest;
std::size_t refused;

bool Refuse(std::size_t size) {
  if (!active || size < smallest) return false;
  if (granted > 0) {
    --granted;
    return false;
  }
  ++refused;
  return true;
}

void* Allocate(std::size_t size) {
  void* const block = Refuse(size) ? nullptr : std::malloc(size == 0 ? 1 : size);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

}  // namespace

namespace hooks {

FailingAllocator::FailingAllocator(std::size_t count, std::size_t size) {
  granted = count;
  smallest = size;
  refused = 0;
  active = true;
}

FailingAllocator::~FailingAllocator() { active = false; }

std::size_t FailingAllocator::Refused() const { return refused; }

}  // namespace hooks

void* operator new(std::size_t size) { return Allocate(size); }
void* operator new[](std::size_t size) { return Allocate(size); }
void operator delete(void* block) noexcept { std::free(block); }
void operator delete[](void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
void operator delete[](void* block, std::size_t) noexcept { std::free(block); }
