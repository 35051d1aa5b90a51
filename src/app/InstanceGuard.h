#pragma once

namespace marvento {

// One running program per user: a lock file in the user's runtime folder. A lock left by a
// crashed instance is taken over, since its process no longer exists.
bool AcquireInstanceLock();
void ReleaseInstanceLock();

}  // namespace marvento
