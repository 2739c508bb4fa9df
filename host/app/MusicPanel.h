#pragma once

#include "host/effect/HostMusic.h"

#include <optional>
#include <string>

namespace host {

/// Asks for the host's tempo and time signature in a panel of its own; waits until it is closed.
/// A value that makes no sense is refused with a beep and stays to be corrected. None when the user
/// cancels. [main]
std::optional<HostMusic> askForMusic(const HostMusic& present);

/// Reads what was typed: a tempo ("92.5", "92,5"), and a signature of two whole numbers ("6/8").
/// None where a value is out of range; see isTempo() and isTimeSignature(). [any]
std::optional<HostMusic> readMusic(const std::string& tempo, const std::string& signature);

} // namespace host
