#include "vector/members/all.h"

template class TCAllVectorsBaseBase<float>;
template class TCAllVectorsBase<float>;
template class TCVectorBase<float>;
template class TCAllVectorsBaseBase<double>;
template class TCAllVectorsBase<double>;
template class TCVectorBase<double>;
template class TCAllVectorsBaseBase<OneTCcomplex>;
template class TCAllVectorsBase<OneTCcomplex>;
template class TCVectorBase<OneTCcomplex>;
