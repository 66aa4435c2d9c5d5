// The slice's 16-bit text as the host's UTF-8 and back, and the upper case of one unit.
#ifndef QUILL_PLATFORM_QT_SERVICES_WIDE_TEXT_H
#define QUILL_PLATFORM_QT_SERVICES_WIDE_TEXT_H

#include <string>
#include <string_view>

// A surrogate without its other half is written as three bytes of its own, so that two different
// texts never become the same bytes.
std::string Utf8FromWide(std::u16string_view text);
// Bytes that are not UTF-8 become U+FFFD.
std::u16string WideFromUtf8(std::string_view bytes);

// Simple mapping of one unit, by the Unicode tables, whatever the locale. A unit above U+007F is
// never mapped to one below.
char16_t UpperUnit(char16_t unit);
char16_t LowerUnit(char16_t unit);
// Order of two texts by their units, case set aside: below 0, 0 or above 0.
int CompareWithoutCase(const char16_t* a, const char16_t* b);

// Copies at most `capacity` - 1 units and terminates.
void CopyUnits(char16_t* to, const char16_t* from, int capacity);

#endif
