// The public header as a C++ host compiles it, pedantic and warning-free;
// its C form is checked by host.c, compiled as C99.
#include "qziso32.h"
