#include "CallProbe.h"

namespace audiounit_compat {

std::atomic<CallProbe*> gCallProbe{nullptr};

void setCallProbe(CallProbe* probe) { gCallProbe.store(probe, std::memory_order_release); }

} // namespace audiounit_compat
