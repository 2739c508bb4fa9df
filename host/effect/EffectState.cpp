#include "EffectState.h"

#include <bit>
#include <cmath>
#include <cstddef>
#include <optional>

namespace host {

namespace {

constexpr std::uint32_t kGlobalScope = 0;
constexpr std::uint32_t kGlobalElement = 0;

void appendWord(std::vector<std::uint8_t>& bytes, std::uint32_t word)
{
    for (const int shift : {24, 16, 8, 0}) {
        bytes.push_back(static_cast<std::uint8_t>(word >> shift));
    }
}

class WordReader {
public:
    explicit WordReader(std::span<const std::uint8_t> bytes) : m_rest(bytes) {}

    bool atEnd() const { return m_rest.empty(); }

    std::optional<std::uint32_t> next()
    {
        if (m_rest.size() < 4) {
            return std::nullopt;
        }
        std::uint32_t word = 0;
        for (const std::uint8_t byte : m_rest.first(4)) {
            word = word << 8 | byte;
        }
        m_rest = m_rest.subspan(4);
        return word;
    }

    std::optional<SavedParameter> nextParameter()
    {
        const auto id = next();
        const auto bits = next();
        if (!id || !bits) {
            return std::nullopt;
        }
        return SavedParameter{*id, std::bit_cast<float>(*bits)};
    }

private:
    std::span<const std::uint8_t> m_rest;
};

/// One section; false when it is cut short or holds a value that is no number.
bool readSection(WordReader& reader, std::vector<SavedParameter>& parameters)
{
    const auto scope = reader.next();
    const auto element = reader.next();
    const auto count = reader.next();
    if (!scope || !element || !count) {
        return false;
    }
    const bool ours = *scope == kGlobalScope && *element == kGlobalElement;
    for (std::uint32_t i = 0; i < *count; ++i) {
        const auto parameter = reader.nextParameter();
        if (!parameter || !std::isfinite(parameter->value)) {
            return false;
        }
        if (ours) {
            parameters.push_back(*parameter);
        }
    }
    return true;
}

} // namespace

std::vector<std::uint8_t> encodeParameters(std::span<const SavedParameter> parameters)
{
    std::vector<std::uint8_t> bytes;
    appendWord(bytes, kGlobalScope);
    appendWord(bytes, kGlobalElement);
    appendWord(bytes, static_cast<std::uint32_t>(parameters.size()));
    for (const SavedParameter& parameter : parameters) {
        appendWord(bytes, parameter.id);
        appendWord(bytes, std::bit_cast<std::uint32_t>(parameter.value));
    }
    return bytes;
}

bool decodeParameters(std::span<const std::uint8_t> data,
                      std::vector<SavedParameter>& outParameters)
{
    std::vector<SavedParameter> parameters;
    WordReader reader(data);
    while (!reader.atEnd()) {
        if (!readSection(reader, parameters)) {
            return false;
        }
    }
    outParameters = std::move(parameters);
    return true;
}

} // namespace host
