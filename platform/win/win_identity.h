#pragma once

#include <string>

namespace varnel::win {

// The name of the user running this process, as UTF-8. Returns false, leaving name empty, when
// Windows cannot tell; the caller then falls back to the home location.
bool currentUserName(std::string &name);

} // namespace varnel::win
