// Times members on request. Reads commands from standard input, answers each with one line:
//   data NAME FILE         loads a file of raw elements
//   drop                   forgets all data
//   prepare CASE           makes the objects of a case from the data
//   run CALLS              times that many calls one by one; answers the seconds of each
//   cases                  lists the cases
#include <chrono>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <iterator>
#include <sstream>

#include "cases.h"

namespace {

std::vector<std::byte> ReadFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary | std::ios::ate);
  if (!file) throw std::runtime_error("cannot read " + path);
  std::vector<std::byte> bytes(static_cast<std::size_t>(file.tellg()));
  file.seekg(0);
  file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  return bytes;
}

double Seconds(const std::function<void()>& work) {
  using Clock = std::chrono::steady_clock;
  const auto start = Clock::now();
  work();
  return std::chrono::duration<double>(Clock::now() - start).count();
}

class Server {
 public:
  explicit Server(const vela::host::Library& library) : library_(library) {}

  std::string Answer(const std::string& line) {
    std::istringstream words(line);
    std::string command;
    words >> command;
    if (command == "data") {
      std::string name, path;
      words >> name >> path;
      data_[name] = ReadFile(path);
      return "ok";
    }
    if (command == "drop") {
      prepared_ = {};
      data_.clear();
      return "ok";
    }
    if (command == "prepare") {
      std::string name;
      words >> name;
      prepared_ = {};
      prepared_ = vela::bench::Prepare(library_, name, data_);
      return "ok";
    }
    if (command == "run") return Run(words);
    if (command == "cases") return Join(vela::bench::CaseNames());
    return "error unknown command " + command;
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

  static std::string Join(const std::vector<std::string>& names) {
    std::string joined;
    for (const std::string& name : names) joined += (joined.empty() ? "" : " ") + name;
    return joined;
  }

  const vela::host::Library& library_;
  vela::bench::Data data_;
  vela::bench::Prepared prepared_;
};

}  // namespace

int main() {
  vela::host::Library library;
  if (!library.Load()) {
    std::cerr << library.GetError() << '\n';
    return 1;
  }
  library.Configure();
  Server server(library);
  for (std::string line; std::getline(std::cin, line);) {
    try {
      std::cout << server.Answer(line) << std::endl;
    } catch (const std::exception& error) {
      std::cout << "error " << error.what() << std::endl;
    }
  }
}
