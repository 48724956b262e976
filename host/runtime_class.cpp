#include "frame/interface/type_base.h"

static constexpr CRuntimeClass kRootClass = {"CPLBase", sizeof(CPLBase), nullptr};

CPLBase::~CPLBase() = default;

const CRuntimeClass* CPLBase::GetRuntimeClass() const { return &kRootClass; }
