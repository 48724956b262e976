// The set of addresses of all live script objects.
#pragma once

#include <cstddef>

namespace vela::host {

// Safe from any thread; each call takes a lock for one hash probe. Add throws std::bad_alloc.
void AddLiveObject(const void* object);
void RemoveLiveObject(const void* object);
bool IsLiveObject(const void* object);
std::size_t CountLiveObjects();

}  // namespace vela::host
