// What the group-value types throw.
#pragma once

#include <KnxStackApi/Export.h>

#include <stdexcept>

namespace KnxStack {

/// A group value cannot represent an argument, or lacks the octets that are asked of it; what() says which.
class KNXSTACKAPI_EXPORT GroupValueException : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
  /// A copy.
  GroupValueException(const GroupValueException&) = default;
  /// A copy.
  GroupValueException& operator=(const GroupValueException&) = default;
  ~GroupValueException() override;
};

}  // namespace KnxStack
