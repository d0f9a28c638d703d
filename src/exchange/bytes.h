// Numbers as the bytes of a file, in either order.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace ormel {

/// The four bytes in the other order.
constexpr std::uint32_t SwapBytes(std::uint32_t v) {
  return (v >> 24U) | ((v >> 8U) & 0xff00U) | ((v << 8U) & 0xff0000U) | (v << 24U);
}

/// Appends `bytes` bytes of a whole number, the lowest first.
inline void AppendLittle(std::string& out, std::uint64_t value, int bytes) {
  for (int i = 0; i < bytes; ++i, value >>= 8U) out += static_cast<char>(value & 0xffU);
}
inline void AppendLittle(std::string& out, double value) {
  AppendLittle(out, std::bit_cast<std::uint64_t>(value), 8);
}
/// Four bytes, the highest first.
inline void AppendBig(std::string& out, std::uint32_t value) {
  AppendLittle(out, SwapBytes(value), 4);
}

/// The caller looks that the bytes are there.
inline std::uint64_t LittleAt(std::string_view bytes, std::size_t at, int count) {
  std::uint64_t value = 0;
  for (int i = count - 1; i >= 0; --i)
    value = (value << 8U) | static_cast<unsigned char>(bytes[at + static_cast<std::size_t>(i)]);
  return value;
}
inline std::int32_t Long(std::string_view bytes, std::size_t at) {
  return static_cast<std::int32_t>(LittleAt(bytes, at, 4));
}
inline std::int32_t BigLong(std::string_view bytes, std::size_t at) {
  return static_cast<std::int32_t>(SwapBytes(static_cast<std::uint32_t>(LittleAt(bytes, at, 4))));
}
inline double DoubleAt(std::string_view bytes, std::size_t at) {
  return std::bit_cast<double>(LittleAt(bytes, at, 8));
}

}  // namespace ormel
