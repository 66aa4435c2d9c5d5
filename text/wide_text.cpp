// Bounded copies of UTF-16 text.
#include "text/wide_text.h"

void CopyBounded(LPWSTR to, LPCWSTR from, int capacity) {
    for (; capacity > 1 && *from; --capacity) *to++ = *from++;
    if (capacity > 0) *to = 0;
}
