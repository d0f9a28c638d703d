// Requests of the system that the program end: a logout, a closed terminal, a termination.
#pragma once

namespace ormel {

/// From here on such a request is noted instead of ending the program at once.
void WatchEndRequests();
bool EndRequested();

}  // namespace ormel
