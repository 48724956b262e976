#include "vector/members/all.h"

template class TCAllVectorsBaseBase<int>;
template class TCAllVectorsBase<int>;
template class TCVectorBase<int>;
template class TCAllVectorsBaseBase<unsigned>;
template class TCAllVectorsBase<unsigned>;
template class TCVectorBase<unsigned>;
template class TCAllVectorsBaseBase<std::int64_t>;
template class TCAllVectorsBase<std::int64_t>;
template class TCVectorBase<std::int64_t>;
template class TCAllVectorsBaseBase<std::uint64_t>;
template class TCAllVectorsBase<std::uint64_t>;
template class TCVectorBase<std::uint64_t>;
