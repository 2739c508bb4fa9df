#pragma once

#include "XeResult.h"

// The codes that the tests expect, in numbers of their own.
// clang-format off
inline constexpr XeResult kOk                = 0;
inline constexpr XeResult kGeneral           = static_cast<XeResult>(0x80000008);
inline constexpr XeResult kOperationFailed   = static_cast<XeResult>(0x8004E014);
inline constexpr XeResult kSourceMissing     = static_cast<XeResult>(0x8004E016);
inline constexpr XeResult kDestinationTaken  = static_cast<XeResult>(0x8004E023);
inline constexpr XeResult kVolumeGone        = static_cast<XeResult>(0x8004E195);
// clang-format on
