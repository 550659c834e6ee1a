// Loads the library as a host would and reports by exit status:
// 0 loaded, 1 the load failed. Attach may also end the process itself.
#include <windows.h>

int main()
{
    // With QZ_ATTACH_WITNESS set, a witness library records the cause of an
    // attach that ends the process.
    char witness[MAX_PATH];
    if (GetEnvironmentVariableA("QZ_ATTACH_WITNESS", witness, sizeof witness))
        LoadLibraryA("attach_witness.dll");
    HMODULE library = LoadLibraryA("qziso32.dll");
    if (!library)
        return 1;
    FreeLibrary(library);
    return 0;
}
