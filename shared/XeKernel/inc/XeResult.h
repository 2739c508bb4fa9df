#pragma once

#include <cstdint>

/// Result codes of the kernel: 0 for success, negative for failure, in the platform's COM style.
/// Each function's header says which of them it returns.
using XeResult = std::int32_t;

// clang-format off
inline constexpr XeResult kXeOk                   = 0;
inline constexpr XeResult kXeInvalidArgument      = static_cast<XeResult>(0x80000003);
inline constexpr XeResult kXeGeneralFailure       = static_cast<XeResult>(0x80000008);
inline constexpr XeResult kXeUnexpected           = static_cast<XeResult>(0x8000FFFF);
inline constexpr XeResult kXeAlreadyStarted       = static_cast<XeResult>(0x8004E002);
inline constexpr XeResult kXeNotInitialised       = static_cast<XeResult>(0x8004E009);
inline constexpr XeResult kXeThreadNotStarted     = static_cast<XeResult>(0x8004E00F);
inline constexpr XeResult kXeNotWatchable         = static_cast<XeResult>(0x8004E011);
inline constexpr XeResult kXeFileOperationFailed  = static_cast<XeResult>(0x8004E014);
inline constexpr XeResult kXeOpenFailed           = static_cast<XeResult>(0x8004E015);
inline constexpr XeResult kXeSourceFolderMissing  = static_cast<XeResult>(0x8004E016);
inline constexpr XeResult kXeDestinationExists    = static_cast<XeResult>(0x8004E023);
inline constexpr XeResult kXeRemoteVolumeGone     = static_cast<XeResult>(0x8004E195);
// clang-format on
