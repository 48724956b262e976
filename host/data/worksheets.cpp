#include "host/data/worksheets.h"

#include <functional>
#include <map>
#include <new>

#include "host/data/number_store.h"
#include "host/data/number_types.h"
#include "host/never_destroyed.h"

namespace vela::host {
namespace {

using Books = std::map<std::string, std::unique_ptr<Worksheet>, std::less<>>;

Books& OpenBooks() {
  static NeverDestroyed<Books> books;
  return books.value;
}

class WorksheetSources final : public VeDataSources {
 public:
  VeData* FindData(const char* book, const char* column) override {
    const Worksheet* const worksheet = Worksheets::Find(book);
    return worksheet != nullptr ? worksheet->Find(column) : nullptr;
  }
  VeData* FindData(const char* book, int column) override {
    const Worksheet* const worksheet = Worksheets::Find(book);
    return worksheet != nullptr ? worksheet->Column(column) : nullptr;
  }
  VeData* CreateData(const char* book, const char* column, unsigned element_type,
                     std::int64_t size) override try {
    if (*column == '\0') return nullptr;
    VeRef<WorksheetColumn> created = WorksheetColumn::Create(column, element_type, size);
    if (!created) return nullptr;
    if (Worksheet* const worksheet = Worksheets::Find(book)) {
      return worksheet->Add(created) ? created.Get() : nullptr;
    }
    auto worksheet = std::make_unique<Worksheet>(book);
    worksheet->Add(created);
    return Worksheets::Add(std::move(worksheet)) ? created.Get() : nullptr;
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
};

class TempDataset final : public VeTempDataset {
 public:
  explicit TempDataset(unsigned element_type) : numbers_(element_type) {}
  CStringUTF8 GetName() const override { return {}; }
  unsigned GetElementType() const override { return numbers_.TypeId(); }
  std::int64_t GetSize() const override { return numbers_.Size(); }
  bool SetSize(std::int64_t size) override {
    if (!numbers_.SetSize(size)) return false;
    if (lower_ > size) lower_ = size;
    return true;
  }
  std::int64_t GetLowerBound() const override { return lower_; }
  bool SetLowerBound(std::int64_t lower) override {
    if (lower < 0 || lower > GetSize()) return false;
    lower_ = lower;
    return true;
  }
  void* GetBuffer() override { return numbers_.Data(); }
  bool Remove() override {
    MarkRemoved();
    return true;
  }

 private:
  NumberStore numbers_;
  std::int64_t lower_ = 0;
};

VeDataSources* installed = nullptr;

}  // namespace

Worksheet* Worksheets::Find(std::string_view name) {
  const auto found = OpenBooks().find(name);
  return found != OpenBooks().end() ? found->second.get() : nullptr;
}

bool Worksheets::IsFree(std::string_view name) {
  return !name.empty() && name.find(']') == name.npos && Find(name) == nullptr;
}

bool Worksheets::Add(std::unique_ptr<Worksheet> worksheet) {
  if (!IsFree(worksheet->Name())) return false;
  std::string name = worksheet->Name();
  OpenBooks().emplace(std::move(name), std::move(worksheet));
  return true;
}

bool Worksheets::Close(std::string_view name) {
  const auto found = OpenBooks().find(name);
  if (found == OpenBooks().end()) return false;
  OpenBooks().erase(found);
  return true;
}

}  // namespace vela::host

VeDataSources::~VeDataSources() = default;

VeDataSources& VeDataSources::Get() {
  static vela::host::WorksheetSources worksheets;
  return vela::host::installed != nullptr ? *vela::host::installed : worksheets;
}

void VeDataSources::Install(VeDataSources* sources) { vela::host::installed = sources; }

VeRef<VeTempDataset> VeTempDataset::Create(unsigned element_type, std::int64_t size) try {
  if (!vela::host::VisitNumberType(element_type, [](auto) {})) return {};
  VeRef<VeTempDataset> data(new vela::host::TempDataset(element_type));
  return data->SetSize(size) ? data : VeRef<VeTempDataset>();
} catch (const std::bad_alloc&) {
  return {};
}
