#pragma once

namespace tesselc {

// What a status of a member means, in a few words; "unknown status" for one that no member gives.
const char* StatusText(int status);

}  // namespace tesselc
