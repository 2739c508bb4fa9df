#pragma once

#include <AudioUnit/AudioUnit.h>

namespace host {

/// State of a unit as the unit itself saves it; null when it has none. The caller releases it.
CFTypeRef copyState(AudioUnit unit);

/// Gives a saved state back to its unit, then tells every listener that all parameters may have
/// changed: a unit restores them silently. Returns what the unit answered. [main]
OSStatus restoreState(AudioUnit unit, CFTypeRef state);

} // namespace host
