#pragma once

#include "XeString.h"

#include <concepts>
#include <memory>
#include <typeinfo>

/// The types that a property can hold.
template <class T>
concept XePropertyValue = std::same_as<T, int> || std::same_as<T, unsigned int> ||
    std::same_as<T, long long> || std::same_as<T, double>;

/// One value of a property map: a number that knows its own type, or nothing.
///
///     XeProperty rate(48000u);
///     rate.GetValue<unsigned int>();  // 48000
///     rate.GetValue<int>();           // 0: no conversion between the types
///
/// Copies are deep. No locking: one thread at a time, or any number that only read. [any]
class XeProperty {
public:
    /// The held value behind its type.
    class content {
    public:
        virtual ~content() = default;

        /// Identity of the held type.
        virtual const std::type_info& type() const = 0;

        /// True when the held type is a number; all four types of content_impl are.
        virtual bool is_arithmetic() const = 0;

        /// The value in decimal, independent of the locale: -42 -> "-42", 0.5 -> "0.5". A double
        /// has as many digits as reading it back exactly needs.
        /// @throws boost::bad_lexical_cast when the conversion fails.
        virtual _XeString<wchar_t> to_string() const = 0;

        /// A new content of the same type and value, owned by the caller.
        virtual std::unique_ptr<content> copy() const = 0;

        /// True when `other` holds the same type and == finds the values equal: a NaN equals
        /// nothing, and 1 held as int differs from 1 held as long long.
        virtual bool equal(const content& other) const = 0;

    protected:
        content() = default;
        content(const content&) = default;
        content& operator=(const content&) = delete;
    };

    /// Content of one type; its members are compiled once per type, in the library.
    template <XePropertyValue T>
    class content_impl final : public content {
    public:
        explicit content_impl(T value) : m_value(value) {}

        const std::type_info& type() const override { return typeid(T); }
        bool is_arithmetic() const override;
        _XeString<wchar_t> to_string() const override;
        std::unique_ptr<content> copy() const override;
        bool equal(const content& other) const override;

        const T& value() const { return m_value; }

    private:
        T m_value;
    };

    /// An empty property, as the lookup of a missing key makes it.
    XeProperty() = default;

    /// A property holding `value`. Implicit, so that a map can be filled with plain numbers.
    template <XePropertyValue T>
    XeProperty(T value) : m_content(std::make_unique<content_impl<T>>(value))
    {
    }

    XeProperty(const XeProperty& other) : m_content(_copyOf(other)) {}
    XeProperty(XeProperty&& other) noexcept = default;
    XeProperty& operator=(const XeProperty& other)
    {
        if (this != &other) {
            m_content = _copyOf(other);
        }
        return *this;
    }
    XeProperty& operator=(XeProperty&& other) noexcept = default;
    ~XeProperty() = default;

    /// The held value when it is of exactly type T; otherwise, also for an empty property, a zero
    /// that lives as long as the program. The reference lives until the property is assigned to
    /// or destroyed.
    template <class T>
    const T& GetValue() const
    {
        static const T none{};
        if constexpr (XePropertyValue<T>) {
            if (m_content && m_content->type() == typeid(T)) {
                return static_cast<const content_impl<T>&>(*m_content).value();
            }
        }
        return none;
    }

    /// What is held, null for an empty property. Owned by the property.
    const content* GetContent() const { return m_content.get(); }

private:
    static std::unique_ptr<content> _copyOf(const XeProperty& other)
    {
        return other.m_content ? other.m_content->copy() : nullptr;
    }

    std::unique_ptr<content> m_content;
};

extern template class XeProperty::content_impl<int>;
extern template class XeProperty::content_impl<unsigned int>;
extern template class XeProperty::content_impl<long long>;
extern template class XeProperty::content_impl<double>;
