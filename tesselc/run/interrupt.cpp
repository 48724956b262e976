#include "tesselc/run/interrupt.h"

#include <csignal>
#include <cstdlib>

#include "tesselc/run/output.h"

#if defined(_WIN32)
#include <chrono>
#include <thread>
#include <windows.h>
#else
#include <unistd.h>
#endif

namespace tesselc {

std::atomic<int> detail::requested_signal = 0;

namespace {

constexpr int kGraceSeconds = 2;
constexpr int kSignalBase = 128;  // exit codes of programs that a signal ended

std::atomic<Output*> running_output = nullptr;

[[noreturn]] void EndNow(int signal) {
  if (Output* output = running_output) output->WriteInHaste();
  std::_Exit(kSignalBase + signal);
}

#if defined(_WIN32)
// Runs on a thread of its own.
BOOL WINAPI OnConsoleEvent(DWORD event) {
  const int signal = event == CTRL_C_EVENT || event == CTRL_BREAK_EVENT ? SIGINT : SIGTERM;
  if (detail::requested_signal.exchange(signal) != 0) EndNow(signal);
  for (int i = 0; i < 100 * kGraceSeconds; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
    if (detail::requested_signal == 0) return TRUE;
  }
  EndNow(signal);
}

void Listen(bool on) { SetConsoleCtrlHandler(OnConsoleEvent, on); }
#else
// Only what may be done in a signal handler.
void OnSignal(int signal) {
  const int requested = detail::requested_signal.load(std::memory_order_relaxed);
  if (requested != 0) EndNow(signal == SIGALRM ? requested : signal);
  if (signal == SIGALRM) return;
  detail::requested_signal.store(signal, std::memory_order_relaxed);
  alarm(kGraceSeconds);
}

void Listen(bool on) {
  struct sigaction action = {};
  action.sa_handler = on ? OnSignal : SIG_DFL;
  action.sa_flags = SA_RESTART;
  for (const int signal : {SIGINT, SIGTERM, SIGALRM}) sigaction(signal, &action, nullptr);
  if (!on) alarm(0);
}
#endif

}  // namespace

void ThrowInterrupted() {
  throw Interrupted{kSignalBase + detail::requested_signal.load(), std::nullopt};
}

InterruptScope::InterruptScope(Output& output) {
  running_output = &output;
  detail::requested_signal = 0;
  Listen(true);
}

InterruptScope::~InterruptScope() {
  Listen(false);
  detail::requested_signal = 0;
  running_output = nullptr;
}

}  // namespace tesselc
