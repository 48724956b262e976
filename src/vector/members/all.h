// Every member definition of the typed vectors, for the files that instantiate them.
#pragma once

#include "vector/members/arrays.h"
#include "vector/members/bytes.h"
#include "vector/members/complex_parts.h"
#include "vector/members/generate.h"
#include "vector/members/host_access.h"
#include "vector/members/list.h"
#include "vector/members/operate.h"
#include "vector/members/search.h"
#include "vector/members/size.h"
#include "vector/members/sort.h"
#include "vector/members/statistics.h"
#include "vector/members/storage.h"
#include "vector/members/structure.h"
#include "vector/members/sub_vector.h"
