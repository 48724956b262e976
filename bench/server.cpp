#include "server.h"

#include <chrono>
#include <cstdint>
#include <fstream>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <x86intrin.h>

#include "kernel/instruction_set.h"

namespace vela::bench {
namespace {

std::vector<std::byte> ReadFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary | std::ios::ate);
  if (!file) throw std::runtime_error("cannot read " + path);
  std::vector<std::byte> bytes(static_cast<std::size_t>(file.tellg()));
  file.seekg(0);
  file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  return bytes;
}

double SecondsPerTick() {
  using Clock = std::chrono::steady_clock;
  const auto start = Clock::now();
  const std::uint64_t first = __rdtsc();
  while (Clock::now() - start < std::chrono::milliseconds(50)) continue;
  const std::uint64_t ticks = __rdtsc() - first;
  return std::chrono::duration<double>(Clock::now() - start).count() / static_cast<double>(ticks);
}

// By the processor's own counter: the clock of Windows steps by 100 ns.
double Seconds(const std::function<void()>& work) {
  static const double seconds_per_tick = SecondsPerTick();
  const std::uint64_t start = __rdtsc();
  work();
  return static_cast<double>(__rdtsc() - start) * seconds_per_tick;
}

class Server {
 public:
  explicit Server(const Cases& cases) : cases_(cases) {}

  std::string Answer(const std::string& line) {
    std::istringstream words(line);
    std::string command, name;
    words >> command;
    if (command == "run") return Run(words);
    if (command == "cases") return Names();
    if (command == "target") {
      return std::string(kernel::InstructionSetName(kernel::CurrentInstructionSet()));
    }
    words >> name;
    if (command == "data") {
      std::string path;
      words >> path;
      data_[name] = ReadFile(path);
    } else if (command == "value") {
      std::string text;
      std::getline(words >> std::ws, text);
      const auto* bytes = reinterpret_cast<const std::byte*>(text.data());
      data_[name].assign(bytes, bytes + text.size());
    } else if (command == "drop") {
      prepared_ = {};
      data_.clear();
    } else if (command == "prepare") {
      prepared_ = {};
      prepared_ = cases_.at(name)(data_);
    } else if (command == "result") {
      WriteResult(name);
    } else {
      return "error unknown command " + command;
    }
    return "ok";
  }

 private:
  std::string Run(std::istream& words) {
    int calls = 1;
    words >> calls;
    std::ostringstream times;
    for (int i = 0; i < calls; ++i) {
      if (prepared_.reset) prepared_.reset();
      times << (i == 0 ? "" : " ") << Seconds(prepared_.call);
    }
    return times.str();
  }

  void WriteResult(const std::string& path) {
    if (!prepared_.result) throw std::logic_error("the case tells no result");
    if (prepared_.reset) prepared_.reset();
    prepared_.call();
    const std::string result = prepared_.result();
    std::ofstream file(path, std::ios::binary);
    file.write(result.data(), static_cast<std::streamsize>(result.size()));
    if (!file.flush()) throw std::runtime_error("cannot write " + path);
  }

  std::string Names() const {
    std::string names;
    for (const auto& [name, unused] : cases_) names += (names.empty() ? "" : " ") + name;
    return names;
  }

  const Cases& cases_;
  Data data_;
  Prepared prepared_;
};

}  // namespace

void Serve(const Cases& cases) {
  Server server(cases);
  for (std::string line; std::getline(std::cin, line);) {
    try {
      std::cout << server.Answer(line) << std::endl;
    } catch (const std::exception& error) {
      std::cout << "error " << error.what() << std::endl;
    }
  }
}

}  // namespace vela::bench
