// What vectors, matrices and multi-dimensional arrays have in common.
#pragma once

#include "frame/interface/tessel_object.h"

class TCAllTensorsBase : public TesselCObject {};
