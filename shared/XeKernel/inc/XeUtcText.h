#pragma once

#include <ctime>
#include <string>

/// Dates and times as text in the two forms of ISO 8601, 2024-03-05T14:07:09 and 20240305T140709.
///
/// The readers fill only the fields that they name, and with what the text says: a day 31 of
/// February stays one. A field is a number of the digits 0 to 9; a "+" may stand before one in a
/// date, while "-", and in a time "+" too, always ends the field before it. All readers throw
/// boost::bad_lexical_cast, before anything is written, for a field that is no number or is above
/// 2147483647; nothing else is an error. [any]
namespace xenon::util {

/// Reads a date into `tm_year`, `tm_mon` and `tm_mday`.
///
///     "2024-03-05", "20240305" -> 124, 2, 5
///     "2024-03", "202403"      -> 124, 2, 0
///     "2024"                   -> 124, 0, 0
///
/// Two or three fields between "-" are year, month and day. A text without "-" is read in fixed
/// fields of 4, 2 and 2 characters; what follows them is ignored. Fields that are missing are 0,
/// and month 0 is January. An empty text and one of four fields and more leave `out` as it was.
void date_from_utc_string(const std::wstring& text, tm& out);

/// Reads a clock time into `tm_hour`, `tm_min` and `tm_sec`.
///
///     "14:07:09", "140709Z", "14:07:09+02:00" -> 14, 7, 9
///     "14:07", "1407"                         -> 14, 7, 0
///
/// The text ends for this reader at the first "-", "+" or "Z": the zone is ignored, the time stays
/// local. Two or three fields between ":" are hour, minute and second, as whole numbers: "09.5" is
/// none. Without ":" the fields have 2 characters each and what follows them is ignored. Missing
/// fields are 0, all three for "Z". An empty text and one of four fields and more leave `out` as it
/// was.
void time_from_utc_string(const std::wstring& text, tm& out);

/// Reads a date, and a time behind the first "T" if there is one, into a record of zeros. Text
/// behind a second "T" is ignored.
tm date_time_from_utc_string(const std::wstring& text);

/// Writes date and time, "2024-03-05T14:07:09", without a zone.
std::wstring utc_string_from_date_time(const tm& t);

} // namespace xenon::util
