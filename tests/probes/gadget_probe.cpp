// A host for the gadget frame under a language given on its command line
// (/LQA: a library without the gadget strings and dialogs). It registers
// the gadgets, unregisters them, and asks for the one-time notice under
// the key given first on the command line. Exit status, bit by bit:
// 1 RegisterGadgets succeeded, 2 UnRegisterGadgets then found nothing
// registered, 4 Eighteen returned 0 within five seconds; bits 8 and up:
// the result code recorded by RegisterGadgets.
#include "qziso32.h"

int main(int argc, char **argv)
{
    if (argc < 2)
        return -1;
    IsolateInstanceStart(0, 0);
    int status = RegisterGadgets(0) ? 1 : 0;
    int recorded = OSErrorGetErrorValue();
    OSErrorClearError();
    if (UnRegisterGadgets() == -1)
        status |= 2;
    DWORD start = GetTickCount();
    if (Eighteen(nullptr, argv[1]) == 0 && GetTickCount() - start < 5000)
        status |= 4;
    IsolateInstanceStop(0);
    return status | recorded << 8;
}
