// Counts the allocations of the whole process.
#include <atomic>
#include <cstdlib>
#include <new>

#include "Operation.h"

namespace {
std::atomic<std::size_t> allocations{0};
}  // namespace

std::size_t Bench::CountAllocations() noexcept { return allocations.load(std::memory_order_relaxed); }

void* operator new(std::size_t size) {
  allocations.fetch_add(1, std::memory_order_relaxed);
  void* const memory = std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
