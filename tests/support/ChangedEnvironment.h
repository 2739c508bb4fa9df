#pragma once

#include <cstdlib>
#include <map>
#include <optional>
#include <string>

/// Environment variables of the process that are put back at the end. Only while no other thread
/// looks at them.
class ChangedEnvironment {
public:
    ChangedEnvironment() = default;
    ~ChangedEnvironment()
    {
        for (const auto& [name, value] : m_before) {
            _put(name, value);
        }
    }
    ChangedEnvironment(const ChangedEnvironment&) = delete;
    ChangedEnvironment& operator=(const ChangedEnvironment&) = delete;

    /// @param value  Nothing unsets the variable.
    void set(const std::string& name, const std::optional<std::string>& value)
    {
        const char* const before = std::getenv(name.c_str());
        m_before.try_emplace(name, before == nullptr ? std::nullopt : std::optional(before));
        _put(name, value);
    }

private:
    static void _put(const std::string& name, const std::optional<std::string>& value)
    {
        value ? setenv(name.c_str(), value->c_str(), 1) : unsetenv(name.c_str());
    }

    std::map<std::string, std::optional<std::string>> m_before;
};
