#pragma once

#include <array>
#include <cstddef>
#include <deque>
#include <map>
#include <string>
#include <vector>

#include "tesselc/compile/static_type.h"
#include "tesselc/run/object_value.h"
#include "tesselc/run/variables.h"

namespace tesselc {

// A variable that a name stands for.
struct Symbol {
  StaticType type;
  bool is_const = false;
  VariablePlace variable;  // of a scalar type
  ObjectPlace object;      // of an object type
  bool visible_in_functions = true;
};

// Hands out the memory of one function's frames. Offsets are multiples of 8. No two variables share
// memory, not even those of blocks that follow each other: a slot that owns an object is empty from
// the start of its block on, so nothing else may write there before the object is made.
class FrameLayout {
 public:
  std::uint32_t Allocate(std::uint32_t bytes) {
    const std::uint32_t offset = size_;
    size_ += (bytes + 7) / 8 * 8;
    return offset;
  }
  std::uint32_t size() const { return size_; }

 private:
  std::uint32_t size_ = 0;
};

// The global variables of a script and their memory, which never moves.
class Globals {
 public:
  Globals() = default;
  ~Globals();
  Globals(const Globals&) = delete;
  Globals& operator=(const Globals&) = delete;

  // Zeroed memory for a value; for an object, it holds the owned pointer.
  void* Allocate(bool owns_object);
  // Releases the objects, newest first.
  void ReleaseObjects();

  std::map<std::string, Symbol, std::less<>> symbols;

 private:
  struct alignas(8) Cell {
    std::array<std::byte, sizeof(Point3D)> bytes{};
    bool owns_object = false;
  };
  std::deque<Cell> cells_;
};

}  // namespace tesselc
