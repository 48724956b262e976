#include "vector/members/all.h"

template class TCAllVectorsBaseBase<PointInt>;
template class TCAllVectorsBase<PointInt>;
template class TCVectorBase<PointInt>;
template class TCAllVectorsBaseBase<PointDouble>;
template class TCAllVectorsBase<PointDouble>;
template class TCVectorBase<PointDouble>;
template class TCAllVectorsBaseBase<Point3D>;
template class TCAllVectorsBase<Point3D>;
template class TCVectorBase<Point3D>;
