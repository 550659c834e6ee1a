// Dialogs made from a template of a module: the four wrappers load the
// template themselves and hand it to the system's indirect calls. Eighteen
// shows a fixed notice once per feature.
#include "../core/module_globals.h"
#include "../drawing/dialog_placement.h"

namespace {

const char kNoticeSection[] = "Kelendrix-EighteenFeatureDone";
const char kNoticeTemplate[] = "EIGHTEEN";
const DWORD kNoticeShowMs = 10000;

enum class DialogKind { Modal, Modeless };

// Finds, loads and locks `templateName`, and makes the dialog. A modal
// dialog yields its result or -1, a modeless one its window or null.
INT_PTR MakeDialog(DialogKind kind, HMODULE module, const char *templateName, HWND owner,
                   DLGPROC procedure, LPARAM param)
{
    INT_PTR failure = kind == DialogKind::Modal ? -1 : 0;
    HRSRC found = FindResourceA(module, templateName, MAKEINTRESOURCEA(5));
    if (!found)
        return failure;
    HGLOBAL loaded = LoadResource(module, found);
    INT_PTR result = failure;
    const DLGTEMPLATE *dialog = loaded ? static_cast<const DLGTEMPLATE *>(LockResource(loaded))
                                       : nullptr;
    if (dialog) {
        if (kind == DialogKind::Modal)
            result = DialogBoxIndirectParamA(module, dialog, owner, procedure, param);
        else
            result = reinterpret_cast<INT_PTR>(
                CreateDialogIndirectParamA(module, dialog, owner, procedure, param));
    }
    FreeResource(loaded);
    return result;
}

INT_PTR CALLBACK NoticeProcedure(HWND, UINT message, WPARAM, LPARAM)
{
    return message == WM_INITDIALOG;
}

}  // namespace

extern "C" INT_PTR WINAPI DialogBoxParam(HMODULE module, const char *templateName, HWND owner,
                                         DLGPROC procedure, LPARAM param)
{
    return MakeDialog(DialogKind::Modal, module, templateName, owner, procedure, param);
}

extern "C" HWND WINAPI CreateDialogParam(HMODULE module, const char *templateName, HWND owner,
                                         DLGPROC procedure, LPARAM param)
{
    return reinterpret_cast<HWND>(
        MakeDialog(DialogKind::Modeless, module, templateName, owner, procedure, param));
}

extern "C" INT_PTR WINAPI DialogBox(HMODULE module, const char *templateName, HWND owner,
                                    DLGPROC procedure)
{
    return MakeDialog(DialogKind::Modal, module, templateName, owner, procedure, 0);
}

extern "C" HWND WINAPI CreateDialog(HMODULE module, const char *templateName, HWND owner,
                                    DLGPROC procedure)
{
    return reinterpret_cast<HWND>(
        MakeDialog(DialogKind::Modeless, module, templateName, owner, procedure, 0));
}

extern "C" BOOL WINAPI Eighteen(HWND owner, const char *key)
{
    if (key) {
        if (GetProfileIntA(kNoticeSection, key, 0))
            return TRUE;
        WriteProfileStringA(kNoticeSection, key, "1");
    }
    HWND notice = CreateDialog(g_module.hResourceLibrary, kNoticeTemplate, owner, NoticeProcedure);
    if (!notice)
        return FALSE;
    CentreDialog(notice, SWP_NOSIZE | SWP_NOZORDER, false);
    ShowWindow(notice, SW_SHOW);
    UpdateWindow(notice);
    Sleep(kNoticeShowMs);
    ShowWindow(notice, SW_HIDE);
    DestroyWindow(notice);
    return FALSE;
}
