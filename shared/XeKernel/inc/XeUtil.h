#pragma once

#include "XeString.h"
#include "XeUtcText.h" // the rest of xenon::util

/// Numbers to text and back, as the user of the current global locale writes them.
///
/// The readers take the decimal point and the thousands separator from the numeric punctuation of
/// the global C++ locale at each call; the writer prints with the C library's LC_NUMERIC. A named
/// locale made global with std::locale::global() sets both. [any]
namespace xenon::util {

/// Reads a whole number: white space, one '+' or '-', digits, white space.
///
///     atoi(text.begin(), text.end(), n);  // "  -42  " -> -42, returns end
///
/// Thousands separators between, before and after the digits are skipped. A value that is too
/// large wraps in the type of `out`; the minus sign of an unsigned type wraps too.
///
/// @param out  The number; 0 when there are no digits.
/// @return     Where reading ended; equal to `end` when the whole range was a number (or white
///             space, or empty).
///
/// Compiled for Iterator = _XeString<wchar_t>::const_iterator and ::iterator, and Integer =
/// unsigned int, unsigned long long and long long.
template <class Iterator, class Integer>
Iterator atoi(Iterator begin, Iterator end, Integer& out);

/// Reads a decimal number: white space, one '+' or '-', then digits with decimal point and
/// exponent ("1.5e-3"), or a word for a value that is no number: "nan", "inf", "infinity", in any
/// letter case.
///
/// The number's characters are all digits, decimal points, thousands separators, 'e', 'E' and
/// signs that follow an 'e'; a number that begins with a letter is all letters that follow.
/// Thousands separators are left out. The result is the double nearest to the text.
///
/// @param out  The number; 0 when it throws.
/// @return     Where reading ended; white space at the end is not skipped.
/// @throws boost::bad_lexical_cast when the characters form no number ("", "abc", "1.2.3", "1e")
///         or one beyond the range of a double.
///
/// Compiled for the two iterators of atoi.
template <class Iterator>
Iterator atof(Iterator begin, Iterator end, double& out);

/// Reads a decimal number from a text that may go on with something else, such as ':'.
///
///     myatof(text, &x);  // "1,234.5" -> 1234.5, returns 0;  "12:34" -> 12, returns ':'
///
/// Tabs and spaces in front are skipped; tabs, spaces and '%' at the end are cut off, in `text`
/// itself. A '-' may lead, a '+' may not. Before the last decimal point of the text thousands
/// separators are skipped and a tab or any other space ends the number, without fraction; any other
/// character stops reading there, and then `*out` holds the digits so far without their sign.
/// A number that is read to its end is moved away from zero by 0.000000000005, so that 0.29 is
/// not less than 29 hundredths.
///
/// @param text  Zero-terminated and writable; null reads as empty.
/// @param out   The number; 0 for a text of nothing but tabs and spaces. Not null.
/// @return      The character where reading stopped, 0 at the end of the text.
wchar_t myatof(wchar_t* text, double* out);

/// Prints with a fixed number of decimals, cut when they are zero.
///
///     doubleToString(2.5, 3, false);  // "2.500"
///     doubleToString(2.5, 3, true);   // "2.5"
///     doubleToString(2.0, 3, true);   // "2"
///
/// @param precision  Decimals; a negative number prints 6, as printf does.
/// @param trim       Whether to remove zeros from the end, and then the decimal point ('.' or ',').
_XeString<wchar_t> doubleToString(double value, int precision, bool trim);

/// Prints with a number of decimals between the smaller and the larger of `a` and `b`, as many as
/// are not zeros at the end.
///
///     doubleToString(2.5, 3, 1);  // "2.5"
///     doubleToString(2.0, 3, 1);  // "2.0"
///     doubleToString(2.0, 3, 0);  // "2"
///
/// The fraction is found as the extension of a file name would be, from the last '.': with a
/// decimal comma all of the larger number of decimals stay.
_XeString<wchar_t> doubleToString(double value, int a, int b);

} // namespace xenon::util
