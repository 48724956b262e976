#include "vector/members/all.h"

template class TCAllVectorsBaseBase<char>;
template class TCAllVectorsBase<char>;
template class TCVectorBase<char>;
template class TCAllVectorsBaseBase<unsigned char>;
template class TCAllVectorsBase<unsigned char>;
template class TCVectorBase<unsigned char>;
template class TCAllVectorsBaseBase<short>;
template class TCAllVectorsBase<short>;
template class TCVectorBase<short>;
template class TCAllVectorsBaseBase<unsigned short>;
template class TCAllVectorsBase<unsigned short>;
template class TCVectorBase<unsigned short>;
