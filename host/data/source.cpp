// What every source and every column has.
#include "frame/interface/data_source.h"
#include "frame/interface/host_services.h"
#include "host/data/number_cell.h"

VeSourceData::~VeSourceData() = default;

void VeSourceData::Release() {
  if (--references_ == 0) delete this;
}

namespace {

void* ElementAt(VeData& data, std::int64_t row) {
  auto* const elements = static_cast<std::byte*>(data.GetBuffer());
  if (elements == nullptr || row < 0 || row >= data.GetSize()) return nullptr;
  return elements + static_cast<std::size_t>(row) * PLTTypeToSizeOf(data.GetElementType());
}

}  // namespace

CStringUTF8 VeData::GetText(std::int64_t row) {
  const void* const element = ElementAt(*this, row);
  if (element == nullptr) return {};
  char text[vela::host::kCellTextSize];
  const char* const end = vela::host::WriteElementCell(GetElementType(), element, text);
  return CStringUTF8(std::string_view(text, static_cast<std::size_t>(end - text)));
}

bool VeData::SetText(std::int64_t row, const char* text) {
  void* const element = ElementAt(*this, row);
  if (element == nullptr) return false;
  vela::host::ReadElementCell(GetElementType(), text != nullptr ? text : "", element);
  return true;
}
