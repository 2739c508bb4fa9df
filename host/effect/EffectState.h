#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace host {

/// One parameter and its value, as saved.
struct SavedParameter {
    std::uint32_t id = 0;
    float value = 0;

    friend bool operator==(const SavedParameter&, const SavedParameter&) = default;
};

/// Writes the `data` entry of an effect's saved state: for the global scope, element 0, the
/// big-endian words scope, element, count, then an (ID, float bits) pair for each parameter.
std::vector<std::uint8_t> encodeParameters(std::span<const SavedParameter> parameters);

/// Reads such an entry. Sections of other scopes or elements are passed over.
/// @param outParameters  Replaced on success, else left alone.
/// @return  False when the bytes end inside a section or a value is not finite.
bool decodeParameters(std::span<const std::uint8_t> data,
                      std::vector<SavedParameter>& outParameters);

} // namespace host
