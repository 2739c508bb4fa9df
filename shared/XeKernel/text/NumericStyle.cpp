#include "text/NumericStyle.h"

#include "XeSafeCRT.h"

NumericStyle::NumericStyle(const std::locale& locale)
    : m_locale(locale), m_letters(&std::use_facet<std::ctype<wchar_t>>(m_locale))
{
    const auto& punctuation = std::use_facet<std::numpunct<wchar_t>>(m_locale);
    m_decimalPoint = punctuation.decimal_point();
    m_thousandsSeparator = punctuation.thousands_sep();
    for (std::size_t code = 0; code < m_asciiSpace.size(); ++code) {
        m_asciiSpace[code] = m_letters->is(std::ctype_base::space, static_cast<wchar_t>(code));
    }
}

const NumericStyle& currentNumericStyle()
{
    const std::locale current;
    thread_local NumericStyle style(current);
    if (!style.isOf(current)) {
        style = NumericStyle(current);
    }
    return style;
}
