// Loads the library as a host would and reports by exit status:
// 0 loaded, 1 the load failed. Attach may also end the process itself.
#include <windows.h>

int main()
{
    HMODULE library = LoadLibraryA("qziso32.dll");
    if (!library)
        return 1;
    FreeLibrary(library);
    return 0;
}
