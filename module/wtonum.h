// Numbers from wide text by the C runtime's rules for _wtoi and _wtof: leading white space, a
// sign, then as many digits as form a number; 0 when there are none. The result does not
// depend on the process locale.
#pragma once

// Out of the int range: the nearest end of it.
int qorWtoi(const wchar_t* text);
double qorWtof(const wchar_t* text);
