// Times members, found by name and called with a call frame, on request; see server.h.
#include <iostream>

#include "cases.h"
#include "matrix_cases.h"
#include "server.h"
#include "text_cases.h"

int main() {
  vela::host::Library library;
  if (!library.Load()) {
    std::cerr << library.GetError() << '\n';
    return 1;
  }
  library.Configure();
  vela::bench::Cases cases = vela::bench::TextCases(library);
  cases.merge(vela::bench::NumericCases(library));
  cases.merge(vela::bench::MatrixCases(library));
  vela::bench::Serve(cases);
}
