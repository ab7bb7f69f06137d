// Names of numbers, for enumerations whose unnamed numbers are legal too.
#pragma once

/// A number and its name.
template <class Number>
struct NamedNumber {
  Number number;
  const char* name;
};

/// The name of @p number among @p rows, else "Unknown".
template <class Number, int Count>
constexpr const char* NameOf(const NamedNumber<Number> (&rows)[Count], Number number) noexcept {
  for (const auto& row : rows) {
    if (row.number == number) return row.name;
  }
  return "Unknown";
}
