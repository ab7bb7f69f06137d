// What is measured: operations with names, the same for clocks and for instruction counts.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace Bench {

struct Operation {
  std::string name;      ///< "direct_encode/9.001"
  std::string baseline;  ///< the operation that it is compared with; empty: none
  /// Does it so many times.
  std::function<void(std::size_t times)> run;
  std::size_t batch = 64;  ///< times in a row between two looks at the clock
  std::size_t per = 1;     ///< operations that one time consists of: values of a mix, lines of a stream
  bool isProcess = false;  ///< of another process
  bool isCounted = true;   ///< instructions tell something: no threads, no waiting, no other process
};

using Operations = std::vector<Operation>;

/// Makes the compiler believe that @p value is used where it stands, and that memory has changed. It is not loaded:
/// octets that were just stored one by one would have to be waited for.
template <class T>
inline void Keep(const T& value) {
  asm volatile("" : : "r"(&value) : "memory");
}

// One function for each module, in the order of the table.
void AddBaselines(Operations& operations);
void AddDirectConversion(Operations& operations);
void AddTableConversion(Operations& operations);
void AddTexts(Operations& operations);
void AddIdentifiers(Operations& operations);
void AddMessenger(Operations& operations);
void AddTalctl(Operations& operations);

/// Allocations of this process so far.
std::size_t CountAllocations() noexcept;

}  // namespace Bench
