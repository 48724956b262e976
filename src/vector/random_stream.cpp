#include "vector/random_stream.h"

namespace vela {

kernel::RandomSource& RandomStream() {
  static kernel::RandomSource stream;
  return stream;
}

}  // namespace vela
