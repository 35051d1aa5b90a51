#pragma once

#include <QString>

namespace marvento {

// Why a file could not be written, as one German sentence for a message box, from the
// system's error number (errno). Numbers without a sentence of their own keep the system's
// text.
QString WriteFailureReason(int error);

}  // namespace marvento
