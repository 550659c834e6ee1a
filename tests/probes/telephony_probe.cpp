// A host that only loads the library and reports by exit status whether
// telephony came up at attach: 0 off, 1 on. Not starting at all means the
// load failed.
#include "qziso32.h"

int main() { return IsTelephonyEnabled() ? 1 : 0; }
