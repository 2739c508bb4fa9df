#include "XePropertyMap.h"

#include "XeSafeCRT.h"

#include <boost/lexical_cast.hpp>

#include <string>
#include <type_traits>

template <XePropertyValue T>
bool XeProperty::content_impl<T>::is_arithmetic() const
{
    return std::is_arithmetic_v<T>;
}

template <XePropertyValue T>
_XeString<wchar_t> XeProperty::content_impl<T>::to_string() const
{
    return boost::lexical_cast<std::wstring>(m_value);
}

template <XePropertyValue T>
std::unique_ptr<XeProperty::content> XeProperty::content_impl<T>::copy() const
{
    return std::make_unique<content_impl>(m_value);
}

template <XePropertyValue T>
bool XeProperty::content_impl<T>::equal(const content& other) const
{
    return other.type() == type() && static_cast<const content_impl&>(other).m_value == m_value;
}

template class XeProperty::content_impl<int>;
template class XeProperty::content_impl<unsigned int>;
template class XeProperty::content_impl<long long>;
template class XeProperty::content_impl<double>;
