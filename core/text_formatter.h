// The library's one formatting engine, with the directive set and the
// 1,024-character bound of the platform's wvsprintf.
#pragma once
#include <stdarg.h>
#include <windows.h>

// The most characters one call produces, and the room its output needs.
const int kFormatBound = 1024;
const int kFormatBufferSize = kFormatBound + 8;

// Formats into `out`, which holds kFormatBufferSize bytes. Returns the
// characters written, or kFormatBound when the bound was reached (the text
// then holds at most kFormatBound - 1 characters before its terminator).
int FormatText(char *out, const char *format, va_list args);
