// What a timing program works with: data from the driver, and calls made ready from it.
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace vela::bench {

// Raw bytes that the driver shares with every program, by name: "x", "y", "edges" ...
using Data = std::map<std::string, std::vector<std::byte>>;

inline std::string_view TextOf(const Data& data, const std::string& name) {
  const std::vector<std::byte>& bytes = data.at(name);
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

// One prepared case. `call` is what is timed; `reset` restores what it changed and is not. `result`
// gives what a call has produced, in a form that the driver can compare with that of the peers.
struct Prepared {
  std::function<void()> reset;
  std::function<void()> call;
  std::function<std::string()> result = nullptr;
};

// The cases of a program by name; a maker throws std::out_of_range for data that is missing.
using Cases = std::map<std::string, std::function<Prepared(const Data&)>>;

}  // namespace vela::bench
